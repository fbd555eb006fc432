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

// A window with its drawer pulled out on the left (Files).
void drawDrawer(QPainter &p, const QRectF &r)
{
    const QRectF window(r.left() + r.width() * 0.3, r.top() + r.height() * 0.15, r.width() * 0.66, r.height() * 0.7);
    const QRectF drawer(r.left() + r.width() * 0.04, r.top() + r.height() * 0.25, r.width() * 0.3, r.height() * 0.5);
    p.setPen(QPen(QColor(90, 100, 115), r.width() * 0.05));
    p.setBrush(QColor(200, 215, 235));
    p.drawRect(drawer);
    p.setBrush(QColor(250, 250, 252));
    p.drawRect(window);
    p.setBrush(QColor(90, 100, 115));
    p.drawRect(QRectF(window.left(), window.top(), window.width(), window.height() * 0.14));
    for (int i = 1; i <= 3; ++i) {
        const qreal y = drawer.top() + drawer.height() * 0.25 * i;
        p.drawLine(QPointF(drawer.left() + drawer.width() * 0.2, y), QPointF(drawer.right() - drawer.width() * 0.2, y));
    }
}

// A waste basket (Delete).
void drawBasket(QPainter &p, const QRectF &r)
{
    p.setPen(QPen(QColor(90, 100, 115), r.width() * 0.06, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(QColor(235, 238, 242));
    QPainterPath body;
    body.moveTo(r.left() + r.width() * 0.22, r.top() + r.height() * 0.28);
    body.lineTo(r.right() - r.width() * 0.22, r.top() + r.height() * 0.28);
    body.lineTo(r.right() - r.width() * 0.28, r.bottom() - r.height() * 0.04);
    body.lineTo(r.left() + r.width() * 0.28, r.bottom() - r.height() * 0.04);
    body.closeSubpath();
    p.drawPath(body);
    p.drawLine(QPointF(r.left() + r.width() * 0.14, r.top() + r.height() * 0.2),
               QPointF(r.right() - r.width() * 0.14, r.top() + r.height() * 0.2));
    p.drawLine(QPointF(r.center().x() - r.width() * 0.1, r.top() + r.height() * 0.1),
               QPointF(r.center().x() + r.width() * 0.1, r.top() + r.height() * 0.1));
    for (qreal x : {0.4, 0.5, 0.6})
        p.drawLine(QPointF(r.left() + r.width() * x, r.top() + r.height() * 0.4),
                   QPointF(r.left() + r.width() * x, r.bottom() - r.height() * 0.16));
}

// A toolbar strip with a pencil over it (Customize).
void drawCustomize(QPainter &p, const QRectF &r)
{
    p.setPen(QPen(QColor(90, 100, 115), r.width() * 0.05));
    p.setBrush(QColor(250, 250, 252));
    p.drawRoundedRect(QRectF(r.left() + r.width() * 0.04, r.top() + r.height() * 0.3, r.width() * 0.92, r.height() * 0.4),
                      r.width() * 0.06, r.width() * 0.06);
    p.setBrush(QColor(200, 215, 235));
    for (int i = 0; i < 3; ++i)
        p.drawRect(QRectF(r.left() + r.width() * (0.12 + 0.27 * i), r.top() + r.height() * 0.38, r.width() * 0.18,
                          r.height() * 0.24));
    p.setPen(QPen(QColor(214, 140, 30), r.width() * 0.12, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(r.left() + r.width() * 0.55, r.bottom() - r.height() * 0.08),
               QPointF(r.right() - r.width() * 0.06, r.top() + r.height() * 0.1));
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
        if (m_id == QLatin1String("Files") || m_id == QLatin1String("Delete") || m_id == QLatin1String("Customize")) {
            if (m_id == QLatin1String("Files")) drawDrawer(*p, r);
            else if (m_id == QLatin1String("Delete")) drawBasket(*p, r);
            else drawCustomize(*p, r);
            p->restore();
            return;
        }
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
