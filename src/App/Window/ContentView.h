#pragma once

#include "Kit/Canvas.h"

namespace vantrel {

class AppState;

/// Everything below the window's title bar: the sidebar, the two panes above the transfer queue, and the
/// status bar.
class ContentView : public QWidget {
public:
    /// The model must outlive the view.
    explicit ContentView(AppState *state, QWidget *parent = nullptr);
};

/// The grounds of ContentView without anything on them, for the frame before it: no fonts are needed.
class ContentGround : public Canvas {
public:
    explicit ContentGround(QWidget *parent = nullptr);
};

/// The panes with the transfer queue below them. The queue takes the height that its rows need, as long as
/// the panes keep their least height; a longer one scrolls. So the window is never made taller by it.
class BrowserColumn : public QWidget {
public:
    static constexpr int browserMinimumHeight = 320; ///< layout pixels

    /// Takes both into itself.
    BrowserColumn(QWidget *browser, QWidget *queue, QWidget *parent = nullptr);
};

} // namespace vantrel
