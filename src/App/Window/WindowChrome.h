#pragma once

#include "App/Window/WindowChromeCoordinator.h"

#include <QMainWindow>
#include <QMouseEvent>
#include <QPointer>
#include <QRect>

#include <functional>
#include <optional>

class QWindow;

namespace vantrel {

class TitleBar;
struct WindowGeometry;

/// Gives a main window a frame of our own: the title bar and its menu, moving, zooming and resizing with the
/// mouse. Moves and resizes are left to the window system where it offers that, so that its snapping and
/// tiling work; elsewhere the window follows the mouse by itself. The window is kept where its title bar can
/// be reached.
///
/// On Wayland the window has a margin for its shadow and the reach of its edges, which the compositor knows
/// is no part of it; none while it fills the screen.
///
/// On the Mac the window keeps its native buttons, edges and shadow under a transparent title bar, and only
/// the rules for the mouse are ours; that part has not been run.
///
/// Made before the window is shown; lives as long as the window.
class WindowChrome final : public QObject, private ChromeWindow {
public:
    /// `doubleClickAction` is asked at every double-click in the title bar.
    WindowChrome(QMainWindow *window, std::function<QString()> doubleClickAction);
    ~WindowChrome() override;

    [[nodiscard]] TitleBar *titleBar() const { return m_titleBar; }

    /// The size that the window does not go below, in layout pixels. It yields to a screen that has less
    /// free.
    void setMinimumSize(QSize size);

    /// Gives the window what it was left with, fitted to the screens that are there now, before it is shown;
    /// `standard` is its size when there is none. Where the compositor alone places windows, the position is
    /// left to it.
    void restore(const WindowGeometry &geometry, QSize standard);
    /// What restore() takes another time.
    [[nodiscard]] WindowGeometry geometry() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// What the mouse does to the window while the window system does not do it.
    struct Grip {
        Qt::Edges edges;  ///< none: it moves the window
        QPoint pressedAt; ///< on the screen
        QRect frame;      ///< at that time
    };

    /// A zoomed window on its way out under the mouse: the desktop gives it its normal size in its own time.
    struct DraggedOut {
        QRect zoomed;
        QPointF pressed; ///< in the zoomed window
        QSize normal;
    };

    void watchNativeWindow();
    void watchScreens();
    bool nativeWindowEvent(QEvent *event);
    void windowEvent(QEvent *event);
    bool mousePressed(const QMouseEvent &event);
    bool mouseMoved(const QMouseEvent &event);
    bool mouseReleased(const QMouseEvent &event);
    void followMouse(QPoint position);
    void showWindowMenu(QPoint position);
    void pointAt(Qt::Edges edges);
    void paintGround(const QRegion &region);
    void fitShape();
    void fitMargin();
    void claimMargin();
    void leaveMarginToOthers();
    void fitMinimum();
    void stayReachable();
    void moveDraggedOut(QPoint mouse);
    void moveWithMouse(QPoint pressedAt);
    [[nodiscard]] bool fillsScreen() const { return m_window->isMaximized() || m_window->isFullScreen(); }
    [[nodiscard]] QMargins margins() const { return {m_margin, m_margin, m_margin, m_margin}; }
    /// What is seen of the window, in it: without the margin around it.
    [[nodiscard]] QRect visibleRect() const {
        return m_window->rect().adjusted(m_margin, m_margin, -m_margin, -m_margin);
    }
    [[nodiscard]] Qt::Edges edgesAt(QPointF position) const;
    [[nodiscard]] ChromeMouseEvent chromeEvent(const QMouseEvent &event) const {
        return {this, event.position(), m_clickCount};
    }

    // The coordinator's view of the window.
    [[nodiscard]] QRect frame() const override { return m_window->geometry(); }
    [[nodiscard]] std::optional<QRect> visibleScreenFrame() const override;
    [[nodiscard]] qreal contentTop() const override;
    [[nodiscard]] std::optional<QRectF> buttonFrame(WindowButton button) const override;
    [[nodiscard]] QRectF endOfBand() const override;
    [[nodiscard]] bool isOverControl(QPointF position) const override;
    [[nodiscard]] bool isZoomed() const override { return m_window->isMaximized(); }
    [[nodiscard]] bool isFullScreen() const override { return m_window->isFullScreen(); }
    void setFrame(const QRect &frame) override;
    void toggleZoom() override;
    void toggleFullScreen() override;
    void minimise() override { m_window->showMinimized(); }
    void startMove(QPointF pressed) override;

    QMainWindow *m_window;
    TitleBar *m_titleBar;
    QPointer<QWindow> m_nativeWindow;
    WindowChromeCoordinator m_coordinator;
    std::optional<Grip> m_grip;
    std::optional<DraggedOut> m_draggedOut;
    QSize m_minimum;
    Qt::Edges m_pointedEdges;
    int m_clickCount = 1;
    bool m_hasRoundCorners = false;
    bool m_mayHaveMargin = false;
    int m_margin = 0;       ///< around what is seen; layout pixels
    QSize m_sizeWithMargin; ///< the last one
};

} // namespace vantrel
