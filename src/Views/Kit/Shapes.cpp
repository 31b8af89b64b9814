#include "Views/Kit/Shapes.h"

#include "App/AppTheme.h"

#include <QPainter>
#include <QPen>

#include <cmath>
#include <numbers>

namespace vantrel {

namespace {

void strokeInside(QPainter &painter, const QRectF &rect, double radius, const QColor &color, double width) {
    const double inset = width / 2;
    strokeLine(painter, roundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset),
               QPen(color, width));
}

} // namespace

QPainterPath roundedRect(const QRectF &rect, double radius) {
    QPainterPath path;
    const double half = qMin(rect.width(), rect.height()) / 2;
    const double r = qMin(radius, half);
    if (r <= 0) {
        path.addRect(rect);
        return path;
    }
    // One cubic curve per corner. It starts farther out than an arc would, as far as the side has room, with
    // its curvature rising from nearly nothing; its middle lies where the arc's middle does. With no room it
    // is the arc.
    constexpr double smoothReach = 1.5;
    const double reach = qMin(smoothReach * r, half);
    const double arcMiddle = r * (1 - std::numbers::sqrt2 / 2);
    const double control = (8 * arcMiddle - reach) / 3;

    const double left = rect.left(), top = rect.top(), right = rect.right(), bottom = rect.bottom();
    path.moveTo(left + reach, top);
    path.lineTo(right - reach, top);
    path.cubicTo(right - control, top, right, top + control, right, top + reach);
    path.lineTo(right, bottom - reach);
    path.cubicTo(right, bottom - control, right - control, bottom, right - reach, bottom);
    path.lineTo(left + reach, bottom);
    path.cubicTo(left + control, bottom, left, bottom - control, left, bottom - reach);
    path.lineTo(left, top + reach);
    path.cubicTo(left, top + control, left + control, top, left + reach, top);
    path.closeSubpath();
    return path;
}

QPainterPath capsule(const QRectF &rect) {
    return roundedRect(rect, qMin(rect.width(), rect.height()) / 2);
}

void strokeLine(QPainter &painter, const QPainterPath &path, const QPen &pen) {
    // The toolkit hands a line of more than 96 pieces, two of them in each row of pixels, to several threads,
    // and waiting for them takes longer than painting it. So a tall line is painted in bands.
    const double bandHeight = 44 / painter.device()->devicePixelRatioF();
    const QRectF bounds =
        path.boundingRect().adjusted(-pen.widthF(), -pen.widthF(), pen.widthF(), pen.widthF());
    for (double top = std::floor(bounds.top()); top < bounds.bottom(); top += bandHeight) {
        painter.save();
        painter.setClipRect(QRectF(bounds.left(), top, bounds.width(), bandHeight), Qt::IntersectClip);
        painter.strokePath(path, pen);
        painter.restore();
    }
}

void paintCard(QPainter &painter, const QRectF &rect, double radius, const QColor &fill, const QColor &stroke,
               double strokeWidth) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (fill.alpha() > 0)
        painter.fillPath(roundedRect(rect, radius), fill);
    if (stroke.alpha() > 0 && strokeWidth > 0)
        strokeInside(painter, rect, radius, stroke, strokeWidth);
    painter.restore();
}

void paintFocusRing(QPainter &painter, const QRectF &rect, double radius) {
    constexpr double ringWidth = 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    strokeInside(painter, rect, radius, AppTheme::focusRing(), ringWidth);
    // The inner line parts the ring from a control that has its colour.
    strokeInside(painter, rect.adjusted(ringWidth, ringWidth, -ringWidth, -ringWidth), radius - ringWidth,
                 AppTheme::surface(), hairline);
    painter.restore();
}

} // namespace vantrel
