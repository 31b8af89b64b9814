#pragma once

namespace vantrel {

/// Whether the desktop blends windows with what lies behind them, so that a window may have transparent
/// corners. Asked once, when a window is made. Needs the application object.
[[nodiscard]] bool desktopBlendsWindows();

/// Radius of a window's round corners, in layout pixels.
inline constexpr double windowCornerRadius = 12;

} // namespace vantrel
