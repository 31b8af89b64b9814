// The main window and how it divides its room, on a demo phone.

#include "support/MainWindowFixture.h"
#include "support/Processes.h"

#include "ADB/ADBClient.h"
#include "App/Sheets/MessageSheet.h"
#include "App/System/QuitSignals.h"
#include "App/Window/ContentView.h"
#include "App/Window/ToolbarButton.h"
#include "Kit/AppStyle.h"
#include "Kit/IconButton.h"
#include "Kit/Shapes.h"
#include "Kit/TextLabel.h"
#include "Views/FileItemsView.h"
#include "Views/FileListView.h"
#include "Views/FileRow.h"
#include "Views/QueueListView.h"
#include "Views/TransferQueueView.h"

#include <QtWidgets>

#include <csignal>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

using BrowserColumnTests = WindowFixture;

TEST_F(BrowserColumnTests, thePanelTakesTwoFifthsUntilItsEdgeIsDragged) {
    auto *browser = new QWidget;
    auto *queue = new TransferQueueView(state.get());
    auto *column = show(new BrowserColumn(browser, queue), {840, 900});
    auto *edge = child<QSplitterHandle>("queue.edge");
    EXPECT_EQ(queue->geometry().bottom(), 900 - 8 - 1);
    EXPECT_EQ(queue->x(), 12);
    EXPECT_EQ(browser->geometry(), QRect(12, 12, 840 - 24, queue->y() - 24));
    EXPECT_FALSE(edge->isEnabled()) << "there is nothing to make higher";
    const int room = 900 - 12 - 8 - 12;
    const int most = room * 2 / 5;
    int previous = queue->height();
    for (const int count : {1, 3, 40}) {
        queueGhosts(count);
        EXPECT_GT(queue->height(), previous) << count;
        EXPECT_EQ(queue->height(), std::min(queue->sizeHint().height(), most));
        previous = queue->height();
    }
    EXPECT_EQ(queue->height(), most);
    EXPECT_EQ(view->size(), QSize(840, 900));

    QSignalSpy chosen(column, &BrowserColumn::queueLimitChosen);
    const auto drag = [&](int by) {
        const QPoint from = edge->rect().center();
        QTest::mousePress(edge, Qt::LeftButton, {}, from);
        QTest::mouseMove(edge, from + QPoint(0, by / 2));
        QTest::mouseMove(edge, from + QPoint(0, by - by / 2));
        QTest::mouseRelease(edge, Qt::LeftButton, {}, edge->rect().center());
        settle();
    };
    drag(-100);
    EXPECT_EQ(queue->height(), most + 100);
    EXPECT_EQ(column->queueLimit(), most + 100);
    EXPECT_EQ(chosen.count(), 1) << "once, not for every step of it";
    drag(-2000);
    EXPECT_EQ(browser->height(), BrowserColumn::browserMinimumHeight);
    drag(2000);
    EXPECT_EQ(queue->height(), queue->minimumSizeHint().height());
    edge->setFocus(Qt::TabFocusReason);
    QTest::keyClick(edge, Qt::Key_Up);
    EXPECT_EQ(queue->height(), queue->minimumSizeHint().height() + 24);
    QTest::keyClick(edge, Qt::Key_Down);
    EXPECT_EQ(queue->height(), queue->minimumSizeHint().height());
    EXPECT_EQ(accessible(edge)->role(), QAccessible::Splitter);
    EXPECT_FALSE(accessible(edge)->text(QAccessible::Name).isEmpty());
    QTest::mouseDClick(edge, Qt::LeftButton);
    settle();
    EXPECT_EQ(queue->height(), most);
    EXPECT_FALSE(column->queueLimit());
    view->resize(840, 640);
    settle();
    EXPECT_EQ(queue->height(), (640 - 32) * 2 / 5);
}

TEST_F(BrowserColumnTests, theDraggedHeightIsRemembered) {
    const QString path = mac.filePath(u"settings.ini"_s);
    {
        Settings settings(path);
        auto *content = show(new ContentView(state.get(), settings), {1100, 800});
        queueGhosts(40);
        auto *edge = content->findChild<QSplitterHandle *>(u"queue.edge"_s);
        edge->setFocus(Qt::TabFocusReason);
        QTest::keyClick(edge, Qt::Key_Down);
    }
    const int chosen = child<TransferQueueView>("queue")->height();
    view.reset();
    Settings settings(path);
    EXPECT_EQ(settings.queueHeight(), chosen);
    show(new ContentView(state.get(), settings), {1100, 800});
    settle();
    EXPECT_EQ(child<TransferQueueView>("queue")->height(), chosen);
}

using MainWindowTests = MainWindowFixture;

TEST_F(MainWindowTests, opensAtItsSizeAndIsNeverSmaller) {
    MainWindow *window = showWindow();
    EXPECT_EQ(window->size(), QSize(1280, 820));
    window->resize(300, 200);
    QCoreApplication::processEvents();
    EXPECT_EQ(window->size(), QSize(1100, 720));
    const auto *sidebar = child<QWidget>("sidebar");
    EXPECT_EQ(sidebar->width(), 240);
    const auto *browser = child<QWidget>("browser");
    EXPECT_GE(browser->height(), BrowserColumn::browserMinimumHeight);
    const int left = sidebar->mapTo(window, QPoint()).x();
    EXPECT_EQ(browser->mapTo(window, QPoint()).x(), left + 240 + 1 + 12);
    EXPECT_EQ(child<QWidget>("statusBar")->mapTo(window, QPoint()).x(), left);
    // The content does not ask for more than the window gives: at its least size nothing is cut off.
    EXPECT_EQ(window->minimumSizeHint().boundedTo({1100, 720}), window->minimumSizeHint());
}

TEST_F(MainWindowTests, opensAsItWasLeft) {
    const auto closed = [&] {
        view->close();
        view.reset();
        EXPECT_TRUE(settings->save());
        return contents(settingsPath());
    };
    showWindow();
    EXPECT_EQ(closed(), "(missing)") << "nobody has changed anything";

    showWindow()->setGeometry(150, 90, 1200, 760);
    settle();
    EXPECT_EQ(closed(), "windowPosition=150,90\nwindowSize=1200x760\nwindowZoomed=false\n");
    EXPECT_EQ(showWindow()->geometry(), QRect(150, 90, 1200, 760));
    view->showMaximized();
    settle();
    closed();
    MainWindow *window = showWindow();
    EXPECT_TRUE(window->isMaximized());
    child<QAbstractButton>("window.zoom")->click();
    settle();
    EXPECT_EQ(window->geometry(), QRect(150, 90, 1200, 760));

    // A screen that is gone, and what nobody can have meant; it stays as it is stored until the user chooses.
    for (const auto &[stored, expected] :
         {std::pair(QByteArray("windowPosition=50000,60\nwindowSize=1200x760\n"), QSize(1200, 760)),
          {"windowPosition=50,60\nwindowSize=90000x90000\n", window->screen()->availableSize()},
          {"windowPosition=50,60\nwindowSize=3x2\n", MainWindow::minimum},
          {"windowPosition=here\nwindowSize=large\n", MainWindow::standard}}) {
        write(settingsPath(), stored);
        window = showWindow();
        EXPECT_EQ(window->size(), expected) << stored.toStdString();
        EXPECT_TRUE(window->screen()->availableGeometry().contains(window->geometry()));
        EXPECT_EQ(closed(), stored);
    }
}

TEST_F(MainWindowTests, isThereBeforeItIsFurnishedAndLooksForThePhoneLast) {
    // What the window holds when its first frame is painted, and when its content is.
    struct FrameWatch : QObject {
        explicit FrameWatch(const MainWindow &watched) : window(watched) { qApp->installEventFilter(this); }
        bool eventFilter(QObject *object, QEvent *event) override {
            if (event->type() == QEvent::Paint && object == &window && !labels)
                labels = window.findChildren<QLabel *>().size();
            if (event->type() == QEvent::Paint && object->objectName() == u"content"_s && !toolsRan)
                toolsRan = window.state().isRefreshingDevice() || !window.state().macItems().isEmpty();
            return false;
        }
        const MainWindow &window;
        std::optional<qsizetype> labels;
        std::optional<bool> toolsRan;
    };
    settings.emplace(settingsPath());
    auto *window = new MainWindow(desktop, *settings, updater);
    view.reset(window);
    FrameWatch watch(*window);
    // Two first frames before the event loop gets to what follows: it is furnished once all the same.
    for (int time = 0; time < 2; ++time) {
        window->hide();
        window->show();
        window->grab();
    }
    EXPECT_FALSE(window->isFurnished());
    ASSERT_TRUE(waitFor([&] { return watch.toolsRan && window->state().device().isConnected; }));
    EXPECT_EQ(watch.labels, 0) << "a label opens a font";
    EXPECT_EQ(watch.toolsRan, false);
    EXPECT_EQ(window->findChildren<QWidget *>(u"content"_s).size(), 1);
    EXPECT_EQ(window->findChildren<QWidget *>(u"toolbar.about"_s).size(), 1);
    EXPECT_EQ(window->windowTitle(), u"Vantrel"_s);
    EXPECT_EQ(child<TextLabel>("windowTitle")->text(), u"Vantrel"_s);
}

TEST_F(MainWindowTests, aStoredAppearanceIsTakenOrCountsAsLight) {
    for (const QByteArray &stored : QByteArrayList{"", "dark", "light", "Dark", "solarized", "42"}) {
        SCOPED_TRACE(stored.toStdString());
        const bool dark = stored == "dark";
        write(settingsPath(), "appearancePreference=" + stored);
        showWindow();
        const auto *button = child<ToolbarButton>("toolbar.appearance");
        const auto shows = [button](bool isDark) {
            EXPECT_EQ(AppTheme::scheme() == ColorScheme::dark, isDark);
            EXPECT_EQ(button->systemImage(), isDark ? u"sun.max"_s : u"moon"_s);
            EXPECT_EQ(button->text(), isDark ? u"Light"_s : u"Dark"_s);
            EXPECT_EQ(button->accessibleName(),
                      isDark ? u"Switch to Light mode"_s : u"Switch to Dark mode"_s);
        };
        shows(dark);
        click(child<ToolbarButton>("toolbar.appearance"));
        QCoreApplication::processEvents(); // the toolkit tells the widgets in its next pass
        shows(!dark);
        ASSERT_TRUE(settings->save());
        EXPECT_TRUE(contents(settingsPath()).contains(dark ? "=light\n" : "=dark\n"));
        view.reset();
    }
}

TEST_F(MainWindowTests, followsTheDesktopsSchemeUntilTheUserChooses) {
    MainWindow *window = showWindow();
    for (const ColorScheme preferred : {ColorScheme::dark, ColorScheme::light, ColorScheme::dark}) {
        window->followDesktop(preferred);
        QCoreApplication::processEvents();
        EXPECT_EQ(AppTheme::scheme(), preferred);
        EXPECT_EQ(child<ToolbarButton>("toolbar.appearance")->text() == u"Light"_s,
                  preferred == ColorScheme::dark);
    }
    click(child<ToolbarButton>("toolbar.appearance"));
    window->followDesktop(ColorScheme::dark);
    EXPECT_EQ(AppTheme::scheme(), ColorScheme::light) << "the user has chosen";
    view.reset();
    showWindow()->followDesktop(ColorScheme::dark);
    EXPECT_EQ(AppTheme::scheme(), ColorScheme::light) << "at the next start too";
}

TEST_F(MainWindowTests, isDestroyedWhileEverythingIsUnderWay) {
    phone.makeFolder(u"DCIM"_s);
    phone.write(u"big"_s, QByteArray(1000, 'x'));
    MainWindow *window = showWindow();
    ASSERT_TRUE(waitFor([&] { return !window->state().androidItems().isEmpty(); }));
    phone.set(u"hang"_s, "on");
    window->state().browseAndroid(u"/sdcard/DCIM"_s);
    window->state().refreshDevice(PhoneWatch::Spinner::shown);
    view.reset();
    QElapsedTimer clock;
    clock.start();
    Background::stop(&ADBClient::stopRunningTools);
    EXPECT_LT(clock.elapsed(), 3000);
}

TEST_F(MainWindowTests, everyButtonHasANameAndTabReachesItAndNothingElseTakesTheKeyboard) {
    phone.write(u"a"_s, "x");
    MainWindow *window = showWindow();
    ASSERT_TRUE(waitFor([&] { return !window->state().androidItems().isEmpty(); }));
    ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == window; }));
    settle();
    EXPECT_EQ(QApplication::focusWidget(), nullptr);
    QTest::keyClick(window, Qt::Key_Tab);
    ASSERT_NE(QApplication::focusWidget(), nullptr);

    QSet<QWidget *> reached;
    for (int i = 0; i < 200; ++i) {
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : window, Qt::Key_Tab);
        reached.insert(QApplication::focusWidget());
    }
    for (QAbstractButton *button : window->findChildren<QAbstractButton *>()) {
        if (!button->isVisible())
            continue;
        const std::string name = QString(button->objectName() + u": "_s + button->text()).toStdString();
        EXPECT_FALSE(accessible(button)->text(QAccessible::Name).isEmpty()) << name;
        // The window's own buttons have keys of the desktop; of the shortcuts, Tab stops at one.
        if (button->isEnabled() && !button->objectName().startsWith(u"window."_s) &&
            (button->isChecked() || !button->objectName().startsWith(u"sidebar.shortcut."_s))) {
            EXPECT_TRUE(reached.contains(button)) << name;
        }
    }
}

TEST_F(MainWindowTests, verifiesCopiesFromTheMomentThatTheMenuSaysSo) {
    phone.write(u"a"_s, "x");
    const auto action = [this] {
        for (QAction *each : view->actions()) {
            if (each->text() == u"Verify Copies"_s)
                return each;
        }
        return new QAction(view.get());
    };
    const auto copied = [this](MainWindow *window, const QString &name) {
        AppState &model = window->state();
        EXPECT_TRUE(waitFor([&] { return model.androidItems().size() == 1; }));
        QDir(mac.path()).mkpath(name);
        model.browseMac(mac.filePath(name));
        model.selectAllVisible(BrowserSide::android);
        model.transferAndroidToMac();
        EXPECT_TRUE(waitFor([&] { return !model.isTransferring(); }));
        return model.queue().first().progressLabel();
    };
    MainWindow *window = showWindow();
    EXPECT_FALSE(action()->isChecked());
    EXPECT_EQ(copied(window, u"first"_s), u"Done"_s);
    action()->trigger();
    EXPECT_EQ(copied(window, u"second"_s), u"Verified"_s);
    view.reset();
    window = showWindow();
    EXPECT_TRUE(action()->isChecked());
    EXPECT_EQ(copied(window, u"third"_s), u"Verified"_s);
    action()->trigger();
    EXPECT_EQ(copied(window, u"fourth"_s), u"Done"_s);
}

/// Copies of a window in all the states that they have.
class ClosingTests : public MainWindowTests {
protected:
    enum class Copies { none, done, failed, running, waitingForThePhone, paused };

    MainWindow *windowWith(Copies copies) {
        phone.resetAll();
        phone.write(u"a"_s, "x");
        MainWindow *window = showWindow();
        EXPECT_TRUE(waitFor([&] { return window->state().device().isConnected; }));
        TransferRunner &transfers = window->state().transfers();
        QueueItem item;
        item.sourcePath = copies == Copies::failed ? u"/sdcard/nothing"_s : u"/sdcard/a"_s;
        item.serial = copies == Copies::waitingForThePhone ? u"another"_s : DemoPhone::serial();
        if (copies == Copies::running || copies == Copies::paused)
            phone.set(u"facts.hang"_s, "on");
        for (const QString &name : {u"a"_s, u"b"_s}) {
            item.id = QUuid::createUuid();
            item.name = name;
            item.destinationFolder = mac.path();
            if (copies != Copies::none)
                transfers.enqueue({item});
        }
        if (copies == Copies::paused)
            transfers.pause();
        if (copies != Copies::running) {
            EXPECT_TRUE(waitFor([&] { return !transfers.isTransferring(); }));
        }
        return window;
    }
    [[nodiscard]] MessageSheet *question() const {
        auto *sheet = view->findChild<MessageSheet *>(u"quit"_s);
        return sheet && sheet->isVisible() ? sheet : nullptr;
    }
    [[nodiscard]] QString said() const {
        return child<TextLabel>("quit.heading")->text() + u' ' + child<TextLabel>("quit.detail")->text();
    }
};

TEST_F(ClosingTests, asksFirstWhileCopiesAreUnfinished) {
    const struct {
        Copies copies;
        QString stay; ///< the other button; empty: it closes at once
    } cases[] = {{Copies::none, {}},
                 {Copies::done, {}},
                 {Copies::failed, {}},
                 {Copies::running, u"Keep Copying"_s},
                 {Copies::waitingForThePhone, u"Don’t Quit"_s},
                 {Copies::paused, u"Don’t Quit"_s}};
    for (const auto &[copies, stay] : cases) {
        SCOPED_TRACE(int(copies));
        MainWindow *window = windowWith(copies);
        EXPECT_EQ(desktop.isAwake, copies == Copies::running);
        window->showAbout(); // gives way
        child<QAbstractButton>("window.close")->click();
        ASSERT_EQ(window->isVisible(), !stay.isEmpty());
        if (!stay.isEmpty()) {
            ASSERT_TRUE(question());
            EXPECT_EQ(said(), u"2 copies are not finished. They are kept and can go on at the next start."_s);
            EXPECT_EQ(child<QPushButton>("quit.close")->text(), stay);
            QTest::keyClick(question(), Qt::Key_Escape);
            EXPECT_TRUE(window->isVisible());
            EXPECT_FALSE(question());
            ASSERT_TRUE(waitFor([&] { return !view->findChild<MessageSheet *>(); }));
            QTest::keyClick(window->windowHandle(), Qt::Key_Q, Qt::ControlModifier);
            ASSERT_TRUE(question());
            window->state().removeQueueItem(window->state().queue().first().id);
            EXPECT_EQ(said(), u"1 copy is not finished. It is kept and can go on at the next start."_s);
            QTest::keyClick(question(), Qt::Key_Return);
            EXPECT_FALSE(window->isVisible());
        }
        view.reset();
        QFile::remove(mac.filePath(u"state/vantrel/transfers.json"_s));
    }
    EXPECT_FALSE(desktop.isAwake);
}

TEST_F(ClosingTests, aQuestionThatIsSettledMeanwhileIsAnsweredAndALossIsNotHidden) {
    write(mac.filePath(u"state"_s), "no folder");
    MainWindow *window = windowWith(Copies::running);
    window->close();
    ASSERT_TRUE(question());
    EXPECT_TRUE(said().startsWith(u"2 copies are not finished. Unfinished copies will not be remembered: "_s))
        << said().toStdString();
    phone.reset(u"facts.hang"_s);
    EXPECT_TRUE(waitFor([&] { return !window->isVisible(); })) << "all is copied, and closing was wished";
    EXPECT_EQ(window->state().transfers().queue().completedCount(), 2);
}

TEST_F(ClosingTests, aSignalEndsItInGoodOrderAndAsksNobody) {
    MainWindow *window = windowWith(Copies::running);
    window->resize(1150, 750);
    const QuitSignals quitSignals;
    QTimer::singleShot(0, [] { std::raise(SIGTERM); });
    QTimer::singleShot(20'000, qApp, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QApplication::exec(), 0) << "not even the window's";
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(question());
    view.reset();
    EXPECT_TRUE(settings->windowGeometry().size);
    EXPECT_EQ(contents(mac.filePath(u"state/vantrel/transfers.json"_s)).count("\"name\""), 2);
    Background::stop(&ADBClient::stopRunningTools);
    for (const processes::Child &child : processes::children())
        ADD_FAILURE() << child.commandLine.toStdString();
}

/// A window as people see it who have told the desktop how they read.
class ReadingTests : public MainWindowTests {
protected:
    ~ReadingTests() override {
        view.reset();
        AppStyle::setTextScale(1);
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }
    /// With some files on either side, and copies that wait.
    MainWindow *showFilled() {
        phone.makeFolder(u"DCIM"_s);
        phone.write(u"a.jpg"_s, QByteArray(3'000'000, 'x'));
        MainWindow *window = showWindow();
        EXPECT_TRUE(waitFor([&] { return !window->state().androidItems().isEmpty(); }));
        phone.set(u"facts.hang"_s, "on");
        for (const QString &name : {u"a"_s, u"b"_s})
            window->state().transfers().enqueue({QueueItem{.id = QUuid::createUuid(),
                                                           .name = name,
                                                           .sourcePath = u"/sdcard/a.jpg"_s,
                                                           .destinationFolder = mac.path(),
                                                           .status = {},
                                                           .serial = DemoPhone::serial()}});
        settle();
        return window;
    }
};

TEST_F(ReadingTests, nothingIsCutWithLargeTexts) {
    MainWindow *window = showFilled();
    const std::pair<double, const char *> cases[] = {{1.25, "device"}, {1.5, "device"},
                                                     {2.0, "device"},  {1.5, "no permissions (x)"},
                                                     {2.0, "none"},    {1.25, "device"}};
    for (const auto &[scale, phoneState] : cases) {
        phone.set(u"state"_s, phoneState);
        AppStyle::setTextScale(scale);
        window->state().refreshDevice(PhoneWatch::Spinner::shown);
        ASSERT_TRUE(waitFor([&] {
            return !window->state().isRefreshingDevice() && !window->state().isLoadingAndroid() &&
                   window->state().device().isConnected ==
                       (QLatin1StringView(phoneState) == QLatin1StringView("device"));
        }));
        settle();
        const QSize least = window->minimumSizeHint();
        EXPECT_EQ(least.boundedTo(window->minimumSize()), least) << scale;
        for (const QSize &size : {MainWindow::standard, window->minimumSize()}) {
            window->resize(size);
            settle();
            for (const QWidget *part : window->findChildren<QWidget *>()) {
                const auto *label = qobject_cast<const TextLabel *>(part);
                const auto *button = qobject_cast<const QAbstractButton *>(part);
                if (!part->isVisible() || (!label && !button))
                    continue;
                const QString what = part->objectName() + u": "_s + (label ? label->text() : button->text());
                EXPECT_GE(part->height(),
                          label ? label->heightForWidth(part->width()) : part->sizeHint().height())
                    << scale << ' ' << what.toStdString();
                if (label && label->objectName() != u"path"_s && // which is as long as the user has made it
                    label->objectName() != u"sidebar.device.model"_s) {
                    EXPECT_FALSE(label->isElided()) << scale << ' ' << what.toStdString();
                }
            }
            for (const char *name : {"androidPane", "macPane"}) {
                const auto *rows = child<QWidget>(name)->findChild<FileListView *>();
                const auto *column = child<QWidget>(name)->findChild<QWidget *>(u"modifiedColumn"_s);
                EXPECT_TRUE(!rows->isVisible() ||
                            column->isVisible() == FileRowGeometry::showsModified(rows->viewport()->width()))
                    << scale << ": the headings are those of the rows";
            }
        }
    }
}

TEST_F(ReadingTests, everythingIsMirroredForThoseWhoReadFromTheRight) {
    MainWindow *window = showFilled();
    const auto places = [&] {
        QMap<QString, QRect> found;
        for (const QWidget *part : window->findChildren<QWidget *>()) {
            if (part->isVisible() && !part->objectName().isEmpty() &&
                !part->objectName().startsWith(u"qt_"_s))
                found.insert(part->parentWidget()->objectName() + u'/' + part->objectName(),
                             {part->mapTo(window, QPoint()), part->size()});
        }
        for (const FileItemsView *entries : window->findChildren<FileItemsView *>()) {
            for (int row = 0; entries->isVisible() && row < entries->model()->rowCount(); ++row)
                found.insert(u"%1 %2"_s.arg(entries->mapTo(window, QPoint()).y()).arg(row),
                             entries->visualRect(entries->model()->index(row, 0))
                                 .translated(entries->viewport()->mapTo(window, QPoint())));
        }
        return found;
    };
    const auto symbolOf = [&](const char *name) { return child<IconButton>(name)->look().symbol.name; };
    for (const PaneViewMode mode : allPaneViewModes) {
        QApplication::setLayoutDirection(Qt::LeftToRight);
        window->state().setAndroidViewMode(mode);
        settle();
        const QMap<QString, QRect> before = places();
        EXPECT_GT(before.size(), 30);
        EXPECT_EQ(symbolOf("transferToMac"), u"chevron.right"_s);
        QApplication::setLayoutDirection(Qt::RightToLeft);
        settle();
        const QMap<QString, QRect> now = places();
        EXPECT_EQ(now.keys(), before.keys());
        for (auto each = before.cbegin(); each != before.cend(); ++each)
            EXPECT_EQ(now.value(each.key()), inReadingDirection(each.value(), window->rect()))
                << each.key().toStdString();
    }
    // The arrows point from where the files are to where they go.
    EXPECT_EQ(symbolOf("back"), u"chevron.right"_s);
    EXPECT_EQ(symbolOf("transferToMac"), u"chevron.left"_s);
    EXPECT_EQ(symbolOf("transferToAndroid"), u"chevron.right"_s);
}

TEST_F(MainWindowTests, aListIsThreeTabsFromTheTitleBar) {
    MainWindow *window = showWindow();
    ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == window; }));
    child<QWidget>("applicationMenu")->setFocus(Qt::TabFocusReason);
    QStringList reached;
    for (int press = 0; press < 3; ++press) {
        QTest::keyClick(window->windowHandle(), Qt::Key_Tab);
        reached.append(QApplication::focusWidget()->objectName());
    }
    EXPECT_TRUE(reached.contains(u"fileList"_s)) << reached.join(u' ').toStdString();
}

} // namespace
} // namespace vantrel
