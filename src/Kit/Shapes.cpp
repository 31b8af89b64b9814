#include "Kit/Shapes.h"

#include "Theme/AppTheme.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPen>
#include <QStyle>

#include <cmath>
#include <numbers>
#include <tuple>

namespace vantrel {

namespace {

/// One corner of a smooth rectangle: where its curve leaves the sides, and where its handles are.
struct Corner {
    double reach = 0;
    double control = 0;
};

Corner cornerOf(double radius, double longest) {
    // One cubic curve per corner. It starts farther out than an arc would, as far as the side has room, with
    // its curvature rising from nearly nothing; its middle lies where the arc's middle does. With no room it
    // is the arc.
    constexpr double smoothReach = 1.5;
    const double reach = qMin(smoothReach * radius, longest);
    const double arcMiddle = radius * (1 - std::numbers::sqrt2 / 2);
    return {reach, (8 * arcMiddle - reach) / 3};
}

} // namespace

QRectF inReadingDirection(const QRectF &part, const QRectF &whole) {
    if (!QGuiApplication::isRightToLeft())
        return part;
    return {QPointF(whole.left() + whole.right() - part.right(), part.top()), part.size()};
}

QRect inReadingDirection(const QRect &part, const QRect &whole) {
    return QStyle::visualRect(QGuiApplication::layoutDirection(), whole, part);
}

QPainterPath roundedRect(const QRectF &rect, double radius) {
    QPainterPath path;
    const double half = qMin(rect.width(), rect.height()) / 2;
    const double r = qMin(radius, half);
    if (r <= 0) {
        path.addRect(rect);
        return path;
    }
    const auto [reach, control] = cornerOf(r, half);
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

void fillLine(QPainter &painter, const QRectF &rect, const QColor &color) {
    // In pieces: what is translucent and taller than 95 device pixels, the toolkit hands to several threads,
    // and waiting for them takes longer than painting a line. Up to three device pixels make a layout pixel.
    constexpr int tallest = 30;
    for (int done = 0; done < rect.height(); done += tallest)
        painter.fillRect(
            QRectF(rect.left(), rect.top() + done, rect.width(), qMin<double>(tallest, rect.height() - done)),
            color);
}

void strokeInside(QPainter &painter, const QRectF &rect, double radius, const QColor &color, double width) {
    const double inset = width / 2;
    const QRectF middle = rect.adjusted(inset, inset, -inset, -inset);
    const double half =
        qMax(0.0, qMin(middle.width(), middle.height()) / 2); // a pane may be squeezed to nothing
    const Corner corner = cornerOf(qBound(0.0, radius - inset, half), half);
    const double side = std::ceil(inset + corner.reach);
    constexpr double small = 44; // a control
    if (qMax(rect.width(), rect.height()) <= small || qMin(rect.width(), rect.height()) < 2 * side) {
        painter.strokePath(roundedRect(middle, radius - inset), QPen(color, width));
        return;
    }
    for (const QRectF &straight :
         {QRectF(rect.left() + side, rect.top(), rect.width() - 2 * side, width),
          QRectF(rect.left() + side, rect.bottom() - width, rect.width() - 2 * side, width),
          QRectF(rect.left(), rect.top() + side, width, rect.height() - 2 * side),
          QRectF(rect.right() - width, rect.top() + side, width, rect.height() - 2 * side)})
        fillLine(painter, straight, color);
    QPainterPath curve({side, inset});
    curve.lineTo(inset + corner.reach, inset);
    curve.cubicTo(inset + corner.control, inset, inset, inset + corner.control, inset, inset + corner.reach);
    curve.lineTo(inset, side);
    for (const auto &[place, x, y] : {std::tuple(rect.topLeft(), 1, 1),
                                      {rect.topRight(), -1, 1},
                                      {rect.bottomLeft(), 1, -1},
                                      {rect.bottomRight(), -1, -1}}) {
        painter.save();
        painter.translate(place);
        painter.scale(x, y);
        painter.strokePath(curve, QPen(color, width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
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

void paintShadow(QPainter &painter, const QRectF &card, double radius, int reach) {
    constexpr double strength = 0.16; // beside the card, of all layers together
    constexpr int layers = 8;
    const double fall = reach / 3.0;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    for (int layer = 1; layer <= layers; ++layer) {
        const double step = (reach - fall) * layer / layers;
        painter.fillPath(
            roundedRect(card.translated(0, fall).adjusted(-step, -step, step, step), radius + step),
            QColor::fromRgbF(0, 0, 0, float(strength / layers)));
    }
    painter.restore();
}

void paintProgress(QPainter &painter, const QRectF &rect, double fraction, const QColor &fill,
                   const QColor &track) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath whole = capsule(rect);
    if (AppTheme::contrast() == Contrast::high) // a filled track would be as dark as what fills it
        strokeInside(painter, rect, rect.height() / 2, track, hairline);
    else
        painter.fillPath(whole, track);
    // The first pixels of a fill are narrower than the track's round end and must not stick out of it.
    if (fraction > 0) {
        const QSizeF filled(rect.width() * qMin(fraction, 1.0), rect.height());
        const QRectF part = inReadingDirection(QRectF(rect.topLeft(), filled), rect);
        painter.fillPath(capsule(part).intersected(whole), fill);
    }
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
