// Copies: their order, what they refuse, and what is seen of them meanwhile and afterwards.

#include "support/ModelTest.h"

#include <QElapsedTimer>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace vantrel;

using TransferTests = ModelTest;

TEST_F(TransferTests, copiesFromTheBottomUpThreeAtATimeOldBatchesFirst) {
    for (const char *name : {"A", "B", "C", "D", "E"})
        phone.write(QString::fromLatin1(name), QByteArray(100'000, *name));
    write(here(u"F"_s), "from here");
    phone.set(u"bandwidth"_s, "0.5");
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    EXPECT_TRUE(state->androidSelectedIDs().isEmpty());
    EXPECT_EQ(state->activeTransferCount(), 3);
    EXPECT_EQ(state->waitingCount(), 2);
    EXPECT_EQ(statuses(),
              u"A:Waiting…|B:Waiting…|C:Zero KB / 100 KB|D:Zero KB / 100 KB|E:Zero KB / 100 KB"_s);
    select(BrowserSide::mac, u"F"_s);
    state->transferMacToAndroid();
    EXPECT_EQ(state->queue().first().name, u"F"_s);
    EXPECT_EQ(state->queue().first().destinationPath, u"/sdcard/F"_s);

    int mostAtOnce = 0;
    bool sawSpeed = false;
    // The order in which copies take a slot; their processes may overtake each other on the way up.
    QString started;
    QObject::connect(state.get(), &AppState::queueChanged, state.get(), [&] {
        mostAtOnce = std::max(mostAtOnce, state->activeTransferCount());
        for (const QueueItem &item : state->queue()) {
            if (item.status.is<QueueItemStatus::Transferring>() && !started.contains(item.name))
                started += item.name;
        }
    });
    QObject::connect(state.get(), &AppState::remainingLabelChanged, state.get(),
                     [&] { sawSpeed = sawSpeed || state->transferSpeedLabel().endsWith(u"/s"_s); });
    waitForQueue();
    EXPECT_EQ(mostAtOnce, 3);
    EXPECT_TRUE(sawSpeed);
    EXPECT_EQ(statuses(), u"F:Done|A:Done|B:Done|C:Done|D:Done|E:Done"_s);
    EXPECT_EQ(QStringView(started).mid(3), u"BAF"_s);
    EXPECT_EQ(state->transferSpeedLabel() + state->remainingLabel(), u"——"_s);
    for (const char *name : {"A", "B", "C", "D", "E"})
        EXPECT_EQ(contents(here(QString::fromLatin1(name))), QByteArray(100'000, *name));
    EXPECT_EQ(phone.read(u"F"_s), "from here");
    // Both panes show what they received.
    EXPECT_EQ(namesOf(state->macItems()).join(u' '), u"A B C D E F"_s);
    EXPECT_EQ(namesOf(state->androidItems()).join(u' '), u"A B C D E F"_s);
}

TEST_F(TransferTests, neverOverwrites) {
    phone.write(u"same.txt"_s, "phone");
    phone.write(u"Dir/inner"_s, "phone");
    write(here(u"same.txt"_s), "mac");
    write(here(u"Dir/mine"_s), "mac");
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    waitForQueue();
    const QString refused = u"Dir:“Dir” already exists there. Nothing was overwritten.|"
                            u"same.txt:“same.txt” already exists there. Nothing was overwritten."_s;
    EXPECT_EQ(statuses(), refused);
    EXPECT_EQ(contents(here(u"same.txt"_s)), "mac");
    EXPECT_EQ(QDir(here(u"Dir"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{u"mine"_s});
    state->clearQueue();

    state->selectAllVisible(BrowserSide::mac);
    state->transferMacToAndroid();
    waitForQueue();
    EXPECT_EQ(statuses(), refused);
    EXPECT_EQ(phone.read(u"same.txt"_s), "phone");
    EXPECT_FALSE(phone.exists(u"Dir/mine"_s));
    EXPECT_FALSE(phone.exists(u"Dir/Dir"_s));
    EXPECT_EQ(copyOrder(), QString());
}

TEST_F(TransferTests, pushesNothingWhenThePhoneDoesNotSayWhetherTheNameIsFree) {
    write(here(u"same.txt"_s), "mac");
    phone.write(u"same.txt"_s, "phone");
    connectPhone();
    browseHere();
    phone.set(u"exists.exit"_s, "1");
    phone.set(u"exists.stderr"_s, "error: closed\n");
    state->selectAllVisible(BrowserSide::mac);
    state->transferMacToAndroid();
    waitForQueue();
    EXPECT_EQ(statuses(), u"same.txt:error: closed"_s);
    EXPECT_EQ(copyOrder(), QString());
    EXPECT_EQ(phone.read(u"same.txt"_s), "phone");
}

TEST_F(TransferTests, anAnswerAboutAFreeNameRunsOut) {
    for (const char *name : {"A", "B", "C", "D"})
        write(here(QString::fromLatin1(name)), "mac");
    phone.set(u"bandwidth"_s, "0.000001"); // three copies stand still, A waits and was asked for
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::mac);
    state->transferMacToAndroid();
    ASSERT_TRUE(waitFor([&] { return copyOrder().size() == 3; }));
    phone.write(u"A"_s, "theirs");
    QTest::qWait(2100); // the answer's age is what this is about
    phone.reset(u"bandwidth"_s);
    waitForQueue();
    EXPECT_TRUE(statuses().startsWith(u"A:“A” already exists"_s)) << statuses().toStdString();
    EXPECT_EQ(phone.read(u"A"_s), "theirs");
}

TEST_F(TransferTests, thePaneShowsWhatArrivedBeforeTheLastCopyFailed) {
    phone.write(u"b"_s, "x");
    phone.write(u"c"_s, QByteArray(200'000, 'x'));
    phone.write(u"a"_s, QByteArray(10'000'000, 'x'));
    phone.set(u"bandwidth"_s, "0.5");
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    // b is listed at once; c, which comes less than a second later, is put off.
    ASSERT_TRUE(waitFor([&] { return statuses().count(u":Done"_s) == 2; }));
    phone.set(u"full-after"_s, "1");
    waitForQueue();
    EXPECT_TRUE(state->queue().first().status.is<QueueItemStatus::Failed>()) << statuses().toStdString();
    EXPECT_EQ(namesOf(state->macItems()).filter(QRegularExpression(u"[bc]"_s)),
              (QStringList{u"b"_s, u"c"_s}));
}

TEST_F(TransferTests, aPaneIsListedOnceASecondWhileCopiesAreUnderWay) {
    constexpr int count = 30;
    for (int i = 0; i < count; ++i)
        phone.write(QString::number(i), "x");
    connectPhone();
    browseHere();
    int listings = 0;
    QObject::connect(state.get(), &AppState::macItemsChanged, state.get(), [&] { ++listings; });
    QElapsedTimer clock;
    clock.start();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    waitForQueue();
    EXPECT_LE(listings, 3 + clock.elapsed() / 1000); // the first, the last, one that both may overlap
    EXPECT_EQ(state->macItems().size(), count);
}

TEST_F(TransferTests, whatOnePhoneSaidDoesNotCountForAnother) {
    for (const char *name : {"A", "B", "C", "D"})
        write(here(QString::fromLatin1(name)), "mac");
    phone.set(u"bandwidth"_s, "0.000001"); // three copies stand still, A waits and was asked for
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::mac);
    state->transferMacToAndroid();
    ASSERT_TRUE(waitFor([&] { return copyOrder().size() == 3; }));
    phone.write(u"A"_s, "theirs");
    phone.set(u"serial"_s, "other-phone");
    connectPhone();
    phone.reset(u"bandwidth"_s);
    waitForQueue();
    EXPECT_TRUE(statuses().startsWith(u"A:“A” already exists"_s)) << statuses().toStdString();
    EXPECT_EQ(phone.read(u"A"_s), "theirs");
}

TEST_F(TransferTests, twoHitsOfOneNameDoNotMeetInOneFile) {
    phone.write(u"one/photo.jpg"_s, QByteArray(50'000, '1'));
    phone.write(u"two/PHOTO.jpg"_s, QByteArray(50'000, '2'));
    phone.set(u"bandwidth"_s, "0.5");
    connectPhone();
    browseHere();
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    searchFor(u"photo"_s);
    ASSERT_TRUE(waitFor([&] { return !state->isSearchingAndroid(); }));
    ASSERT_EQ(state->androidSearchResults().size(), 2);
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    waitForQueue();
    EXPECT_EQ(statuses().count(u":Done"_s), 1) << statuses().toStdString();
    EXPECT_EQ(statuses().count(u"already exists"_s), 1);
    EXPECT_EQ(QDir(mac.filePath(u"here"_s)).entryList(QDir::Files).size(), 1);
}

TEST_F(TransferTests, aFolderThatComesWithoutItsContentsFailsInThePhonesWords) {
    phone.write(u"Trip/open/a.txt"_s, "x");
    phone.makeFolder(u"Trip/empty"_s);
    phone.write(u"Trip/closed/b.txt"_s, "x");
    connectPhone();
    browseHere();
    for (const bool isClosed : {false, true}) {
        if (isClosed) {
            ASSERT_TRUE(QFile::setPermissions(phone.hostPath(u"Trip/closed"_s), {}));
        }
        select(BrowserSide::android, u"Trip"_s);
        state->transferAndroidToMac();
        waitForQueue();
        EXPECT_EQ(statuses(),
                  isClosed ? u"Trip:ls: /sdcard/Trip/closed/: Permission denied"_s : u"Trip:Done"_s);
        state->clearQueue();
        QDir(here(u"Trip"_s)).removeRecursively();
    }
    QFile::setPermissions(phone.hostPath(u"Trip/closed"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST_F(TransferTests, aFolderHasNoSizeAndASmallQueueIsTakenUpAgain) {
    phone.write(u"Dir/sub/a.txt"_s, "deep");
    connectPhone();
    browseHere();
    select(BrowserSide::android, u"Dir"_s);
    QStringList speeds;
    QObject::connect(state.get(), &AppState::transferSpeedLabelChanged, state.get(),
                     [&] { speeds.append(state->transferSpeedLabel()); });
    state->transferAndroidToMac();
    EXPECT_EQ(state->queue().first().progressLabel(), u"Transferring…"_s);
    // Queued from within the notification of the end: a new run takes it.
    QObject::connect(state.get(), &AppState::isTransferringChanged, state.get(), [&] {
        if (!state->isTransferring() && state->queue().size() == 1) {
            state->selectItem(state->androidItems().first(), BrowserSide::android);
            state->transferAndroidToMac();
        }
    });
    ASSERT_TRUE(waitFor([&] { return state->queue().size() == 2 && !state->isTransferring(); }));
    EXPECT_EQ(contents(here(u"Dir/sub/a.txt"_s)), "deep");
    EXPECT_TRUE(speeds.isEmpty()) << "nothing is known of a folder's bytes";
    EXPECT_TRUE(statuses().startsWith(u"Dir:“Dir” already exists"_s));
}

TEST(TransferQueueTests, keepsOrderCountsAndClaims) {
    const auto item = [](const char *name) {
        QueueItem made;
        made.id = QUuid::createUuid();
        made.name = QString::fromLatin1(name);
        made.totalBytes = -5;
        return made;
    };
    TransferQueue queue;
    const QueueItem a = item("a");
    const QueueItem b = item("b");
    const QueueItem c = item("c");
    queue.insertFront({a, b});
    EXPECT_EQ(queue.claimNextWaiting(), b.id);
    queue.insertFront({c});
    EXPECT_EQ(queue.nextWaiting(9).size(), 2);
    EXPECT_EQ(queue.nextWaiting(1).first().id, a.id);
    EXPECT_EQ(queue.find(b.id)->status.progress()->totalBytes, 0);
    queue.setStatus(b.id, QueueItemStatus::Completed());
    EXPECT_EQ(queue.activeCount(), 0);
    EXPECT_EQ(queue.waitingCount(), 2);
    EXPECT_EQ(queue.claimNextWaiting(), a.id);
    EXPECT_TRUE(queue.remove(c.id));
    EXPECT_FALSE(queue.remove(c.id));
    EXPECT_EQ(queue.claimNextWaiting(), std::nullopt);
    EXPECT_EQ(queue.setStatus(c.id, QueueItemStatus::Completed()), -1);
    EXPECT_TRUE(queue.clear());
    EXPECT_EQ(queue.items().size(), 1);
    EXPECT_EQ(queue.indexOf(a.id), 0);
    EXPECT_EQ(queue.activeCount(), 1);
}
