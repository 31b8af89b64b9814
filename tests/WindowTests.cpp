// The sidebar, the transfer queue, the status bar and the window around them, on a demo phone.

#include "support/Shell.h"

#include "ADB/ADBClient.h"
#include "ADB/ADBError.h"
#include "App/System/Settings.h"
#include "App/Updates/Updater.h"
#include "App/Window/ContentView.h"
#include "App/Window/MainWindow.h"
#include "App/Window/ToolbarButton.h"
#include "Kit/AppStyle.h"
#include "Kit/IconButton.h"
#include "Kit/Spinner.h"
#include "Kit/TextLabel.h"
#include "Views/QueueListView.h"
#include "Views/QueueRowView.h"
#include "Views/SidebarView.h"
#include "Views/StatusBarView.h"
#include "Views/TransferQueueView.h"

#include <QDialog>
#include <QProgressBar>
#include <QScrollBar>
#include <QSettings>
#include <QSignalSpy>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

/// How many pixels of a widget's row of pixels have that colour, nearly.
int pixelsOf(const QColor &color, QWidget &widget, int y) {
    const QImage image = widget.grab().toImage();
    int count = 0;
    for (int x = 0; x < image.width(); ++x) {
        const QColor pixel = image.pixelColor(x, y);
        count += qAbs(pixel.red() - color.red()) + qAbs(pixel.green() - color.green()) +
                     qAbs(pixel.blue() - color.blue()) <
                 12;
    }
    return count;
}

/// Counts what is painted of a widget and of everything in it.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget *widget) : QObject(widget) {
        widget->installEventFilter(this);
        for (QWidget *inside : widget->findChildren<QWidget *>())
            inside->installEventFilter(this);
    }
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

QueueItem queueItem(const QueueItemStatus &status) {
    return {QUuid::createUuid(),
            u"photo.jpg"_s,
            false,
            u"/sdcard/DCIM/photo.jpg"_s,
            u"/home/sam/photo.jpg"_s,
            TransferDirection::androidToMac,
            status,
            1000};
}

QueueItemStatus::Transferring transferring(double fraction) {
    QueueItemStatus::Transferring status;
    status.fraction = fraction;
    status.transferredBytes = qint64(fraction * 4'000'000);
    status.totalBytes = 4'000'000;
    return status;
}

// -- The sidebar

class SidebarTests : public ShellTest {
protected:
    void showSidebar() { show(new SidebarView(state.get()), {SidebarView::columnWidth, 640}); }
    [[nodiscard]] QString text(const char *name) const {
        const auto *label = child<TextLabel>(name);
        return label->isVisible() ? label->text() : u"(hidden)"_s;
    }
    [[nodiscard]] QProgressBar *storage() const { return child<QProgressBar>("sidebar.storage"); }
};

TEST_F(SidebarTests, showsWhatIsKnownOfThePhone) {
    struct Case {
        const char *name;
        QByteArray state, total, used;
        QString storage;
        int percent;
    };
    const QByteArray giga = "000000000";
    const Case cases[] = {
        {"no phone", "none", "1" + giga, "1" + giga, u"— / —"_s, 0},
        {"a phone", "device", "100" + giga, "25" + giga, u"25 GB / 100 GB"_s, 25},
        {"storage unknown", "device", "0", "0", u"— / —"_s, 0},
        {"more used than there is", "device", "1" + giga, "5" + giga, u"5 GB / 1 GB"_s, 100},
    };
    showSidebar();
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        phone.set(u"state"_s, c.state);
        phone.set(u"storage-total"_s, c.total);
        phone.set(u"storage-used"_s, c.used);
        refresh();
        const bool isThere = c.state == "device";
        const QString status = isThere ? u"Connected"_s : u"Disconnected"_s;
        ASSERT_TRUE(waitFor([&] { return text("sidebar.device.status") == status; }));
        EXPECT_EQ(text("sidebar.device.title"), isThere ? u"demo-phone"_s : u"No device"_s);
        EXPECT_EQ(text("sidebar.storage.text"), c.storage);
        EXPECT_EQ(text("sidebar.device.model"), isThere ? u"Demo Phone"_s : u"(hidden)"_s);
        EXPECT_EQ(text("sidebar.device.message"),
                  isThere ? u"(hidden)"_s : ADBError::noDevice().errorDescription());
        EXPECT_EQ(storage()->value() * 100 / storage()->maximum(), c.percent);
        EXPECT_NEAR(pixelsOf(AppTheme::accent(), *storage(), 3), storage()->width() * c.percent / 100, 3);
        const QColor dot = isThere ? AppTheme::success() : AppTheme::danger();
        EXPECT_TRUE(pixelsOf(dot, *child<QWidget>("sidebar.device.statusDot"), 3) > 3);
    }
}

TEST_F(SidebarTests, aRefreshShowsASpinnerInTheColourOfTheLastState) {
    refresh();
    showSidebar();
    auto *button = child<IconButton>("sidebar.refresh");
    auto *spinner = child<Spinner>("sidebar.device.refreshing");
    EXPECT_FALSE(spinner->isVisible());

    phone.set(u"devices.hang"_s, "on");
    QTest::mouseClick(button, Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return spinner->isVisible(); }));
    EXPECT_EQ(text("sidebar.device.status"), u"Checking…"_s);
    EXPECT_FALSE(child<QWidget>("sidebar.device.statusDot")->isVisible());
    EXPECT_FALSE(button->isEnabled());
    EXPECT_EQ(text("sidebar.device.title"), u"demo-phone"_s) << "known until proven gone";

    phone.unplug();
    phone.reset(u"devices.hang"_s);
    ASSERT_TRUE(waitFor([&] { return button->isEnabled(); }));
    EXPECT_FALSE(spinner->isVisible());
    EXPECT_EQ(text("sidebar.device.status"), u"Disconnected"_s);
}

TEST_F(SidebarTests, aLongMessageTakesTwoLinesAndMovesNothingOutOfTheCard) {
    phone.set(u"devices.stderr"_s,
              QString(u"The tool says a great deal. "_s.repeated(20) + u'\n').repeated(10));
    phone.set(u"devices.exit"_s, "1");
    phone.set(u"devices.stdout"_s, "");
    showSidebar();
    refresh();
    auto *message = child<TextLabel>("sidebar.device.message");
    ASSERT_TRUE(waitFor([&] { return message->isVisible(); }));
    settle();
    EXPECT_TRUE(message->isElided());
    const int line = TextStyle{10.5, Weight::medium}.lineHeight();
    EXPECT_TRUE(waitFor([&] { return message->height() == 2 * line; })) << message->height();
    auto *card = child<QWidget>("sidebar.device");
    EXPECT_EQ(card->geometry(), QRect(12, 12, 216, card->height()));
    for (const auto *inside : card->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (inside->isVisible()) {
            EXPECT_TRUE(card->rect().adjusted(12, 12, -12, -12).contains(inside->geometry()))
                << inside->objectName().toStdString();
        }
    }
    EXPECT_GE(storage()->y(), message->geometry().bottom() + 10) << "the storage bar moved down";
}

TEST_F(SidebarTests, aShortcutIsHighlightedAtOnceAndTurnsWhileItsFolderLoads) {
    phone.makeFolder(u"DCIM"_s);
    phone.makeFolder(u"Music"_s);
    refresh();
    showSidebar();
    const auto row = [&](const QString &title) {
        return view->findChild<QAbstractButton *>(QString(u"sidebar.shortcut."_s + title));
    };
    const auto turns = [&](const QString &title) { return row(title)->findChild<Spinner *>()->isVisible(); };
    ASSERT_TRUE(row(u"Internal Storage"_s)->isChecked());
    EXPECT_EQ(accessible(row(u"DCIM"_s))->text(QAccessible::Name), u"Browse DCIM"_s);

    phone.set(u"ls.hang"_s, "on");
    QTest::mouseClick(row(u"DCIM"_s), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return turns(u"DCIM"_s); }));
    row(u"Music"_s)->setFocus(Qt::TabFocusReason);
    QTest::keyClick(row(u"Music"_s), Qt::Key_Space);
    ASSERT_TRUE(waitFor([&] { return turns(u"Music"_s); }));
    for (const StorageShortcut &shortcut : state->shortcuts())
        EXPECT_EQ(row(shortcut.title)->isChecked(), shortcut.title == u"Music"_s)
            << shortcut.title.toStdString();
    EXPECT_FALSE(turns(u"DCIM"_s));
    EXPECT_EQ(state->androidCurrentPath(), u"/sdcard/Music"_s);

    phone.reset(u"ls.hang"_s);
    ASSERT_TRUE(waitFor([&] { return !turns(u"Music"_s); }));
    EXPECT_TRUE(row(u"Music"_s)->isChecked());
}

// -- The rows of the queue

TEST(QueueRowTests, theBarAndTheNumbersFollowTheStatus) {
    struct Case {
        QueueItemStatus status;
        ThemeColor color;
        double filled; ///< of the bar
        QString progress, percent;
    };
    QueueItemStatus::Paused paused;
    paused.fraction = 0.25;
    const Case cases[] = {
        {transferring(0.5), AppTheme::progress(), 0.5, u"2 MB / 4 MB"_s, u"50%"_s},
        {transferring(-1), AppTheme::progress(), 0, u"-4 MB / 4 MB"_s, u"-100%"_s},
        {paused, AppTheme::progress(), 0.25, u"Transferring…"_s, u"25%"_s},
        {QueueItemStatus::Failed{u"No space left"_s}, AppTheme::danger(), 0, u"No space left"_s, u"Error"_s},
        {QueueItemStatus::Waiting(), AppTheme::progress(), 0, u"Waiting…"_s, u"—"_s},
        {QueueItemStatus::Completed(), AppTheme::success(), 1, u"Done"_s, u"100%"_s},
    };
    QueueRowView row;
    row.resize(700, QueueRowView::rowHeight());
    auto *bar = row.findChild<QProgressBar *>();
    for (const Case &c : cases) {
        const QueueItem item = queueItem(c.status);
        row.setItem(item);
        row.ensurePolished();
        (void)row.grab(); // lays out
        SCOPED_TRACE(c.progress.toStdString());
        EXPECT_NEAR(pixelsOf(c.color, *bar, 2), c.filled * bar->width(), 4);
        EXPECT_EQ(row.findChild<TextLabel *>(u"queue.row.progress"_s)->text(), c.progress);
        EXPECT_EQ(row.findChild<TextLabel *>(u"queue.row.percent"_s)->text(), c.percent);
        EXPECT_EQ(accessible(&row)->text(QAccessible::Name), u"photo.jpg"_s);
        EXPECT_EQ(accessible(&row)->text(QAccessible::Description),
                  QString(c.progress + u", "_s + c.percent));
    }
    EXPECT_EQ(accessible(&row)->role(), QAccessible::ListItem);
    EXPECT_EQ(accessible(row.removeButton())->role(), QAccessible::Button);
    EXPECT_EQ(accessible(row.removeButton())->text(QAccessible::Name),
              u"Remove this transfer from the queue"_s);
}

TEST(QueueRowTests, hasItsPlacesWhateverItShows) {
    QueueRowView row;
    row.resize(700, QueueRowView::rowHeight());
    const QString longText = u"A line of an error that goes on and on\n"_s.repeated(10);
    QueueItem worst = queueItem(QueueItemStatus::Failed{longText});
    worst.name = QString(255, u'W');
    worst.sourcePath = u"/sdcard/"_s + u"very long folder/"_s.repeated(30) + worst.name;
    worst.destinationPath = u"/home/"_s + u"very long folder/"_s.repeated(30) + u"the end"_s;
    for (const QueueItem &item : {queueItem(transferring(0.1)), worst}) {
        row.setItem(item);
        (void)row.grab();
        const auto place = [&](const char *name) {
            return row.findChild<QWidget *>(QLatin1StringView(name))->geometry();
        };
        EXPECT_EQ(place("queue.row.remove"), QRect(666, (row.height() - 22) / 2, 22, 22));
        EXPECT_EQ(place("queue.row.progress").left(), 700 - 12 - 22 - 12 - 110);
        EXPECT_EQ(place("queue.row.progress").width(), 110);
        EXPECT_EQ(place("queue.row.name").topLeft(), QPoint(12 + 22 + 12, 10));
        EXPECT_EQ(place("queue.row.bar").bottom(), row.height() - 10 - 1);
        EXPECT_EQ(place("queue.row.bar").width(), 700 - 46 - 12 - 110 - 12 - 22 - 12);
        EXPECT_EQ(row.minimumSizeHint().height(), row.height());
    }
    const auto *reason = row.findChild<TextLabel *>(u"queue.row.progress"_s);
    EXPECT_TRUE(reason->isElided());
    EXPECT_EQ(reason->text(), longText) << "its tool tip has all of it";
}

TEST(QueueRowTests, repaintsOnlyWhatDiffers) {
    QueueRowView row;
    row.resize(700, QueueRowView::rowHeight());
    QueueItem item = queueItem(transferring(0.5));
    row.setItem(item);
    row.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&row));
    QCoreApplication::processEvents();
    const PaintCounter name(row.findChild<TextLabel *>(u"queue.row.name"_s));
    const PaintCounter bar(row.findChild<QProgressBar *>());
    row.setItem(item);
    QCoreApplication::processEvents();
    EXPECT_EQ(name.count + bar.count, 0);
    item.status = transferring(0.502); // the texts stay
    row.setItem(item);
    EXPECT_TRUE(waitFor([&] { return bar.count > 0; }));
    EXPECT_EQ(name.count, 0);
}

// -- The queue panel

class QueueTests : public ShellTest {
protected:
    /// The panel below panes, in a column of that size, as the window has it.
    void showColumn(QSize size = {840, 640}) {
        browser = new QWidget;
        queue = new TransferQueueView(state.get());
        show(new BrowserColumn(browser, queue), size);
        list = child<QueueListView>("queue.list");
    }
    [[nodiscard]] QList<QueueRowView *> rows() const {
        QList<QueueRowView *> visible;
        for (auto *row : list->findChildren<QueueRowView *>()) {
            if (row->isVisible())
                visible.append(row);
        }
        return visible;
    }
    [[nodiscard]] QString rowNames() const {
        QStringList names;
        for (const QueueItem &item : state->queue())
            names.append(item.name.right(1));
        return names.join(QString());
    }
    /// Whether the whole row can be seen.
    [[nodiscard]] bool isInView(qsizetype index) const {
        const QueueRowView *row = list->rowView(state->queue().at(index).id);
        return row && list->viewport()->rect().contains(row->geometry());
    }

    QWidget *browser = nullptr;
    TransferQueueView *queue = nullptr;
    QueueListView *list = nullptr;
};

TEST_F(QueueTests, anEmptyQueueShowsTheHintAndNothingToClear) {
    showColumn();
    EXPECT_EQ(child<TextLabel>("queue.hint")->text(),
              u"Select files and use → or ← to copy between Android and Mac."_s);
    EXPECT_TRUE(child<TextLabel>("queue.hint")->isVisible());
    EXPECT_FALSE(child<TextLabel>("queue.note")->isVisible());
    EXPECT_FALSE(child<IconButton>("queue.clear")->isVisible());
    EXPECT_FALSE(list->isVisible());
    EXPECT_EQ(queue->geometry().bottom(), 640 - 8 - 1);
    EXPECT_EQ(queue->x(), 12);
    EXPECT_EQ(browser->geometry(), QRect(12, 12, 840 - 24, queue->y() - 24));
}

TEST_F(QueueTests, thePanelGrowsUntilThePanesHaveTheirLeastHeight) {
    showColumn();
    const int roomForRows = 640 - 24 - 8 - BrowserColumn::browserMinimumHeight - 24 - 8;
    int previous = queue->height();
    for (const int count : {1, 3, 40}) {
        queueGhosts(count);
        ASSERT_TRUE(waitFor([&] { return state->queue().size() >= count; }));
        settle();
        const bool fits = QueueListView::heightOfRows(state->queue().size()) <= roomForRows;
        EXPECT_GT(queue->height(), previous);
        EXPECT_GE(browser->height(), BrowserColumn::browserMinimumHeight);
        EXPECT_EQ(list->verticalScrollBar()->maximum() == 0, fits) << count;
        previous = queue->height();
    }
    EXPECT_EQ(browser->height(), BrowserColumn::browserMinimumHeight);
    EXPECT_EQ(view->size(), QSize(840, 640));
}

TEST_F(QueueTests, everyRowOfALongQueueIsReachedAndOnlyVisibleOnesExist) {
    constexpr int count = 12'000;
    showColumn();
    queueGhosts(count);
    settle();
    ASSERT_EQ(state->queue().size(), count);
    EXPECT_EQ(view->height(), 640);
    EXPECT_LE(list->findChildren<QueueRowView *>().size(), 9);
    EXPECT_TRUE(isInView(0));

    list->verticalScrollBar()->setValue(list->verticalScrollBar()->maximum());
    EXPECT_TRUE(isInView(count - 1));
    EXPECT_EQ(list->rowView(state->queue().last().id)->geometry().bottom(), list->viewport()->height() - 1);
    list->verticalScrollBar()->setValue(list->verticalScrollBar()->maximum() / 2);
    EXPECT_LE(list->findChildren<QueueRowView *>().size(), 9);
    QWheelEvent wheel(QPointF(50, 50), list->viewport()->mapToGlobal(QPointF(50, 50)), {}, {0, -120},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    const int before = list->verticalScrollBar()->value();
    QCoreApplication::sendEvent(list->viewport(), &wheel);
    EXPECT_GT(list->verticalScrollBar()->value(), before);
}

TEST_F(QueueTests, progressRepaintsOnlyTheRowsThatItConcerns) {
    showColumn({840, 900});
    phone.set(u"pull.bandwidth"_s, "0.5");
    queueCopies(5, QByteArray(400'000, 'x'));
    ASSERT_TRUE(waitFor([&] { return state->activeTransferCount() == 3 && rows().size() == 5; }));
    settle();
    // The last three run, the first two wait.
    const PaintCounter waiting(list->rowView(state->queue().at(0).id));
    const PaintCounter running(list->rowView(state->queue().at(4).id));
    QSignalSpy reports(state.get(), &AppState::queueEntryChanged);
    ASSERT_TRUE(waitFor([&] { return reports.count() >= 6 && running.count > 0; }));
    if (state->waitingCount() == 2) {
        EXPECT_EQ(waiting.count, 0);
    }
    phone.reset(u"pull.bandwidth"_s);
    waitForQueue();
    EXPECT_TRUE(waitFor([&] { return waiting.count > 0; })) << "its own change is shown";
}

TEST_F(QueueTests, anErrorOfTenLinesStaysOneLine) {
    showColumn();
    phone.set(u"pull.stderr"_s, u"adb: error: something went wrong\n"_s.repeated(10));
    phone.set(u"pull.exit"_s, "1");
    queueCopies(1);
    waitForQueue();
    settle();
    ASSERT_TRUE(state->queue().first().status.is<QueueItemStatus::Failed>());
    ASSERT_GT(state->queue().first().progressLabel().count(u'\n'), 8);
    EXPECT_EQ(list->height(), QueueRowView::rowHeight());
    const auto *reason = child<TextLabel>("queue.row.progress");
    EXPECT_TRUE(reason->isElided());
    EXPECT_EQ(reason->text(), state->queue().first().progressLabel());
}

TEST_F(QueueTests, rowsAreRemovedByMouseAndByKeys) {
    showColumn({840, 900});
    queueCopies(5);
    waitForQueue();
    settle();
    ASSERT_EQ(rowNames(), u"01234"_s);
    const auto button = [&](qsizetype index) {
        return list->rowView(state->queue().at(index).id)->removeButton();
    };
    QTest::mouseClick(button(1), Qt::LeftButton);
    EXPECT_EQ(rowNames(), u"0234"_s);
    settle();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    button(2)->setFocus(Qt::TabFocusReason);
    QTest::keyClick(button(2), Qt::Key_Return);
    EXPECT_EQ(rowNames(), u"024"_s);
    ASSERT_TRUE(waitFor([&] { return rows().size() == 3; }));
    EXPECT_TRUE(button(2)->hasFocus()) << "the row that took its place";
    QTest::keyClick(button(2), Qt::Key_Space);
    ASSERT_TRUE(waitFor([&] { return rows().size() == 2; }));
    EXPECT_TRUE(button(1)->hasFocus()) << "there is none behind it";
    QTest::keyClick(button(1), Qt::Key_Space);
    QTest::mouseClick(child<IconButton>("queue.clear"), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return child<TextLabel>("queue.hint")->isVisible(); }));
}

TEST_F(QueueTests, tabGoesThroughAllRowsAndScrolls) {
    showColumn();
    queueGhosts(20);
    settle();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    child<IconButton>("queue.clear")->setFocus(Qt::TabFocusReason);
    for (int index = 0; index < 20; ++index) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        settle();
        ASSERT_EQ(QApplication::focusWidget(), list->rowView(state->queue().at(index).id)->removeButton())
            << index;
        EXPECT_TRUE(isInView(index)) << index;
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), list->rowView(state->queue().at(18).id)->removeButton());

    // Scrolled away, the row keeps the keyboard.
    list->verticalScrollBar()->setValue(0);
    EXPECT_EQ(QApplication::focusWidget(), list->rowView(state->queue().at(18).id)->removeButton());
    EXPECT_FALSE(isInView(18));
}

// -- The status bar

class StatusBarTests : public ShellTest {};

TEST_F(StatusBarTests, countsTheQueue) {
    show(new StatusBarView(state.get()), {1100, 27});
    const auto texts = [&] {
        return QStringList{child<TextLabel>("statusBar.counts")->text(),
                           child<TextLabel>("statusBar.speed")->text(),
                           child<TextLabel>("statusBar.remaining")->text()}
            .join(u'|');
    };
    EXPECT_EQ(texts(), u"0 active transfer • 0 waiting|Speed: —|Remaining: —"_s);
    queueGhosts(15);
    QCoreApplication::processEvents();
    EXPECT_EQ(texts(), u"3 active transfer • 12 waiting|Speed: —|Remaining: —"_s);
    EXPECT_EQ(child<TextLabel>("statusBar.counts")->x(), 14);
    EXPECT_EQ(child<TextLabel>("statusBar.remaining")->geometry().right(), 1100 - 14 - 1);
    EXPECT_EQ(view->sizeHint().height(), TextStyle({11, Weight::medium}).lineHeight() + 14);
}

TEST_F(StatusBarTests, showsSpeedAndRemainingTimeOfARunningCopy) {
    show(new StatusBarView(state.get()), {1100, 27});
    phone.set(u"pull.bandwidth"_s, "0.5");
    queueCopies(1, QByteArray(600'000, 'x'));
    ASSERT_TRUE(waitFor([&] { return child<TextLabel>("statusBar.speed")->text().endsWith(u"KB/s"_s); }));
    EXPECT_TRUE(child<TextLabel>("statusBar.remaining")->text().startsWith(u"Remaining: 00:00:"_s));
    phone.reset(u"pull.bandwidth"_s);
    waitForQueue();
    EXPECT_TRUE(waitFor([&] { return child<TextLabel>("statusBar.speed")->text() == u"Speed: —"_s; }));
}

// -- The window

class MainWindowTests : public ShellTest {
protected:
    [[nodiscard]] QString settingsPath() const { return mac.filePath(u"settings.ini"_s); }
    MainWindow *showWindow() {
        settings.emplace(settingsPath());
        auto *window = new MainWindow(desktop, *settings, updater);
        view.reset(window);
        window->show();
        EXPECT_TRUE(waitFor([&] { return window->isFurnished(); }));
        settle();
        return window;
    }
    [[nodiscard]] qsizetype looks() const {
        qsizetype count = 0;
        for (const QStringList &line : phone.commandLines())
            count += line == QStringList{u"devices"_s};
        return count;
    }

    Updater updater{Updater::Configuration{}};
    std::optional<Settings> settings;
};

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
    EXPECT_LE(window->minimumSizeHint().width(), 1100);
    EXPECT_LE(window->minimumSizeHint().height(), 720);
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
    struct Case {
        QVariant stored;
        bool dark;
    };
    for (const auto &[stored, dark] :
         {Case{{}, false}, Case{u"dark"_s, true}, Case{u"light"_s, false}, Case{u"Dark"_s, false},
          Case{u"solarized"_s, false}, Case{42, false}}) {
        SCOPED_TRACE(stored.toString().toStdString());
        {
            QSettings store(settingsPath(), QSettings::IniFormat);
            store.clear();
            if (stored.isValid())
                store.setValue(u"appearancePreference"_s, stored);
        }
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
        QTest::mouseClick(child<ToolbarButton>("toolbar.appearance"), Qt::LeftButton);
        QCoreApplication::processEvents(); // the toolkit tells the widgets in its next pass
        shows(!dark);
        ASSERT_TRUE(settings->save());
        const QSettings store(settingsPath(), QSettings::IniFormat);
        EXPECT_EQ(store.value(u"appearancePreference"_s).toString(), dark ? u"light"_s : u"dark"_s);
        view.reset();
    }
}

TEST_F(MainWindowTests, aNewSchemeRecoloursEveryGround) {
    MainWindow *window = showWindow();
    const auto colorAt = [&](const char *name, QPoint at) {
        auto *area = child<QWidget>(name);
        return QColor(window->grab().toImage().pixelColor(area->mapTo(window, at))).rgba();
    };
    for (const ColorScheme scheme : {ColorScheme::dark, ColorScheme::light}) {
        window->setAppearancePreference(scheme);
        QCoreApplication::processEvents();
        EXPECT_EQ(colorAt("sidebar", {4, 400}), AppTheme::sidebar().resolved(scheme).rgba());
        EXPECT_EQ(colorAt("statusBar", {600, 4}), AppTheme::sidebar().resolved(scheme).rgba());
        EXPECT_EQ(colorAt("queue", {300, 4}), AppTheme::canvas().resolved(scheme).rgba());
        EXPECT_EQ(colorAt("titleBar", {500, 10}), AppTheme::titleBar().resolved(scheme).rgba());
        EXPECT_EQ(colorAt("sidebar.device", {100, 6}), AppTheme::surface().resolved(scheme).rgba());
    }
}

TEST_F(MainWindowTests, looksForThePhoneAsLongAsItIsOpen) {
    phone.unplug();
    MainWindow *window = showWindow();
    auto *poll = child<QTimer>("devicePoll");
    EXPECT_EQ(poll->intervalAsDuration(), std::chrono::seconds(3));
    ASSERT_TRUE(waitFor([&] { return poll->isActive(); }));
    EXPECT_FALSE(window->state().macItems().isEmpty() && window->state().macBrowseError())
        << "the computer's folder came first";
    EXPECT_EQ(looks(), 1);

    // Everything is found without a click, and without a sign of the search.
    poll->start(1);
    QSignalSpy spinner(&window->state(), &AppState::isRefreshingDeviceChanged);
    phone.plug();
    ASSERT_TRUE(waitFor([&] { return window->state().device().isConnected && poll->isActive(); }));
    EXPECT_EQ(spinner.count(), 0);

    // A slow phone is not asked again before it has answered.
    phone.set(u"devices.hang"_s, "on");
    const qsizetype before = looks();
    ASSERT_TRUE(waitFor([&] { return looks() == before + 1; }));
    EXPECT_FALSE(poll->isActive());
    phone.reset(u"devices.hang"_s);
    ASSERT_TRUE(waitFor([&] { return poll->isActive(); }));

    // A look that is under way when the window closes is the last one.
    phone.set(u"devices.hang"_s, "on");
    const qsizetype last = looks() + 1;
    ASSERT_TRUE(waitFor([&] { return looks() == last; }));
    window->close();
    QSignalSpy answered(&window->state(), &AppState::deviceChanged);
    phone.unplug();
    phone.reset(u"devices.hang"_s);
    ASSERT_TRUE(waitFor([&] { return answered.count() == 1; }));
    QCoreApplication::processEvents();
    EXPECT_FALSE(poll->isActive());
    view.reset();
    Background::stop(&ADBClient::stopRunningTools);
    EXPECT_EQ(looks(), last);
}

TEST_F(MainWindowTests, isDestroyedWhileEverythingIsUnderWay) {
    phone.makeFolder(u"DCIM"_s);
    phone.write(u"big"_s, QByteArray(1000, 'x'));
    MainWindow *window = showWindow();
    ASSERT_TRUE(waitFor([&] { return !window->state().androidItems().isEmpty(); }));
    phone.set(u"hang"_s, "on");
    window->state().browseAndroid(u"/sdcard/DCIM"_s);
    window->state().refreshDevice(AppState::Spinner::shown);
    view.reset();
    QElapsedTimer clock;
    clock.start();
    Background::stop(&ADBClient::stopRunningTools);
    EXPECT_LT(clock.elapsed(), 3000);
}

TEST_F(MainWindowTests, noControlHasTheKeyboardUntilTabIsPressed) {
    MainWindow *window = showWindow();
    ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == window; }));
    settle();
    EXPECT_EQ(QApplication::focusWidget(), nullptr);
    QTest::keyClick(window, Qt::Key_Tab);
    QWidget *first = QApplication::focusWidget();
    ASSERT_NE(first, nullptr);

    // What has it keeps it while another window is in front.
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == &other; }));
    window->activateWindow();
    ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == window; }));
    settle();
    EXPECT_EQ(QApplication::focusWidget(), first);
}

TEST_F(MainWindowTests, everyButtonHasANameAndTabReachesIt) {
    phone.write(u"a"_s, "x");
    MainWindow *window = showWindow();
    ASSERT_TRUE(waitFor([&] { return !window->state().androidItems().isEmpty(); }));
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
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
        // The window's own buttons have keys of the desktop.
        if (button->isEnabled() && !button->objectName().startsWith(u"window."_s)) {
            EXPECT_TRUE(reached.contains(button)) << name;
        }
    }
}

// -- What the toolkit draws

TEST(AppStyleTests, toolTipsComeAfterAQuarterOfASecond) {
    const AppStyle style(Settings::toolTipDelay);
    EXPECT_EQ(style.styleHint(QStyle::SH_ToolTip_WakeUpDelay, nullptr, nullptr, nullptr), 250);
}

} // namespace
} // namespace vantrel
