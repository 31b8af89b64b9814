// The window under a Wayland compositor, which alone decides about sizes and ends a program that thinks
// otherwise. The compositor is weston without an output device; a protocol error ends this program, and with
// it the test.

#include "support/FakeDesktop.h"

#include "ADB/ADBClient.h"
#include "App/Sheets/AboutView.h"
#include "App/System/Settings.h"
#include "App/Updates/Updater.h"
#include "App/Window/MainWindow.h"
#include "App/Window/TitleBar.h"
#include "Theme/AppTheme.h"
#include "Worker/Worker.h"

#include <QApplication>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>
#ifdef VANTREL_HAS_QPA
#include <qpa/qplatformwindow.h>
#endif

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

/// Weston on a screen of its own, as long as this lives.
class Weston {
public:
    explicit Weston(const QTemporaryDir &runtime, QSize screen) {
        m_process.setStandardErrorFile(runtime.filePath(u"weston.log"_s));
        m_process.start(u"weston"_s,
                        {u"--backend=headless-backend.so"_s, u"--socket=vantrel-test"_s, u"--no-config"_s,
                         u"--width=%1"_s.arg(screen.width()), u"--height=%1"_s.arg(screen.height())});
        // The lock file comes before the socket can be used; the socket itself is made by bind().
        const QString socket = runtime.filePath(u"vantrel-test"_s);
        m_isReady = m_process.waitForStarted() && QTest::qWaitFor([&] { return QFile::exists(socket); });
    }
    ~Weston() {
        m_process.terminate();
        m_process.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(Weston)
    [[nodiscard]] bool isReady() const { return m_isReady; }

private:
    QProcess m_process;
    bool m_isReady = false;
};

class WaylandTests : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        qputenv("HOME", QFile::encodeName(folder.path()));
        ASSERT_TRUE(QGuiApplication::platformName().startsWith(u"wayland"_s));
        window = std::make_unique<MainWindow>(desktop, settings, updater);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        ASSERT_TRUE(QTest::qWaitFor([&] { return window->isFurnished(); }));
    }
    void TearDown() override {
        window.reset();
        Background::stop(&ADBClient::stopRunningTools);
    }

    /// As large as it is for those who look at it: without the margin for its shadow.
    [[nodiscard]] QSize seen() const {
        const bool fills = window->isMaximized() || window->isFullScreen();
        return window->size() - (fills ? QSize(0, 0) : QSize(48, 48));
    }
    void zoomByButton() {
        auto *zoom = window->findChild<TitleBar *>()->button(WindowButton::zoom);
        zoom->click();
    }
    void doubleClickTitleBar() { QTest::mouseDClick(window->windowHandle(), Qt::LeftButton, {}, {400, 26}); }
    /// Paints, and goes on at the pace of a person's clicks: the toolkit's plugin can be made to answer the
    /// compositor out of order by changes of the state that follow each other within a frame.
    void settle() {
        constexpr int pace = 300; // milliseconds
        window->repaint();
        QTest::qWait(pace);
    }
    [[nodiscard]] bool becomes(const std::function<bool()> &condition) {
        const bool is = QTest::qWaitFor(condition);
        settle();
        return is;
    }

    QTemporaryDir folder;
    FakeDesktop desktop;
    Settings settings{folder.filePath(u"settings.ini"_s)};
    Updater updater{Updater::Configuration{}};
    std::unique_ptr<MainWindow> window;
};

TEST_F(WaylandTests, zoomsAndReturnsInBothSchemes) {
    const QSize normal = seen();
    const QSize screen = window->screen()->size();
    EXPECT_LE(normal.height(), screen.height()) << "the first size fits the screen";
    for (const ColorScheme scheme : {ColorScheme::dark, ColorScheme::light}) {
        AppTheme::setScheme(scheme);
        const std::function<void()> acts[] = {[&] { zoomByButton(); }, [&] { doubleClickTitleBar(); }};
        for (const auto &act : acts) {
            act();
            EXPECT_TRUE(becomes([&] { return window->isMaximized() && seen().width() == screen.width(); }));
            act();
            EXPECT_TRUE(becomes([&] { return !window->isMaximized() && seen() == normal; }))
                << window->width() << " x " << window->height();
        }
    }
}

#ifdef VANTREL_HAS_QPA
TEST_F(WaylandTests, keepsItsSizeWhenTheCompositorZoomsAndReturnsIt) {
    const QSize normal = seen();
    // The toolkit's window does not know what it is asked of it here, as when a key of the desktop does it.
    const auto becomeByTheCompositor = [&](Qt::WindowState state) {
        window->windowHandle()->handle()->setWindowState(state);
        EXPECT_TRUE(becomes([&] { return window->windowState() == state; }));
    };
    for (const Qt::WindowState state : {Qt::WindowMaximized, Qt::WindowFullScreen, Qt::WindowMaximized}) {
        becomeByTheCompositor(state);
        EXPECT_EQ(seen().width(), window->screen()->size().width());
        becomeByTheCompositor(Qt::WindowNoState);
        EXPECT_EQ(seen(), normal) << state;
    }
}
#endif

TEST_F(WaylandTests, yieldsToTheCompositorsSize) {
    // A zoomed window gets what the panel leaves; full screen everything. Either may be less than the
    // minimum.
    window->showMaximized();
    EXPECT_TRUE(becomes([&] { return window->isMaximized(); }));
    EXPECT_LE(seen().height(), window->screen()->size().height());
    window->showFullScreen();
    EXPECT_TRUE(becomes([&] { return seen() == window->screen()->size(); }));
    window->showNormal();
    EXPECT_TRUE(becomes([&] { return !window->isFullScreen() && !window->isMaximized(); }));
}

TEST_F(WaylandTests, opensZoomedAndReturnsToTheSizeItWasLeftWith) {
    window.reset();
    const QSize left(1000, 500);
    settings.setWindowGeometry({.size = left, .position = QPoint(-300, 9000), .isZoomed = true});
    window = std::make_unique<MainWindow>(desktop, settings, updater);
    window->show();
    EXPECT_TRUE(becomes([&] { return window->isFurnished() && window->isMaximized(); }));
    zoomByButton();
    const QSize fitted = left.expandedTo(window->minimumSize() - QSize(48, 48));
    EXPECT_TRUE(becomes([&] { return !window->isMaximized() && seen() == fitted; }))
        << window->width() << " x " << window->height();
    window->close();
    EXPECT_EQ(settings.windowGeometry(),
              (WindowGeometry{.size = fitted, .position = QPoint(-300, 9000), .isZoomed = false}))
        << "only the compositor knows a place";
}

TEST_F(WaylandTests, castsAShadowAroundItWhileItDoesNotFillTheScreen) {
    const auto alphaAt = [&](int x, int y) {
        QImage picture(window->size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        window->render(&picture, {}, {}, QWidget::DrawChildren);
        return picture.pixelColor(x, y).alpha();
    };
    const int middle = window->height() / 2;
    EXPECT_EQ(alphaAt(0, 0), 0);
    EXPECT_GT(alphaAt(20, middle), 0);
    EXPECT_LT(alphaAt(20, middle), 100);
    EXPECT_EQ(alphaAt(24, middle), 255) << "here the window begins";
    EXPECT_EQ(window->windowHandle()->mask().boundingRect(), window->rect().adjusted(14, 14, -14, -14))
        << "the edges reach a little beyond it; farther out, what lies behind gets the mouse";
    QTest::mouseMove(window->windowHandle(), {16, middle});
    ASSERT_TRUE(QGuiApplication::overrideCursor());
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::SizeHorCursor);
    zoomByButton();
    EXPECT_TRUE(becomes(
        [&] { return window->isMaximized() && window->width() == window->screen()->size().width(); }));
    EXPECT_EQ(alphaAt(0, middle), 255);
    EXPECT_EQ(window->windowHandle()->mask().boundingRect(), window->rect());
}

TEST_F(WaylandTests, sheetsArePartOfTheWindow) {
    const qsizetype windows = QGuiApplication::topLevelWindows().size();
    window->showAbout();
    auto *about = window->findChild<AboutView *>();
    const auto *card = about->findChild<QWidget *>(u"sheet.card"_s);
    EXPECT_TRUE(becomes([&] { return card->y() > 0; }));
    EXPECT_EQ(QGuiApplication::topLevelWindows().size(), windows);
    zoomByButton();
    EXPECT_TRUE(becomes([&] { return window->isMaximized() && about->width() == seen().width(); }));
    EXPECT_TRUE(about->rect().contains(card->geometry()));
    const auto *close = about->findChild<QWidget *>(u"about.close"_s);
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                      close->mapTo(window.get(), close->rect().center()));
    EXPECT_TRUE(becomes([&] { return window->findChild<AboutView *>() == nullptr; }));
}

TEST_F(WaylandTests, resizesMinimisesAndComesBack) {
    const QSize least = window->minimumSize();
    window->resize(300, 200);
    EXPECT_TRUE(becomes([&] { return window->size() == least; }));
    window->resize(least + QSize(40, 20));
    EXPECT_TRUE(becomes([&] { return window->size() == least + QSize(40, 20); }));
    window->showMinimized();
    EXPECT_TRUE(window->isMinimized());
    window->showNormal();
    EXPECT_TRUE(becomes([&] { return window->isVisible() && !window->isMinimized(); }));
}

} // namespace
} // namespace vantrel

int main(int argc, char **argv) {
    // Before there is an application, which needs the compositor.
    const QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path()));
    ::testing::InitGoogleTest(&argc, argv);
    const QString screen = qEnvironmentVariable("VANTREL_WAYLAND_SCREEN", QStringLiteral("1366x768"));
    const QStringList size = screen.split(QLatin1Char('x'));
    const vantrel::Weston weston(runtime, {size.value(0).toInt(), size.value(1).toInt()});
    if (!weston.isReady()) {
        std::fputs("weston does not start\n", stderr);
        return 1;
    }
    qputenv("WAYLAND_DISPLAY", "vantrel-test");
    qputenv("QT_QPA_PLATFORM", "wayland");
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
