#include "ToolbarIcons.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

namespace {

void drawPage(QPainter &p, const QRectF &r)
{
    const qreal fold = r.width() * 0.3;
    QPainterPath page;
    page.moveTo(r.topLeft());
    page.lineTo(r.right() - fold, r.top());
    page.lineTo(r.right(), r.top() + fold);
    page.lineTo(r.bottomRight());
    page.lineTo(r.bottomLeft());
    page.closeSubpath();
    p.setPen(QPen(QColor(90, 100, 115), r.width() * 0.06));
    p.setBrush(QColor(250, 250, 252));
    p.drawPath(page);
    for (int i = 1; i <= 3; ++i) {
        const qreal y = r.top() + r.height() * (0.25 + 0.17 * i);
        p.drawLine(QPointF(r.left() + r.width() * 0.2, y), QPointF(r.right() - r.width() * 0.2, y));
    }
}

void drawBadge(QPainter &p, const QRectF &r, const QColor &color, bool plus)
{
    p.setPen(Qt::NoPen);
    p.setBrush(color);
    p.drawEllipse(r);
    p.setPen(QPen(Qt::white, r.width() * 0.16, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF c = r.center();
    const qreal a = r.width() * 0.26;
    if (plus) {
        p.drawLine(QPointF(c.x() - a, c.y()), QPointF(c.x() + a, c.y()));
        p.drawLine(QPointF(c.x(), c.y() - a), QPointF(c.x(), c.y() + a));
    } else {
        p.drawLine(QPointF(c.x() - a, c.y()), QPointF(c.x() + a, c.y()));
        p.drawLine(QPointF(c.x() + a * 0.1, c.y() - a * 0.8), QPointF(c.x() + a, c.y()));
        p.drawLine(QPointF(c.x() + a * 0.1, c.y() + a * 0.8), QPointF(c.x() + a, c.y()));
    }
}

class DrawnIcon : public QIconEngine {
public:
    explicit DrawnIcon(QString id) : m_id(std::move(id)) {}
    QIconEngine *clone() const override { return new DrawnIcon(m_id); }
    void paint(QPainter *p, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        p->save();
        p->setRenderHint(QPainter::Antialiasing);
        if (mode == QIcon::Disabled) p->setOpacity(0.35);
        const QRectF r = QRectF(rect).adjusted(1, 1, -1, -1);
        const qreal s = r.width();
        const QRectF badge(r.left() + s * 0.5, r.top() + s * 0.5, s * 0.48, s * 0.48);
        if (m_id == QLatin1String("ExportAll")) {
            drawPage(*p, QRectF(r.left() + s * 0.22, r.top(), s * 0.56, s * 0.72));
            drawPage(*p, QRectF(r.left() + s * 0.08, r.top() + s * 0.12, s * 0.56, s * 0.72));
        } else {
            drawPage(*p, QRectF(r.left() + s * 0.12, r.top() + s * 0.04, s * 0.6, s * 0.8));
        }
        drawBadge(*p, badge, m_id == QLatin1String("AddFile") ? QColor(46, 160, 67) : QColor(40, 110, 210),
                  m_id == QLatin1String("AddFile"));
        p->restore();
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pm(size);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        paint(&p, QRect(QPoint(0, 0), size), mode, state);
        return pm;
    }

private:
    QString m_id;
};

}  // namespace

QIcon toolbarIcon(const QString &identifier)
{
    return QIcon(new DrawnIcon(identifier));
}
