#include "app/program_icon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace app {

namespace {

const QColor kInk(0x2f, 0x5d, 0x7c);
const QColor kDrop(0xc8, 0x10, 0x2e);
constexpr double kGrid = 128; ///< the drawing's own coordinates

void drawPage(QPainter& painter)
{
    painter.setPen(QPen(kInk, 6));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(14, 8, 82, 112), 8, 8);
    painter.setPen(QPen(kInk.lighter(190), 6));
    painter.drawLine(QPointF(30, 84), QPointF(58, 84));
    painter.drawLine(QPointF(30, 102), QPointF(48, 102));
}

void drawDrop(QPainter& painter)
{
    QPainterPath drop(QPointF(46, 20));
    drop.cubicTo(46, 20, 26, 42, 26, 52);
    drop.arcTo(QRectF(26, 32, 40, 40), 180, 180);
    drop.cubicTo(66, 42, 46, 20, 46, 20);
    painter.fillPath(drop, kDrop);
}

void drawQuill(QPainter& painter)
{
    QPainterPath feather(QPointF(122, 14));
    feather.cubicTo(92, 20, 70, 58, 60, 108);
    feather.lineTo(67, 108);
    feather.cubicTo(74, 94, 84, 84, 98, 76);
    feather.lineTo(88, 74);
    feather.cubicTo(100, 68, 108, 60, 112, 48);
    feather.lineTo(104, 46);
    feather.cubicTo(114, 38, 120, 28, 122, 14);
    painter.fillPath(feather, kInk);
    painter.setPen(QPen(Qt::white, 3));
    painter.setBrush(Qt::NoBrush);
    QPainterPath shaft(QPointF(66, 100));
    shaft.quadTo(80, 60, 110, 28);
    painter.drawPath(shaft);
}

QPixmap drawn(int size)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / kGrid, size / kGrid);
    drawPage(painter);
    drawDrop(painter);
    drawQuill(painter);
    return pixmap;
}

} // namespace

QIcon programIcon()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128}) {
        icon.addPixmap(drawn(size));
    }
    return icon;
}

} // namespace app
