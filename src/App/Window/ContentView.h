#pragma once

#include <QWidget>

namespace vantrel {

class AppState;

/// Everything below the window's title bar: the sidebar, the two panes above the transfer queue, and the
/// status bar.
class ContentView : public QWidget {
    Q_OBJECT

public:
    /// The model must outlive the view.
    explicit ContentView(AppState *state, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

/// The grounds of ContentView without anything on them, for the frame before it: no fonts are needed.
class ContentGround : public QWidget {
    Q_OBJECT

public:
    explicit ContentGround(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

/// The panes with the transfer queue below them. The queue takes the height that its rows need, as long as
/// the panes keep their least height; a longer one scrolls. So the window is never made taller by it.
class BrowserColumn : public QWidget {
    Q_OBJECT

public:
    static constexpr int browserMinimumHeight = 320; ///< layout pixels

    /// Takes both into itself.
    BrowserColumn(QWidget *browser, QWidget *queue, QWidget *parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void arrange();

    QWidget *m_browser;
    QWidget *m_queue;
};

} // namespace vantrel
