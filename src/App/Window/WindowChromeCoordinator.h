#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>
#include <QString>

#include <functional>
#include <optional>

namespace vantrel {

/// The buttons that every window carries in its title bar.
enum class WindowButton { close, minimise, zoom };

/// What the chrome needs of the window that it belongs to. Positions and rectangles named "in the window"
/// have their origin at its top left corner and y growing downwards; frames are in screen coordinates. Main
/// thread.
class ChromeWindow {
public:
    virtual ~ChromeWindow() = default;

    [[nodiscard]] virtual QRect frame() const = 0;
    /// What panels and docks leave free of the window's screen; nothing while the window is on no screen.
    [[nodiscard]] virtual std::optional<QRect> visibleScreenFrame() const = 0;
    /// Where the title-bar band ends and the content begins, in the window.
    [[nodiscard]] virtual qreal contentTop() const = 0;
    /// In the window; nothing for a button that it does not have.
    [[nodiscard]] virtual std::optional<QRectF> buttonFrame(WindowButton button) const = 0;
    /// The end of the band that belongs to the toolbar's buttons and what is behind them, also where there
    /// are gaps; in the window.
    [[nodiscard]] virtual QRectF endOfBand() const = 0;
    /// Whether the topmost widget at the position, or one that it lies in, takes clicks of its own.
    [[nodiscard]] virtual bool isOverControl(QPointF position) const = 0;
    [[nodiscard]] virtual bool isZoomed() const = 0;
    [[nodiscard]] virtual bool isFullScreen() const = 0;

    virtual void setFrame(const QRect &frame) = 0;
    /// The window system's own zoom: a zoomed window returns to its normal frame, another one grows.
    virtual void toggleZoom() = 0;
    virtual void toggleFullScreen() = 0;
    virtual void minimise() = 0;
    /// Lets the window follow the mouse until the button goes up; `pressed` is where it went down, in the
    /// window.
    virtual void startMove(QPointF pressed) = 0;
};

/// An event of the left mouse button.
struct ChromeMouseEvent {
    const ChromeWindow *window = nullptr; ///< the window that it happened in; null for a foreign one
    QPointF position;                     ///< in that window
    int clickCount = 1;
};

/// Whether the rest of the application still gets an event.
enum class EventOutcome { passOn, swallow };

/// Decides what the mouse does in the title-bar band: which press may move the window, how far the mouse must
/// go for that, and what a double-click does. Knows no window system. Main thread.
class WindowChromeCoordinator {
public:
    /// So much of the band's end belongs to the toolbar's buttons.
    static constexpr qreal toolbarWidth = 190;
    /// A press that travels no farther than this is a click.
    static constexpr qreal dragThreshold = 4;

    /// `doubleClickAction` is asked at every double-click: "Minimize" minimises, any other answer zooms.
    explicit WindowChromeCoordinator(std::function<QString()> doubleClickAction);

    /// Works for this window from now on; it must outlive the coordinator or be detached with null. Another
    /// window than the present one drops a press that is still pending; the same one changes nothing.
    void attach(ChromeWindow *window);

    EventOutcome mousePressed(const ChromeMouseEvent &event);
    EventOutcome mouseDragged(const ChromeMouseEvent &event);
    EventOutcome mouseReleased(const ChromeMouseEvent &event);

    /// Zooms the window to its screen, or back to the frame that it had; leaves full screen where it is in
    /// that. What the zoom button does too.
    void toggleZoom();

    /// The window fills its screen no more, whoever did that: the frame before its zoom is no place to return
    /// to.
    void zoomEnded();

    /// Whether a press here could move the window: in the title-bar band and on nothing that takes clicks
    /// itself.
    [[nodiscard]] bool isInTitleBarBand(const ChromeMouseEvent &event) const;

private:
    std::function<QString()> m_doubleClickAction;
    ChromeWindow *m_window = nullptr;
    std::optional<QPointF> m_pendingPress;
    std::optional<QRect> m_frameBeforeZoom;
    bool m_isZoomedByUs = false;
};

} // namespace vantrel
