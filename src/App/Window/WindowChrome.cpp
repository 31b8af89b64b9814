#include "App/Window/WindowChrome.h"

#include "App/System/Settings.h"
#include "App/Window/TitleBar.h"
#include "App/Window/WindowMargins.h"
#include "App/Window/WindowPlacement.h"
#include "Kit/WindowFrame.h"
#include "Theme/AppTheme.h"
#ifdef Q_OS_MACOS
#include "App/Window/MacTitleBar.h"
#endif
#include "Kit/Shapes.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QCursor>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QWindow>

#include <utility>

namespace vantrel {

namespace {

bool isWayland() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

Qt::CursorShape cursorFor(Qt::Edges edges) {
    if (edges == (Qt::TopEdge | Qt::LeftEdge) || edges == (Qt::BottomEdge | Qt::RightEdge))
        return Qt::SizeFDiagCursor;
    if (edges == (Qt::TopEdge | Qt::RightEdge) || edges == (Qt::BottomEdge | Qt::LeftEdge))
        return Qt::SizeBDiagCursor;
    return edges & (Qt::LeftEdge | Qt::RightEdge) ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

constexpr int shadow = 24;     // around a window that has to cast its own
constexpr int edgesReach = 10; // of it, which resizes the window

/// What panels leave free of each screen, that of the primary one first.
QList<QRect> freeScreens() {
    QList<QRect> free;
    for (const QScreen *screen : QGuiApplication::screens())
        free.append(screen->availableGeometry());
    return free;
}

/// What Wayland's compositors keep for their panels they do not tell. A zoomed window that is larger than
/// what they leave, because its minimum is, they end.
QSize surelyFree(const QRect &screen) {
    constexpr QSize panels(160, 160);
    return isWayland() ? screen.size() - panels : screen.size();
}

bool takesClicks(const QWidget *widget) {
    return qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QLineEdit *>(widget) ||
           qobject_cast<const QComboBox *>(widget) || qobject_cast<const QAbstractSlider *>(widget) ||
           qobject_cast<const QAbstractSpinBox *>(widget) ||
           QLatin1String(widget->metaObject()->className()).contains(QLatin1String("Button"));
}

} // namespace

WindowChrome::WindowChrome(QMainWindow *window, std::function<QString()> doubleClickAction)
    : QObject(window), m_window(window), m_titleBar(new TitleBar(window)),
      m_coordinator(std::move(doubleClickAction)) {
#ifdef Q_OS_MACOS
    // Made transparent as soon as there is a native window, and again when full screen has reset it.
#else
    m_window->setWindowFlag(Qt::FramelessWindowHint);
    if (desktopBlendsWindows()) {
        m_window->setAttribute(Qt::WA_TranslucentBackground);
        m_hasRoundCorners = true;
        m_mayHaveMargin = mayHaveWindowMargins();
        m_margin = m_mayHaveMargin ? shadow : 0;
    }
#endif
    m_titleBar->setTitle(m_window->windowTitle());
    m_window->setMenuWidget(m_titleBar);
    m_window->installEventFilter(this);
    m_coordinator.attach(this);
    connect(m_titleBar, &TitleBar::windowButtonClicked, this, [this](WindowButton button) {
        switch (button) {
        case WindowButton::close:
            m_window->close();
            break;
        case WindowButton::minimise:
            minimise();
            break;
        case WindowButton::zoom:
            m_coordinator.toggleZoom();
            break;
        }
    });
    watchNativeWindow();
    watchScreens();
    fitShape();
}

WindowChrome::~WindowChrome() {
    pointAt({});
}

void WindowChrome::watchScreens() {
    const auto watch = [this](const QScreen *screen) {
        connect(screen, &QScreen::availableGeometryChanged, this, [this] {
            fitMinimum();
            stayReachable();
        });
    };
    for (const QScreen *screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &WindowChrome::stayReachable);
}

void WindowChrome::watchNativeWindow() {
    QWindow *native = m_window->windowHandle();
    if (!native || native == m_nativeWindow)
        return;
    // The window below the widgets sees the mouse before any of them, and in its own coordinates.
    m_nativeWindow = native;
    native->installEventFilter(this);
#ifdef Q_OS_MACOS
    makeTitleBarTransparent(native);
#endif
}

void WindowChrome::claimMargin() {
    if (!m_mayHaveMargin || !m_nativeWindow || !m_nativeWindow->handle())
        return;
    const QSize size = m_window->size(); // the margin is part of it already
    setWindowMargins(m_nativeWindow, margins());
    m_nativeWindow->resize(size);
}

/// The margin goes and comes with the state. What is seen keeps its size meanwhile, which is that of the
/// state even before the desktop has changed it: to ask for another one would be an error.
void WindowChrome::fitMargin() {
    const int wanted = m_mayHaveMargin && !fillsScreen() ? shadow : 0;
    if (wanted == m_margin || !m_nativeWindow || !m_nativeWindow->handle())
        return;
    // What the toolkit remembers as the normal size is the one with the margin; where the desktop has changed
    // the state, it has given that to the native window already.
    const bool isReturned = wanted > 0 && (m_window->size() == m_sizeWithMargin ||
                                           nativeSize(m_nativeWindow) == m_sizeWithMargin);
    m_margin = wanted;
    fitMinimum();
    setWindowMargins(m_nativeWindow, margins());
    if (isReturned)
        m_window->resize(m_sizeWithMargin);
}

bool WindowChrome::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_nativeWindow)
        return nativeWindowEvent(event);
    if (watched == m_window) {
        if (event->type() == QEvent::Paint) {
            paintGround(static_cast<QPaintEvent *>(event)->region());
            return true;
        }
        windowEvent(event);
    }
    return false;
}

void WindowChrome::windowEvent(QEvent *event) {
    switch (event->type()) {
    case QEvent::WinIdChange:
        watchNativeWindow();
        claimMargin();
        break;
    case QEvent::Show:
        watchNativeWindow();
        fitMinimum();
        stayReachable();
        leaveMarginToOthers();
        break;
    case QEvent::Resize:
        if (m_margin > 0 && !fillsScreen())
            m_sizeWithMargin = m_window->size();
        leaveMarginToOthers();
        break;
    case QEvent::WindowStateChange:
        if (!fillsScreen())
            m_coordinator.zoomEnded();
        fitShape();
        break;
    case QEvent::WindowTitleChange:
        m_titleBar->setTitle(m_window->windowTitle());
        break;
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
        m_titleBar->setActive(event->type() == QEvent::WindowActivate);
        break;
    default:
        break;
    }
}

bool WindowChrome::nativeWindowEvent(QEvent *event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return mousePressed(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseMove:
        return mouseMoved(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonRelease:
        return mouseReleased(*static_cast<QMouseEvent *>(event));
    case QEvent::Leave:
        if (!m_grip)
            pointAt({});
        return false;
    case QEvent::Resize:
        if (m_draggedOut && !m_window->isMaximized() && m_nativeWindow->size() != m_draggedOut->zoomed.size())
            moveDraggedOut(QCursor::pos());
        return false;
    default:
        return false;
    }
}

bool WindowChrome::mousePressed(const QMouseEvent &event) {
    if (event.button() == Qt::RightButton &&
        m_coordinator.isInTitleBarBand({this, event.position(), m_clickCount})) {
        showWindowMenu(event.globalPosition().toPoint());
        return true;
    }
    if (event.button() != Qt::LeftButton)
        return false;
    // The toolkit tells of the second click twice, as a press and as a double-click.
    const bool second = event.type() == QEvent::MouseButtonDblClick ||
                        event.flags().testFlag(Qt::MouseEventCreatedDoubleClick);
    m_clickCount = second ? 2 : 1;
    m_grip.reset();
    m_draggedOut.reset();
    if (const Qt::Edges edges = edgesAt(event.position())) {
        if (!second && !m_nativeWindow->startSystemResize(edges))
            m_grip = Grip{edges, event.globalPosition().toPoint(), frame()};
        return true;
    }
    return m_coordinator.mousePressed(chromeEvent(event)) == EventOutcome::swallow;
}

bool WindowChrome::mouseMoved(const QMouseEvent &event) {
    if (!event.buttons().testFlag(Qt::LeftButton)) {
        m_grip.reset(); // its release went elsewhere
        m_draggedOut.reset();
        pointAt(event.buttons() ? Qt::Edges() : edgesAt(event.position()));
        return false;
    }
    if (m_grip) {
        followMouse(event.globalPosition().toPoint());
        return true;
    }
    return m_coordinator.mouseDragged(chromeEvent(event)) == EventOutcome::swallow;
}

bool WindowChrome::mouseReleased(const QMouseEvent &event) {
    if (event.button() != Qt::LeftButton)
        return false;
    m_grip.reset();
    m_draggedOut.reset();
    m_coordinator.mouseReleased(chromeEvent(event));
    // Never swallowed: the toolkit keeps count of the buttons that are down, and nothing in the band minds.
    return false;
}

void WindowChrome::showWindowMenu(QPoint position) {
    auto *menu = new QMenu(m_window);
    menu->setObjectName(QStringLiteral("windowMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("Minimize"), this, &WindowChrome::minimise);
    menu->addAction(fillsScreen() ? QStringLiteral("Restore") : QStringLiteral("Zoom"), this,
                    [this] { m_coordinator.toggleZoom(); });
    menu->addSeparator();
    menu->addAction(QStringLiteral("Close"), m_window, &QWidget::close);
    menu->popup(position);
}

void WindowChrome::followMouse(QPoint position) {
    const QPoint offset = position - m_grip->pressedAt;
    if (m_grip->edges)
        m_window->setGeometry(resizedFrame(m_grip->frame, m_grip->edges, offset,
                                           m_window->minimumSize().expandedTo(m_window->minimumSizeHint())));
    else
        m_window->move(m_grip->frame.topLeft() + offset);
    stayReachable();
}

Qt::Edges WindowChrome::edgesAt(QPointF position) const {
#ifdef Q_OS_MACOS
    Q_UNUSED(position)
    return {}; // the window has native edges
#else
    const QRect seen = visibleRect();
    return fillsScreen()
               ? Qt::Edges()
               : resizeEdgesAt(position - seen.topLeft(), seen.size(), m_margin > 0 ? edgesReach : 0);
#endif
}

void WindowChrome::pointAt(Qt::Edges edges) {
    if (edges == m_pointedEdges)
        return;
    // An override, since the widgets that reach to the edge have cursors of their own.
    if (m_pointedEdges)
        QGuiApplication::restoreOverrideCursor();
    if (edges)
        QGuiApplication::setOverrideCursor(cursorFor(edges));
    m_pointedEdges = edges;
}

void WindowChrome::fitShape() {
#ifdef Q_OS_MACOS
    if (m_nativeWindow)
        makeTitleBarTransparent(m_nativeWindow);
#else
    const bool fills = fillsScreen();
    fitMargin();
    const int line = fills ? 0 : int(hairline);
    const int around = m_margin + line;
    m_window->setContentsMargins(around, around, around, around);
    m_titleBar->setCornerRadius(m_hasRoundCorners && !fills ? windowCornerRadius - line : 0);
    pointAt({});
    leaveMarginToOthers();
    m_window->update();
#endif
}

/// What the mouse does in the margin, but for the reach of the edges.
void WindowChrome::leaveMarginToOthers() {
    if (m_mayHaveMargin && m_nativeWindow) {
        const int reach = m_margin > 0 ? edgesReach : 0;
        m_nativeWindow->setMask(visibleRect().adjusted(-reach, -reach, reach, reach));
    }
}

void WindowChrome::paintGround(const QRegion &region) {
    QPainter painter(m_window);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF rect = visibleRect();
    if (m_margin > 0) {
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        for (const QRect &part : region)
            painter.fillRect(part, Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        // The shape is not filled eight times where nothing of it is seen.
        const int inner = int(windowCornerRadius);
        const QRegion seen = region.subtracted(visibleRect().adjusted(inner, inner, -inner, -inner));
        if (!fillsScreen() && !seen.isEmpty()) {
            painter.save();
            painter.setClipRegion(seen);
            paintShadow(painter, rect, windowCornerRadius, m_margin);
            painter.restore();
        }
    }
    const double radius = m_hasRoundCorners && !fillsScreen() ? windowCornerRadius : 0;
    painter.fillPath(roundedTop(rect, radius), QColor(AppTheme::titleBar()));
    if (fillsScreen())
        return;
    if (radius > 0) {
        const double inset = hairline / 2;
        painter.strokePath(roundedTop(rect.adjusted(inset, inset, -inset, -inset), radius - inset),
                           QPen(QColor(AppTheme::paneStroke()), hairline));
    } else {
        strokeInside(painter, rect, 0, AppTheme::paneStroke(), hairline);
    }
}

void WindowChrome::setMinimumSize(QSize size) {
    m_minimum = size;
    fitMinimum();
}

void WindowChrome::fitMinimum() {
    if (!m_minimum.isValid())
        return;
    QSize least = m_minimum;
    if (const auto screen = visibleScreenFrame())
        least = least.boundedTo(surelyFree(*screen));
    m_window->setMinimumSize(least.grownBy(margins()));
}

void WindowChrome::restore(const WindowGeometry &geometry, QSize standard) {
    const QList<QRect> screens = freeScreens();
    const QSize minimum = m_window->minimumSize().shrunkBy(margins());
    if (geometry.isZoomed) {
        m_margin = 0;
        fitMinimum();
    }
    const QSize size =
        geometry.size.value_or(standard.boundedTo(surelyFree(screens.value(0, QRect(QPoint(), standard)))));
    if (geometry.position && !isWayland())
        m_window->setGeometry(fittedFrame(QRect(*geometry.position, size), minimum, screens));
    else
        m_window->resize(
            fittedFrame(QRect(QPoint(), size), minimum, screens.mid(0, 1)).size().grownBy(margins()));
    if (geometry.isZoomed)
        m_window->setWindowState(Qt::WindowMaximized);
}

WindowGeometry WindowChrome::geometry() const {
    const QRect normal = m_window->normalGeometry();
    return {.size = normal.size().shrunkBy(margins()),
            .position = isWayland() ? std::nullopt : std::optional(normal.topLeft()),
            .isZoomed = m_window->isMaximized()};
}

void WindowChrome::stayReachable() {
    if (fillsScreen() || !m_window->isVisible() || isWayland()) // there the compositor alone places windows
        return;
    const QRect reachable = reachableFrame(frame(), freeScreens());
    if (reachable != frame())
        m_window->move(reachable.topLeft());
}

std::optional<QRect> WindowChrome::visibleScreenFrame() const {
    const QScreen *screen = m_window->screen();
    return screen ? std::optional(screen->availableGeometry()) : std::nullopt;
}

qreal WindowChrome::contentTop() const {
    return m_titleBar->mapTo(m_window, QPoint(0, m_titleBar->height())).y();
}

std::optional<QRectF> WindowChrome::buttonFrame(WindowButton button) const {
    const QAbstractButton *view = m_titleBar->button(button);
    if (!view || !view->isVisible())
        return std::nullopt;
    return QRectF(view->mapTo(m_window, QPoint()), view->size());
}

QRectF WindowChrome::endOfBand() const {
    const QRect seen = visibleRect();
    const int taken = m_titleBar->endWidth();
    return inReadingDirection(QRect(seen.right() + 1 - taken, seen.top(), taken, seen.height()), seen);
}

bool WindowChrome::isOverControl(QPointF position) const {
    for (const QWidget *widget = m_window->childAt(position.toPoint()); widget && widget != m_window;
         widget = widget->parentWidget()) {
        if (takesClicks(widget))
            return true;
    }
    return false;
}

void WindowChrome::setFrame(const QRect &frame) {
    if (fillsScreen()) {
        // Back to the frame that it had; the desktop remembers it. To ask for a size while the state is being
        // changed is an error on Wayland, and leads to a race with the window manager on X11.
        m_window->showNormal();
        return;
    }
    // To fill the screen is to be maximised: then the desktop knows, squares the corners and puts the window
    // back when it is dragged away. On Wayland there is no other way.
    if (frame == visibleScreenFrame()) {
        m_window->showMaximized();
        return;
    }
    m_window->setGeometry(frame);
    stayReachable();
}

void WindowChrome::toggleZoom() {
    if (m_window->isMaximized())
        m_window->showNormal();
    else
        m_window->showMaximized();
}

void WindowChrome::toggleFullScreen() {
    m_window->setWindowState(m_window->windowState() ^ Qt::WindowFullScreen);
}

void WindowChrome::startMove(QPointF pressed) {
    const QPoint pressedAt = m_window->mapToGlobal(pressed).toPoint();
    if (!m_window->isMaximized() || isWayland()) { // Wayland's compositors take it out of its zoom themselves
        moveWithMouse(pressedAt);
        return;
    }
    m_draggedOut = DraggedOut{frame(), pressed, m_window->normalGeometry().size()};
    m_window->showNormal();
    if (m_draggedOut && frame().size() == m_draggedOut->normal) // there is no window manager to wait for
        moveDraggedOut(pressedAt);
}

void WindowChrome::moveDraggedOut(QPoint mouse) {
    const DraggedOut out = *std::exchange(m_draggedOut, std::nullopt);
    m_window->move(placeDraggedOut(out.zoomed.width(), out.pressed, out.normal, mouse));
    moveWithMouse(mouse);
}

void WindowChrome::moveWithMouse(QPoint pressedAt) {
    if (!m_nativeWindow->startSystemMove())
        m_grip = Grip{{}, pressedAt, frame()};
}

} // namespace vantrel
