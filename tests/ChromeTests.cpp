#include "support/Printers.h"

#include "App/Window/Activation.h"
#include "App/Window/TitleBar.h"
#include "App/Window/WindowChrome.h"
#include "App/Window/WindowChromeCoordinator.h"
#include "App/Window/WindowPlacement.h"

#include <QtTest>
#include <QtWidgets>
#include <gmock/gmock.h>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A window made of numbers: it keeps a log of what it was told to do.
class FakeWindow : public ChromeWindow {
public:
    QRect windowFrame{100, 80, 1280, 820};
    std::optional<QRect> screen = QRect(0, 28, 1920, 1052);
    QRectF control{600, 10, 80, 24};
    bool zoomed = false;
    bool fullScreen = false;
    bool hasZoomButton = true;
    std::vector<std::string> log;

    QRect frame() const override { return windowFrame; }
    std::optional<QRect> visibleScreenFrame() const override { return screen; }
    qreal contentTop() const override { return 52; }
    std::optional<QRectF> buttonFrame(WindowButton button) const override {
        if (button == WindowButton::zoom && !hasZoomButton)
            return std::nullopt;
        return QRectF(12 + 24 * static_cast<int>(button), 14, 24, 24);
    }
    QRectF endOfBand() const override { return {windowFrame.width() - 190.0, 0, 190, 52}; }
    bool isOverControl(QPointF position) const override { return control.contains(position); }
    bool isZoomed() const override { return zoomed; }
    bool isFullScreen() const override { return fullScreen; }

    void setFrame(const QRect &frame) override {
        windowFrame = frame;
        log.push_back("frame " + ::testing::PrintToString(frame));
    }
    void toggleZoom() override {
        zoomed = !zoomed;
        log.emplace_back("zoom");
    }
    void toggleFullScreen() override {
        fullScreen = !fullScreen;
        log.emplace_back("full screen");
    }
    void minimise() override { log.emplace_back("minimise"); }
    void startMove(QPointF pressed) override {
        log.push_back("move from " + std::to_string(qRound(pressed.x())) + "," +
                      std::to_string(qRound(pressed.y())));
    }
};

class WindowChromeCoordinatorTests : public ::testing::Test {
protected:
    FakeWindow window;
    QString doubleClickAction = u"Maximize"_s;
    WindowChromeCoordinator chrome{[this] { return doubleClickAction; }};

    void SetUp() override { chrome.attach(&window); }

    ChromeMouseEvent at(QPointF position, int clickCount = 1) const {
        return {&window, position, clickCount};
    }

    EventOutcome drag(QPointF from, QPointF to, int clickCount = 1) {
        chrome.mousePressed(at(from, clickCount));
        return chrome.mouseDragged(at(to, clickCount));
    }

    EventOutcome doubleClick(QPointF position) {
        chrome.mousePressed(at(position, 1));
        chrome.mouseReleased(at(position, 1));
        chrome.mousePressed(at(position, 2));
        return chrome.mouseReleased(at(position, 2));
    }
};

constexpr QPointF bar(400, 26);
using enum EventOutcome;

TEST_F(WindowChromeCoordinatorTests, movesOnceAPressAndOnlyBeyondTheThreshold) {
    for (const QPointF &offset : {QPointF(4, 0), {0, -4}, {2.8, 2.8}})
        EXPECT_EQ(drag(bar, bar + offset), passOn) << offset.x() << "," << offset.y();
    EXPECT_THAT(window.log, IsEmpty());
    for (const QPointF &offset : {QPointF(4.1, 0), {3, 3}, {-3, -3}, {0, 200}}) {
        window = {};
        drag(bar, bar + QPointF(2, 0));
        EXPECT_EQ(chrome.mouseDragged(at(bar + offset)), swallow) << offset.x() << "," << offset.y();
        EXPECT_EQ(chrome.mouseDragged(at(bar + QPointF(60, 0))), passOn)
            << "the window system moves it from here on";
        EXPECT_THAT(window.log, ElementsAre("move from 400,26"));
    }
    window.log.clear();
    chrome.mousePressed(at(bar));
    EXPECT_EQ(chrome.mouseReleased(at(bar)), passOn);
    EXPECT_EQ(chrome.mouseDragged(at(bar + QPointF(60, 0))), passOn) << "after the release";
    chrome.mousePressed(at(bar));
    chrome.mousePressed(at({400, 300}));
    EXPECT_EQ(chrome.mouseDragged(at(bar + QPointF(60, 0))), passOn) << "a newer press elsewhere counts";
    EXPECT_EQ(drag(bar, bar + QPointF(60, 0), 2), passOn) << "the press of a double-click";
    EXPECT_THAT(window.log, IsEmpty());
}

TEST_F(WindowChromeCoordinatorTests, leavesOtherWindowsAlone) {
    FakeWindow dialog;
    for (const ChromeWindow *other : std::initializer_list<const ChromeWindow *>{&dialog, nullptr}) {
        chrome.mousePressed({other, bar, 1});
        EXPECT_EQ(chrome.mouseDragged(at(bar + QPointF(60, 0))), passOn);
        chrome.mousePressed(at(bar));
        EXPECT_EQ(chrome.mouseDragged({other, bar + QPointF(60, 0), 1}), passOn);
        EXPECT_EQ(chrome.mouseReleased({other, bar, 2}), passOn);
    }
    chrome.mousePressed(at(bar));
    chrome.attach(&dialog);
    EXPECT_EQ(chrome.mouseDragged({&dialog, bar + QPointF(60, 0), 1}), passOn)
        << "a press in the window before";
    chrome.attach(nullptr);
    EXPECT_EQ(doubleClick(bar), passOn);
    chrome.toggleZoom();
    EXPECT_THAT(window.log, IsEmpty());
    EXPECT_THAT(dialog.log, IsEmpty());
}

TEST_F(WindowChromeCoordinatorTests, zoomsAndReturnsUntilADragForgetsTheZoom) {
    doubleClick(bar);
    drag(bar, bar + QPointF(3, 0)); // too short
    doubleClick(bar);
    doubleClick(bar);
    EXPECT_THAT(window.log,
                ElementsAre("frame 0,28 1920x1052", "frame 100,80 1280x820", "frame 0,28 1920x1052"));
    drag(bar, bar + QPointF(0, 30));
    window.windowFrame = {300, 200, 1280, 820}; // where the user let it go
    window.log.clear();
    doubleClick(bar);
    doubleClick(bar);
    EXPECT_THAT(window.log, ElementsAre("frame 0,28 1920x1052", "frame 300,200 1280x820"));

    doubleClick(bar); // zoomed, then full screen from the desktop's menu
    window.fullScreen = true;
    window.log.clear();
    doubleClick(bar);
    doubleClick(bar);
    EXPECT_THAT(window.log, ElementsAre("full screen", "frame 300,200 1280x820")) << "the zoom outlives it";
}

TEST_F(WindowChromeCoordinatorTests, followsTheWindowSystemsOwnZoom) {
    window.zoomed = true; // by a keyboard shortcut of the desktop: no frame of ours to return to
    doubleClick(bar);
    EXPECT_THAT(window.log, ElementsAre("zoom"));
    EXPECT_FALSE(window.zoomed);
    doubleClick(bar);
    EXPECT_THAT(window.log, ElementsAre("zoom", "frame 0,28 1920x1052")) << "afresh after that";

    window = {};
    window.screen = std::nullopt;
    WindowChromeCoordinator offScreen([] { return QString(); });
    offScreen.attach(&window);
    offScreen.toggleZoom();
    EXPECT_THAT(window.log, ElementsAre("zoom")) << "no screen to fill";
    offScreen.toggleZoom();
    EXPECT_THAT(window.log, ElementsAre("zoom", "frame 100,80 1280x820"));
}

TEST(WindowPlacementTests, findsTheEdgeUnderTheMouse) {
    constexpr QSize size(1280, 820);
    using Places =
        QList<QPointF>; // those in no edge lie inside, outside, and where the window's buttons begin
    const std::pair<Qt::Edges, Places> cases[] = {
        {{}, {{640, 400}, {5, 400}, {1274, 400}, {-1, 400}, {1280, 400}, {640, 820}, {13, 13}}},
        {Qt::LeftEdge, {{4.9, 400}}},
        {Qt::RightEdge, {{1276, 400}, {1275, 400}}},
        {Qt::TopEdge, {{640, 0}}},
        {Qt::BottomEdge, {{640, 819}}},
        {Qt::TopEdge | Qt::LeftEdge, {{0, 0}, {13, 2}, {2, 13}}},
        {Qt::BottomEdge | Qt::RightEdge, {{1270, 819}, {1279, 810}}}};
    for (const auto &[edges, places] : cases)
        for (const QPointF &position : places)
            EXPECT_EQ(resizeEdgesAt(position, size), edges) << position.x() << "," << position.y();
}

TEST(WindowPlacementTests, resizesTheGrippedEdgesOnly) {
    constexpr QRect frame(100, 100, 1200, 800);
    constexpr QSize minimum(1100, 720);
    const std::tuple<Qt::Edges, QPoint, QRect> cases[] = {
        {Qt::RightEdge, {50, 70}, {100, 100, 1250, 800}},
        {Qt::BottomEdge, {50, 70}, {100, 100, 1200, 870}},
        {Qt::LeftEdge, {-50, 70}, {50, 100, 1250, 800}},
        {Qt::TopEdge | Qt::LeftEdge, {-50, -70}, {50, 30, 1250, 870}},
        {Qt::RightEdge, {-900, 0}, {100, 100, 1100, 800}},
        {Qt::LeftEdge, {900, 0}, {200, 100, 1100, 800}}, // the right edge holds still at the minimum
        {Qt::TopEdge, {0, 900}, {100, 180, 1200, 720}},
        {{}, {50, 70}, frame},
    };
    for (const auto &[edges, offset, expected] : cases)
        EXPECT_EQ(resizedFrame(frame, edges, offset, minimum), expected);
}

TEST(WindowPlacementTests, keepsTheTitleBarReachable) {
    constexpr QRect left(0, 28, 1920, 1052);
    constexpr QRect right(1920, 0, 1280, 1024);
    // The frame wanted, the screens there are, and where its top left comes to lie; the size never changes.
    const std::tuple<const char *, QRect, QList<QRect>, QPoint> cases[] = {
        {"in the middle", {200, 100, 1280, 820}, {left}, {200, 100}},
        {"above the screen", {200, -400, 1280, 820}, {left}, {200, 28}},
        {"under the panel", {200, 0, 1280, 820}, {left}, {200, 28}},
        {"below the screen", {200, 3000, 1280, 820}, {left}, {200, 28 + 1052 - 32}},
        {"left of the screen", {-5000, 100, 1280, 820}, {left}, {120 - 1280, 100}},
        {"right of the screen", {5000, 100, 1280, 820}, {left}, {1920 - 120, 100}},
        {"the second screen was unplugged", {2000, 100, 1280, 820}, {left}, {1800, 100}},
        {"nearest to the second screen", {3300, -50, 1280, 820}, {left, right}, {3080, 0}},
        {"wider than the screen", {0, 0, 1280, 820}, {QRect(0, 0, 100, 600)}, {0, 0}},
        {"no screen at all", {-5000, 100, 1280, 820}, {}, {-5000, 100}},
    };
    for (const auto &[what, frame, screens, expected] : cases)
        EXPECT_EQ(reachableFrame(frame, screens), QRect(expected, frame.size())) << what;
}

TEST(WindowPlacementTests, fitsARememberedFrameToTheScreensOfToday) {
    constexpr QRect left(0, 28, 1920, 1052);
    constexpr QRect right(1920, 0, 1280, 1024);
    constexpr QRect small(0, 0, 1024, 600);
    constexpr QSize minimum(1100, 720);
    const std::tuple<const char *, QRect, QList<QRect>, QRect> cases[] = {
        {"on the second screen", {1920, 10, 1280, 820}, {left, right}, {1920, 10, 1280, 820}},
        {"that is gone", {1960, 10, 1280, 820}, {left}, {320, 144, 1280, 820}},
        {"mostly on the second", {1800, 10, 1200, 820}, {left, right}, {1920, 10, 1200, 820}},
        {"beyond an edge", {-700, 500, 1280, 820}, {left}, {0, 260, 1280, 820}},
        {"a smaller screen", {100, 100, 1800, 1000}, {{0, 0, 1366, 728}}, {0, 0, 1366, 728}},
        {"smaller than the minimum", {100, 100, 1800, 1000}, {small}, small},
        {"smaller than it may be", {100, 100, 1, 1}, {left}, {100, 100, 1100, 720}},
        {"far off", {100'000, -100'000, 100'000, 100'000}, {left}, left},
        {"no screen at all", {5000, 100, 1280, 820}, {}, {5000, 100, 1280, 820}},
    };
    for (const auto &[what, frame, screens, expected] : cases)
        EXPECT_EQ(fittedFrame(frame, minimum, screens), expected) << what;
}

TEST(WindowPlacementTests, dragsAMaximisedWindowOutUnderTheMouse) {
    for (const double x : {0.0, 480.0, 1919.0}) {
        const QPoint mouse(qRound(x) + 7, 90); // it has moved on since the press
        const QRect frame(placeDraggedOut(1920, {x, 20}, {1280, 820}, mouse), QSize(1280, 820));
        EXPECT_EQ(frame.top(), 70) << "the mouse keeps its place in the band";
        EXPECT_NEAR((mouse.x() - frame.left()) / 1280.0, x / 1920, 0.001);
        EXPECT_TRUE(frame.contains(mouse)) << x;
    }
}

/// A real window on a platform without a window manager: it moves and resizes by itself.
class WindowChromeTests : public ::testing::Test {
protected:
    QMainWindow window;
    QString doubleClickAction = u"Maximize"_s;
    WindowChrome chrome{&window, [this] { return doubleClickAction; }};
    QPushButton *tool = new QPushButton;
    QPushButton *content = new QPushButton;

    void SetUp() override {
        window.setWindowTitle(u"Vantrel"_s);
        window.setMinimumSize(400, 300);
        chrome.titleBar()->addToolbarWidget(tool);
        window.setCentralWidget(content);
        window.setGeometry(60, 50, 600, 400);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    /// Presses at `from` in the window, moves the mouse by `by` on the screen in two steps, and lets go.
    void drag(QPoint from, QPoint by) {
        QWindow *native = window.windowHandle();
        const QPoint pressed = native->mapToGlobal(from);
        QTest::mousePress(native, Qt::LeftButton, {}, from);
        QTest::mouseMove(native, native->mapFromGlobal(pressed + by / 2));
        QTest::mouseMove(native, native->mapFromGlobal(pressed + by));
        QTest::mouseRelease(native, Qt::LeftButton, {}, native->mapFromGlobal(pressed + by));
    }
};

TEST_F(WindowChromeTests, movesByItsBandOnly) {
    const QPoint toolCentre = tool->mapTo(&window, tool->rect().center());
    for (const auto &[what, from, moves] : {std::tuple("the band", QPoint(250, 26), true),
                                            {"the title", {130, 26}, true},
                                            {"the close button", {24, 26}, false},
                                            {"a toolbar button", toolCentre, false},
                                            {"the toolbar's part", {600 - 190, 26}, false},
                                            {"left of that", {600 - 191, 26}, true},
                                            {"the content", {250, 200}, false}}) {
        const QRect before = window.geometry();
        drag(from, {30, 20});
        QTest::mouseMove(window.windowHandle(), {300, 300}); // the mouse has let go
        EXPECT_EQ(window.geometry(), moves ? before.translated(30, 20) : before) << what << ": ";
    }
    const QRect before = window.geometry();
    drag({250, 26}, {4, 0});
    EXPECT_EQ(window.geometry(), before) << "a click";
}

TEST_F(WindowChromeTests, resizesByItsEdges) {
    drag({598, 200}, {40, 40});
    EXPECT_EQ(window.geometry(), QRect(60, 50, 640, 400));
    drag({1, 1}, {-10, -20});
    EXPECT_EQ(window.geometry(), QRect(50, 30, 650, 420));
    drag({300, 418}, {0, -900});
    EXPECT_EQ(window.geometry(), QRect(50, 30, 650, 300));

    QTest::mouseMove(window.windowHandle(), {1, 150});
    ASSERT_TRUE(QGuiApplication::overrideCursor());
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::SizeHorCursor);
    QTest::mouseMove(window.windowHandle(), {300, 150});
    EXPECT_FALSE(QGuiApplication::overrideCursor());
}

TEST_F(WindowChromeTests, zoomsByDoubleClickAndByButton) {
    const QRect normal = window.geometry();
    const auto doubleClick = [&](QPoint position) {
        QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, {}, position);
        QCoreApplication::processEvents();
    };
    doubleClick({250, 26});
    EXPECT_TRUE(window.isMaximized());
    EXPECT_EQ(window.contentsMargins(), QMargins()) << "nothing to grip at the screen's edge";
    doubleClick({250, 26});
    EXPECT_FALSE(window.isMaximized());
    EXPECT_EQ(window.geometry(), normal);
    EXPECT_EQ(window.contentsMargins(), QMargins(1, 1, 1, 1));

    for (const bool isZoomed : {true, false}) {
        chrome.titleBar()->button(WindowButton::zoom)->click();
        EXPECT_EQ(window.isMaximized(), isZoomed);
    }
    doubleClick({250, 200});
    EXPECT_FALSE(window.isMaximized()) << "the content";
    doubleClickAction = u"Minimize"_s;
    doubleClick({250, 26});
    EXPECT_TRUE(window.isMinimized());
    bringToFront(&window, {});
    EXPECT_FALSE(window.isMinimized());
    EXPECT_TRUE(window.isVisible());
}

TEST_F(WindowChromeTests, buttonsStandWhereTheDesktopHasThem) {
    // What the desktop says, and what is seen from left to right: the title, the toolbar and the buttons.
    const struct {
        QString layout;
        Qt::LayoutDirection direction;
        QStringList seen;
    } cases[] = {
        {u"appmenu:minimize,maximize,close"_s,
         Qt::LeftToRight,
         {u"title"_s, u"tool"_s, u"minimise"_s, u"zoom"_s, u"close"_s}},
        {u"appmenu:close"_s, Qt::LeftToRight, {u"title"_s, u"tool"_s, u"close"_s}},
        {u"appmenu:close"_s, Qt::RightToLeft, {u"close"_s, u"tool"_s, u"title"_s}},
        {u"close,close,spacer : icon, maximize"_s,
         Qt::LeftToRight,
         {u"close"_s, u"title"_s, u"tool"_s, u"zoom"_s}},
        {u":"_s, Qt::LeftToRight, {u"title"_s, u"tool"_s}},
        {u"close,minimize,maximize:"_s,
         Qt::LeftToRight,
         {u"close"_s, u"minimise"_s, u"zoom"_s, u"title"_s, u"tool"_s}},
        {u"close,minimize,maximize:"_s,
         Qt::RightToLeft,
         {u"tool"_s, u"title"_s, u"zoom"_s, u"minimise"_s, u"close"_s}},
    };
    tool->setObjectName(u"tool"_s);
    tool->setFixedWidth(60);
    for (const auto &[layout, direction, seen] : cases) {
        SCOPED_TRACE(layout.toStdString());
        QApplication::setLayoutDirection(direction);
        chrome.titleBar()->setButtonLayout(layout);
        QTest::qWait(0);
        QMap<int, QString> shown;
        for (const QWidget *part : chrome.titleBar()->findChildren<QWidget *>())
            if (part->isVisible())
                shown.insert(
                    part->x(),
                    part->objectName().replace(u"windowTitle"_s, u"window.title"_s).section(u'.', -1));
        EXPECT_EQ(shown.values(), seen);
        const bool isMirrored = direction == Qt::RightToLeft;
        const QRect before = window.geometry();
        const int beforeToolbar = tool->mapTo(&window, QPoint(isMirrored ? 175 : 60 - 175, 0)).x();
        drag({beforeToolbar, 26}, {30, 20});
        EXPECT_EQ(window.geometry(), before) << "the toolbar's part";
        drag({beforeToolbar + (isMirrored ? 60 : -60), 26}, {30, 20});
        EXPECT_EQ(window.geometry(), before.translated(30, 20));
    }
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(WindowChromeTests, aDoubleClickIsAsLongAsTheDesktopSays) {
    const int before = QApplication::doubleClickInterval();
    for (const auto &[interval, isOne] : {std::pair(5000, true), {100, false}}) {
        QApplication::setDoubleClickInterval(interval);
        for (int time = 0; time < 2; ++time) // half a second apart, as the toolkit's test clock has it
            QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, {250, 26});
        QCoreApplication::processEvents();
        EXPECT_EQ(window.isMaximized(), isOne) << interval;
        window.showNormal();
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                          {250, 200}); // is no part of the next one
    }
    QApplication::setDoubleClickInterval(before);
}

TEST_F(WindowChromeTests, aRightClickInTheBandOpensTheWindowsMenu) {
    const auto menuAt = [&](QPoint position) {
        QTest::mouseClick(window.windowHandle(), Qt::RightButton, {}, position);
        return qobject_cast<QMenu *>(QApplication::activePopupWidget());
    };
    const auto choose = [&](const QString &title) {
        QMenu *menu = menuAt({250, 26});
        ASSERT_TRUE(menu);
        for (QAction *action : menu->actions())
            if (action->text() == title)
                return QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
        menu->close();
        FAIL() << "no " << title.toStdString();
    };
    EXPECT_FALSE(menuAt({24, 26})) << "a button";
    EXPECT_FALSE(menuAt({250, 200})) << "the content";
    choose(u"Zoom"_s);
    EXPECT_TRUE(window.isMaximized());
    choose(u"Restore"_s);
    EXPECT_FALSE(window.isMaximized());
    choose(u"Minimize"_s);
    EXPECT_TRUE(window.isMinimized());
    bringToFront(&window, {});
    choose(u"Close"_s);
    EXPECT_FALSE(window.isVisible());

    window.show();
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, {48, 26});
    EXPECT_TRUE(window.isMinimized()) << "the buttons do the same";
    bringToFront(&window, {});
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, {24, 26});
    EXPECT_FALSE(window.isVisible());
}

} // namespace
} // namespace vantrel
