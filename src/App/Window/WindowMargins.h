#pragma once

class QMargins;
class QSize;
class QWindow;

namespace vantrel {

/// Whether a window may have a margin around what is seen of it, for its shadow and the reach of its edges:
/// on Wayland, if the toolkit is the version that this program was built with, since the way is one of its
/// own. Needs the application object.
[[nodiscard]] bool mayHaveWindowMargins();

/// Tells the compositor that so much of the window at each side is no part of it. What is seen of it keeps
/// its size: the window grows or shrinks. Only where mayHaveWindowMargins(), and for a window that has a
/// native one.
void setWindowMargins(QWindow *window, const QMargins &margins);

/// How large the native window is, which the toolkit may not have told yet.
[[nodiscard]] QSize nativeSize(const QWindow *window);

} // namespace vantrel
