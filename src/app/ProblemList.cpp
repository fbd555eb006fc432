#include "ProblemList.h"

#include <QApplication>
#include <QStyle>

QIcon problemIcon(Qa::Severity severity)
{
    // Made once: tables ask for them on every repaint of every row.
    static const QIcon error = QApplication::style()->standardIcon(QStyle::SP_MessageBoxCritical);
    static const QIcon warning = QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
    switch (severity) {
    case Qa::Severity::Error: return error;
    case Qa::Severity::Warning: return warning;
    default: return QIcon();
    }
}

ProblemList::ProblemList(QWidget *parent) : QListWidget(parent)
{
    setObjectName(QStringLiteral("problemList"));
    setFocusPolicy(Qt::NoFocus);
    setSelectionMode(QAbstractItemView::NoSelection);
    setWordWrap(true);
    setTextElideMode(Qt::ElideNone);
    setIconSize(QSize(16, 16));
    setProblems({});
}

void ProblemList::setProblems(const QList<Qa::Problem> &problems)
{
    // Typing calls this on every keystroke: leave the list alone while nothing changed.
    if (problems == m_problems && count() > 0) return;
    m_problems = problems;
    clear();
    for (const Qa::Problem &p : problems) {
        auto *item = new QListWidgetItem(problemIcon(p.severity), p.message, this);
        item->setToolTip(p.check);
    }
    if (problems.isEmpty()) {
        auto *none = new QListWidgetItem(tr("No problems found."), this);
        none->setForeground(palette().color(QPalette::Disabled, QPalette::Text));
    }
}

// Room for three short problems; more scroll.
QSize ProblemList::sizeHint() const
{
    return QSize(QListWidget::sizeHint().width(), fontMetrics().height() * 4 + 8);
}
