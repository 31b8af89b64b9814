// The model on the demo phone and on temporary folders: what a person would see in its properties.

#include "support/ModelTest.h"
#include "support/Processes.h"

#include "State/FilePreview.h"
#include "Transfers/StagedName.h"

using namespace Qt::StringLiterals;
using namespace vantrel;

class AppStateTests : public ModelTest {
protected:
    /// The names in a list, in order.
    static QString shown(const QList<FileItem> &items) { return namesOf(items).join(u' '); }
    [[nodiscard]] QString shownOfPhone() const { return shown(state->androidItems()); }
    void losePhone() {
        phone.unplug();
        state->refreshDevice(PhoneWatch::Spinner::hidden);
        ASSERT_TRUE(waitFor([&] { return !state->device().isConnected; }));
    }
    /// Runs something that asks the phone, and waits until the phone was asked.
    template <class Call>
    auto asked(Call call) {
        const qsizetype before = phone.commandLines().size();
        auto running = call();
        EXPECT_TRUE(waitFor([&] { return phone.commandLines().size() > before; }));
        return running;
    }
    void finishSearch() {
        ASSERT_TRUE(waitFor([&] { return !state->isSearchingAndroid(); }));
    }
    void open(const FileItem &file) {
        state->openAndroidFile(file);
        ASSERT_TRUE(waitFor([&] { return !state->isOpeningAndroidFile(); }));
    }
};

TEST_F(AppStateTests, startsEmptyAndWithoutAPhone) {
    EXPECT_EQ(state->device(), AndroidDevice());
    EXPECT_EQ(state->macPath(), QDir::homePath());
    EXPECT_EQ(state->androidPathSegments(), QStringList{u"Internal Storage"_s});
    EXPECT_EQ(state->selectedShortcutID(), state->shortcuts().first().id);
    EXPECT_EQ(state->transferSpeedLabel() + state->remainingLabel() + state->macAvailableLabel(), u"———"_s);
    state->browseAndroid(u"/sdcard"_s);
    EXPECT_EQ(state->androidBrowseError(), u"Connect an Android device to browse storage."_s);
    state->openAndroidFile({{}, u"a"_s, u"/sdcard/a"_s, false, {}, {}, {}});
    EXPECT_EQ(state->androidBrowseError(), u"Connect an Android device to open files."_s);
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    searchFor(u"ab"_s);
    EXPECT_EQ(state->androidBrowseError(), u"Connect an Android device to search."_s);
    state->transferMacToAndroid();
    EXPECT_EQ(state->deviceStatusMessage(), u"Connect an Android device to transfer."_s);
}

TEST_F(AppStateTests, whatAnOlderRefreshLearnsIsDropped) {
    phone.write(u"Download/a.txt"_s, "x");
    for (const char *olderAnswer : {"none", "device"}) {
        phone.unplug();
        const auto gone = state->refreshDevice(PhoneWatch::Spinner::hidden);
        ASSERT_TRUE(waitFor([&] { return gone.isReady(); }));
        ASSERT_FALSE(state->device().isConnected);
        phone.set(u"state"_s, olderAnswer);
        phone.set(u"devices.delay"_s, "1.5");
        const auto older = asked([&] { return state->refreshDevice(PhoneWatch::Spinner::hidden); });
        phone.reset(u"devices.delay"_s);
        phone.plug();
        connectPhone();
        browsePhone(u"/sdcard/Download"_s);
        state->setAndroidSearchText(u"a"_s);
        ASSERT_FALSE(older.isReady());
        ASSERT_TRUE(waitFor([&] { return older.isReady(); }));
        EXPECT_TRUE(state->device().isConnected) << olderAnswer;
        EXPECT_EQ(state->deviceStatusMessage(), std::nullopt) << olderAnswer;
        EXPECT_EQ(state->androidCurrentPath(), u"/sdcard/Download"_s) << olderAnswer;
        EXPECT_EQ(state->androidSearchText(), u"a"_s) << olderAnswer;
        EXPECT_EQ(shown(state->displayedAndroidItems()), u"a.txt"_s) << olderAnswer;
        EXPECT_FALSE(state->isRefreshingDevice());
    }
}

TEST_F(AppStateTests, refreshesDoNotPileUp) {
    const auto questions = [&] { return phone.commandLines().count(QStringList{u"devices"_s}); };
    connectPhone();
    const auto before = questions();
    phone.set(u"devices.hang"_s, "on");
    const auto first = state->refreshDevice(PhoneWatch::Spinner::hidden);
    state->refreshDevice(PhoneWatch::Spinner::hidden);
    const auto shown = state->refreshDevice(PhoneWatch::Spinner::shown);
    EXPECT_TRUE(state->isRefreshingDevice());
    state->refreshDevice(PhoneWatch::Spinner::shown);
    state->refreshDevice(PhoneWatch::Spinner::hidden);
    ASSERT_TRUE(waitFor([&] { return questions() >= before + 2; }));
    phone.reset(u"devices.hang"_s);
    ASSERT_TRUE(waitFor([&] { return Background::workers().activeThreadCount() == 0; }));
    ASSERT_TRUE(waitFor([&] { return first.isReady() && shown.isReady(); }));
    EXPECT_EQ(questions(), before + 2);
    EXPECT_FALSE(state->isRefreshingDevice());
    // And the next one asks again.
    connectPhone();
    EXPECT_EQ(questions(), before + 3);
}

TEST_F(AppStateTests, aPhoneWhoseStorageCannotBeReadIsThere) {
    phone.write(u"Download/a.txt"_s, "x");
    phone.set(u"df.exit"_s, "1");
    connectPhone();
    EXPECT_EQ(state->device().totalBytes, 0);
    EXPECT_TRUE(state->deviceStatusMessage()->contains(u"storage"_s));
    EXPECT_EQ(shownOfPhone(), u"Download"_s);
    phone.reset(u"df.exit"_s);
    connectPhone();
    EXPECT_EQ(state->deviceStatusMessage(), std::nullopt);
    const AndroidDevice known = state->device();
    EXPECT_GT(known.totalBytes, 0);

    // What was known before stays, and so does the folder.
    browsePhone(u"/sdcard/Download"_s);
    phone.set(u"df.exit"_s, "1");
    connectPhone();
    EXPECT_EQ(state->device(), known);
    EXPECT_TRUE(state->deviceStatusMessage().has_value());
    EXPECT_EQ(shownOfPhone(), u"a.txt"_s);
    // Another phone's bytes are not its own.
    phone.set(u"serial"_s, "other-phone");
    connectPhone();
    EXPECT_EQ(state->device().totalBytes, 0);
}

TEST_F(AppStateTests, namesThatAreNoTextAreShownAndRefusedInWords) {
    phone.set(u"ls.stdout"_s, "-rw-rw---- 1 a a 5 2024-05-01 13:07 good\\ one\n"
                              "-rw-rw---- 1 a a 5 2024-05-01 13:07 bad\\377\n"
                              "drwxrwx--- 1 a a 5 2024-05-01 13:07 ba\\376\n");
    phone.set(u"ls.stderr"_s, "ls: /sdcard/x: Permission denied\n");
    phone.set(u"ls.exit"_s, "1");
    connectPhone();
    EXPECT_EQ(shownOfPhone(), u"ba\ufffd bad\ufffd good one"_s);
    EXPECT_EQ(state->androidFooterStats(), u"3 items • 10 bytes • 1 entry could not be read"_s);
    phone.set(u"ls.stderr"_s, "ls: /sdcard/x: x\nls: /sdcard/y: x\nls: /sdcard/z: x\n");
    browsePhone(u"/sdcard"_s);
    EXPECT_TRUE(state->androidFooterStats().endsWith(u" • 3 entries could not be read"_s));

    for (const FileItem &item : state->androidItems()) {
        state->openAndroidFile(item);
        if (!item.isNameExact) {
            EXPECT_EQ(state->androidBrowseError(),
                      u"“"_s + item.name + u"” can’t be opened: its name on the phone is not text."_s);
        }
    }
    ASSERT_TRUE(waitFor([&] { return !state->isOpeningAndroidFile(); }));
    browseHere();
    select(BrowserSide::android, u"bad\ufffd"_s);
    state->transferAndroidToMac();
    EXPECT_TRUE(state->queue().isEmpty());
    EXPECT_EQ(state->androidBrowseError(),
              u"“bad\ufffd” can’t be copied: its name on the phone is not text."_s);
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    EXPECT_EQ(state->androidBrowseError(),
              u"2 entries can’t be copied: their names on the phone are not text."_s);
    ASSERT_EQ(state->queue().size(), 1);
    EXPECT_EQ(state->queue().first().name, u"good one"_s);
    waitForQueue();
}

TEST_F(AppStateTests, aPhoneThatDoesNotAnswerIsGivenUp) {
    phone.write(u"a.txt"_s, "x");
    connectPhone();
    const auto usual = ADBClient::patience();
    EXPECT_EQ(usual, std::chrono::seconds(15));
    ADBClient::setPatience(std::chrono::milliseconds(300));
    const QString words = u"The phone does not answer."_s;
    phone.set(u"ls.hang"_s, "on");
    browsePhone(u"/sdcard"_s);
    EXPECT_EQ(state->androidBrowseError(), words);
    EXPECT_TRUE(processes::children().isEmpty()) << "its process goes on";
    phone.reset(u"ls.hang"_s);
    browsePhone(u"/sdcard"_s);
    EXPECT_EQ(shownOfPhone(), u"a.txt"_s) << "asked again, it answers";

    phone.set(u"pull.hang"_s, "on");
    open(state->androidItems().first());
    EXPECT_EQ(state->androidBrowseError(), words);
    EXPECT_TRUE(processes::children().isEmpty());

    phone.set(u"find.hang"_s, "on");
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    searchFor(u"ab"_s);
    finishSearch();
    EXPECT_EQ(state->androidBrowseError(), words);
    state->clearAndroidSearch();

    phone.set(u"getprop.hang"_s, "on");
    refresh();
    EXPECT_EQ(state->deviceStatusMessage(), words);
    EXPECT_EQ(state->phones().trouble(), PhoneTrouble::noAnswer);
    EXPECT_TRUE(processes::children().isEmpty());
    ADBClient::setPatience(usual);
}

TEST_F(AppStateTests, aListingOfThePhoneThatLeftIsDropped) {
    phone.write(u"a.txt"_s, "x");
    connectPhone();
    phone.set(u"ls.delay"_s, "0.5");
    const auto listing = asked([&] { return state->browseAndroid(u"/sdcard"_s); });
    losePhone();
    EXPECT_FALSE(state->isLoadingAndroid());
    ASSERT_FALSE(listing.isReady());
    ASSERT_TRUE(waitFor([&] { return listing.isReady(); }));
    EXPECT_TRUE(state->androidItems().isEmpty());
    EXPECT_EQ(state->androidBrowseError(), std::nullopt);
}

TEST_F(AppStateTests, onlyTheNewestListingIsApplied) {
    phone.write(u"slow/old.txt"_s, "x");
    phone.write(u"fast/new.txt"_s, "x");
    connectPhone();
    phone.set(u"ls.delay"_s, "0.5");
    const auto first = asked([&] { return state->browseAndroid(u"/sdcard/slow"_s); });
    phone.reset(u"ls.delay"_s);
    browsePhone(u"/sdcard/fast"_s);
    EXPECT_EQ(shownOfPhone(), u"new.txt"_s);
    ASSERT_TRUE(waitFor([&] { return first.isReady(); }));
    EXPECT_EQ(shownOfPhone(), u"new.txt"_s);
    EXPECT_EQ(state->androidCurrentPath(), u"/sdcard/fast"_s);

    for (const QString &name : {u"old"_s, u"new"_s})
        QDir().mkpath(here(name + u"/inside "_s + name));
    QStringList seen;
    QObject::connect(state.get(), &AppState::macItemsChanged, state.get(),
                     [&] { seen.append(shown(state->macItems())); });
    const auto older = state->browseMac(here(u"old"_s));
    const auto newer = state->browseMac(here(u"new"_s));
    ASSERT_TRUE(waitFor([&] { return older.isReady() && newer.isReady(); }));
    EXPECT_EQ(seen, QStringList{u"inside new"_s});
}

TEST_F(AppStateTests, anUnfinishedCallEndsWithoutEffectWhenTheModelIsGone) {
    phone.set(u"devices.hang"_s, "on");
    asked([&] { return state->refreshDevice(PhoneWatch::Spinner::shown); });
    state.reset();
    ADBClient::stopRunningTools();
    Background::finish();
    EXPECT_EQ(Background::workers().activeThreadCount(), 0);
}

TEST_F(AppStateTests, selectionFilterAndTheirTexts) {
    phone.write(u"Report.PDF"_s, QByteArray(2'100'000, 'x'));
    phone.write(u"b.txt"_s, "x");
    phone.write(u"c.txt"_s, "x");
    phone.makeFolder(u"Dir"_s);
    connectPhone();
    const auto android = BrowserSide::android;
    EXPECT_EQ(state->androidFooterStats(), u"4 items • 2.1 MB"_s);
    for (const QString &both :
         {u"|Nothing selected"_s, u"b.txt|1 file selected"_s, u"b.txt c.txt|2 files selected"_s,
          u"b.txt c.txt Dir|3 items selected"_s, u"Dir|1 folder selected"_s}) {
        state->clearSelection(android);
        for (const QString &name : both.section(u'|', 0, 0).split(u' ', Qt::SkipEmptyParts))
            select(android, name);
        EXPECT_EQ(state->androidSelectionSummary(), both.section(u'|', 1));
    }

    // The filter hides the folder; its selection stays while the box toggles what is shown.
    state->setAndroidSearchText(u" pdf "_s);
    EXPECT_EQ(shown(state->displayedAndroidItems()), u"Report.PDF"_s);
    EXPECT_EQ(state->androidFooterStats(), u"1 of 4 items • 2.1 MB"_s);
    EXPECT_EQ(state->androidSelectionSummary(), u"1 items selected"_s);
    state->toggleSelectAllVisible(android);
    EXPECT_EQ(state->androidSelectedIDs().size(), 2);
    EXPECT_EQ(state->selectAllState(android), PaneSelectAllState::all);
    state->toggleSelectAllVisible(android);
    EXPECT_EQ(state->androidSelectedIDs().size(), 1);
    state->setAndroidSearchText(u"   "_s);
    EXPECT_EQ(state->androidFooterStats(), u"4 items • 2.1 MB"_s);

    write(here(u"one"_s), "x");
    write(here(u"two"_s), "x");
    browseHere();
    state->selectAllVisible(BrowserSide::mac);
    EXPECT_EQ(state->macSelectionSummary(), u"2 selected"_s);
    state->toggleSelection(state->macItems().first(), BrowserSide::mac);
    EXPECT_EQ(state->macSelectionSummary(), u"1 selected"_s);
}

TEST_F(AppStateTests, searchesOnceWhenTypingRestsAndDropsLateHits) {
    phone.write(u"Download/abc.txt"_s, "12");
    phone.write(u"DCIM/xyz.txt"_s, "12");
    connectPhone();
    const auto finds = [&] {
        QStringList list;
        for (const QStringList &line : phone.commandLines()) {
            if (line.last().startsWith(u"find "_s))
                list.append(line.last());
        }
        return list;
    };
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    select(BrowserSide::android, u"DCIM"_s);
    searchFor(u"a"_s);
    EXPECT_TRUE(state->androidSelectedIDs().isEmpty());
    EXPECT_TRUE(state->isAndroidEverywhereSearchActive());
    EXPECT_FALSE(state->isSearchingAndroid());
    EXPECT_EQ(state->androidFooterStats(), u"Type at least 2 characters"_s);
    searchFor(u"xy"_s);
    searchFor(u" abc "_s);
    EXPECT_TRUE(state->isSearchingAndroid());
    finishSearch();
    ASSERT_EQ(finds().size(), 1);
    EXPECT_TRUE(finds().first().contains(u"'*abc*'"_s));
    EXPECT_EQ(shown(state->displayedAndroidItems()), u"abc.txt"_s);
    EXPECT_EQ(state->androidFooterStats(), u"1 result for “abc”"_s);

    // A search that was given up, by clearing it or by looking elsewhere: its late hits are dropped.
    phone.set(u"find.delay"_s, "0.3");
    for (const bool isCleared : {true, false}) {
        const auto before = finds().size();
        searchFor(u"xyz"_s);
        ASSERT_TRUE(waitFor([&] { return finds().size() > before; }));
        if (isCleared) {
            state->clearAndroidSearch();
        } else {
            state->setAndroidSearchScope(AndroidSearchScope::thisFolder);
            state->scheduleAndroidSearch();
        }
        EXPECT_FALSE(state->isSearchingAndroid());
        ASSERT_TRUE(waitFor([&] { return Background::workers().activeThreadCount() == 0; }));
        QCoreApplication::sendPostedEvents();
        EXPECT_TRUE(state->androidSearchResults().isEmpty()) << isCleared;
    }

    // A failed one says why; a good one takes the message away.
    phone.set(u"find.exit"_s, "1");
    phone.set(u"find.stderr"_s, "error: device offline\n");
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    state->scheduleAndroidSearch();
    finishSearch();
    EXPECT_EQ(state->androidBrowseError(), u"error: device offline"_s);
    phone.reset(u"find.exit"_s);
    state->scheduleAndroidSearch();
    finishSearch();
    EXPECT_EQ(state->androidBrowseError(), std::nullopt);
    EXPECT_EQ(shown(state->androidSearchResults()), u"xyz.txt"_s);
    state->clearAndroidSearch();
    EXPECT_EQ(shown(state->displayedAndroidItems()), u"DCIM Download"_s);
}

TEST_F(AppStateTests, opensAFileFromTheCacheAsItIsNow) {
    phone.write(u"Download/a.pdf"_s, "first");
    connectPhone();
    browsePhone(u"/sdcard/Download"_s);
    const QString local = FilePreview::cacheFolder() + u"/sdcard_Download_a.pdf/a.pdf"_s;
    const FileItem file = state->androidItems().first();
    state->openAndroidFile(file);
    EXPECT_TRUE(state->isOpeningAndroidFile());
    open(file);
    EXPECT_EQ(desktop.opened, QStringList{local});
    const QList<QStringList> asked = phone.commandLines();
    EXPECT_EQ(
        std::count_if(asked.begin(), asked.end(), [](const auto &line) { return line.contains(u"pull"_s); }),
        1)
        << "asked for twice, opened once";
    EXPECT_EQ(contents(local), "first");

    phone.write(u"Download/a.pdf"_s, "second");
    open(file);
    EXPECT_EQ(contents(local), "second");

    phone.deny(u"/sdcard/Download/a.pdf"_s);
    open(file);
    EXPECT_TRUE(state->androidBrowseError()->contains(u"Permission denied"_s));
    EXPECT_EQ(desktop.opened.size(), 2);
    EXPECT_EQ(shownOfPhone(), u"a.pdf"_s);

    connectPhone();
    browsePhone(u"/sdcard"_s);
    open(state->androidItems().first());
    EXPECT_EQ(state->androidBrowseError(), std::nullopt) << "a folder is none of its business";
}

TEST(FilePreviewTests, foldersStayInsideTheCache) {
    EXPECT_EQ(FilePreview::folderName(u"/sdcard/a b/c.pdf"_s), u"sdcard_a b_c.pdf"_s);
    for (const char *path : {"/", "///", "/..", "/.", ""})
        EXPECT_EQ(FilePreview::folderName(QString::fromLatin1(path)), u"root"_s) << path;
    const QString longPath = u"/sdcard/"_s + QString(300, u'x');
    EXPECT_EQ(FilePreview::folderName(longPath).size(), 64);
    EXPECT_NE(FilePreview::folderName(longPath), FilePreview::folderName(longPath + u'y'));
    EXPECT_FALSE(FilePreview::fetch({u"x"_s, u"/a"_s, u"../x"_s}, {}, {}).has_value());
}

TEST_F(AppStateTests, openingShowsHowFarItIsAndCanBeGivenUp) {
    phone.write(u"Download/film.mp4"_s, QByteArray(4'000'000, 'x'));
    connectPhone();
    browsePhone(u"/sdcard/Download"_s);
    phone.set(u"bandwidth"_s, "1");
    const FileItem film = state->androidItems().first();
    state->openAndroidFile(film);
    ASSERT_TRUE(waitFor([&] { return state->opening().percent() > 20; }));
    EXPECT_GT(processes::childrenCalled("pull"), 0);
    state->opening().stop();
    ASSERT_TRUE(waitFor([&] { return !state->isOpeningAndroidFile(); }));
    EXPECT_EQ(processes::childrenCalled("pull"), 0);
    EXPECT_EQ(state->opening().percent(), 0);
    EXPECT_EQ(state->androidBrowseError(), std::nullopt) << "whoever has stopped it knows";
    const QString folder = FilePreview::cacheFolder() + u"/sdcard_Download_film.mp4"_s;
    EXPECT_EQ(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList());
    EXPECT_EQ(desktop.opened, QStringList());

    phone.reset(u"bandwidth"_s);
    open(film);
    EXPECT_EQ(desktop.opened.size(), 1) << "what was stopped before does not count";
}

TEST_F(AppStateTests, whatDoesNotFitHereIsNotCopiedToBeOpened) {
    connectPhone();
    open({{}, u"vast"_s, u"/sdcard/vast"_s, false, qint64(1) << 60, {}, {}});
    EXPECT_TRUE(state->androidBrowseError()->endsWith(u" are free."_s))
        << state->androidBrowseError()->toStdString();
    for (const QStringList &line : phone.commandLines())
        EXPECT_FALSE(line.contains(u"pull"_s));
}

TEST_F(AppStateTests, aFileWithoutEndIsNotCopiedToBeOpened) {
    phone.set(u"endless"_s, "on");
    phone.set(u"bandwidth"_s, "300"); // else a disk is full before anybody has noticed
    connectPhone();
    for (const QByteArray &beginning : {QByteArray(1000, 'x'), QByteArray()}) { // of none no size is known
        phone.write(u"log"_s, beginning);
        browsePhone(u"/sdcard"_s);
        open(state->androidItems().last());
        EXPECT_EQ(state->androidBrowseError(), u"It was changed while it was copied."_s);
        EXPECT_EQ(desktop.opened, QStringList());
        const QString folder = FilePreview::cacheFolder() + u"/sdcard_log"_s;
        EXPECT_EQ(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                  QStringList());
    }
}

TEST_F(AppStateTests, oldPreviewsGoAndTheUsersWorkStays) {
    for (const char *name : {"seen", "edited"})
        phone.write(u"Download/"_s + QString::fromLatin1(name), "x");
    connectPhone();
    browsePhone(u"/sdcard/Download"_s);
    for (const FileItem &file : state->androidItems())
        open(file);
    ASSERT_EQ(desktop.opened.size(), 2);
    const QString edited = desktop.opened.first();
    const QString seen = desktop.opened.last();
    QFile::setPermissions(edited, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    // As a program leaves it that was killed in the middle.
    const QString name = StagedName::make();
    write(QFileInfo(edited).path() + u'/' + name + u"/edited"_s, "half of it");
    StagedName::release(name);
    const QDateTime now = QDateTime::currentDateTime();
    EXPECT_EQ(FilePreview::sweep(now.addDays(-1)), 2) << "fetched today";
    EXPECT_EQ(FilePreview::sweep(now.addDays(1)), 1);
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(seen).path()));
    EXPECT_EQ(contents(edited), "x");
    EXPECT_EQ(
        QDir(QFileInfo(edited).path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList{u"edited"_s});
}

TEST_F(AppStateTests, createsAFolder) {
    browseHere();
    desktop.nextText = u" \n "_s;
    const auto nameless = state->createMacFolder();
    desktop.nextText = std::nullopt;
    const auto cancelled = state->createMacFolder();
    ASSERT_TRUE(waitFor([&] { return nameless.isReady() && cancelled.isReady(); }));
    EXPECT_EQ(state->macBrowseError(), std::nullopt);
    const auto &question = desktop.textQuestions.last();
    EXPECT_EQ(question.message + u'|' + question.informativeText + u'|' + question.acceptLabel + u'|' +
                  question.cancelLabel + u'|' + question.initialText,
              u"New Folder|Enter a name for the new folder:|Create|Cancel|New Folder");
    EXPECT_TRUE(QDir(mac.filePath(u"here"_s)).isEmpty());

    desktop.nextText = u"  Trip "_s;
    state->createMacFolder();
    ASSERT_TRUE(waitFor([&] { return shown(state->macItems()) == u"Trip"_s; }));
    state->createMacFolder();
    ASSERT_TRUE(waitFor([&] { return state->macBrowseError().has_value(); }));
    EXPECT_EQ(state->macBrowseError(), u"File exists"_s);
    EXPECT_EQ(shown(state->macItems()), u"Trip"_s);
}

TEST_F(AppStateTests, theFooterKnowsItsLimits) {
    for (int i = 0; i <= DeviceSearch::resultLimit; ++i)
        phone.write(u"hit%1"_s.arg(i), "x");
    connectPhone();
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    searchFor(u"hit"_s);
    finishSearch();
    EXPECT_EQ(state->androidFooterStats(), u"Showing first 200 results for “hit”"_s);

    // Two sizes whose sum is beyond 64 bits.
    const QByteArray line = "-rw-rw---- 1 root everybody 9223372036854775807 2026-11-22 19:53 ";
    phone.set(u"ls.stdout"_s, line + "a\n" + line + "b\n");
    state->setAndroidSearchScope(AndroidSearchScope::thisFolder);
    searchFor({});
    browsePhone(u"/sdcard"_s);
    EXPECT_EQ(state->androidFooterStats(), u"2 items • 9.22 EB"_s);
}

TEST_F(AppStateTests, aNewFolderOnThePhone) {
    const QString file = u"taken"_s;
    const std::tuple<QString, QString> cases[] = {
        {u"plain"_s, {}},
        {u" two  words "_s, {}},
        {u"it's $(touch x) `y` \"q\" ; rm -rf *"_s, {}},
        {u"-p"_s, {}},
        {u"grüße 😀"_s, {}},
        {u"a\nb"_s, {}},
        {u"plain"_s, u"“plain” is there already. Choose another name."_s},
        {file, u"“taken” is there already. Choose another name."_s},
        {u"a/b"_s, u"A folder’s name can’t contain “/”."_s},
        {u".."_s, u"This can’t be a folder’s name. Choose another one."_s},
        {u"a\0b"_s, u"This can’t be a folder’s name. Choose another one."_s},
    };
    phone.write(u"place/taken"_s, "precious");
    state->createAndroidFolder();
    EXPECT_EQ(state->androidBrowseError(), u"Connect an Android device to create folders."_s);
    connectPhone();
    browsePhone(u"/sdcard/place"_s);
    for (const auto &[name, error] : cases) {
        desktop.nextText = name;
        const QSignalSpy loads(state.get(), &AppState::isLoadingAndroidChanged);
        state->createAndroidFolder();
        ASSERT_TRUE(waitFor([&] {
            return error.isEmpty() ? loads.count() == 2 : state->androidBrowseError().has_value();
        })) << name.toStdString();
        EXPECT_EQ(state->androidBrowseError().value_or(QString()), error) << name.toStdString();
        EXPECT_TRUE(!error.isEmpty() || namesOf(state->androidItems()).contains(name.trimmed()))
            << name.toStdString();
        browsePhone(u"/sdcard/place"_s);
    }
    EXPECT_EQ(state->androidItems().size(), 7) << "nothing else was made";
    EXPECT_EQ(phone.read(u"place/taken"_s), "precious");
    // An old phone, whose complaints come with its answer; and a question that is cancelled.
    phone.set(u"mkdir.stdout"_s, "mkdir: 'x': Read-only file system\nend\n");
    desktop.nextText = u"x"_s;
    state->createAndroidFolder();
    ASSERT_TRUE(waitFor([&] { return state->androidBrowseError().has_value(); }));
    EXPECT_EQ(state->androidBrowseError(), u"mkdir: 'x': Read-only file system"_s);
    const qsizetype asked = phone.commandLines().size();
    desktop.nextText.reset();
    state->createAndroidFolder();
    QCoreApplication::processEvents();
    EXPECT_EQ(phone.commandLines().size(), asked);
    // The user looks elsewhere while it is made.
    phone.reset(u"mkdir.stdout"_s);
    phone.set(u"mkdir.delay"_s, "0.2");
    desktop.nextText = u"later"_s;
    state->createAndroidFolder();
    browsePhone(u"/sdcard"_s);
    Background::finish();
    EXPECT_TRUE(phone.exists(u"place/later"_s));
    EXPECT_EQ(state->androidCurrentPath(), u"/sdcard"_s);
}
