// Which phone is shown, and how the model learns of it: from adb itself, or by looking.

#include "support/Environment.h"
#include "support/ModelTest.h"
#include "support/Processes.h"

#include "ADB/DeviceTracker.h"
#include "State/WirelessPhones.h"

using namespace Qt::StringLiterals;
using namespace vantrel;

class PhoneWatchTests : public ModelTest {
protected:
    [[nodiscard]] PhoneWatch &watch() const { return state->phones(); }
    [[nodiscard]] QTimer &timer() const { return *watch().findChild<QTimer *>(u"devicePoll"_s); }
    /// How often adb was asked something.
    [[nodiscard]] qsizetype asked(const QString &word) const {
        const auto lines = phone.commandLines();
        return std::count_if(lines.begin(), lines.end(),
                             [&](const QStringList &line) { return line.contains(word); });
    }
    [[nodiscard]] static qsizetype trackers() { return processes::childrenCalled("track-devices"); }
    void follow() {
        watch().start();
        ASSERT_TRUE(waitFor([&] { return asked(u"track-devices"_s) > 0; }));
    }
    /// Waits until the phone with this serial is shown, or none is.
    void waitForPhone(const QString &serial) {
        ASSERT_TRUE(waitFor([&] { return state->device().id == serial && !state->isLoadingAndroid(); }))
            << state->device().id.toStdString();
    }
    [[nodiscard]] QString listed() const {
        QStringList list;
        for (const ListedPhone &one : watch().phones())
            list.append(QString(one.serial % u' ' % one.state % u' ' % one.model).trimmed());
        return list.join(u'|');
    }

    const QString none = AndroidDevice().id;
};

TEST_F(PhoneWatchTests, adbTellsOfEveryPhoneThatComesAndGoes) {
    phone.unplug();
    follow();
    ASSERT_TRUE(waitFor([&] { return watch().trouble() == PhoneTrouble::noPhone; }));
    EXPECT_FALSE(timer().isActive()) << "something polls at rest";
    const QSignalSpy spinner(&watch(), &PhoneWatch::isRefreshingChanged);
    for (int i = 0; i < 3; ++i) {
        phone.plug();
        waitForPhone(DemoPhone::serial());
        EXPECT_EQ(timer().intervalAsDuration(), PhoneWatch::storageInterval);
        phone.unplug();
        waitForPhone(none);
        EXPECT_FALSE(timer().isActive());
    }
    EXPECT_EQ(asked(u"devices"_s), 0) << "nobody has to look";
    EXPECT_EQ(asked(u"getprop"_s), 3);
    EXPECT_EQ(asked(u"track-devices"_s), 1);
    EXPECT_EQ(spinner.count(), 0);

    EXPECT_EQ(trackers(), 1);
    watch().stop();
    EXPECT_EQ(trackers(), 0);
    watch().start();
    ASSERT_TRUE(waitFor([&] { return trackers() == 1; }));
    state.reset();
    EXPECT_EQ(trackers(), 0) << "the tracker outlives the model";
}

TEST_F(PhoneWatchTests, everyStateIsTold) {
    using enum PhoneTrouble;
    const std::pair<PhoneTrouble, QByteArrayList> cases[] = {
        {unauthorized, {"unauthorized"}},
        {authorizing, {"authorizing", "connecting"}},
        {offline, {"offline", "host"}},
        {recovery, {"recovery", "rescue"}},
        {sideload, {"sideload"}},
        {bootloader, {"bootloader"}},
        {noPhone, {"none"}},
        {noPermissions,
         {"no permissions (user in plugdev group; are your udev rules wrong?); see [http://x]"}}};
    follow();
    for (const auto &[trouble, words] : cases)
        for (const QByteArray &word : words) {
            phone.set(u"state"_s, word);
            ASSERT_TRUE(waitFor([&] { return watch().trouble() == trouble; })) << word.toStdString();
            EXPECT_EQ(state->deviceStatusMessage(), ADBError::noDevice().errorDescription())
                << word.toStdString();
            EXPECT_FALSE(state->device().isConnected);
            phone.plug();
            waitForPhone(DemoPhone::serial());
            EXPECT_EQ(watch().trouble(), PhoneTrouble::none);
        }
    watch().stop();
    const std::pair<const char *, PhoneTrouble> errors[] = {
        {"adb server version (41) doesn't match this client (39); killing...\nerror: protocol fault",
         serverRestarts},
        {"adb server is out of date.  killing...\n", serverRestarts},
        {"* daemon not running; starting now at tcp:5037\nADB server didn't ACK\nadb: error: cannot bind "
         "'tcp:5037': Address already in use",
         portTaken},
        {"* failed to start daemon\nadb: error: cannot connect to daemon at tcp:5037: Connection refused",
         portTaken},
        {"error: something new", other},
    };
    phone.set(u"devices.exit"_s, "1");
    for (const auto &[words, trouble] : errors) {
        phone.set(u"devices.stderr"_s, words);
        refresh();
        EXPECT_EQ(watch().trouble(), trouble) << words;
    }
}

TEST_F(PhoneWatchTests, thePhoneThatIsShownStaysShownWhileItIsReady) {
    QDir().mkpath(phone.otherRoot(u"A1"_s));
    phone.write(u"Download/mine.txt"_s, "1");
    write(phone.otherRoot(u"A1"_s) + u"/Download/other.txt"_s, "1");
    follow();
    waitForPhone(DemoPhone::serial());
    browsePhone(u"/sdcard/Download"_s);

    phone.setOther(u"A1"_s, u"unauthorized"_s);
    ASSERT_TRUE(waitFor([&] { return listed() == u"A1 unauthorized|demo-phone device Demo Phone"_s; }))
        << listed().toStdString();
    ASSERT_TRUE(waitFor([] { return Background::workers().activeThreadCount() == 0; }));
    EXPECT_EQ(asked(u"getprop"_s), 1) << "the one that is shown is known";
    phone.setOther(u"A1"_s, u"device"_s, u"Pixel 7"_s);
    ASSERT_TRUE(waitFor([&] { return listed() == u"A1 device Pixel 7|demo-phone device Demo Phone"_s; }))
        << listed().toStdString();
    ASSERT_TRUE(waitFor([] { return Background::workers().activeThreadCount() == 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(state->device().id, DemoPhone::serial()) << "adb lists the other one first";
    connectPhone(); // the look that the refresh button takes
    EXPECT_EQ(state->device().id, DemoPhone::serial());
    EXPECT_EQ(state->androidCurrentPath(), u"/sdcard/Download"_s);
    EXPECT_EQ(namesOf(state->androidItems()), QStringList{u"mine.txt"_s});

    phone.unplug(); // the first one that is ready takes its place
    waitForPhone(u"A1"_s);
    EXPECT_EQ(state->device().name, u"Pixel 7"_s);
    browsePhone(u"/sdcard/Download"_s);
    EXPECT_EQ(namesOf(state->androidItems()), QStringList{u"other.txt"_s});
    phone.plug();
    ASSERT_TRUE(waitFor([&] { return watch().phones().size() == 2; }));
    EXPECT_EQ(state->device().id, u"A1"_s);

    watch().show(DemoPhone::serial());
    waitForPhone(DemoPhone::serial());
    connectPhone();
    EXPECT_EQ(state->device().id, DemoPhone::serial()) << "what was chosen stays";

    // What a phone says after another one was chosen is not wanted any more.
    const auto chooseWhile = [&](const QString &word, const QString &next, const std::function<void()> &ask) {
        const qsizetype before = asked(word);
        phone.set(word + u".delay"_s, "1");
        ask();
        ASSERT_TRUE(waitFor([&] { return asked(word) > before; }));
        phone.reset(word + u".delay"_s);
        phone.reset(u"storage-used"_s);
        watch().show(next);
        ASSERT_TRUE(waitFor([] { return Background::workers().activeThreadCount() == 0; }));
        EXPECT_EQ(state->device().id, next);
        EXPECT_NE(state->device().usedBytes, 1'024'000) << "of the other one";
    };
    phone.set(u"storage-used"_s, "1024000");
    chooseWhile(u"df"_s, u"A1"_s, [&] { watch().refreshStorage(); });
    chooseWhile(u"getprop"_s, u"A1"_s, [&] { watch().show(DemoPhone::serial()); });
    watch().show(DemoPhone::serial());
    waitForPhone(DemoPhone::serial());
    phone.setOther(u"A1"_s, u"none"_s);
    ASSERT_TRUE(waitFor([&] { return watch().phones().size() == 1; }));
    EXPECT_EQ(state->device().id, DemoPhone::serial());
}

TEST_F(PhoneWatchTests, aPhoneThatWasConnectedIsShownAsSoonAsItIsReady) {
    const QString other = u"A1"_s;
    QDir().mkpath(phone.otherRoot(other));
    phone.insertCard(u"1A2B-3C4D"_s);
    phone.setOther(other, u"unauthorized"_s);
    follow();
    waitForPhone(DemoPhone::serial());
    ASSERT_TRUE(waitFor([&] { return watch().phones().size() == 2; }));
    EXPECT_EQ(watch().cards().size(), 1);
    watch().showWhenReady(other);
    EXPECT_FALSE(watch().isRefreshing()) << "it has yet to be allowed";
    phone.set(u"df.exit"_s, "1");
    phone.setOther(other, u"device"_s, u"Pixel 7"_s);
    waitForPhone(other);
    EXPECT_TRUE(watch().cards().isEmpty()) << "they are in the other phone";
    phone.reset(u"df.exit"_s);

    phone.setOther(other, u"unauthorized"_s);
    waitForPhone(DemoPhone::serial());
    watch().showWhenReady(other);
    watch().show(DemoPhone::serial(), PhoneWatch::Spinner::shown);
    ASSERT_TRUE(waitFor([&] { return !watch().isRefreshing(); }));
    phone.setOther(other, u"device"_s, u"Pixel 7"_s);
    ASSERT_TRUE(waitFor([&] { return listed().startsWith(u"A1 device"_s); }));
    ASSERT_TRUE(waitFor([] { return Background::workers().activeThreadCount() == 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(state->device().id, DemoPhone::serial()) << "the user has chosen it meanwhile";
}

TEST_F(PhoneWatchTests, aHundredPhonesAreListedAndASerialMayLookLikeAnOption) {
    phone.unplug();
    for (int i = 0; i < 100; ++i)
        phone.setOther(u"S%1"_s.arg(i), i % 2 == 0 ? u"offline"_s : u"unauthorized"_s);
    phone.setOther(u"-d"_s, u"device"_s, u"Odd One"_s);
    follow();
    waitForPhone(u"-d"_s);
    EXPECT_EQ(state->device().name, u"Odd One"_s);
    EXPECT_EQ(watch().phones().size(), 101);
}

TEST_F(PhoneWatchTests, phonesAreLookedForWhenAdbDoesNotTell) {
    // An adb that does not know the command, garbage, garbage behind a list, and a list without an end.
    for (const auto &[setting, value] : {std::pair(u"exit"_s, QByteArray("1")),
                                         {u"stdout"_s, "List of devices attached\n"},
                                         {u"stdout"_s, "0000zzzz"},
                                         {u"stdout"_s, "fffe"}}) {
        SCOPED_TRACE(value.toStdString());
        phone.resetAll();
        phone.unplug();
        phone.set(u"track-devices."_s + setting, value);
        follow();
        ASSERT_TRUE(waitFor([&] { return timer().isActive(); }));
        EXPECT_EQ(timer().intervalAsDuration(), PhoneWatch::lookInterval);
        const bool mayBecomeAList = value == "fffe";
        ASSERT_TRUE(waitFor([&] { return trackers() == (mayBecomeAList ? 1 : 0); }));
        phone.plug();
        timer().start(0);
        waitForPhone(DemoPhone::serial());
        EXPECT_EQ(asked(u"devices"_s), 1);
        phone.unplug();
        timer().start(0);
        waitForPhone(none);
        EXPECT_EQ(asked(u"devices"_s), 2);

        // An adb that cannot is not asked to with every look.
        const qsizetype attempts = asked(u"track-devices"_s);
        for (int look = 0; look < 8; ++look) {
            ASSERT_TRUE(waitFor([&] { return timer().isActive(); }));
            timer().start(0);
            ASSERT_TRUE(waitFor([&] { return asked(u"devices"_s) == 3 + look; }));
        }
        EXPECT_LE(asked(u"track-devices"_s), attempts + 1);
        watch().stop();
    }
}

TEST_F(PhoneWatchTests, aListThatBrokeOffIsNoPartOfTheNext) {
    phone.set(u"track-devices.stdout-noise"_s, "3");
    phone.set(u"track-devices.exit"_s, "0");
    follow();
    ASSERT_TRUE(waitFor([&] { return trackers() == 0; }));
    phone.resetAll();
    timer().start(0);
    waitForPhone(DemoPhone::serial());
    ASSERT_TRUE(waitFor([&] {
        return timer().isActive() && timer().intervalAsDuration() == PhoneWatch::storageInterval;
    })) << "it is followed";
}

TEST_F(PhoneWatchTests, whoTracksHearsThatThereIsNoTool) {
    const Environment bare{{{"VANTREL_RESOURCES", "/nowhere"}, {"PATH", "/nowhere"}}};
    if (ADBClient::resolveADBPath())
        GTEST_SKIP() << "there is one at a fixed place";
    DeviceTracker tracker;
    QSignalSpy ended(&tracker, &DeviceTracker::ended);
    tracker.start();
    EXPECT_TRUE(ended.isEmpty()) << "not before start() has returned";
    EXPECT_TRUE(waitFor([&] { return ended.count() == 1; }));
}

TEST_F(PhoneWatchTests, aSlowPhoneIsNotLookedForAgainBeforeItHasAnswered) {
    phone.set(u"track-devices.exit"_s, "1");
    phone.set(u"devices.hang"_s, "on");
    follow();
    ASSERT_TRUE(waitFor([&] { return timer().isActive(); }));
    timer().start(0);
    ASSERT_TRUE(waitFor([&] { return asked(u"devices"_s) == 1; }));
    EXPECT_FALSE(timer().isActive());
    state->refreshDevice(PhoneWatch::Spinner::hidden);
    watch().stop(); // a look that is under way now is the last one
    phone.reset(u"devices.hang"_s);
    waitForPhone(DemoPhone::serial());
    EXPECT_FALSE(timer().isActive());
    EXPECT_EQ(asked(u"devices"_s), 1);
}

TEST_F(PhoneWatchTests, theAnswerOfAPhoneThatHasLeftIsDropped) {
    phone.unplug();
    follow();
    ASSERT_TRUE(waitFor([&] { return watch().trouble() == PhoneTrouble::noPhone; }));
    phone.set(u"getprop.stdout"_s, "Late\n");
    phone.set(u"df.stdout"_s, "none"); // which is no reason not to show it
    phone.set(u"getprop.hang"_s, "on");
    phone.plug();
    ASSERT_TRUE(waitFor([] { return processes::childrenCalled("getprop") == 1; }));
    EXPECT_FALSE(timer().isActive()) << "nobody looks for it while it is asked";
    phone.unplug();
    ASSERT_TRUE(waitFor([&] { return watch().phones().isEmpty(); }));
    phone.reset(u"getprop.hang"_s);
    ASSERT_TRUE(waitFor([] { return Background::workers().activeThreadCount() == 0; }));
    QCoreApplication::processEvents();
    EXPECT_FALSE(state->device().isConnected);
    phone.plug();
    ASSERT_TRUE(waitFor([&] { return state->device().name == u"Late"_s; })) << "and shown when it is back";
}

TEST_F(PhoneWatchTests, aServerThatWasRestartedIsFollowedAgain) {
    follow();
    waitForPhone(DemoPhone::serial());
    phone.set(u"track-devices.exit"_s, "0");
    ASSERT_TRUE(waitFor([&] { return timer().intervalAsDuration() == PhoneWatch::lookInterval; }));
    EXPECT_TRUE(state->device().isConnected) << "a phone does not go with the server's word";
    phone.reset(u"track-devices.exit"_s);
    timer().start(0);
    ASSERT_TRUE(waitFor(
        [&] { return timer().isActive() && timer().intervalAsDuration() == PhoneWatch::storageInterval; }));
    EXPECT_EQ(trackers(), 1);

    const qsizetype looks = asked(u"devices"_s);
    watch().doubt();
    EXPECT_EQ(timer().intervalAsDuration(), PhoneWatch::lookInterval);
    timer().start(0);
    ASSERT_TRUE(waitFor(
        [&] { return timer().isActive() && timer().intervalAsDuration() == PhoneWatch::storageInterval; }));
    EXPECT_EQ(asked(u"devices"_s), looks + 1) << "once, though adb says that it is there";
    phone.unplug();
    waitForPhone(none);
}

TEST_F(PhoneWatchTests, theStorageIsAskedOnceAMinuteAndAfterCopies) {
    phone.write(u"a.bin"_s, "12345");
    follow();
    waitForPhone(DemoPhone::serial());
    ASSERT_TRUE(waitFor([&] { return timer().isActive(); }));
    const qsizetype before = asked(u"df"_s);
    phone.set(u"storage-used"_s, "30000000000");
    timer().start(0);
    ASSERT_TRUE(waitFor([&] { return state->device().usedBytes == 30'000'000'000; }))
        << state->device().usedBytes;
    EXPECT_EQ(asked(u"df"_s), before + 1);
    EXPECT_EQ(asked(u"getprop"_s), 1);
    EXPECT_EQ(asked(u"devices"_s), 0);
    EXPECT_EQ(timer().intervalAsDuration(), PhoneWatch::storageInterval);

    phone.set(u"storage-used"_s, "40000000000");
    browseHere();
    select(BrowserSide::android, u"a.bin"_s);
    state->transferAndroidToMac();
    waitForQueue();
    ASSERT_TRUE(waitFor([&] { return state->device().usedBytes == 40'000'000'000; }))
        << state->device().usedBytes;
    EXPECT_EQ(asked(u"df"_s), before + 2);
    // One that does not say keeps what is known.
    phone.set(u"df.exit"_s, "1");
    timer().start(0);
    ASSERT_TRUE(waitFor([&] { return asked(u"df"_s) == before + 5; })) << "of all, of /sdcard and of /data";
    ASSERT_TRUE(waitFor([&] { return timer().isActive(); }));
    EXPECT_EQ(state->device().usedBytes, 40'000'000'000);
    EXPECT_TRUE(state->device().isConnected);

    phone.reset(u"df.exit"_s);
    phone.set(u"df.delay"_s, "1");
    const qsizetype asks = asked(u"df"_s);
    timer().start(0);
    ASSERT_TRUE(waitFor([&] { return asked(u"df"_s) > asks; }));
    phone.unplug();
    waitForPhone(none);
    ASSERT_TRUE(waitFor([] { return Background::workers().activeThreadCount() == 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(state->device(), AndroidDevice()) << "the answer is of a phone that has left";
}

TEST_F(PhoneWatchTests, aCardIsBrowsedSearchedAndCopiedLikeTheRest) {
    const QString card = phone.insertCard(u"1A2B-3C4D"_s);
    write(card + u"/DCIM/on card.jpg"_s, "12345");
    phone.write(u"Download/in phone.jpg"_s, "1");
    connectPhone();
    const auto cards = watch().cards();
    ASSERT_EQ(cards.size(), 1);
    EXPECT_EQ(cards.first().path, u"/storage/1A2B-3C4D"_s);
    EXPECT_GT(state->device().cards.first().totalBytes, 0);
    browsePhone(cards.first().path);
    EXPECT_EQ(state->selectedShortcutID(), cards.first().id);
    browsePhone(u"/storage/1A2B-3C4D/DCIM"_s);
    EXPECT_EQ(namesOf(state->androidItems()), QStringList{u"on card.jpg"_s});

    browseHere();
    select(BrowserSide::android, u"on card.jpg"_s);
    state->transferAndroidToMac();
    waitForQueue();
    EXPECT_EQ(contents(here(u"on card.jpg"_s)), "12345");
    write(here(u"to card.txt"_s), "abc");
    browseHere();
    select(BrowserSide::mac, u"to card.txt"_s);
    state->transferMacToAndroid();
    waitForQueue();
    EXPECT_EQ(contents(card + u"/DCIM/to card.txt"_s), "abc") << statuses().toStdString();

    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    searchFor(u".jpg"_s);
    ASSERT_TRUE(waitFor([&] { return !state->isSearchingAndroid(); }));
    EXPECT_EQ(namesOf(state->androidSearchResults()), (QStringList{u"in phone.jpg"_s, u"on card.jpg"_s}));
}

TEST_F(PhoneWatchTests, aCardThatIsPulledOutEndsInTheMainStorage) {
    phone.write(u"mine.txt"_s, "1");
    write(phone.insertCard(u"1A2B-3C4D"_s) + u"/a.txt"_s, "1");
    phone.insertCard(u"00FF-00FF"_s);
    connectPhone();
    const QUuid other = watch().cards().last().id;
    for (const bool isListed : {false, true}) { // by the look at the storage, and by a listing that fails
        phone.insertCard(u"1A2B-3C4D"_s);
        connectPhone();
        ASSERT_EQ(watch().cards().size(), 2);
        browsePhone(u"/storage/1A2B-3C4D"_s);
        phone.pullCard(u"1A2B-3C4D"_s);
        isListed ? state->browseAndroid(u"/storage/1A2B-3C4D"_s) : watch().refreshStorage();
        ASSERT_TRUE(
            waitFor([&] { return state->androidBrowseError().value_or(QString()).startsWith(u'“'); }));
        EXPECT_EQ(*state->androidBrowseError(), u"“1A2B-3C4D” is no longer in the phone."_s);
        EXPECT_EQ(state->androidCurrentPath(), u"/sdcard"_s);
        EXPECT_EQ(namesOf(state->androidItems()), QStringList{u"mine.txt"_s});
        EXPECT_EQ(state->selectedShortcutID(), state->shortcuts().first().id);
        ASSERT_EQ(watch().cards().size(), 1);
        EXPECT_EQ(watch().cards().first().id, other);
    }
}

class WirelessPhonesTests : public ModelTest {
protected:
    const QString first = u"10.0.0.1:5555"_s;
    const QString second = u"10.0.0.2:5555"_s;

    /// Whether adb was told this about the address.
    [[nodiscard]] bool wasTold(const QString &word, const QString &address) const {
        const auto lines = phone.commandLines();
        return std::any_of(lines.begin(), lines.end(), [&](const QStringList &line) {
            return line == QStringList{word, address};
        });
    }
    void bothAnswer() {
        phone.set(u"wireless"_s, first);
        phone.set(u"wireless"_s, second);
    }
    static void end(const QCoro::Task<> &task) {
        ASSERT_TRUE(waitFor([&] { return task.isReady(); }));
    }
};

TEST_F(WirelessPhonesTests, whatIsRememberedIsAnAddressAndStandsOnceTheNewestLast) {
    WirelessPhones wireless({u"10.0.0.1"_s, u"no address"_s, first, second});
    ASSERT_EQ(wireless.remembered(), (QStringList{first, second}));
    bothAnswer();
    const QSignalSpy connected(&wireless, &WirelessPhones::connected);
    end(wireless.connectTo(first, {}, {}));
    EXPECT_EQ(wireless.remembered(), (QStringList{second, first}));
    EXPECT_EQ(connected.count(), 1);
}

TEST_F(WirelessPhonesTests, whatIsGivenUpComesToNothing) {
    WirelessPhones wireless({});
    const QSignalSpy connected(&wireless, &WirelessPhones::connected);
    bothAnswer();
    for (const bool isCancelled : {true, false}) { // else another is wanted
        phone.set(u"connect.hang"_s, "on");
        const auto givenUp = wireless.connectTo(first, {}, {});
        ASSERT_TRUE(waitFor([&] { return processes::childrenCalled("10.0.0.1") == 1; }));
        if (isCancelled) {
            wireless.cancel();
            EXPECT_TRUE(waitFor([&] { return processes::childrenCalled("connect") == 0; }));
        }
        const auto wanted = isCancelled ? QCoro::Task<>() : wireless.connectTo(second, {}, {});
        EXPECT_TRUE(waitFor([&] { return processes::childrenCalled("10.0.0.1") == 0; }));
        phone.reset(u"connect.hang"_s);
        end(givenUp);
        EXPECT_EQ(wireless.message(), QString());
        EXPECT_FALSE(wireless.remembered().contains(first));
        if (isCancelled)
            continue;
        end(wanted);
        EXPECT_EQ(wireless.remembered(), QStringList{second});
        EXPECT_EQ(connected.count(), 1);
        EXPECT_FALSE(wireless.isConnecting());
    }
}

TEST_F(WirelessPhonesTests, adbForgetsWhatDidNotAnswerAndWhatTheUserForgot) {
    WirelessPhones wireless({});
    end(wireless.connectTo(first, {}, {}));
    EXPECT_FALSE(wireless.message().isEmpty());
    EXPECT_TRUE(wasTold(u"disconnect"_s, first)) << "adb lists it as offline";

    bothAnswer();
    WirelessPhones remembering({first, second});
    phone.set(u"connect.hang"_s, "on");
    const auto reconnected = remembering.reconnect();
    ASSERT_TRUE(waitFor([&] { return processes::childrenCalled("10.0.0.1") == 1; }));
    end(remembering.forget(second));
    phone.reset(u"connect.hang"_s);
    end(reconnected);
    EXPECT_TRUE(wasTold(u"disconnect"_s, second));
    EXPECT_FALSE(wasTold(u"connect"_s, second));
}
