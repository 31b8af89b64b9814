#pragma once

#include <QPainterPath>
#include <QRectF>

namespace vantrel {

/// What a window of this program looks like at its edges; what hangs in a window goes by it.

/// Whether the desktop blends windows with what lies behind them, so that a window may have transparent
/// corners. Asked once, when a window is made. Needs the application object.
[[nodiscard]] bool desktopBlendsWindows();

/// Radius of a window's round corners, in layout pixels.
inline constexpr double windowCornerRadius = 12;

/// Height of the band at the top of the window, in layout pixels.
inline constexpr int titleBarHeight = 52;

/// A rectangle whose upper corners are round and whose lower ones are square, in the family of roundedRect().
[[nodiscard]] QPainterPath roundedTop(const QRectF &rect, double radius);

} // namespace vantrel
