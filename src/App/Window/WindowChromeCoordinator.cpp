#include "App/Window/WindowChromeCoordinator.h"

#include <QLineF>

#include <algorithm>
#include <array>
#include <utility>

namespace vantrel {

WindowChromeCoordinator::WindowChromeCoordinator(std::function<QString()> doubleClickAction)
    : m_doubleClickAction(std::move(doubleClickAction)) {}

void WindowChromeCoordinator::attach(ChromeWindow *window) {
    if (window == m_window)
        return;
    m_window = window;
    m_pendingPress.reset();
}

EventOutcome WindowChromeCoordinator::mousePressed(const ChromeMouseEvent &event) {
    if (event.clickCount == 1 && isInTitleBarBand(event))
        m_pendingPress = event.position;
    else
        m_pendingPress.reset();
    return EventOutcome::passOn;
}

EventOutcome WindowChromeCoordinator::mouseDragged(const ChromeMouseEvent &event) {
    if (!m_window || !m_pendingPress || event.window != m_window)
        return EventOutcome::passOn;
    if (QLineF(*m_pendingPress, event.position).length() <= dragThreshold)
        return EventOutcome::passOn;
    const QPointF pressed = *std::exchange(m_pendingPress, std::nullopt);
    if (m_isZoomedByUs)
        zoomEnded(); // the user takes the zoomed window away: the old frame is no place to return to
    m_window->startMove(pressed);
    return EventOutcome::swallow;
}

EventOutcome WindowChromeCoordinator::mouseReleased(const ChromeMouseEvent &event) {
    m_pendingPress.reset();
    if (event.clickCount != 2 || !isInTitleBarBand(event))
        return EventOutcome::passOn;
    if (m_doubleClickAction() == QLatin1String("Minimize"))
        m_window->minimise();
    else
        toggleZoom();
    return EventOutcome::swallow;
}

void WindowChromeCoordinator::toggleZoom() {
    if (!m_window)
        return;
    if (m_window->isFullScreen()) {
        m_window->toggleFullScreen();
        return;
    }
    if (m_isZoomedByUs || m_window->isZoomed()) {
        const std::optional<QRect> before = m_frameBeforeZoom;
        zoomEnded();
        if (before)
            m_window->setFrame(*before);
        else
            m_window->toggleZoom();
        return;
    }
    m_frameBeforeZoom = m_window->frame();
    m_isZoomedByUs = true;
    if (const std::optional<QRect> screen = m_window->visibleScreenFrame())
        m_window->setFrame(*screen);
    else
        m_window->toggleZoom();
}

void WindowChromeCoordinator::zoomEnded() {
    m_frameBeforeZoom.reset();
    m_isZoomedByUs = false;
}

bool WindowChromeCoordinator::isInTitleBarBand(const ChromeMouseEvent &event) const {
    if (!m_window || event.window != m_window || event.position.y() >= m_window->contentTop())
        return false;
    constexpr std::array buttons{WindowButton::close, WindowButton::minimise, WindowButton::zoom};
    const bool overWindowButton = std::ranges::any_of(buttons, [&](WindowButton button) {
        const std::optional<QRectF> frame = m_window->buttonFrame(button);
        return frame && frame->contains(event.position);
    });
    const QRectF end = m_window->endOfBand();
    const bool overToolbar = event.position.x() >= end.left() && event.position.x() <= end.right();
    return !overWindowButton && !overToolbar && !m_window->isOverControl(event.position);
}

} // namespace vantrel
