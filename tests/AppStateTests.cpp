// The model on the demo phone and on temporary folders: what a person would see in its properties.

#include "support/DemoPhone.h"
#include "support/FakeDesktop.h"
#include "support/Files.h"
#include "support/Printers.h"
#include "support/WaitFor.h"

#include "ADB/ADBClient.h"
#include "State/AppState.h"
#include "State/FilePreview.h"
#include "Worker/Worker.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <unistd.h>

using namespace vantrel;

namespace {

class AppStateTest : public ::testing::Test {
protected:
    AppStateTest() {
        phone.set(QStringLiteral("stderr-progress"), "off");
        qputenv("XDG_CACHE_HOME", QFile::encodeName(mac.filePath(QStringLiteral("cache"))));
    }
    ~AppStateTest() override {
        state.reset();
        ADBClient::stopRunningTools();
        Background::finish();
    }

    [[nodiscard]] QString here(const QString &name) const {
        return mac.filePath(QStringLiteral("here/") + name);
    }

    void browseHere() {
        QDir(mac.path()).mkpath(QStringLiteral("here"));
        state->browseMac(mac.filePath(QStringLiteral("here")));
        ASSERT_TRUE(waitFor([&] { return !state->isLoadingMac(); }));
    }
    void connectPhone() {
        state->refreshDevice(AppState::Spinner::shown);
        ASSERT_TRUE(waitFor([&] { return !state->isRefreshingDevice(); }));
        ASSERT_TRUE(state->device().isConnected)
            << state->deviceStatusMessage().value_or(QString()).toStdString();
        ASSERT_FALSE(state->isLoadingAndroid());
    }
    void browsePhone(const QString &path) {
        state->browseAndroid(path);
        ASSERT_TRUE(waitFor([&] { return !state->isLoadingAndroid(); }));
    }
    void select(BrowserSide side, const QString &name) {
        for (const FileItem &item : state->pane(side).visibleItems()) {
            if (item.name == name)
                return state->selectItem(item, side);
        }
        FAIL() << "no entry " << name.toStdString();
    }
    void searchFor(const QString &text) {
        state->setAndroidSearchText(text);
        state->scheduleAndroidSearch();
    }
    void waitForQueue() {
        ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
    }
    [[nodiscard]] QString statuses() const {
        QStringList list;
        for (const QueueItem &item : state->queue())
            list.append(QString(item.name % QLatin1Char(':') % item.progressLabel()));
        return list.join(QLatin1Char('|'));
    }
    /// The names in the order in which adb was asked to copy them.
    [[nodiscard]] QString copyOrder() const {
        QStringList list;
        for (const QStringList &line : phone.commandLines()) {
            const bool isPull = line.value(2) == QStringLiteral("pull");
            if (!isPull && line.value(2) != QStringLiteral("push"))
                continue;
            const QStringList sources = line.mid(isPull ? 4 : 3); // behind "pull -a" or "push"
            for (const QString &source : sources.mid(0, sources.size() - 1))
                list.append(QFileInfo(source).fileName());
        }
        return list.join(QString());
    }

    DemoPhone phone;
    QTemporaryDir mac;
    FakeDesktop desktop;
    std::unique_ptr<AppState> state = AppState::designPreview(desktop);
};

} // namespace

TEST_F(AppStateTest, startsEmptyAndWithoutAPhone) {
    EXPECT_EQ(state->device(), AndroidDevice());
    EXPECT_EQ(state->macPath(), QDir::homePath());
    EXPECT_EQ(state->androidPathSegments(), QStringList{QStringLiteral("Internal Storage")});
    EXPECT_EQ(state->selectedShortcutID(), state->shortcuts().first().id);
    EXPECT_EQ(state->transferSpeedLabel() + state->remainingLabel() + state->macAvailableLabel(),
              QStringLiteral("———"));
    state->browseAndroid(QStringLiteral("/sdcard"));
    EXPECT_EQ(state->androidBrowseError(), QStringLiteral("Connect an Android device to browse storage."));
    state->openAndroidFile({{}, QStringLiteral("a"), QStringLiteral("/sdcard/a"), false, {}, {}, {}});
    EXPECT_EQ(state->androidBrowseError(), QStringLiteral("Connect an Android device to open files."));
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    searchFor(QStringLiteral("ab"));
    EXPECT_EQ(state->androidBrowseError(), QStringLiteral("Connect an Android device to search."));
    state->transferMacToAndroid();
    EXPECT_EQ(state->deviceStatusMessage(), QStringLiteral("Connect an Android device to transfer."));
}

TEST_F(AppStateTest, notificationsAreSilentForEqualValues) {
    QSignalSpy scope(state.get(), &AppState::androidSearchScopeChanged);
    QSignalSpy selection(state.get(), &AppState::macSelectedIDsChanged);
    state->setAndroidSearchScope(AndroidSearchScope::thisFolder);
    state->clearSelection(BrowserSide::mac);
    EXPECT_EQ(scope.count() + selection.count(), 0);
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    const FileItem item{QUuid::createUuid(), {}, {}, false, {}, {}, {}};
    state->selectItem(item, BrowserSide::mac);
    state->selectItem(item, BrowserSide::mac);
    EXPECT_EQ(scope.count(), 1);
    EXPECT_EQ(selection.count(), 1);
}

TEST_F(AppStateTest, findsThePhoneShowsItAndLosesIt) {
    phone.write(QStringLiteral("Download/a.txt"), "x");
    phone.set(QStringLiteral("state"), "unauthorized");
    state->refreshDevice(AppState::Spinner::shown);
    EXPECT_TRUE(state->isRefreshingDevice());
    state->refreshDevice(AppState::Spinner::shown);
    ASSERT_TRUE(waitFor([&] { return !state->isRefreshingDevice(); }));
    EXPECT_EQ(state->deviceStatusMessage(), ADBError::noDevice().errorDescription());

    phone.plug();
    connectPhone();
    EXPECT_EQ(state->deviceStatusMessage(), std::nullopt);
    EXPECT_EQ(namesOf(state->androidItems()).join(u' '), QStringLiteral("Download"));

    // While the phone stays, a refresh leaves the pane alone.
    browsePhone(QStringLiteral("/sdcard/Download/"));
    EXPECT_EQ(state->selectedShortcutID(), state->shortcuts().at(1).id);
    select(BrowserSide::android, QStringLiteral("a.txt"));
    state->setAndroidSearchText(QStringLiteral("a"));
    connectPhone();
    EXPECT_EQ(state->androidCurrentPath(), QStringLiteral("/sdcard/Download"));
    EXPECT_EQ(state->androidSelectedIDs().size(), 1);
    EXPECT_EQ(state->androidSearchText(), QStringLiteral("a"));

    phone.unplug();
    state->refreshDevice(AppState::Spinner::hidden);
    ASSERT_TRUE(waitFor([&] { return !state->device().isConnected; }));
    EXPECT_TRUE(state->androidItems().isEmpty());

    // Another phone in its place is shown from the highlighted shortcut on.
    phone.plug();
    connectPhone();
    EXPECT_EQ(namesOf(state->androidItems()).join(u' '), QStringLiteral("a.txt"));
    phone.set(QStringLiteral("serial"), "other-phone");
    phone.write(QStringLiteral("Download/b.txt"), "x");
    connectPhone();
    EXPECT_EQ(namesOf(state->androidItems()).join(u' '), QStringLiteral("a.txt b.txt"));
}

TEST_F(AppStateTest, onlyTheNewestListingIsApplied) {
    phone.write(QStringLiteral("slow/old.txt"), "x");
    phone.write(QStringLiteral("fast/new.txt"), "x");
    connectPhone();
    phone.set(QStringLiteral("ls.delay"), "0.5");
    auto first = state->browseAndroid(QStringLiteral("/sdcard/slow"));
    ASSERT_TRUE(waitFor([&] { return phone.commandLines().last().last().contains(QStringLiteral("slow")); }));
    phone.reset(QStringLiteral("ls.delay"));
    browsePhone(QStringLiteral("/sdcard/fast"));
    EXPECT_EQ(namesOf(state->androidItems()).join(u' '), QStringLiteral("new.txt"));
    ASSERT_TRUE(waitFor([&] { return first.isReady(); }));
    EXPECT_EQ(namesOf(state->androidItems()).join(u' '), QStringLiteral("new.txt"));
    EXPECT_EQ(state->androidCurrentPath(), QStringLiteral("/sdcard/fast"));
}

TEST_F(AppStateTest, anUnfinishedCallEndsWithoutEffectWhenTheModelIsGone) {
    phone.set(QStringLiteral("devices.hang"), "on");
    state->refreshDevice(AppState::Spinner::shown);
    ASSERT_TRUE(waitFor([&] { return !phone.commandLines().isEmpty(); }));
    state.reset();
    ADBClient::stopRunningTools();
    Background::finish();
    EXPECT_EQ(Background::workers().activeThreadCount(), 0);
}

TEST_F(AppStateTest, selectionFilterAndTheirTexts) {
    phone.write(QStringLiteral("Report.PDF"), QByteArray(2'100'000, 'x'));
    phone.write(QStringLiteral("b.txt"), "x");
    phone.write(QStringLiteral("c.txt"), "x");
    phone.makeFolder(QStringLiteral("Dir"));
    connectPhone();
    const auto android = BrowserSide::android;
    EXPECT_EQ(state->androidFooterStats(), QStringLiteral("4 items • 2.1 MB"));
    EXPECT_EQ(state->androidSelectionSummary(), QStringLiteral("Nothing selected"));
    EXPECT_EQ(state->selectAllState(android), PaneSelectAllState::none);

    select(android, QStringLiteral("b.txt"));
    EXPECT_EQ(state->androidSelectionSummary(), QStringLiteral("1 file selected"));
    select(android, QStringLiteral("c.txt"));
    EXPECT_EQ(state->androidSelectionSummary(), QStringLiteral("2 files selected"));
    select(android, QStringLiteral("Dir"));
    EXPECT_EQ(state->androidSelectionSummary(), QStringLiteral("3 items selected"));
    EXPECT_EQ(state->selectAllState(android), PaneSelectAllState::partial);
    state->clearSelection(android);
    select(android, QStringLiteral("Dir"));
    EXPECT_EQ(state->androidSelectionSummary(), QStringLiteral("1 folder selected"));

    // The filter hides the folder; its selection stays while the box toggles what is shown.
    state->setAndroidSearchText(QStringLiteral(" pdf "));
    EXPECT_EQ(namesOf(state->displayedAndroidItems()).join(u' '), QStringLiteral("Report.PDF"));
    EXPECT_EQ(state->androidFooterStats(), QStringLiteral("1 of 4 items • 2.1 MB"));
    EXPECT_EQ(state->androidSelectionSummary(), QStringLiteral("1 items selected"));
    state->toggleSelectAllVisible(android);
    EXPECT_EQ(state->androidSelectedIDs().size(), 2);
    EXPECT_EQ(state->selectAllState(android), PaneSelectAllState::all);
    state->toggleSelectAllVisible(android);
    EXPECT_EQ(state->androidSelectedIDs().size(), 1);
    state->setAndroidSearchText(QStringLiteral("   "));
    EXPECT_EQ(state->androidFooterStats(), QStringLiteral("4 items • 2.1 MB"));
    state->setAndroidSearchText(QStringLiteral("no such name"));
    state->toggleSelectAllVisible(android);
    EXPECT_EQ(state->selectAllState(android), PaneSelectAllState::none);
    EXPECT_EQ(state->androidSelectedIDs().size(), 1);

    write(here(QStringLiteral("one")), "x");
    write(here(QStringLiteral("two")), "x");
    browseHere();
    EXPECT_EQ(state->macSelectionSummary(), QStringLiteral("Nothing selected"));
    state->selectAllVisible(BrowserSide::mac);
    EXPECT_EQ(state->macSelectionSummary(), QStringLiteral("2 selected"));
    state->toggleSelection(state->macItems().first(), BrowserSide::mac);
    EXPECT_EQ(state->macSelectionSummary(), QStringLiteral("1 selected"));
}

TEST_F(AppStateTest, searchesOnceWhenTypingRestsAndDropsLateHits) {
    phone.write(QStringLiteral("Download/abc.txt"), "12");
    phone.write(QStringLiteral("DCIM/xyz.txt"), "12");
    connectPhone();
    const auto finds = [&] {
        QStringList list;
        for (const QStringList &line : phone.commandLines()) {
            if (line.last().startsWith(QLatin1String("find ")))
                list.append(line.last());
        }
        return list;
    };
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    select(BrowserSide::android, QStringLiteral("DCIM"));
    searchFor(QStringLiteral("a"));
    EXPECT_TRUE(state->androidSelectedIDs().isEmpty());
    EXPECT_TRUE(state->isAndroidEverywhereSearchActive());
    EXPECT_FALSE(state->isSearchingAndroid());
    EXPECT_EQ(state->androidFooterStats(), QStringLiteral("Type at least 2 characters"));
    EXPECT_TRUE(state->displayedAndroidItems().isEmpty());
    searchFor(QStringLiteral("xy"));
    searchFor(QStringLiteral(" abc "));
    EXPECT_TRUE(state->isSearchingAndroid());
    ASSERT_TRUE(waitFor([&] { return !state->isSearchingAndroid(); }));
    ASSERT_EQ(finds().size(), 1);
    EXPECT_TRUE(finds().first().contains(QStringLiteral("'*abc*'")));
    EXPECT_EQ(namesOf(state->displayedAndroidItems()).join(u' '), QStringLiteral("abc.txt"));
    EXPECT_EQ(state->androidFooterStats(), QStringLiteral("1 result for “abc”"));

    // A search that was given up: its late hits are dropped.
    phone.set(QStringLiteral("find.delay"), "0.3");
    searchFor(QStringLiteral("xyz"));
    ASSERT_TRUE(waitFor([&] { return finds().size() == 2; }));
    state->setAndroidSearchScope(AndroidSearchScope::thisFolder);
    state->scheduleAndroidSearch();
    EXPECT_FALSE(state->isSearchingAndroid());
    ASSERT_TRUE(waitFor([&] { return Background::workers().activeThreadCount() == 0; }));
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(state->androidSearchResults().isEmpty());

    // A failed one says why; a good one takes the message away.
    phone.set(QStringLiteral("find.exit"), "1");
    phone.set(QStringLiteral("find.stderr"), "error: device offline\n");
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    state->scheduleAndroidSearch();
    ASSERT_TRUE(waitFor([&] { return !state->isSearchingAndroid(); }));
    EXPECT_EQ(state->androidBrowseError(), QStringLiteral("error: device offline"));
    phone.reset(QStringLiteral("find.exit"));
    state->scheduleAndroidSearch();
    ASSERT_TRUE(waitFor([&] { return !state->isSearchingAndroid(); }));
    EXPECT_EQ(state->androidBrowseError(), std::nullopt);
    EXPECT_EQ(namesOf(state->androidSearchResults()).join(u' '), QStringLiteral("xyz.txt"));
    state->clearAndroidSearch();
    EXPECT_EQ(namesOf(state->displayedAndroidItems()).join(u' '), QStringLiteral("DCIM Download"));
}

TEST_F(AppStateTest, opensAFileFromTheCacheSafely) {
    phone.write(QStringLiteral("Download/a.pdf"), "first");
    connectPhone();
    browsePhone(QStringLiteral("/sdcard/Download"));
    const QString folder = FilePreview::cacheFolder() + QStringLiteral("/sdcard_Download_a.pdf");
    const QString local = folder + QStringLiteral("/a.pdf");
    // A link that someone planted in the cache leads nowhere.
    const QString elsewhere = mac.filePath(QStringLiteral("elsewhere"));
    QDir().mkpath(elsewhere);
    QDir().mkpath(FilePreview::cacheFolder());
    ASSERT_EQ(::symlink(QFile::encodeName(elsewhere).constData(), QFile::encodeName(folder).constData()), 0);

    const FileItem file = state->androidItems().first();
    state->openAndroidFile(file);
    EXPECT_TRUE(state->isOpeningAndroidFile());
    state->openAndroidFile(file);
    ASSERT_TRUE(waitFor([&] { return !state->isOpeningAndroidFile(); }));
    EXPECT_EQ(desktop.opened, QStringList{local});
    EXPECT_EQ(contents(local), "first");
    EXPECT_TRUE(QDir(elsewhere).isEmpty());
    const auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther |
                        QFileDevice::WriteOther | QFileDevice::ExeOwner | QFileDevice::ExeGroup |
                        QFileDevice::ExeOther;
    EXPECT_FALSE(QFile::permissions(local) & others);

    phone.write(QStringLiteral("Download/a.pdf"), "second");
    state->openAndroidFile(file);
    ASSERT_TRUE(waitFor([&] { return !state->isOpeningAndroidFile(); }));
    EXPECT_EQ(contents(local), "second");

    phone.deny(QStringLiteral("/sdcard/Download/a.pdf"));
    state->openAndroidFile(file);
    ASSERT_TRUE(waitFor([&] { return !state->isOpeningAndroidFile(); }));
    EXPECT_TRUE(state->androidBrowseError()->contains(QStringLiteral("Permission denied")));
    EXPECT_EQ(desktop.opened.size(), 2);
    EXPECT_EQ(namesOf(state->androidItems()).join(u' '), QStringLiteral("a.pdf"));
}

TEST(FilePreview, foldersStayInsideTheCache) {
    EXPECT_EQ(FilePreview::folderName(QStringLiteral("/sdcard/a b/c.pdf")),
              QStringLiteral("sdcard_a b_c.pdf"));
    for (const char *path : {"/", "///", "/..", "/.", ""})
        EXPECT_EQ(FilePreview::folderName(QString::fromLatin1(path)), QStringLiteral("root")) << path;
    const QString longPath = QStringLiteral("/sdcard/") + QString(300, QLatin1Char('x'));
    EXPECT_EQ(FilePreview::folderName(longPath).size(), 64);
    EXPECT_NE(FilePreview::folderName(longPath), FilePreview::folderName(longPath + QLatin1Char('y')));
    EXPECT_FALSE(
        FilePreview::fetch(QStringLiteral("x"), QStringLiteral("/a"), QStringLiteral("../x")).has_value());
}

TEST_F(AppStateTest, createsAFolder) {
    browseHere();
    desktop.nextText = QStringLiteral(" \n ");
    state->createMacFolder();
    desktop.nextText = std::nullopt;
    state->createMacFolder();
    ASSERT_EQ(desktop.textQuestions.size(), 2);
    const auto &question = desktop.textQuestions.first();
    EXPECT_EQ(
        (QStringList{question.message, question.informativeText, question.acceptLabel, question.cancelLabel,
                     question.initialText}),
        (QStringList{QStringLiteral("New Folder"), QStringLiteral("Enter a name for the new folder:"),
                     QStringLiteral("Create"), QStringLiteral("Cancel"), QStringLiteral("New Folder")}));
    EXPECT_TRUE(QDir(mac.filePath(QStringLiteral("here"))).isEmpty());

    desktop.nextText = QStringLiteral("  Trip ");
    state->createMacFolder();
    ASSERT_TRUE(waitFor([&] { return namesOf(state->macItems()).join(u' ') == QStringLiteral("Trip"); }));
    state->createMacFolder();
    ASSERT_TRUE(waitFor([&] { return state->macBrowseError().has_value(); }));
    EXPECT_EQ(state->macBrowseError(), QStringLiteral("File exists"));
    EXPECT_EQ(namesOf(state->macItems()).join(u' '), QStringLiteral("Trip"));
}

TEST_F(AppStateTest, copiesFromTheBottomUpThreeAtATimeOldBatchesFirst) {
    for (const char *name : {"A", "B", "C", "D", "E"})
        phone.write(QString::fromLatin1(name), QByteArray(100'000, *name));
    write(here(QStringLiteral("F")), "from here");
    phone.set(QStringLiteral("bandwidth"), "0.15");
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    EXPECT_TRUE(state->androidSelectedIDs().isEmpty());
    EXPECT_EQ(state->activeTransferCount(), 3);
    EXPECT_EQ(state->waitingCount(), 2);
    EXPECT_EQ(namesOf(QList<FileItem>()).join(u' '), QString());
    EXPECT_EQ(
        statuses(),
        QStringLiteral("A:Waiting…|B:Waiting…|C:Zero KB / 100 KB|D:Zero KB / 100 KB|E:Zero KB / 100 KB"));
    select(BrowserSide::mac, QStringLiteral("F"));
    state->transferMacToAndroid();
    EXPECT_EQ(state->queue().first().name, QStringLiteral("F"));
    EXPECT_EQ(state->queue().first().destinationPath, QStringLiteral("/sdcard/F"));

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
    QObject::connect(state.get(), &AppState::remainingLabelChanged, state.get(), [&] {
        sawSpeed = sawSpeed || state->transferSpeedLabel().endsWith(QStringLiteral("/s"));
    });
    waitForQueue();
    EXPECT_EQ(mostAtOnce, 3);
    EXPECT_TRUE(sawSpeed);
    EXPECT_EQ(statuses(), QStringLiteral("F:Done|A:Done|B:Done|C:Done|D:Done|E:Done"));
    EXPECT_EQ(QStringView(started).mid(3), QStringLiteral("BAF"));
    EXPECT_EQ(state->transferSpeedLabel() + state->remainingLabel(), QStringLiteral("——"));
    for (const char *name : {"A", "B", "C", "D", "E"})
        EXPECT_EQ(contents(here(QString::fromLatin1(name))), QByteArray(100'000, *name));
    EXPECT_EQ(phone.read(QStringLiteral("F")), "from here");
    // Both panes show what they received.
    const QString all = QStringLiteral("A B C D E F");
    EXPECT_TRUE(waitFor([&] { return namesOf(state->macItems()).join(u' ') == all; }));
    EXPECT_TRUE(waitFor([&] { return namesOf(state->androidItems()).join(u' ') == all; }));
}

TEST_F(AppStateTest, neverOverwrites) {
    phone.write(QStringLiteral("same.txt"), "phone");
    phone.write(QStringLiteral("Dir/inner"), "phone");
    write(here(QStringLiteral("same.txt")), "mac");
    write(here(QStringLiteral("Dir/mine")), "mac");
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    waitForQueue();
    // The folder merges, the file with another content waits for the user.
    const QString outcome = QStringLiteral("Dir:Done|same.txt:Another “same.txt” is already there.");
    EXPECT_EQ(statuses(), outcome);
    EXPECT_EQ(contents(here(QStringLiteral("same.txt"))), "mac");
    EXPECT_EQ(contents(here(QStringLiteral("Dir/inner"))), "phone");
    EXPECT_EQ(contents(here(QStringLiteral("Dir/mine"))), "mac");
    state->clearQueue();

    state->selectAllVisible(BrowserSide::mac);
    state->transferMacToAndroid();
    waitForQueue();
    EXPECT_EQ(statuses(),
              QStringLiteral("Dir:1 copied, 1 already there|same.txt:Another “same.txt” is already there."));
    EXPECT_EQ(phone.read(QStringLiteral("same.txt")), "phone");
    EXPECT_EQ(phone.read(QStringLiteral("Dir/mine")), "mac");
    EXPECT_FALSE(phone.exists(QStringLiteral("Dir/Dir")));
}

TEST_F(AppStateTest, anEntryWaitsForThePhoneThatItWasQueuedFor) {
    for (const char *name : {"A", "B", "C", "D"})
        write(here(QString::fromLatin1(name)), QByteArray(100'000, *name));
    phone.set(QStringLiteral("bandwidth"), "0.000001"); // three copies stand still, A waits
    connectPhone();
    browseHere();
    state->selectAllVisible(BrowserSide::mac);
    state->transferMacToAndroid();
    ASSERT_TRUE(waitFor([&] { return copyOrder().size() == 3; }));
    phone.set(QStringLiteral("serial"), "other-phone");
    phone.unplug();
    ASSERT_TRUE(waitFor([&] { return state->activeTransferCount() == 0; }));
    phone.plug();
    connectPhone();
    ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
    EXPECT_EQ(statuses().count(QStringLiteral("Waiting for the phone…")), 4) << statuses().toStdString();
    for (const char *name : {"A", "B", "C", "D"})
        EXPECT_FALSE(phone.exists(QString::fromLatin1(name)));

    phone.reset(QStringLiteral("bandwidth"));
    phone.set(QStringLiteral("serial"), DemoPhone::serial());
    connectPhone();
    ASSERT_TRUE(waitFor([&] { return state->waitingCount() == 0; }));
    waitForQueue();
    EXPECT_EQ(statuses(), QStringLiteral("A:Done|B:Done|C:Done|D:Done"));
    for (const char *name : {"A", "B", "C", "D"})
        EXPECT_EQ(phone.read(QString::fromLatin1(name)), QByteArray(100'000, *name));
}

TEST_F(AppStateTest, twoSpellingsOfOneNameAreTwoWhereTheFileSystemSaysSo) {
    phone.write(QStringLiteral("one/photo.jpg"), QByteArray(50'000, '1'));
    phone.write(QStringLiteral("two/PHOTO.jpg"), QByteArray(50'000, '2'));
    phone.set(QStringLiteral("bandwidth"), "0.5");
    connectPhone();
    browseHere();
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    searchFor(QStringLiteral("photo"));
    ASSERT_TRUE(waitFor([&] { return !state->isSearchingAndroid(); }));
    ASSERT_EQ(state->androidSearchResults().size(), 2);
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    waitForQueue();
    EXPECT_EQ(statuses(), QStringLiteral("photo.jpg:Done|PHOTO.jpg:Done"));
    EXPECT_EQ(contents(here(QStringLiteral("photo.jpg"))), QByteArray(50'000, '1'));
    EXPECT_EQ(contents(here(QStringLiteral("PHOTO.jpg"))), QByteArray(50'000, '2'));
}

TEST_F(AppStateTest, aFolderIsNotDoneWhileAFolderInItCannotBeRead) {
    phone.write(QStringLiteral("Trip/open/a.txt"), "x");
    phone.makeFolder(QStringLiteral("Trip/empty"));
    phone.write(QStringLiteral("Trip/closed/b.txt"), "x");
    connectPhone();
    browseHere();
    for (const bool isClosed : {false, true}) {
        if (isClosed) {
            ASSERT_TRUE(QFile::setPermissions(phone.hostPath(QStringLiteral("Trip/closed")), {}));
        }
        select(BrowserSide::android, QStringLiteral("Trip"));
        state->transferAndroidToMac();
        waitForQueue();
        EXPECT_EQ(statuses(),
                  isClosed ? QStringLiteral("Trip:1 of 2 could not be copied") : QStringLiteral("Trip:Done"));
        state->clearQueue();
        QDir(here(QStringLiteral("Trip"))).removeRecursively();
    }
    QFile::setPermissions(phone.hostPath(QStringLiteral("Trip/closed")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST_F(AppStateTest, theFooterKnowsItsLimits) {
    for (int i = 0; i <= DeviceSearch::resultLimit; ++i)
        phone.write(QStringLiteral("hit%1").arg(i), "x");
    connectPhone();
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    searchFor(QStringLiteral("hit"));
    ASSERT_TRUE(waitFor([&] { return !state->isSearchingAndroid(); }));
    EXPECT_EQ(state->androidFooterStats(), QStringLiteral("Showing first 200 results for “hit”"));

    // Two sizes whose sum is beyond 64 bits.
    const QByteArray line = "-rw-rw---- 1 root everybody 9223372036854775807 2026-11-22 19:53 ";
    phone.set(QStringLiteral("ls.stdout"), line + "a\n" + line + "b\n");
    state->setAndroidSearchScope(AndroidSearchScope::thisFolder);
    searchFor({});
    browsePhone(QStringLiteral("/sdcard"));
    EXPECT_EQ(state->androidFooterStats(), QStringLiteral("2 items • 9.22 EB"));
}

TEST_F(AppStateTest, aFolderHasNoSizeAndASmallQueueIsTakenUpAgain) {
    phone.write(QStringLiteral("Dir/sub/a.txt"), "deep");
    connectPhone();
    browseHere();
    select(BrowserSide::android, QStringLiteral("Dir"));
    QStringList speeds;
    QObject::connect(state.get(), &AppState::transferSpeedLabelChanged, state.get(),
                     [&] { speeds.append(state->transferSpeedLabel()); });
    state->transferAndroidToMac();
    EXPECT_EQ(state->queue().first().progressLabel(), QStringLiteral("Transferring…"));
    // Queued from within the notification of the end: a new run takes it.
    QObject::connect(state.get(), &AppState::isTransferringChanged, state.get(), [&] {
        if (!state->isTransferring() && state->queue().size() == 1) {
            state->selectItem(state->androidItems().first(), BrowserSide::android);
            state->transferAndroidToMac();
        }
    });
    ASSERT_TRUE(waitFor([&] { return state->queue().size() == 2 && !state->isTransferring(); }));
    EXPECT_EQ(contents(here(QStringLiteral("Dir/sub/a.txt"))), "deep");
    EXPECT_TRUE(speeds.isEmpty()) << "too short to have a speed";
    EXPECT_TRUE(statuses().startsWith(QStringLiteral("Dir:1 already there")));
}

TEST(TransferQueue, keepsOrderCountsAndClaims) {
    const auto item = [](const char *name, qint64 bytes, const char *folder = "/in") {
        QueueItem made;
        made.id = QUuid::createUuid();
        made.name = QString::fromLatin1(name);
        made.destinationPath = QString::fromLatin1(folder) + u'/' + made.name;
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
    EXPECT_EQ(names(queue.claim(1, anything)), QStringLiteral("b"));
    EXPECT_EQ(names(queue.claim(9, [&](const QueueItem &i) { return i.id != a.id; })), QStringLiteral("d"))
        << "what may not start is passed over; another folder is another run";
    EXPECT_EQ(names(queue.claim(9, anything)), QStringLiteral("a")) << "only neighbours go together";
    EXPECT_EQ(queue.find(a.id)->status.progress()->totalBytes, 0);
    EXPECT_EQ(queue.activeCount(), 3);
    EXPECT_EQ(queue.totalBytes(), 15'000'060);
    queue.setStatus(b.id, QueueItemStatus::Completed{{}, {}, 10});
    EXPECT_EQ(queue.completedCount(), 1);
    EXPECT_EQ(queue.doneBytes(), 10);
    EXPECT_EQ(names(queue.claim(9, anything)), QStringLiteral("ec"));
    EXPECT_EQ(names(queue.claim(9, anything)), QString());
    queue.setStatus(b.id, QueueItemStatus::Waiting());
    EXPECT_EQ(names(queue.claim(9, anything)), QStringLiteral("b")) << "one that waits again is seen";
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
