#pragma once

#include <QPainterPath>
#include <QRectF>

class QColor;
class QPainter;

namespace vantrel {

/// Line of a card or button: 1 layout pixel.
inline constexpr double hairline = 1;

/// A part of `whole` that is laid out for those who read from left to right, where it lies for the user.
[[nodiscard]] QRectF inReadingDirection(const QRectF &part, const QRectF &whole);
[[nodiscard]] QRect inReadingDirection(const QRect &part, const QRect &whole);

/// A rectangle whose corners flow into its sides without the visible kink of a circular arc. The radius is
/// limited to half the shorter side, where the corners become arcs: a square gives a circle, anything else a
/// capsule.
[[nodiscard]] QPainterPath roundedRect(const QRectF &rect, double radius);

/// A rectangle with the shorter sides fully round.
[[nodiscard]] QPainterPath capsule(const QRectF &rect);

/// Fills a thin rectangle of whole pixels, a divider or the side of a frame.
void fillLine(QPainter &painter, const QRectF &rect, const QColor &color);

/// The line alone of a shape like roundedRect(), inside `rect`. For a painter that smooths edges.
void strokeInside(QPainter &painter, const QRectF &rect, double radius, const QColor &color, double width);

/// A filled shape with its line inside `rect`, so that a line of whole pixels is crisp. Either colour may be
/// transparent; `strokeWidth` 0 draws no line.
void paintCard(QPainter &painter, const QRectF &rect, double radius, const QColor &fill, const QColor &stroke,
               double strokeWidth = hairline);

/// The soft shadow of a card that lies above others, as of light from above: no more than `reach` beyond it.
void paintShadow(QPainter &painter, const QRectF &card, double radius, int reach);

/// A capsule filled from where lines begin: `fraction` of it, 0 to 1. Anything beyond is cut off; NaN, from a
/// division by an unknown total, counts as nothing.
void paintProgress(QPainter &painter, const QRectF &rect, double fraction, const QColor &fill,
                   const QColor &track);

/// The mark of keyboard focus, the same for every control: inside `rect`, seen on light, dark and accent
/// grounds.
void paintFocusRing(QPainter &painter, const QRectF &rect, double radius);

} // namespace vantrel
