#pragma once
// The entry editor's list of the current entry's problems (placeholders that disagree, white
// space, ending marks, ...), one line each with its severity's icon, read again as the
// translator types. The icons are the ones the entry and file tables show.

#include "QualityChecks.h"

#include <QIcon>
#include <QListWidget>

// Error and warning look different everywhere: the style's critical and warning icons.
QIcon problemIcon(Qa::Severity severity);

class ProblemList : public QListWidget {
    Q_OBJECT
public:
    explicit ProblemList(QWidget *parent = nullptr);
    void setProblems(const QList<Qa::Problem> &problems);
    const QList<Qa::Problem> &problems() const { return m_problems; }
    QSize sizeHint() const override;

private:
    QList<Qa::Problem> m_problems;
};
