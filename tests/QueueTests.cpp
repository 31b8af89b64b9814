// The transfer queue and the status bar: the rows on a queue of the test's own, the panel on a demo phone.

#include "support/WindowFixture.h"

#include "Kit/IconButton.h"
#include "Kit/TextButton.h"
#include "Kit/TextLabel.h"
#include "MacFiles/ThisComputer.h"
#include "Transfers/TransferQueue.h"
#include "Views/QueueDelegate.h"
#include "Views/QueueListView.h"
#include "Views/StatusBarView.h"
#include "Views/TransferQueueView.h"

#include <QAbstractItemModelTester>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

QueueItem queueItem(const QueueItemStatus &status = {}) {
    return {QUuid::createUuid(),
            u"photo.jpg"_s,
            false,
            u"/sdcard/DCIM/photo.jpg"_s,
            u"/home/sam"_s,
            TransferDirection::androidToMac,
            status,
            1000};
}
QList<QueueItem> queueItems(int count) {
    QList<QueueItem> items(count);
    std::generate(items.begin(), items.end(), [] { return queueItem(); });
    return items;
}

QueueItemStatus::Transferring transferring(double fraction) {
    QueueItemStatus::Transferring status;
    status.fraction = fraction;
    status.transferredBytes = qint64(fraction * 4'000'000);
    status.totalBytes = 4'000'000;
    return status;
}

/// Whether the text, and nothing else, stands in that place of a picture of the list.
bool shows(const QImage &list, const QRect &place, const QString &text, const TextStyle &style,
           const QColor &color, Qt::Alignment alignment, Elision elision) {
    const double ratio = list.devicePixelRatio();
    QImage expected(list.size(), list.format());
    expected.setDevicePixelRatio(ratio);
    expected.fill(list.pixelColor(0, 0));
    QPainter painter(&expected);
    paintText(painter, place, text, style, color, alignment | Qt::AlignVCenter, elision);
    painter.end();
    const QRect pixels(QPoint(qRound(place.x() * ratio), qRound(place.y() * ratio)),
                       QSize(qRound(place.width() * ratio), qRound(place.height() * ratio)));
    return list.copy(pixels) == expected.copy(pixels);
}

// -- What the queue announces

TEST(TransferQueueTests, tellsAViewEveryChangeRowByRow) {
    TransferQueue queue;
    const QAbstractItemModelTester tester(&queue, QAbstractItemModelTester::FailureReportingMode::Fatal);
    // The list of somebody who knows only what is announced.
    QList<QueueItem> known;
    const auto itemAt = [&](int row) { return queueItemAt(queue.index(row)); };
    QObject::connect(&queue, &QAbstractItemModel::rowsInserted,
                     [&](const QModelIndex &, int first, int last) {
                         for (int row = first; row <= last; ++row)
                             known.insert(row, itemAt(row));
                     });
    QObject::connect(&queue, &QAbstractItemModel::rowsRemoved, [&](const QModelIndex &, int first, int last) {
        known.remove(first, last - first + 1);
    });
    QObject::connect(&queue, &QAbstractItemModel::dataChanged,
                     [&](const QModelIndex &changed) { known[changed.row()] = itemAt(changed.row()); });

    queue.insertFront(queueItems(5));
    queue.insertFront({});
    (void)queue.claim(1, [](const QueueItem &) { return true; });
    queue.insertFront(queueItems(3));
    (void)queue.claim(1, [](const QueueItem &) { return true; });
    queue.setStatus(known.at(0).id, transferring(0.5));
    queue.setStatus(known.at(4).id, QueueItemStatus::Completed());
    EXPECT_EQ(known, queue.items());
    queue.remove(known.at(1).id);
    EXPECT_EQ(known, queue.items());
    ASSERT_EQ(known.size(), 7);
    queue.clear(); // all but the first and the last two
    EXPECT_EQ(known, queue.items());
    ASSERT_EQ(known.size(), 3);
    EXPECT_FALSE(queue.clear());
}

// -- The rows

class QueueRowTests : public ::testing::Test {
protected:
    void showRows(const QList<QueueItem> &items, int height = QueueRowGeometry::rowHeight()) {
        queue.insertFront(items);
        list.resize(700, height);
        list.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QModelIndex row(int index) const { return queue.index(index); }
    /// A row without its divider.
    [[nodiscard]] QueueRowGeometry places(int index) const {
        return QueueRowGeometry(list.visualRect(row(index)).adjusted(0, 0, 0, -1));
    }
    [[nodiscard]] QAccessibleInterface *accessibleRow(int index) { return accessible(&list)->child(index); }

    TransferQueue queue;
    QueueListView list{&queue, 10};
};

TEST_F(QueueRowTests, showsTheCopyAndHowFarItIs) {
    // How the bar is filled, what is said, and the bar's value for assistive technology.
    QueueItemStatus::Paused paused;
    paused.fraction = 0.25;
    const ThemeColor color = AppTheme::progress();
    const std::tuple<QueueItemStatus, ThemeColor, double, QString, QString, int> cases[] = {
        {transferring(0.5), color, 0.5, u"2 MB / 4 MB"_s, u"50%"_s, 50},
        {transferring(-1), color, 0, u"-4 MB / 4 MB"_s, u"-100%"_s, 0},
        {paused, color, 0.25, u"Paused"_s, u"25%"_s, 25},
        {QueueItemStatus::Waiting(), color, 0, u"Waiting…"_s, u"—"_s, 0},
        {QueueItemStatus::Completed(), AppTheme::success(), 1, u"Done"_s, u"100%"_s, 100}};
    const QueueItem item = queueItem();
    showRows({item});
    const QueueRowGeometry at = places(0);
    constexpr TextStyle progressStyle{11, Weight::medium};
    QImage image;
    const auto isShown = [&](const QRect &place, const QString &text, const TextStyle &style,
                             const QColor &ink, Qt::Alignment alignment = Qt::AlignLeft,
                             Elision elision = Elision::end) {
        EXPECT_TRUE(shows(image, place, text, style, ink, alignment, elision)) << text.toStdString();
    };
    for (const auto &[status, barColor, filled, progress, percent, value] : cases) {
        SCOPED_TRACE(progress.toStdString());
        queue.setStatus(item.id, status);
        image = list.grab().toImage();
        EXPECT_NEAR(pixelsOf(barColor, image, at.bar.y() + 2), filled * at.bar.width(), 4);
        isShown(at.name, u"photo.jpg"_s, {12.5, Weight::semibold}, AppTheme::ink());
        isShown(at.route, u"/sdcard/DCIM/photo.jpg  →  /home/sam/photo.jpg"_s, {10.5, Weight::medium},
                AppTheme::inkTertiary(), Qt::AlignLeft, Elision::middle);
        isShown(at.progress, progress, progressStyle, AppTheme::inkSecondary(), Qt::AlignRight);
        isShown(at.percent, percent, {11, Weight::semibold, FontDesign::monospaced}, AppTheme::ink(),
                Qt::AlignRight);
        EXPECT_EQ(accessibleRow(0)->text(QAccessible::Name), u"photo.jpg"_s);
        EXPECT_EQ(accessibleRow(0)->text(QAccessible::Description), QString(progress + u", "_s + percent));
        EXPECT_EQ(accessibleRow(0)->child(0)->valueInterface()->currentValue(), value);
    }
    // The reason of a failure takes the place of the route and the bar.
    queue.setStatus(item.id, QueueItemStatus::Failed{u"No space left"_s});
    image = list.grab().toImage();
    const QueueRowGeometry failed(list.visualRect(row(0)).adjusted(0, 0, 0, -1), true);
    isShown(failed.reason, u"No space left"_s, progressStyle, AppTheme::danger());
    EXPECT_FALSE(failed.reason.intersects(failed.action) || failed.reason.intersects(failed.percent));
}

TEST_F(QueueRowTests, offersWhatCanBeDoneAboutAnEnd) {
    const std::pair<QueueItemStatus, QString> cases[] = {
        {QueueItemStatus::Waiting(), {}},
        {transferring(0.5), {}},
        {QueueItemStatus::Completed(), {}},
        {QueueItemStatus::NameTaken{u"Another is there"_s}, u"Keep both"_s},
        {QueueItemStatus::Failed{u"Broken"_s, {{u"a"_s, u"too large"_s}}}, u"Try again"_s}};
    const QueueItem item = queueItem();
    showRows({item});
    list.setCurrentIndex(row(0));
    QStringList asked;
    QObject::connect(&list, &QueueListView::tryAgainRequested, &list, [&] { asked.append(u"Try again"_s); });
    QObject::connect(&list, &QueueListView::keepBothRequested, &list, [&] { asked.append(u"Keep both"_s); });
    for (const auto &[status, title] : cases) {
        queue.setStatus(item.id, status);
        const bool isOffered = !title.isEmpty();
        EXPECT_EQ(list.actionRect(row(0)).isValid(), isOffered);
        EXPECT_EQ(accessibleRow(0)->childCount(), isOffered ? 3 : 2);
        click(list.viewport(), isOffered ? list.actionRect(row(0)).center() : places(0).action.center());
        QTest::keyClick(&list, Qt::Key_Left);
        EXPECT_EQ(list.isOnAction(), isOffered);
        if (isOffered) {
            QAccessibleInterface *button = accessibleRow(0)->child(2);
            EXPECT_EQ(button->text(QAccessible::Name), title);
            button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            QTest::keyClick(&list, Qt::Key_Left);
            QTest::keyClick(&list, Qt::Key_Space);
        }
        EXPECT_EQ(std::exchange(asked, {}), isOffered ? QStringList({title, title, title}) : QStringList());
        QTest::keyClick(&list, Qt::Key_Right);
        EXPECT_FALSE(list.isOnAction());
    }
    const QString help = toolTipAt(&list, places(0).reason.center());
    for (const QString &line :
         {u"Broken"_s, u"a: too large"_s, u"/sdcard/DCIM/photo.jpg  →  /home/sam/photo.jpg"_s})
        EXPECT_TRUE(help.contains(line)) << help.toStdString();
}

TEST_F(QueueRowTests, hasItsPlacesWhateverItShows) {
    QueueItem worst =
        queueItem(QueueItemStatus::Failed{u"A line of an error that goes on and on\n"_s.repeated(10)});
    worst.name = QString(255, u'W');
    worst.sourcePath = u"/sdcard/"_s + u"very long folder/"_s.repeated(30) + worst.name;
    worst.destinationFolder = u"/home/"_s + u"very long folder/"_s.repeated(30) + u"the end"_s;
    const int height = QueueRowGeometry::rowHeight();
    showRows({worst, queueItem(transferring(0.1))}, 2 * height + 1);
    EXPECT_EQ(list.verticalScrollBar()->maximum(), 0) << "both fit, with one divider";
    for (const int width : {900, 700}) {
        list.resize(width, list.height());
        QCoreApplication::processEvents();
        for (const int index : {0, 1}) {
            const QRect whole(0, index * (height + 1), width, height);
            const QueueRowGeometry at = places(index);
            EXPECT_EQ(at.icon, QRect(12, whole.y(), 22, height));
            EXPECT_EQ(at.removeButton, QRect(width - 12 - 22, whole.y() + (height - 22) / 2, 22, 22));
            EXPECT_EQ(at.removeButton, list.removeButtonRect(row(index)));
            EXPECT_EQ(at.progress.left(), width - 12 - 22 - 12 - 110);
            EXPECT_EQ(at.percent.top(), at.progress.bottom() + 1 + 2);
            EXPECT_NEAR(at.progress.top() - whole.top(), whole.bottom() - at.percent.bottom(), 1);
            EXPECT_EQ(at.name.topLeft(), QPoint(12 + 22 + 12, whole.y() + 10));
            EXPECT_EQ(at.route.top(), at.name.bottom() + 1 + 4);
            EXPECT_EQ(at.bar, QRect(46, whole.bottom() + 1 - 10 - 5, at.progress.left() - 46 - 12, 5));
        }
    }
    const QueueRowGeometry at = places(0);
    EXPECT_EQ(toolTipAt(&list, at.name.center()), worst.name);
    EXPECT_EQ(toolTipAt(&list, at.reason.center()).count(u"goes on and on"_s), 10);
    EXPECT_TRUE(toolTipAt(&list, at.route.center())
                    .endsWith(worst.sourcePath + u"  →  "_s + worst.destinationPath()));
    EXPECT_EQ(toolTipAt(&list, at.removeButton.center()), u"Remove this transfer from the queue"_s);
    (void)toolTipAt(&list, places(1).name.center());
    EXPECT_TRUE(waitFor([] { return ToolTips::text().isEmpty(); })) << "it is all there";
}

TEST_F(QueueRowTests, aReportRepaintsItsRowAndNothingElse) {
    constexpr int count = 10'000;
    const QList<QueueItem> items = queueItems(count);
    showRows(items, 400);
    PaintedRegion painted(list.viewport());
    queue.setStatus(items.at(2).id, transferring(0.5));
    ASSERT_TRUE(waitFor([&] { return !painted.region.isEmpty(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(painted.region, QRegion(list.visualRect(row(2))));

    // What is out of sight is not painted at all: by the time the next row is, its turn was over.
    painted.region = {};
    queue.setStatus(items.at(count / 2).id, transferring(0.5));
    QCoreApplication::processEvents();
    queue.setStatus(items.at(0).id, transferring(0.5));
    ASSERT_TRUE(waitFor([&] { return !painted.region.isEmpty(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(painted.region, QRegion(list.visualRect(row(0))));
}

TEST_F(QueueRowTests, areAListForAssistiveTechnology) {
    const QList<QueueItem> items = queueItems(3);
    showRows(items, 120); // the third row is out of sight
    QAccessibleInterface *all = accessible(&list);
    EXPECT_EQ(all->text(QAccessible::Name), u"Transfers"_s);
    ASSERT_EQ(all->childCount(), 3);
    EXPECT_EQ(all->child(3), nullptr);
    for (const int index : {0, 1, 2}) {
        QAccessibleInterface *item = all->child(index);
        EXPECT_EQ(all->indexOfChild(item), index);
        EXPECT_EQ(item->state().offscreen, index == 2);
        ASSERT_EQ(item->childCount(), 2);
        EXPECT_EQ(item->child(0)->role(), QAccessible::ProgressBar);
        QAccessibleInterface *button = item->child(1);
        EXPECT_EQ(item->indexOfChild(button), 1);
        EXPECT_EQ(button->text(QAccessible::Name), u"Remove this transfer from the queue"_s);
        const QPoint corner = list.viewport()->mapToGlobal(list.removeButtonRect(row(index)).topLeft());
        EXPECT_EQ(button->rect().topLeft(), corner);
        EXPECT_EQ(item->childAt(corner.x() + 1, corner.y() + 1), button);
    }
    ASSERT_TRUE(QTest::qWaitForWindowActive(&list));
    QAccessibleInterface *button = all->child(2)->child(1);
    button->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(all->focusChild(), button);
    EXPECT_TRUE(button->state().focused);
    EXPECT_FALSE(button->state().offscreen) << "it scrolled into view";

    // An interface stays with its row, and is gone when the row is.
    QObject::connect(&list, &QueueListView::removeRequested, &queue, &TransferQueue::remove);
    const QAccessible::Id ids[] = {QAccessible::uniqueId(button), QAccessible::uniqueId(button->parent())};
    all->child(0)->child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(all->child(1)->child(1), button);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(queue.items(), items.mid(1, 1));
    for (const QAccessible::Id id : ids)
        EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
}

TEST_F(QueueRowTests, aButtonIsPressedWhereTheMouseWentDownAndUp) {
    showRows(queueItems(2), 130);
    list.clearFocus(); // which the only control of a window gets
    list.setCurrentIndex({});
    QSignalSpy removals(&list, &QueueListView::removeRequested);
    const QPoint first = list.removeButtonRect(row(0)).center();
    const QPoint second = list.removeButtonRect(row(1)).center();
    const std::tuple<const char *, Qt::MouseButton, QPoint, QPoint, int> cases[] = {
        {"a click", Qt::LeftButton, first, first, 1},
        {"the right button", Qt::RightButton, first, first, 0},
        {"moved on to the next button", Qt::LeftButton, first, second, 0},
        {"moved away", Qt::LeftButton, first, {100, 20}, 0},
        {"moved onto it", Qt::LeftButton, {100, 20}, first, 0},
        {"beside the buttons", Qt::LeftButton, {100, 20}, {100, 20}, 0}};
    for (const auto &[name, button, down, up, expected] : cases) {
        SCOPED_TRACE(name);
        removals.clear();
        QTest::mousePress(list.viewport(), button, {}, down);
        QTest::mouseMove(list.viewport(), up);
        QTest::mouseRelease(list.viewport(), button, {}, up);
        EXPECT_EQ(removals.count(), expected);
        EXPECT_FALSE(list.hasFocus()) << "the mouse leaves the keyboard where it was";
        EXPECT_FALSE(list.currentIndex().isValid());
    }
}

TEST_F(QueueRowTests, whatRunsStaysInSightUntilTheUserScrolls) {
    showRows(queueItems(100), QueueListView::heightOfRows(4));
    list.clearFocus();
    QScrollBar *bar = list.verticalScrollBar();
    const auto areSeen = [&](const QList<int> &rows) {
        return std::all_of(rows.begin(), rows.end(), [&](int index) {
            return list.viewport()->rect().contains(list.visualRect(row(index)).adjusted(0, 0, 0, -1));
        });
    };
    for (const QList<int> &rows :
         {QList<int>{97, 99, 98}, {96, 97, 98}, {60, 61}, {5, 6, 7}, {80}, {0}, {96, 97, 98, 99}}) {
        list.keepInSight(rows);
        EXPECT_TRUE(areSeen(rows)) << rows.first();
    }
    const int seen = bar->value();
    list.keepInSight({97, 98});
    EXPECT_EQ(bar->value(), seen) << "what is in sight does not move";
    list.keepInSight({10, 50, 98});
    EXPECT_TRUE(areSeen({98})) << "one of those that do not all fit";

    turnWheel(&list, -10);
    const int chosen = bar->value();
    ASSERT_FALSE(areSeen({98}));
    list.keepInSight({96, 97});
    EXPECT_EQ(bar->value(), chosen) << "the user is reading";
    turnWheel(&list, 20);
    list.keepInSight({80});
    EXPECT_TRUE(areSeen({80})) << "the user came back";
    turnWheel(&list, 10);
    list.keepInSight({});
    list.keepInSight({3});
    EXPECT_TRUE(areSeen({3})) << "the next time all is as at first";
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, places(3).removeButton.center());
    list.keepInSight({50});
    EXPECT_TRUE(areSeen({3})) << "nothing moves below a pressed button";
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, QPoint(0, 0));
}

// -- The panel

class QueueTests : public WindowFixture {
protected:
    void showPanel(QSize size = {816, 320}) {
        panel = show(new TransferQueueView(state.get()), size);
        list = child<QueueListView>("queue.list");
    }
    [[nodiscard]] QModelIndex row(int index) const { return list->model()->index(index, 0); }
    [[nodiscard]] QString rowNames() const {
        QStringList names;
        for (const QueueItem &item : state->queue())
            names.append(item.name.right(1));
        return names.join(QString());
    }
    /// Whether the whole row can be seen; its divider may be cut off.
    [[nodiscard]] bool isInView(int index) const {
        return list->viewport()->rect().contains(list->visualRect(row(index)).adjusted(0, 0, 0, -1));
    }
    /// The row whose button has the keyboard, or -1.
    [[nodiscard]] int focusedRow() const { return list->hasFocus() ? list->currentIndex().row() : -1; }

    void focusList() {
        ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
        list->setFocus(Qt::TabFocusReason);
    }

    TransferQueueView *panel = nullptr;
    QueueListView *list = nullptr;
};

TEST_F(QueueTests, theHeaderPausesAndResumesAndSaysHowFarAllIs) {
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s, u"d"_s})
        phone.write(name, QByteArray(300'000, 'x'));
    phone.write(u"e"_s, "long");
    write(here(u"e"_s), "another");
    phone.set(u"bandwidth"_s, "0.3");
    showPanel();
    refresh();
    browseHere();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    auto *pause = child<IconButton>("queue.pause");
    auto *resume = child<IconButton>("queue.resume");
    auto *keepAll = child<TextButton>("queue.keepAll");
    auto *figures = child<TextLabel>("queue.figures");
    const TransferQueue &queue = state->transfers().queue();
    ASSERT_TRUE(waitFor([&] { return pause->isVisible() && queue.doneBytes() > 0; }));
    click(pause);
    ASSERT_TRUE(
        waitFor([&] { return !state->isTransferring() && resume->isVisible() && !pause->isVisible(); }));
    EXPECT_GT(queue.pausedCount() + state->waitingCount(), 0);
    EXPECT_TRUE(waitFor([&] { return child<TextLabel>("queue.note")->text() == u"Paused"_s; }));
    EXPECT_TRUE(figures->text().contains(u"of 5 · "_s)) << figures->text().toStdString();
    phone.reset(u"bandwidth"_s);
    click(resume);
    ASSERT_TRUE(
        waitFor([&] { return !state->isTransferring() && keepAll->isVisible() && !resume->isVisible(); }));
    click(keepAll);
    EXPECT_TRUE(waitFor([&] { return queue.completedCount() == 5 && !keepAll->isVisible(); }));
    EXPECT_TRUE(waitFor([&] { return figures->text().startsWith(u"5 of 5 · 1.2 of 1.2 MB"_s); }));
    EXPECT_TRUE(QFileInfo::exists(here(u"e 2"_s)));
}

TEST_F(QueueTests, rowsAreRemovedByMouseAndByKeys) {
    showPanel({816, 640});
    queueCopies(5);
    waitForQueue();
    settle();
    click(list->viewport(), list->removeButtonRect(row(1)).center());
    settle();
    focusList();
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Down);
    // The rows that are left, and the one that took the place of the removed one, or the last.
    for (const auto &[key, names, focused] :
         {std::tuple(Qt::Key_Return, u"024"_s, 2), {Qt::Key_Space, u"02"_s, 1}}) {
        QTest::keyClick(list, key);
        settle();
        EXPECT_EQ(rowNames(), names);
        EXPECT_EQ(focusedRow(), focused);
    }
    click(child<IconButton>("queue.clear"));
    EXPECT_TRUE(waitFor([&] { return child<TextLabel>("queue.hint")->isVisible(); }));
    EXPECT_EQ(focusedRow(), -1);
}

TEST_F(QueueTests, theCardsLineIsWholeWhereverTheRowsAreScrolled) {
    queueGhosts(20);
    showPanel({816, 200});
    settle();
    auto *card = child<QWidget>("queue.card");
    QList<QImage> line;
    for (int place = 0; place < 60; place += 3) {
        list->verticalScrollBar()->setValue(place);
        const QImage shown = card->grab().toImage();
        constexpr int scrollBar = 20;
        const QList<QImage> sides{shown.copy(0, 0, shown.width() - scrollBar, 1),
                                  shown.copy(0, 0, 1, shown.height()),
                                  shown.copy(0, shown.height() - 1, shown.width() - scrollBar, 1)};
        line = place == 0 ? sides : line;
        EXPECT_TRUE(sides == line) << place;
    }
}

TEST_F(QueueTests, theKeyboardStaysWithItsRowWhileOthersComeAndGo) {
    showPanel();
    queueGhosts(20);
    focusList();
    QTest::keyClick(list, Qt::Key_End);
    ASSERT_EQ(focusedRow(), 19); // runs
    const QUuid id = state->queue().at(19).id;
    queueGhosts(10);
    EXPECT_EQ(focusedRow(), 29);
    state->clearQueue(); // the three that run stay
    settle();
    EXPECT_EQ(focusedRow(), 2);
    EXPECT_EQ(state->queue().at(2).id, id);
    // A row that is removed near the lower edge leaves its place, and the scroll bar, to the next.
    queueGhosts(20);
    QTest::keyClick(list, Qt::Key_Home);
    while (isInView(focusedRow() + 1))
        QTest::keyClick(list, Qt::Key_Down);
    const auto place = [this] { return std::pair(focusedRow(), list->verticalScrollBar()->value()); };
    const auto before = place();
    QTest::keyClick(list, Qt::Key_Space);
    settle();
    EXPECT_EQ(place(), before);
}

TEST_F(QueueTests, tabGoesThroughAllRowsAndScrolls) {
    showPanel();
    queueGhosts(20);
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    auto *clear = child<IconButton>("queue.clear");
    const auto rowAfter = [this](Qt::Key key) {
        QTest::keyClick(QApplication::focusWidget(), key);
        settle();
        return focusedRow();
    };
    list->verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMinimum);
    clear->setFocus(Qt::TabFocusReason);
    for (int index = 0; index < 20; ++index) {
        ASSERT_EQ(rowAfter(Qt::Key_Tab), index);
        EXPECT_TRUE(isInView(index)) << index;
    }
    EXPECT_EQ(rowAfter(Qt::Key_Tab), -1) << "behind the last row it leaves";
    EXPECT_EQ(rowAfter(Qt::Key_Backtab), 19);
    EXPECT_EQ(rowAfter(Qt::Key_Backtab), 18);
    list->verticalScrollBar()->setValue(0);
    EXPECT_EQ(focusedRow(), 18) << "scrolled away, the row keeps the keyboard";
    clear->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(rowAfter(Qt::Key_Tab), 0) << "from outside, Tab comes in at what is in sight";
    EXPECT_EQ(rowAfter(Qt::Key_Backtab), -1);
    EXPECT_TRUE(clear->hasFocus());
}

// -- The status bar

class StatusBarTests : public WindowFixture {};

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

} // namespace
} // namespace vantrel
