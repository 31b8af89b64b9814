// The transfer queue and the status bar: the rows on a queue of the test's own, the panel on a demo phone.

#include "support/WindowFixture.h"

#include "Kit/IconButton.h"
#include "Kit/TextButton.h"
#include "Kit/TextLabel.h"
#include "Kit/ToolTips.h"
#include "MacFiles/ThisComputer.h"
#include "Transfers/TransferQueue.h"
#include "Views/QueueDelegate.h"
#include "Views/QueueListView.h"
#include "Views/StatusBarView.h"
#include "Views/TransferQueueView.h"

#include <QAbstractItemModelTester>
#include <QHelpEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

/// Collects what is painted of a widget.
class PaintedRegion : public QObject {
public:
    explicit PaintedRegion(QWidget *widget) : QObject(widget) { widget->installEventFilter(this); }
    QRegion region;

protected:
    bool eventFilter(QObject *, QEvent *event) override {
        if (event->type() == QEvent::Paint)
            region += static_cast<QPaintEvent *>(event)->region();
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

/// Whether the text, and nothing else, stands in that place of a picture of the list.
bool shows(const QImage &list, const QRect &place, const QString &text, const TextStyle &style,
           const QColor &color, Qt::Alignment alignment, Elision elision = Elision::end) {
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

/// What is said when the mouse rests at a place of the list.
QString toolTipAt(QueueListView *list, QPoint place) {
    QHelpEvent event(QEvent::ToolTip, place, list->viewport()->mapToGlobal(place));
    QCoreApplication::sendEvent(list->viewport(), &event);
    return ToolTips::text();
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

    const auto insert = [&](int count) {
        QList<QueueItem> block;
        for (int index = 0; index < count; ++index)
            block.append(queueItem({}));
        queue.insertFront(block);
    };
    insert(5);
    insert(0);
    (void)queue.claim(1, [](const QueueItem &) { return true; });
    insert(3);
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
    struct Case {
        QueueItemStatus status;
        ThemeColor color;
        double filled; ///< of the bar
        QString progress, percent;
        int value; ///< of the bar, for assistive technology
    };
    QueueItemStatus::Paused paused;
    paused.fraction = 0.25;
    const Case cases[] = {
        {transferring(0.5), AppTheme::progress(), 0.5, u"2 MB / 4 MB"_s, u"50%"_s, 50},
        {transferring(-1), AppTheme::progress(), 0, u"-4 MB / 4 MB"_s, u"-100%"_s, 0},
        {paused, AppTheme::progress(), 0.25, u"Paused"_s, u"25%"_s, 25},
        {QueueItemStatus::Failed{u"No space left"_s}, AppTheme::danger(), 0, u"No space left"_s, u"Error"_s,
         0},
        {QueueItemStatus::Waiting(), AppTheme::progress(), 0, u"Waiting…"_s, u"—"_s, 0},
        {QueueItemStatus::Completed(), AppTheme::success(), 1, u"Done"_s, u"100%"_s, 100},
    };
    const QueueItem item = queueItem(QueueItemStatus::Waiting());
    showRows({item});
    const QueueRowGeometry at = places(0);
    constexpr TextStyle progressStyle{11, Weight::medium};
    constexpr TextStyle percentStyle{11, Weight::semibold, FontDesign::monospaced};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.progress.toStdString());
        queue.setStatus(item.id, c.status);
        const QImage image = list.grab().toImage();
        EXPECT_NEAR(pixelsOf(c.color, image, at.bar.y() + 2), c.filled * at.bar.width(), 4);
        EXPECT_TRUE(
            shows(image, at.name, u"photo.jpg"_s, {12.5, Weight::semibold}, AppTheme::ink(), Qt::AlignLeft));
        const bool isFailed = c.status.is<QueueItemStatus::Failed>();
        if (isFailed) { // the reason takes the place of the route and the bar
            const QueueRowGeometry failed(list.visualRect(row(0)).adjusted(0, 0, 0, -1), true);
            EXPECT_TRUE(
                shows(image, failed.reason, c.progress, progressStyle, AppTheme::danger(), Qt::AlignLeft));
            EXPECT_GT(failed.reason.width(), at.route.width() + at.progress.width());
            EXPECT_FALSE(failed.reason.intersects(failed.action) || failed.reason.intersects(failed.percent));
            EXPECT_TRUE(shows(image, failed.percent.adjusted(failed.action.width(), 0, 0, 0), c.percent,
                              percentStyle, AppTheme::ink(), Qt::AlignRight));
            continue;
        }
        EXPECT_TRUE(shows(image, at.route, u"/sdcard/DCIM/photo.jpg  →  /home/sam/photo.jpg"_s,
                          {10.5, Weight::medium}, AppTheme::inkTertiary(), Qt::AlignLeft, Elision::middle));
        EXPECT_TRUE(
            shows(image, at.progress, c.progress, progressStyle, AppTheme::inkSecondary(), Qt::AlignRight));
        EXPECT_TRUE(shows(image, at.percent, c.percent, percentStyle, AppTheme::ink(), Qt::AlignRight));
        EXPECT_EQ(accessibleRow(0)->text(QAccessible::Name), u"photo.jpg"_s);
        EXPECT_EQ(accessibleRow(0)->text(QAccessible::Description),
                  QString(c.progress + u", "_s + c.percent));
        EXPECT_EQ(accessibleRow(0)->child(0)->valueInterface()->currentValue(), c.value);
    }
}

TEST_F(QueueRowTests, offersWhatCanBeDoneAboutAnEnd) {
    struct Case {
        QueueItemStatus status;
        QString title;
    };
    const Case cases[] = {{QueueItemStatus::Waiting(), {}},
                          {transferring(0.5), {}},
                          {QueueItemStatus::Completed(), {}},
                          {QueueItemStatus::Failed{u"Broken"_s, {{u"a"_s, u"too large"_s}}}, u"Try again"_s},
                          {QueueItemStatus::NameTaken{u"Another is there"_s}, u"Keep both"_s}};
    const QueueItem item = queueItem(QueueItemStatus::Waiting());
    showRows({item});
    list.setCurrentIndex(row(0));
    QStringList asked;
    QObject::connect(&list, &QueueListView::tryAgainRequested, &list, [&] { asked.append(u"Try again"_s); });
    QObject::connect(&list, &QueueListView::keepBothRequested, &list, [&] { asked.append(u"Keep both"_s); });
    QObject::connect(&list, &QueueListView::removeRequested, &list, [&] { asked.append(u"remove"_s); });
    for (const Case &c : cases) {
        queue.setStatus(item.id, c.status);
        const bool isOffered = !c.title.isEmpty();
        EXPECT_EQ(list.actionRect(row(0)).isValid(), isOffered);
        EXPECT_EQ(accessibleRow(0)->childCount(), isOffered ? 3 : 2);
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                          isOffered ? list.actionRect(row(0)).center() : places(0).action.center());
        QTest::keyClick(&list, Qt::Key_Left);
        EXPECT_EQ(list.isOnAction(), isOffered);
        if (isOffered) {
            QAccessibleInterface *button = accessibleRow(0)->child(2);
            EXPECT_EQ(button->text(QAccessible::Name), c.title);
            button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            QTest::keyClick(&list, Qt::Key_Left);
            QTest::keyClick(&list, Qt::Key_Space);
            EXPECT_EQ(asked, (QStringList{c.title, c.title, c.title}));
        }
        QTest::keyClick(&list, Qt::Key_Right);
        EXPECT_FALSE(list.isOnAction());
        asked.clear();
    }
    queue.setStatus(item.id, cases[3].status);
    const QString help = toolTipAt(&list, places(0).reason.center());
    for (const char *line : {"Broken", "a: too large", "/sdcard/DCIM/photo.jpg  →  /home/sam/photo.jpg"})
        EXPECT_TRUE(help.contains(QString::fromUtf8(line))) << help.toStdString();
}

TEST_F(QueueRowTests, hasItsPlacesWhateverItShows) {
    const QString longText = u"A line of an error that goes on and on\n"_s.repeated(10);
    QueueItem worst = queueItem(QueueItemStatus::Failed{longText});
    worst.name = QString(255, u'W');
    worst.sourcePath = u"/sdcard/"_s + u"very long folder/"_s.repeated(30) + worst.name;
    worst.destinationPath = u"/home/"_s + u"very long folder/"_s.repeated(30) + u"the end"_s;
    const int height = QueueRowGeometry::rowHeight();
    showRows({worst, queueItem(transferring(0.1))}, 2 * height + 1);
    EXPECT_EQ(list.verticalScrollBar()->maximum(), 0) << "both fit, with one divider";
    for (const int index : {0, 1}) {
        const QRect whole(0, index * (height + 1), 700, height);
        const QueueRowGeometry at = places(index);
        EXPECT_EQ(at.icon, QRect(12, whole.y(), 22, height));
        EXPECT_EQ(at.removeButton, QRect(666, whole.y() + (height - 22) / 2, 22, 22));
        EXPECT_EQ(at.removeButton, list.removeButtonRect(row(index)));
        EXPECT_EQ(at.progress.left(), 700 - 12 - 22 - 12 - 110);
        EXPECT_EQ(at.progress.width(), 110);
        EXPECT_EQ(at.percent.top(), at.progress.bottom() + 1 + 2);
        EXPECT_NEAR(at.progress.top() - whole.top(), whole.bottom() - at.percent.bottom(), 1);
        EXPECT_EQ(at.name.topLeft(), QPoint(12 + 22 + 12, whole.y() + 10));
        EXPECT_EQ(at.route.top(), at.name.bottom() + 1 + 4);
        EXPECT_EQ(at.bar, QRect(46, whole.bottom() + 1 - 10 - 5, 700 - 46 - 12 - 110 - 12 - 22 - 12, 5));
    }
    list.resize(900, list.height());
    QCoreApplication::processEvents();
    EXPECT_EQ(places(0).removeButton.left(), 900 - 12 - 22) << "rows are as wide as the list";
    list.resize(700, list.height());
    QCoreApplication::processEvents();
    const QueueRowGeometry at = places(0);
    EXPECT_EQ(toolTipAt(&list, at.name.center()), worst.name);
    EXPECT_TRUE(toolTipAt(&list, at.reason.center()).count(u"goes on and on"_s) == 10);
    EXPECT_TRUE(
        toolTipAt(&list, at.route.center()).endsWith(worst.sourcePath + u"  →  "_s + worst.destinationPath));
    EXPECT_EQ(toolTipAt(&list, at.removeButton.center()), u"Remove this transfer from the queue"_s);
    (void)toolTipAt(&list, places(1).name.center());
    EXPECT_TRUE(waitFor([] { return ToolTips::text().isEmpty(); })) << "it is all there";
}

TEST_F(QueueRowTests, dividersLieBetweenTheRows) {
    showRows({queueItem({}), queueItem({}), queueItem({})}, 400);
    const QImage image = list.grab().toImage();
    const QColor ground = image.pixelColor(2, 2);
    for (const int index : {0, 1, 2}) {
        const QRect whole = list.visualRect(row(index));
        EXPECT_EQ(image.pixelColor(350, whole.bottom()) != ground, index < 2) << index;
        EXPECT_EQ(image.pixelColor(350, whole.bottom() - 1), ground) << index;
    }
}

TEST_F(QueueRowTests, aReportRepaintsItsRowAndNothingElse) {
    constexpr int count = 10'000;
    QList<QueueItem> items;
    for (int index = 0; index < count; ++index)
        items.append(queueItem({}));
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
    const QList<QueueItem> items{queueItem({}), queueItem({}), queueItem({})};
    showRows(items, 120); // the third row is out of sight
    QAccessibleInterface *all = accessible(&list);
    EXPECT_EQ(all->role(), QAccessible::List);
    EXPECT_EQ(all->text(QAccessible::Name), u"Transfers"_s);
    ASSERT_EQ(all->childCount(), 3);
    EXPECT_EQ(all->child(3), nullptr);
    for (const int index : {0, 1, 2}) {
        QAccessibleInterface *item = all->child(index);
        EXPECT_EQ(item->role(), QAccessible::ListItem);
        EXPECT_EQ(item->parent(), all);
        EXPECT_EQ(all->indexOfChild(item), index);
        EXPECT_EQ(item->state().offscreen, index == 2);
        ASSERT_EQ(item->childCount(), 2);
        EXPECT_EQ(item->child(0)->role(), QAccessible::ProgressBar);
        QAccessibleInterface *button = item->child(1);
        EXPECT_EQ(button->parent(), item);
        EXPECT_EQ(item->indexOfChild(button), 1);
        EXPECT_EQ(button->role(), QAccessible::Button);
        EXPECT_EQ(button->text(QAccessible::Name), u"Remove this transfer from the queue"_s);
        EXPECT_EQ(button->rect().topLeft(),
                  list.viewport()->mapToGlobal(list.removeButtonRect(row(index)).topLeft()));
        const QPoint middle = button->rect().center();
        if (index < 2) {
            EXPECT_EQ(all->childAt(middle.x(), middle.y()), item);
        }
        EXPECT_EQ(item->childAt(middle.x(), middle.y()), button);
    }

    ASSERT_TRUE(QTest::qWaitForWindowActive(&list));
    QAccessibleInterface *button = all->child(2)->child(1);
    button->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(list.hasFocus());
    EXPECT_EQ(all->focusChild(), button);
    EXPECT_TRUE(button->state().focused);
    EXPECT_FALSE(button->state().offscreen) << "it scrolled into view";

    // An interface stays with its row, and is gone when the row is.
    QObject::connect(&list, &QueueListView::removeRequested, &queue, &TransferQueue::remove);
    const QAccessible::Id id = QAccessible::uniqueId(button);
    const QAccessible::Id idOfRow = QAccessible::uniqueId(button->parent());
    all->child(0)->child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_EQ(queue.items(), items.mid(1));
    EXPECT_EQ(all->child(1)->child(1), button);
    EXPECT_EQ(all->indexOfChild(button->parent()), 1);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(queue.items(), items.mid(1, 1));
    EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
    EXPECT_EQ(QAccessible::accessibleInterface(idOfRow), nullptr);
    EXPECT_EQ(all->childCount(), 1);
}

TEST_F(QueueRowTests, aButtonIsPressedWhereTheMouseWentDownAndUp) {
    const QList<QueueItem> items{queueItem({}), queueItem({})};
    showRows(items, 130);
    list.clearFocus(); // which the only control of a window gets
    list.setCurrentIndex({});
    QSignalSpy removals(&list, &QueueListView::removeRequested);
    const QPoint first = list.removeButtonRect(row(0)).center();
    const QPoint second = list.removeButtonRect(row(1)).center();
    struct Case {
        const char *name;
        Qt::MouseButton button;
        QPoint down, up;
        qsizetype removals;
    };
    const Case cases[] = {{"a click", Qt::LeftButton, first, first, 1},
                          {"the right button", Qt::RightButton, first, first, 0},
                          {"moved on to the next button", Qt::LeftButton, first, second, 0},
                          {"moved away", Qt::LeftButton, first, {100, 20}, 0},
                          {"moved onto it", Qt::LeftButton, {100, 20}, first, 0},
                          {"beside the buttons", Qt::LeftButton, {100, 20}, {100, 20}, 0}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        removals.clear();
        QTest::mousePress(list.viewport(), c.button, {}, c.down);
        QTest::mouseMove(list.viewport(), c.up);
        QTest::mouseRelease(list.viewport(), c.button, {}, c.up);
        EXPECT_EQ(removals.count(), c.removals);
        EXPECT_FALSE(list.hasFocus()) << "the mouse leaves the keyboard where it was";
        EXPECT_FALSE(list.currentIndex().isValid());
    }
}

TEST_F(QueueRowTests, whatRunsStaysInSightUntilTheUserScrolls) {
    QList<QueueItem> items;
    for (int index = 0; index < 100; ++index)
        items.append(queueItem({}));
    showRows(items, QueueListView::heightOfRows(4));
    list.clearFocus();
    QScrollBar *bar = list.verticalScrollBar();
    const auto areSeen = [&](const QList<int> &rows) {
        return std::all_of(rows.begin(), rows.end(), [&](int index) {
            return list.viewport()->rect().contains(list.visualRect(row(index)).adjusted(0, 0, 0, -1));
        });
    };
    const auto scroll = [&](int lines) {
        QWheelEvent wheel(QPointF(50, 50), list.viewport()->mapToGlobal(QPointF(50, 50)), {},
                          {0, -120 * lines}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(list.viewport(), &wheel);
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

    scroll(-10);
    const int chosen = bar->value();
    ASSERT_FALSE(areSeen({98}));
    list.keepInSight({96, 97});
    EXPECT_EQ(bar->value(), chosen) << "the user is reading";
    scroll(20);
    list.keepInSight({80});
    EXPECT_TRUE(areSeen({80})) << "the user came back";
    scroll(10);
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

    TransferQueueView *panel = nullptr;
    QueueListView *list = nullptr;
};

TEST_F(QueueTests, anEmptyQueueShowsTheHintAndNothingToClear) {
    showPanel();
    EXPECT_EQ(child<TextLabel>("queue.hint")->text(),
              u"Select files and use → or ← to copy between Android and %1."_s.arg(thisComputer()));
    EXPECT_TRUE(child<TextLabel>("queue.hint")->isVisible());
    EXPECT_FALSE(child<TextLabel>("queue.note")->isVisible());
    EXPECT_FALSE(child<IconButton>("queue.clear")->isVisible());
    EXPECT_FALSE(list->isVisible());
}

TEST_F(QueueTests, theHeaderPausesAndResumesAndSaysHowFarAllIs) {
    for (const char *name : {"a", "b", "c", "d"})
        phone.write(QString::fromLatin1(name), QByteArray(300'000, 'x'));
    phone.write(u"e"_s, "long");
    phone.set(u"bandwidth"_s, "0.3");
    showPanel();
    refresh();
    const QTemporaryDir folder;
    QFile taken(folder.filePath(u"e"_s));
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly) && taken.write("another") > 0);
    taken.close();
    state->browseMac(folder.path());
    ASSERT_TRUE(waitFor([&] { return !state->isLoadingMac(); }));
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    auto *pause = child<IconButton>("queue.pause");
    auto *figures = child<TextLabel>("queue.figures");
    ASSERT_TRUE(waitFor([&] { return pause->isVisible() && state->transfers().queue().doneBytes() > 0; }));
    QTest::mouseClick(pause, Qt::LeftButton);
    auto *resume = child<IconButton>("queue.resume");
    ASSERT_TRUE(
        waitFor([&] { return !state->isTransferring() && resume->isVisible() && !pause->isVisible(); }));
    EXPECT_GT(state->transfers().queue().pausedCount() + state->waitingCount(), 0);
    EXPECT_TRUE(waitFor([&] { return child<TextLabel>("queue.note")->text() == u"Paused"_s; }));
    EXPECT_TRUE(figures->text().contains(u"of 5 · "_s)) << figures->text().toStdString();
    phone.reset(u"bandwidth"_s);
    QTest::mouseClick(resume, Qt::LeftButton);
    auto *keepAll = child<TextButton>("queue.keepAll");
    ASSERT_TRUE(
        waitFor([&] { return !state->isTransferring() && keepAll->isVisible() && !resume->isVisible(); }));
    QTest::mouseClick(keepAll, Qt::LeftButton);
    EXPECT_TRUE(
        waitFor([&] { return state->transfers().queue().completedCount() == 5 && !keepAll->isVisible(); }));
    EXPECT_TRUE(waitFor([&] { return figures->text().startsWith(u"5 of 5 · 1.2 of 1.2 MB"_s); }))
        << figures->text().toStdString();
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(u"e 2"_s)));
}

TEST_F(QueueTests, everyRowOfALongQueueIsReached) {
    constexpr int count = 12'000;
    showPanel();
    queueGhosts(count);
    settle();
    ASSERT_EQ(state->queue().size(), count);
    EXPECT_EQ(panel->height(), 320);
    EXPECT_TRUE(isInView(count - 1)) << "what runs";

    QScrollBar *bar = list->verticalScrollBar();
    bar->triggerAction(QAbstractSlider::SliderToMinimum);
    EXPECT_TRUE(isInView(0));
    EXPECT_EQ(bar->maximum(), QueueListView::heightOfRows(count) - list->height());
    bar->setValue(bar->maximum());
    EXPECT_TRUE(isInView(count - 1));
    EXPECT_EQ(list->visualRect(row(count - 1)).bottom() - 1, list->height() - 1);
    bar->setValue(bar->maximum() / 2);
    QWheelEvent wheel(QPointF(50, 50), list->viewport()->mapToGlobal(QPointF(50, 50)), {}, {0, -120},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    const int before = bar->value();
    QCoreApplication::sendEvent(list->viewport(), &wheel);
    EXPECT_GT(bar->value(), before);
}

TEST_F(QueueTests, progressRepaintsOnlyTheRowsThatItConcerns) {
    showPanel({816, 640});
    phone.set(u"pull.bandwidth"_s, "0.5");
    queueCopies(5, QByteArray(400'000, 'x'));
    ASSERT_TRUE(waitFor([&] { return state->activeTransferCount() == 3 && list->isVisible(); }));
    settle();
    // The last three run, the first two wait.
    PaintedRegion painted(list->viewport());
    const auto isPainted = [&](int index) { return painted.region.intersects(list->visualRect(row(index))); };
    QSignalSpy reports(state->transfers().queueModel(), &QAbstractItemModel::dataChanged);
    ASSERT_TRUE(waitFor([&] { return reports.count() >= 6 && isPainted(4); }));
    if (state->waitingCount() == 2) {
        EXPECT_FALSE(isPainted(0) || isPainted(1));
    }
    phone.reset(u"pull.bandwidth"_s);
    waitForQueue();
    EXPECT_TRUE(waitFor([&] { return isPainted(0); })) << "its own change is shown";
}

TEST_F(QueueTests, anErrorOfTenLinesStaysOneLine) {
    showPanel();
    phone.set(u"pull.stderr"_s, u"adb: error: something went wrong\n"_s.repeated(10));
    phone.set(u"pull.stdout"_s, "");
    phone.set(u"pull.exit"_s, "1");
    queueCopies(1);
    waitForQueue();
    settle();
    const QueueItem &item = state->queue().first();
    ASSERT_TRUE(item.status.is<QueueItemStatus::Failed>());
    ASSERT_GT(item.progressLabel().count(u'\n'), 8);
    EXPECT_EQ(panel->sizeHint().height(), panel->minimumSizeHint().height());
    EXPECT_EQ(list->visualRect(row(0)).height(), QueueRowGeometry::rowHeight() + 1);
    EXPECT_EQ(toolTipAt(list, QueueRowGeometry(list->visualRect(row(0))).reason.center())
                  .count(u"something went wrong"_s),
              10);
}

TEST_F(QueueTests, rowsAreRemovedByMouseAndByKeys) {
    showPanel({816, 640});
    queueCopies(5);
    waitForQueue();
    settle();
    ASSERT_EQ(rowNames(), u"01234"_s);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->removeButtonRect(row(1)).center());
    EXPECT_EQ(rowNames(), u"0234"_s);
    settle();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    list->setFocus(Qt::TabFocusReason);
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(rowNames(), u"024"_s);
    settle();
    EXPECT_EQ(focusedRow(), 2) << "the row that took its place";
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_EQ(rowNames(), u"02"_s);
    settle();
    EXPECT_EQ(focusedRow(), 1) << "there is none behind it";
    QTest::keyClick(list, Qt::Key_Space);
    QTest::mouseClick(child<IconButton>("queue.clear"), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return child<TextLabel>("queue.hint")->isVisible(); }));
    EXPECT_EQ(focusedRow(), -1);
}

TEST_F(QueueTests, theKeyboardStaysWithItsRowWhileOthersComeAndGo) {
    showPanel();
    queueGhosts(20);
    settle();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    list->setFocus(Qt::TabFocusReason);
    QTest::keyClick(list, Qt::Key_End);
    ASSERT_EQ(focusedRow(), 19); // runs
    const QUuid id = state->queue().at(19).id;
    const auto idOfFocused = [&] { return state->queue().at(focusedRow()).id; };
    queueGhosts(10);
    settle();
    EXPECT_EQ(focusedRow(), 29);
    EXPECT_EQ(idOfFocused(), id);
    state->clearQueue(); // the three that run stay
    settle();
    EXPECT_EQ(focusedRow(), 2);
    EXPECT_EQ(idOfFocused(), id);
    // A row that is removed near the lower edge leaves its place, and the scroll bar, to the next.
    queueGhosts(20);
    settle();
    QTest::keyClick(list, Qt::Key_Home);
    while (isInView(focusedRow() + 1))
        QTest::keyClick(list, Qt::Key_Down);
    const int focused = focusedRow();
    const int scrolled = list->verticalScrollBar()->value();
    QTest::keyClick(list, Qt::Key_Space);
    settle();
    EXPECT_EQ(focusedRow(), focused);
    EXPECT_EQ(list->verticalScrollBar()->value(), scrolled);
}

TEST_F(QueueTests, tabGoesThroughAllRowsAndScrolls) {
    showPanel();
    queueGhosts(20);
    settle();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    auto *clear = child<IconButton>("queue.clear");
    auto *pause = child<IconButton>("queue.pause");
    const auto press = [](Qt::Key key) {
        QTest::keyClick(QApplication::focusWidget(), key);
        settle();
    };
    list->verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMinimum);
    clear->setFocus(Qt::TabFocusReason);
    for (int index = 0; index < 20; ++index) {
        press(Qt::Key_Tab);
        ASSERT_EQ(focusedRow(), index);
        EXPECT_TRUE(isInView(index)) << index;
    }
    press(Qt::Key_Tab);
    EXPECT_TRUE(pause->hasFocus()) << "behind the last row it leaves";
    press(Qt::Key_Backtab);
    EXPECT_EQ(focusedRow(), 19);
    press(Qt::Key_Backtab);
    EXPECT_EQ(focusedRow(), 18);

    // Scrolled away, the row keeps the keyboard.
    list->verticalScrollBar()->setValue(0);
    EXPECT_EQ(focusedRow(), 18);
    EXPECT_FALSE(isInView(18));

    // From outside, Tab comes in at what is in sight.
    clear->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Tab);
    EXPECT_EQ(focusedRow(), 0);
    press(Qt::Key_Backtab);
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
