#pragma once

class QWindow;

namespace vantrel {

/// Lets the content reach under the native title bar and paints that in the theme's colour. The Mac only; not
/// run yet.
void makeTitleBarTransparent(QWindow *window);

} // namespace vantrel
