#include "App/System/Settings.h"
#include "App/System/SingleInstance.h"
#include "App/System/UsageAnalytics.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/WaitFor.h"

#include <QtNetwork>
#include <QtTest>
#include <gmock/gmock.h>

#include <atomic>
#include <sys/stat.h>
#include <thread>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using ::testing::StartsWith;

class SettingsTests : public ::testing::Test {
protected:
    QTemporaryDir directory;
    QString path = directory.filePath(u"vantrel/settings.ini"_s);
};

TEST_F(SettingsTests, areReadAsTheyAreStored) {
    const QString zoom = u"Maximize"_s;
    for (const auto &[text, isDark, doubleClick, analyticsDisabled] :
         {std::tuple(QByteArray(), false, zoom, false),
          {"[General]\nappearancePreference=dark\nAppleActionOnDoubleClick=Minimize\n", true, u"Minimize"_s,
           false},
          {"appearancePreference=Dark\nAppleActionOnDoubleClick=None\nanalyticsDisabled=false\n", false,
           u"None"_s, false},
          {"appearancePreference=dark, light\nAppleActionOnDoubleClick=\nanalyticsDisabled=1\n", false, zoom,
           true},
          {"[Other]\nappearancePreference=dark\n", false, zoom, false},
          {"# mine\n; too\n\n  appearancePreference = dark \r\nanalyticsDisabled = TRUE\n", true, zoom, true},
          {"\xef\xbb\xbf[General]\nanalyticsDisabled=please\n", false, zoom, true}}) {
        SCOPED_TRACE(text.toStdString());
        write(path, text);
        const Settings settings(path);
        EXPECT_EQ(settings.appearancePreference() == ColorScheme::dark, isDark);
        EXPECT_EQ(settings.doubleClickAction(), doubleClick);
        EXPECT_EQ(settings.analyticsDisabled(), analyticsDisabled);
    }
}

TEST_F(SettingsTests, theWindowsGeometryIsStoredOrCountsAsNotSet) {
    const WindowGeometry left{QSize(1300, 800), QPoint(-40, 20), true};
    {
        Settings settings(path);
        EXPECT_EQ(settings.windowGeometry(), WindowGeometry());
        settings.setWindowGeometry(left);
    }
    EXPECT_EQ(contents(path), "windowPosition=-40,20\nwindowSize=1300x800\nwindowZoomed=true\n");
    {
        Settings settings(path);
        EXPECT_EQ(settings.windowGeometry(), left);
        settings.setWindowGeometry({.size = QSize(1100, 720)});
        EXPECT_EQ(settings.windowGeometry().position, left.position) << "where the desktop does not tell";
    }
    for (const char *nonsense : {"", "1300x", "x800", "1300x800x2", "-1300x800", "0x0", "1300,800", "1e3x800",
                                 "99999999999x800", "2000000x2", "-2147483648x1"}) {
        write(path,
              QByteArray("windowSize=") + nonsense + "\nwindowPosition=" + nonsense + "\nwindowZoomed=1");
        const WindowGeometry read = Settings(path).windowGeometry();
        EXPECT_FALSE(read.size) << nonsense;
        EXPECT_EQ(read.position.has_value(), QByteArray(nonsense) == "1300,800") << nonsense;
        EXPECT_FALSE(read.isZoomed);
    }
}

TEST_F(SettingsTests, theTilesHaveOneOfTheirSizesWhateverIsStored) {
    const std::pair<const char *, int> cases[] = {{"", 96},
                                                  {"tileSize=120\n", 120},
                                                  {"tileSize=131\n", 120},
                                                  {"tileSize=99999\n", 240},
                                                  {"tileSize=-5\n", 72},
                                                  {"tileSize=large\n", 96}};
    for (const auto &[text, size] : cases) {
        write(path, QByteArray("[General]\n") + text);
        EXPECT_EQ(Settings(path).tileSize(), size) << text;
    }
    Settings(path).setTileSize(168);
    EXPECT_EQ(Settings(path).tileSize(), 168);
}

TEST_F(SettingsTests, eachPaneHasItsOrder) {
    const FileOrder newest{FileSortKey::modified, Qt::DescendingOrder};
    Settings(path).setFileOrder(BrowserSide::mac, newest);
    EXPECT_EQ(Settings(path).fileOrder(BrowserSide::mac), newest);
    EXPECT_EQ(Settings(path).fileOrder(BrowserSide::android), FileOrder());
}

TEST_F(SettingsTests, damagedOnesAreSetAsideAndMayHaveSaidNo) {
    constexpr char binary[] = "\x89PNG\0\xff\xfe[]=%%\n]]";
    const QByteArray random = QByteArray(binary, sizeof binary).repeated(200);
    for (const QByteArray &damaged : {QByteArray("[General\nappearancePreference dark\n"), random}) {
        write(path, damaged);
        EXPECT_TRUE(Settings(path).analyticsDisabled());
        {
            Settings settings(path);
            EXPECT_TRUE(settings.analyticsDisabled()) << "the next start has not forgotten";
            QSignalSpy changes(&settings, &Settings::analyticsDisabledChanged);
            settings.setAnalyticsDisabled(false);
            settings.setAnalyticsDisabled(false);
            EXPECT_EQ(changes.count(), 1);
        }
        EXPECT_FALSE(Settings(path).analyticsDisabled());
        EXPECT_TRUE(contents(path + u".damaged"_s) == damaged);
    }
    // A pipe that nobody ever writes to: it is not waited for.
    QFile::remove(path);
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_TRUE(Settings(path).analyticsDisabled());
}

TEST_F(SettingsTests, areChangedWithoutDisturbingWhatPeopleWrote) {
    for (const auto &[before, after] :
         {std::pair<QByteArray, QByteArray>{"", "analyticsDisabled=true\nappearancePreference=dark\n"},
          {"# my choices\n\nappearancePreference = light\n# the end",
           "# my choices\n\nappearancePreference=dark\n# the end\nanalyticsDisabled=true\n"},
          {"[Other]\nanalyticsDisabled=x\n\n[General]\nAppleActionOnDoubleClick=None\n\n[Last]\nk=v\n",
           "[Other]\nanalyticsDisabled=x\n\n[General]\nAppleActionOnDoubleClick=None\n"
           "analyticsDisabled=true\nappearancePreference=dark\n\n[Last]\nk=v\n"},
          {"appearancePreference=a\nother=@Variant(x)\nappearancePreference=b\n",
           "appearancePreference=dark\nother=@Variant(x)\nappearancePreference=dark\n"
           "analyticsDisabled=true\n"}}) {
        write(path, before);
        Settings settings(path);
        settings.setAppearancePreference(ColorScheme::dark);
        settings.setAnalyticsDisabled(true);
        EXPECT_TRUE(settings.save());
        EXPECT_EQ(contents(path), after);
        // Another copy of the program stores its own changes and no others.
        Settings other(path);
        write(path, contents(path).replace("=dark", "=light"));
        other.setAnalyticsDisabled(false);
        EXPECT_TRUE(other.save());
        EXPECT_EQ(Settings(path).appearancePreference(), ColorScheme::light);
        EXPECT_FALSE(Settings(path).analyticsDisabled());
    }
}

TEST_F(SettingsTests, workWithoutAPlaceToStoreThem) {
    write(directory.filePath(u"obstacle"_s), "");
    ASSERT_TRUE(QDir().mkpath(directory.filePath(u"folder.ini"_s)));
    for (const QString &nowhere : {directory.filePath(u"obstacle/settings.ini"_s),
                                   directory.filePath(u"folder.ini"_s), u"/proc/vantrel/settings.ini"_s}) {
        Settings settings(nowhere);
        settings.setAppearancePreference(ColorScheme::dark);
        QSignalSpy problems(&settings, &Settings::problemChanged);
        EXPECT_TRUE(problems.wait()) << "it is tried without being told";
        EXPECT_FALSE(settings.save()) << nowhere.toStdString();
        EXPECT_THAT(settings.problem().toStdString(),
                    StartsWith("The settings could not be stored: " + nowhere.toStdString()));
        EXPECT_EQ(problems.count(), 1) << "said once";
        EXPECT_EQ(settings.appearancePreference(), ColorScheme::dark) << "until the program ends";
    }
}

TEST(UsageAnalyticsTests, followsTheSettings) {
    const QTemporaryDir home;
    const Environment environment({{"XDG_CONFIG_HOME", home.path().toUtf8()},
                                   {"XDG_CACHE_HOME", home.path().toUtf8()},
                                   {"DO_NOT_TRACK", "0"}});
    Settings settings(home.filePath(u"settings.ini"_s));
    settings.setAnalyticsDisabled(true);
    const auto kept = [&home](const QString &key) {
        const QStringList files = QDir(home.path()).entryList({u"com.telemetrydeck.*.ini"_s});
        return PreferencesFile(home.filePath(files.value(0, u"none"_s))).value(key);
    };
    const auto identifier = [&kept] { return kept(u"defaultUserIdentifier"_s); };
    startUsageAnalytics(settings, QUrl());
    settings.setAnalyticsDisabled(false);
    EXPECT_FALSE(QTest::qWaitFor([&] { return !identifier().isEmpty(); }, 1000)) << "no destination";
    settings.setAnalyticsDisabled(true);

    const QString cache =
        QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + u"/telemetrysignalcache"_s;
    write(cache, "[]"); // left by an earlier run
    startUsageAnalytics(settings, QUrl(u"https://localhost:1/"_s));
    QStringList users;
    for (int time = 0; time < 2; ++time) {
        EXPECT_TRUE(settings.save());
        EXPECT_EQ(QDir(home.path()).entryList(QDir::Files | QDir::Hidden), QStringList(u"settings.ini"_s))
            << "nothing is kept for those who say no";
        EXPECT_FALSE(QFile::exists(cache));
        settings.setAnalyticsDisabled(false);
        EXPECT_TRUE(waitFor([&] { return !identifier().isEmpty(); }));
        users.append(identifier());
        // From its first second on, and not with the half minute that follows.
        EXPECT_TRUE(QTest::qWaitFor([&] { return !kept(u"recentSessions"_s).isEmpty(); }, 20'000));
        settings.setAnalyticsDisabled(true);
    }
    EXPECT_NE(users.constFirst(), users.constLast());
}

class SingleInstanceTests : public ::testing::Test {
protected:
    using Role = SingleInstance::Role;

    QTemporaryDir directory{QDir::tempPath() + u"/v-XXXXXX"_s}; // sockets have short names

    /// A start while the event loop of the first one runs, or this is done.
    Role startAgain(
        const QByteArray &token = {}, const QString &screen = {},
        const std::function<void()> &meanwhile = [] {}) {
        std::atomic<bool> ended = false;
        Role role = Role::alone;
        std::thread second([&] {
            role = SingleInstance(directory.path(), screen).claim(token);
            ended = true;
        });
        meanwhile();
        EXPECT_TRUE(QTest::qWaitFor([&] { return ended.load(); }));
        second.join();
        return role;
    }
};

TEST_F(SingleInstanceTests, aSecondStartRaisesTheFirst) {
    auto first = std::make_unique<SingleInstance>(directory.path(), QString());
    ASSERT_EQ(first->claim(), Role::first);
    QSignalSpy raised(first.get(), &SingleInstance::raiseRequested);
    for (const QByteArray &token : {QByteArray("token-1"), QByteArray()}) {
        EXPECT_EQ(startAgain(token), Role::second);
        ASSERT_EQ(raised.count(), 1);
        EXPECT_EQ(raised.takeFirst(), QVariantList{token});
    }

    // The user's other session would not see that window: it has one of its own, and a second start there.
    SingleInstance elsewhere(directory.path(), u"/tmp/a path/:1"_s);
    EXPECT_EQ(elsewhere.claim(), Role::first);
    QSignalSpy raisedElsewhere(&elsewhere, &SingleInstance::raiseRequested);
    EXPECT_EQ(startAgain("token-2", u"/tmp/a path/:1"_s), Role::second);
    EXPECT_EQ(raisedElsewhere.count(), 1);
    EXPECT_EQ(raised.count(), 0);

    first.reset();
    SingleInstance next(directory.path(), QString());
    EXPECT_EQ(next.claim(), Role::first);
}

TEST_F(SingleInstanceTests, readsTheScreenAndTheTokenFromTheEnvironment) {
    using Values = std::array<QByteArray, 4>;
    const QByteArray mine = directory.path().toLocal8Bit();
    for (const auto &[values, screen, token] :
         {std::tuple(Values{"", "", "", ""}, u""_s, QByteArray()),
          {Values{"wayland-1", ":0", "t", "id_TIME5"}, u"wayland-1"_s, "t"},
          {Values{mine + "/wayland-1", "", "", ""}, u"wayland-1"_s, ""},
          {Values{"/run/wayland-1", "", "", ""}, u"/run/wayland-1"_s, ""},
          {Values{"", ":1", "", "id_TIME5"}, u":1"_s, "id_TIME5"},
          {Values{"", ":1.0", "", ""}, u":1"_s, ""},
          {Values{"", ":1.1", "", ""}, u":1.1"_s, ""},
          {Values{"", "localhost:10.0", "", ""}, u"localhost:10"_s, ""}}) {
        const Environment environment({{"XDG_RUNTIME_DIR", mine},
                                       {"WAYLAND_DISPLAY", values[0]},
                                       {"DISPLAY", values[1]},
                                       {"XDG_ACTIVATION_TOKEN", values[2]},
                                       {"DESKTOP_STARTUP_ID", values[3]}});
        EXPECT_EQ(SingleInstance::userScreen(), screen);
        EXPECT_EQ(SingleInstance::activationToken(), token);
    }
}

TEST_F(SingleInstanceTests, takesOverAfterABadEnd) {
    // What a killed program leaves: a socket nobody listens on, and a lock of a process that is gone.
    write(directory.filePath(u"vantrel.socket"_s), "");
    write(directory.filePath(u"vantrel.lock"_s),
          "4194304\nvantrel\n" + QSysInfo::machineHostName().toLocal8Bit() + "\n\n\n");
    SingleInstance first(directory.path(), QString());
    EXPECT_EQ(first.claim(), Role::first);
    EXPECT_EQ(startAgain(), Role::second);
}

TEST_F(SingleInstanceTests, takesThePlaceOfOneThatIsJustEnding) {
    // It is still there, hears nothing any more, and is gone while it is asked.
    QLockFile lock(directory.filePath(u"vantrel.lock"_s));
    ASSERT_TRUE(lock.tryLock());
    QLocalServer server;
    ASSERT_TRUE(server.listen(directory.filePath(u"vantrel.socket"_s)));
    EXPECT_EQ(startAgain({}, {},
                         [&] {
                             EXPECT_TRUE(server.waitForNewConnection(5000));
                             delete server.nextPendingConnection();
                             server.close();
                             lock.unlock();
                         }),
              Role::first);
}

TEST_F(SingleInstanceTests, startsAnywayWhenItCannotFindOut) {
    for (const QString &nowhere : {QString(), u"/proc/vantrel"_s, directory.filePath(u"missing"_s)})
        EXPECT_EQ(SingleInstance(nowhere).claim(), Role::alone);

    SingleInstance first(directory.path(), QString());
    ASSERT_EQ(first.claim(), Role::first);
    // Its event loop stands still: it hears nothing. The second does not wait for ever.
    EXPECT_EQ(SingleInstance(directory.path(), QString()).claim({}, 200), Role::alone);
}

TEST_F(SingleInstanceTests, ignoresStrangersOnItsSocket) {
    SingleInstance first(directory.path(), QString());
    ASSERT_EQ(first.claim(), Role::first);
    QSignalSpy raised(&first, &SingleInstance::raiseRequested);
    for (const QByteArray &said : {QByteArray("hello\n"), QByteArray(100'000, 'x'), QByteArray("raise")}) {
        QLocalSocket stranger;
        stranger.connectToServer(directory.filePath(u"vantrel.socket"_s));
        ASSERT_TRUE(stranger.waitForConnected());
        stranger.write(said);
        if (said == "raise") // and goes before the line ends
            stranger.disconnectFromServer();
        EXPECT_TRUE(QTest::qWaitFor([&] { return stranger.state() == QLocalSocket::UnconnectedState; }));
    }
    EXPECT_EQ(raised.count(), 0);
    EXPECT_EQ(startAgain(), Role::second);
}

} // namespace
} // namespace vantrel
