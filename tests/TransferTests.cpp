// Copies: their order, what they refuse, and what is seen of them meanwhile and afterwards.

#include "support/ModelTest.h"

#include <QElapsedTimer>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace vantrel;

class TransferTests : public ModelTest {
protected:
    /// How often the phone was asked what is in a folder.
    [[nodiscard]] qsizetype listings() const {
        const auto lines = phone.commandLines();
        return std::count_if(lines.begin(), lines.end(),
                             [](const QStringList &line) { return line.contains(u"ls"_s); });
    }
};

TEST_F(TransferTests, copiesFromTheBottomUpThreeAtATimeOldBatchesFirst) {
    for (const char *name : {"A", "B", "C", "D", "E"})
        phone.write(QString::fromLatin1(name), QByteArray(100'000, *name));
    write(here(u"F"_s), "from here");
    phone.set(u"bandwidth"_s, "0.15");
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    EXPECT_TRUE(state->androidSelectedIDs().isEmpty());
    EXPECT_EQ(state->activeTransferCount(), 3);
    EXPECT_EQ(state->waitingCount(), 2);
    EXPECT_EQ(namesOf(QList<FileItem>()).join(u' '), QString());
    EXPECT_EQ(statuses(),
              u"A:Waiting…|B:Waiting…|C:Zero KB / 100 KB|D:Zero KB / 100 KB|E:Zero KB / 100 KB"_s);
    select(BrowserSide::mac, u"F"_s);
    state->transferMacToAndroid();
    EXPECT_EQ(state->queue().first().name, u"F"_s);
    EXPECT_EQ(state->queue().first().destinationPath(), u"/sdcard/F"_s);

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
    const QString all = u"A B C D E F"_s;
    EXPECT_TRUE(waitFor([&] { return namesOf(state->macItems()).join(u' ') == all; }));
    EXPECT_TRUE(waitFor([&] { return namesOf(state->androidItems()).join(u' ') == all; }));
}

TEST_F(TransferTests, neverOverwrites) {
    phone.write(u"same.txt"_s, "phone");
    phone.write(u"Dir/inner"_s, "phone");
    phone.write(u"Dir/sub/deep/file"_s, "phone");
    write(here(u"same.txt"_s), "mac");
    write(here(u"Dir/mine"_s), "mac");
    write(here(u"Dir/sub"_s), "mac");
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    waitForQueue();
    // The folder merges, the file with another content waits for the user.
    const QString outcome = u"Dir:1 of 2 could not be copied|same.txt:Another “same.txt” is already there."_s;
    EXPECT_EQ(statuses(), outcome);
    EXPECT_EQ(state->queue().first().problemText(), u"sub/deep/file: “sub/deep” is no folder there"_s);
    EXPECT_EQ(contents(here(u"Dir/sub"_s)), "mac");
    EXPECT_EQ(contents(here(u"same.txt"_s)), "mac");
    EXPECT_EQ(contents(here(u"Dir/inner"_s)), "phone");
    EXPECT_EQ(contents(here(u"Dir/mine"_s)), "mac");
    state->clearQueue();

    state->selectAllVisible(BrowserSide::mac);
    state->transferMacToAndroid();
    waitForQueue();
    EXPECT_EQ(statuses(),
              u"Dir:1 of 3 differ from what is there|same.txt:Another “same.txt” is already there."_s);
    EXPECT_EQ(phone.read(u"same.txt"_s), "phone");
    EXPECT_EQ(phone.read(u"Dir/mine"_s), "mac");
    EXPECT_FALSE(phone.exists(u"Dir/Dir"_s));
}

TEST_F(TransferTests, pushesNothingWhenThePhoneDoesNotSayWhetherTheNameIsFree) {
    write(here(u"same.txt"_s), "mac");
    phone.write(u"same.txt"_s, "phone");
    connectPhone();
    browseHere();
    phone.set(u"facts.exit"_s, "1");
    phone.set(u"facts.stderr"_s, "error: closed\n");
    state->selectAllVisible(BrowserSide::mac);
    state->transferMacToAndroid();
    waitForQueue();
    EXPECT_EQ(statuses(), u"same.txt:error: closed"_s);
    EXPECT_EQ(copyOrder(), QString());
    EXPECT_EQ(phone.read(u"same.txt"_s), "phone");

    phone.set(u"facts.stderr"_s,
              "error: device 'demo-phone' not found\n"); // and is back when it is looked for
    state->transfers().tryAllAgain();
    EXPECT_TRUE(waitFor([&] { return !state->isTransferring(); }));
    EXPECT_EQ(statuses(), u"same.txt:Waiting for the phone…"_s);
}

TEST_F(TransferTests, whatAppearsAtTheDestinationMeanwhileIsKept) {
    for (const BrowserSide from : {BrowserSide::mac, BrowserSide::android}) {
        write(here(u"push"_s), QByteArray(100'000, 'm'));
        phone.write(u"pull"_s, QByteArray(100'000, 'p'));
        phone.set(u"bandwidth"_s, "0.000001"); // it stands still after the first block
        connectPhone();
        browsePhone(u"/sdcard"_s);
        browseHere();
        const bool isPush = from == BrowserSide::mac;
        select(from, isPush ? u"push"_s : u"pull"_s);
        isPush ? state->transferMacToAndroid() : state->transferAndroidToMac();
        ASSERT_TRUE(waitFor([&] {
            return state->queue().first().status.progress() &&
                   state->queue().first().status.progress()->transferredBytes > 0;
        }));
        isPush ? phone.write(u"push"_s, "theirs") : write(here(u"pull"_s), "theirs");
        phone.reset(u"bandwidth"_s);
        waitForQueue();
        EXPECT_TRUE(state->queue().first().canKeepBoth()) << statuses().toStdString();
        EXPECT_EQ(isPush ? phone.read(u"push"_s) : contents(here(u"pull"_s)), "theirs");
        state->clearQueue();
    }
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
    EXPECT_TRUE(waitFor([&] {
        return namesOf(state->macItems()).filter(QRegularExpression(u"[bc]"_s)) ==
               QStringList{u"b"_s, u"c"_s};
    }));
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
    EXPECT_TRUE(waitFor([&] { return state->macItems().size() == count; }));
    EXPECT_LE(listings, 3 + clock.elapsed() / 1000); // the first, the last, one that both may overlap
}

TEST_F(TransferTests, aSlowPhoneIsAskedForOneListingAtATime) {
    connectPhone();
    browsePhone(u"/sdcard"_s);
    phone.set(u"ls.hang"_s, "on");
    const qsizetype before = listings();
    for (const QString &name : {u"first"_s, u"second"_s}) {
        write(here(name), "x");
        browseHere();
        select(BrowserSide::mac, name);
        state->transferMacToAndroid();
        waitForQueue();
        ASSERT_TRUE(waitFor([&] { return listings() > before; }));
    }
    browseHere(); // longer than what is put off until the next turn of the event loop
    EXPECT_EQ(listings(), before + 1);
    phone.reset(u"ls.hang"_s);
    EXPECT_TRUE(waitFor([&] {
        return namesOf(state->androidItems()) == QStringList{u"first"_s, u"second"_s};
    }));
    EXPECT_TRUE(waitFor([&] { return listings() == before + 2; }));
}

TEST_F(TransferTests, anEntryWaitsForThePhoneThatItWasQueuedFor) {
    for (const char *name : {"A", "B", "C", "D"})
        write(here(QString::fromLatin1(name)), QByteArray(100'000, *name));
    phone.set(u"bandwidth"_s, "0.000001"); // three copies stand still, A waits
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::mac);
    state->transferMacToAndroid();
    ASSERT_TRUE(waitFor([&] { return copyOrder().size() == 3; }));
    phone.set(u"serial"_s, "other-phone");
    phone.unplug();
    ASSERT_TRUE(waitFor([&] { return state->activeTransferCount() == 0; }));
    phone.plug();
    connectPhone();
    ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
    EXPECT_EQ(statuses().count(u"Waiting for the phone…"_s), 4) << statuses().toStdString();
    for (const char *name : {"A", "B", "C", "D"})
        EXPECT_FALSE(phone.exists(QString::fromLatin1(name)));

    phone.reset(u"bandwidth"_s);
    phone.set(u"serial"_s, DemoPhone::serial());
    connectPhone();
    ASSERT_TRUE(waitFor([&] { return state->waitingCount() == 0; }));
    waitForQueue();
    EXPECT_EQ(statuses(), u"A:Done|B:Done|C:Done|D:Done"_s);
    for (const char *name : {"A", "B", "C", "D"})
        EXPECT_EQ(phone.read(QString::fromLatin1(name)), QByteArray(100'000, *name));

    // What was queued for a phone that is not there is not even asked of it.
    state->transfers().pause();
    write(here(u"E"_s), "x");
    browseHere();
    select(BrowserSide::mac, u"E"_s);
    state->transferMacToAndroid();
    phone.set(u"serial"_s, "other-phone");
    connectPhone();
    const auto questions = [&] {
        const auto lines = phone.commandLines();
        return std::count_if(lines.begin(), lines.end(),
                             [](const QStringList &line) { return line.value(1) == DemoPhone::serial(); });
    };
    const auto before = questions();
    state->transfers().resume();
    waitForQueue();
    EXPECT_TRUE(statuses().startsWith(u"E:Waiting for the phone…|"_s)) << statuses().toStdString();
    EXPECT_EQ(questions(), before);
}

TEST_F(TransferTests, copiesGoOnWhileAnotherPhoneIsShown) {
    const QString other = u"A1"_s;
    QDir().mkpath(phone.otherRoot(other));
    phone.setOther(other, u"device"_s, u"Pixel 7"_s);
    for (const char *name : {"A", "B", "C", "D"})
        write(here(QString::fromLatin1(name)), QByteArray(100'000, *name));
    phone.set(u"bandwidth"_s, "0.000001"); // three copies stand still, A waits
    connectPhone();
    state->phones().show(DemoPhone::serial());
    ASSERT_TRUE(
        waitFor([&] { return state->device().id == DemoPhone::serial() && !state->isLoadingAndroid(); }));
    browseHere();
    state->selectAllVisible(BrowserSide::mac);
    state->transferMacToAndroid();
    ASSERT_TRUE(waitFor([&] { return copyOrder().size() == 3; }));
    state->phones().show(other);
    ASSERT_TRUE(waitFor([&] { return state->device().id == other && !state->isLoadingAndroid(); }));
    phone.reset(u"bandwidth"_s);
    waitForQueue();
    EXPECT_EQ(statuses(), u"A:Done|B:Done|C:Done|D:Done"_s);
    EXPECT_EQ(phone.read(u"A"_s), QByteArray(100'000, 'A'));
    EXPECT_TRUE(QDir(phone.otherRoot(other)).isEmpty());
}

TEST_F(TransferTests, twoSpellingsOfOneNameAreTwoWhereTheFileSystemSaysSo) {
    phone.write(u"one/photo.jpg"_s, QByteArray(50'000, '1'));
    phone.write(u"two/PHOTO.jpg"_s, QByteArray(50'000, '2'));
    phone.set(u"bandwidth"_s, "0.5");
    connectPhone();
    browseHere();
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    searchFor(u"photo"_s);
    ASSERT_TRUE(waitFor([&] { return !state->isSearchingAndroid(); }));
    ASSERT_EQ(state->androidSearchResults().size(), 2);
    int mostAtOnce = 0;
    QObject::connect(state.get(), &AppState::queueChanged, state.get(),
                     [&] { mostAtOnce = std::max(mostAtOnce, state->activeTransferCount()); });
    for (int times = 0; times < 2; ++times) {
        state->selectAllVisible(BrowserSide::android);
        state->transferAndroidToMac();
    }
    waitForQueue();
    EXPECT_EQ(statuses(), u"photo.jpg:Already there|PHOTO.jpg:Already there|photo.jpg:Done|PHOTO.jpg:Done"_s);
    EXPECT_EQ(mostAtOnce, 1) << "one place after the other";
    EXPECT_EQ(contents(here(u"photo.jpg"_s)), QByteArray(50'000, '1'));
    EXPECT_EQ(contents(here(u"PHOTO.jpg"_s)), QByteArray(50'000, '2'));
}

TEST_F(TransferTests, aFolderIsNotDoneWhileAFolderInItCannotBeRead) {
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
        EXPECT_EQ(statuses(), isClosed ? u"Trip:1 of 2 could not be copied"_s : u"Trip:Done"_s);
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
    EXPECT_TRUE(speeds.isEmpty()) << "too short to have a speed";
    EXPECT_TRUE(statuses().startsWith(u"Dir:1 already there"_s));
}

TEST_F(TransferTests, thePaneThatReceivesIsListedAgainWithoutASign) {
    for (const char *name : {"kept", "other"}) {
        phone.write(QString::fromLatin1(name), name);
        write(here(QString::fromLatin1(name)), name);
    }
    phone.write(u"from phone"_s, "x");
    write(here(u"another kept"_s), "y");
    connectPhone();
    browseHere();
    browsePhone(u"/sdcard"_s);
    int loadings = 0;
    for (const auto signal : {&AppState::isLoadingMacChanged, &AppState::isLoadingAndroidChanged})
        QObject::connect(state.get(), signal, state.get(), [&] { ++loadings; });
    const auto selectedNames = [&](BrowserSide side) {
        QStringList names;
        for (const FileItem &item : state->pane(side).items()) {
            if (state->pane(side).selectedIDs().contains(item.id))
                names.append(item.name);
        }
        return names.join(u' ');
    };

    select(BrowserSide::android, u"from phone"_s);
    state->transferAndroidToMac();
    select(BrowserSide::mac, u"kept"_s);
    ASSERT_TRUE(waitFor([&] { return namesOf(state->macItems()).contains(u"from phone"_s); }));
    EXPECT_EQ(selectedNames(BrowserSide::mac), u"kept"_s);

    state->clearSelection(BrowserSide::mac);
    select(BrowserSide::mac, u"another kept"_s);
    state->transferMacToAndroid();
    state->setAndroidSearchText(u"kept"_s);
    select(BrowserSide::android, u"kept"_s);
    ASSERT_TRUE(waitFor([&] { return namesOf(state->androidItems()).contains(u"another kept"_s); }));
    EXPECT_EQ(selectedNames(BrowserSide::android), u"kept"_s);
    EXPECT_EQ(state->androidSearchText(), u"kept"_s);
    EXPECT_EQ(namesOf(state->displayedAndroidItems()).join(u'|'), u"another kept|kept"_s);
    EXPECT_EQ(loadings, 0) << "nobody has asked for it";
    waitForQueue();

    // A pane that shows another folder meanwhile is left alone.
    state->setAndroidSearchText({});
    write(here(u"third"_s), "z");
    browseHere();
    state->clearSelection(BrowserSide::mac);
    select(BrowserSide::mac, u"third"_s);
    phone.makeFolder(u"Elsewhere"_s);
    phone.set(u"push.delay"_s, "0.3");
    state->transferMacToAndroid();
    browsePhone(u"/sdcard/Elsewhere"_s);
    const qsizetype before = listings();
    waitForQueue();
    EXPECT_TRUE(phone.exists(u"third"_s));
    EXPECT_TRUE(waitFor([] { return Background::workers().activeThreadCount() == 0; }));
    EXPECT_EQ(listings(), before);
    EXPECT_TRUE(state->androidItems().isEmpty());
}

TEST(TransferQueueTests, keepsOrderCountsAndClaims) {
    const auto item = [](const char *name, qint64 bytes, const char *folder = "/in") {
        QueueItem made;
        made.id = QUuid::createUuid();
        made.name = QString::fromLatin1(name);
        made.destinationFolder = QString::fromLatin1(folder);
        made.totalBytes = bytes;
        return made;
    };
    const auto anything = [](const QueueItem &) { return true; };
    const auto names = [](const QList<QueueItem> &items) {
        QString text;
        for (const QueueItem &each : items)
            text += each.name;
        return text;
    };
    TransferQueue queue;
    const QueueItem a = item("a", -5);
    const QueueItem b = item("b", 10);
    const QueueItem c = item("c", 20);
    const QueueItem d = item("d", 30, "/elsewhere");
    const QueueItem e = item("e", 15'000'000);
    queue.insertFront({e, d, a, b});
    queue.insertFront({c});
    EXPECT_EQ(names(queue.claim(1, anything)), u"b"_s);
    EXPECT_EQ(names(queue.claim(9, [&](const QueueItem &i) { return i.id != a.id; })), u"d"_s)
        << "what may not start is passed over; another folder is another run";
    EXPECT_EQ(names(queue.claim(9, anything)), u"a"_s) << "only neighbours go together";
    EXPECT_EQ(queue.find(a.id)->status.progress()->totalBytes, 0);
    EXPECT_EQ(queue.activeCount(), 3);
    EXPECT_EQ(queue.totalBytes(), 15'000'060);
    queue.setStatus(b.id, QueueItemStatus::Completed{{}, {}, 10});
    EXPECT_EQ(queue.completedCount(), 1);
    EXPECT_EQ(queue.doneBytes(), 10);
    EXPECT_EQ(names(queue.claim(9, anything)), u"ec"_s);
    EXPECT_EQ(names(queue.claim(9, anything)), QString());
    queue.setStatus(b.id, QueueItemStatus::Waiting());
    EXPECT_EQ(names(queue.claim(9, anything)), u"b"_s) << "one that waits again is seen";
    queue.setStatus(c.id, QueueItemStatus::Failed());
    EXPECT_TRUE(queue.remove(c.id));
    EXPECT_FALSE(queue.remove(c.id));
    EXPECT_EQ(queue.setStatus(c.id, QueueItemStatus::Completed()), -1);
    queue.setStatus(a.id, QueueItemStatus::NameTaken());
    EXPECT_TRUE(queue.clear());
    EXPECT_EQ(queue.items().size(), 3);
    EXPECT_EQ(queue.activeCount(), 3);
    EXPECT_EQ(queue.nameTakenCount() + queue.failedCount() + queue.completedCount(), 0);
}

TEST_F(TransferTests, aCopyWithoutAByteSaysSoKeepsWaitingAndCanBeStopped) {
    phone.write(u"a.bin"_s, QByteArray(4'000'000, 'a'));
    connectPhone();
    browseHere();
    for (const bool isStopped : {false, true}) {
        phone.set(u"pull.hang"_s, "on");
        select(BrowserSide::android, u"a.bin"_s);
        state->transferAndroidToMac();
        ASSERT_TRUE(waitFor([&] { return copyOrder() == (isStopped ? u"a.bina.bin"_s : u"a.bin"_s); }));
        ADBClient::setPatience(std::chrono::milliseconds(100));
        EXPECT_TRUE(waitFor([&] { return statuses() == u"a.bin:No data for 30 s"_s; }))
            << statuses().toStdString();
        ADBClient::setPatience(std::chrono::seconds(15));
        if (isStopped)
            state->removeQueueItem(state->queue().first().id);
        else
            phone.set(u"pull.hang"_s, "off");
        waitForQueue();
        EXPECT_EQ(statuses(), isStopped ? QString() : u"a.bin:Done"_s);
        EXPECT_EQ(QFile::exists(here(u"a.bin"_s)), !isStopped);
        state->clearQueue();
        QFile::remove(here(u"a.bin"_s));
    }
}
