#pragma once

#include "Kit/Canvas.h"

#include <QSplitter>

#include <optional>

namespace vantrel {

class AppState;
class Settings;
class ThumbnailStore;

/// Everything below the window's title bar: the sidebar, the two panes above the transfer queue, and the
/// status bar.
class ContentView : public QWidget {
public:
    /// All of them must outlive the view; without pictures the grids show symbols.
    ContentView(AppState *state, Settings &settings, ThumbnailStore *pictures = nullptr,
                QWidget *parent = nullptr);
};

/// The grounds of ContentView without anything on them, for the frame before it: no fonts are needed.
class ContentGround : public Canvas {
public:
    explicit ContentGround(QWidget *parent = nullptr);
};

/// The panes with the transfer queue below them. The queue takes the height that its rows need, up to two
/// fifths of what there is; a longer one scrolls. Its upper edge can be dragged, with the mouse or, when it
/// has the keyboard, with Up and Down: then that is the most it takes, until a double-click there. The panes
/// always keep their least height, and the window is never made taller.
class BrowserColumn : public QSplitter {
    Q_OBJECT

public:
    static constexpr int browserMinimumHeight = 320; ///< layout pixels

    /// Takes both into itself.
    BrowserColumn(QWidget *browser, QWidget *queue, QWidget *parent = nullptr);

    /// The most height of the queue, layout pixels; nothing for two fifths.
    [[nodiscard]] const std::optional<int> &queueLimit() const { return m_queueLimit; }
    void setQueueLimit(std::optional<int> limit);
    /// Makes the queue so much higher, by the user's hand.
    void stretchQueue(int by);

    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user has chosen another one; once per drag.
    void queueLimitChosen(std::optional<int> limit);

protected:
    [[nodiscard]] QSplitterHandle *createHandle() override;
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    [[nodiscard]] int room() const;
    void arrange();

    QWidget *m_browser;
    QWidget *m_queue;
    std::optional<int> m_queueLimit;
};

} // namespace vantrel
