#include "App/System/Settings.h"
#include "App/System/SingleInstance.h"
#include "App/System/UsageAnalytics.h"
#include "support/Files.h"
#include "support/WaitFor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <map>
#include <thread>

#include <sys/stat.h>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
class SettingsTests : public ::testing::Test {
protected:
    QTemporaryDir directory;
    QString path = directory.filePath(u"vantrel/settings.ini"_s);
};

TEST_F(SettingsTests, remembersAcrossStarts) {
    {
        Settings settings(path);
        EXPECT_EQ(settings.appearancePreference(), ColorScheme::light);
        settings.setAppearancePreference(ColorScheme::dark);
        settings.storeToolTipDelay();
        EXPECT_TRUE(settings.save());
    }
    // The next start asks for nothing new: it does not wait for the disk.
    const QDateTime written = QDateTime::fromSecsSinceEpoch(1'700'000'000);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(written, QFileDevice::FileModificationTime));
    file.close();
    {
        Settings settings(path);
        settings.storeToolTipDelay();
        EXPECT_TRUE(settings.save());
    }
    EXPECT_EQ(QFileInfo(path).lastModified(), written);

    Settings settings(path);
    EXPECT_EQ(settings.appearancePreference(), ColorScheme::dark);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const std::string stored = file.readAll().toStdString();
    EXPECT_THAT(stored, ::testing::HasSubstr("appearancePreference=dark\n"));
    EXPECT_THAT(stored, ::testing::HasSubstr("NSInitialToolTipDelay=250\n"));
    settings.setAppearancePreference(ColorScheme::light);
    EXPECT_TRUE(settings.save());
    EXPECT_EQ(Settings(path).appearancePreference(), ColorScheme::light);
}

TEST_F(SettingsTests, readsWhatIsStored) {
    struct Case {
        QByteArray text;
        ColorScheme scheme;
        const char *doubleClick;
        bool analyticsDisabled;
    };
    for (const Case &test : {
             Case{"", ColorScheme::light, "Maximize", false},
             Case{"[General]\nappearancePreference=dark\nAppleActionOnDoubleClick="
                  "Minimize\nanalyticsDisabled=true\n",
                  ColorScheme::dark, "Minimize", true},
             Case{"[General]\nappearancePreference=Dark\nAppleActionOnDoubleClick=None\nanalyticsDisabled="
                  "false\n",
                  ColorScheme::light, "None", false},
             Case{"[General]\nappearancePreference=dark, "
                  "light\nAppleActionOnDoubleClick=\nanalyticsDisabled=1\n",
                  ColorScheme::light, "Maximize", true},
             Case{"[Other]\nappearancePreference=dark\n", ColorScheme::light, "Maximize", false},
             Case{"# mine\n; too\n\n  appearancePreference = dark \r\nanalyticsDisabled = TRUE\n",
                  ColorScheme::dark, "Maximize", true},
             Case{"\xef\xbb\xbf[General]\nanalyticsDisabled=please\n", ColorScheme::light, "Maximize", true},
         }) {
        write(path, test.text);
        const Settings settings(path);
        EXPECT_EQ(settings.appearancePreference(), test.scheme) << test.text.toStdString();
        EXPECT_EQ(settings.doubleClickAction().toStdString(), test.doubleClick) << test.text.toStdString();
        EXPECT_EQ(settings.analyticsDisabled(), test.analyticsDisabled) << test.text.toStdString();
    }
}

TEST_F(SettingsTests, damagedOnesAreSetAsideAndMayHaveSaidNo) {
    constexpr char binary[] = "\x89PNG\0\xff\xfe[]=%%\n]]";
    const QByteArray random = QByteArray(binary, sizeof binary).repeated(200);
    for (const QByteArray &damaged : {QByteArray("[General\nappearancePreference dark\n"), random}) {
        write(path, damaged);
        {
            Settings settings(path);
            EXPECT_EQ(settings.appearancePreference(), ColorScheme::light);
            EXPECT_EQ(settings.doubleClickAction(), u"Maximize"_s);
            EXPECT_TRUE(settings.analyticsDisabled());
        }
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
    struct Case {
        QByteArray before, after;
    };
    for (const Case &test : {
             Case{"", "analyticsDisabled=true\nappearancePreference=dark\n"},
             Case{"# my choices\n\nappearancePreference = light\n# the end",
                  "# my choices\n\nappearancePreference=dark\n# the end\nanalyticsDisabled=true\n"},
             Case{"[Other]\nanalyticsDisabled=x\n\n[General]\nAppleActionOnDoubleClick=None\n\n[Last]\nk=v\n",
                  "[Other]\nanalyticsDisabled=x\n\n[General]\nAppleActionOnDoubleClick=None\n"
                  "analyticsDisabled=true\nappearancePreference=dark\n\n[Last]\nk=v\n"},
             Case{"appearancePreference=a\nother=@Variant(x)\nappearancePreference=b\n",
                  "appearancePreference=dark\nother=@Variant(x)\nappearancePreference=dark\n"
                  "analyticsDisabled=true\n"},
         }) {
        write(path, test.before);
        Settings settings(path);
        settings.setAppearancePreference(ColorScheme::dark);
        settings.setAnalyticsDisabled(true);
        EXPECT_TRUE(settings.save());
        EXPECT_EQ(contents(path).toStdString(), test.after.toStdString());
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
    QFile obstacle(directory.filePath(u"obstacle"_s));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    ASSERT_TRUE(QDir().mkpath(directory.filePath(u"folder.ini"_s)));
    for (const QString &nowhere : {directory.filePath(u"obstacle/settings.ini"_s),
                                   directory.filePath(u"folder.ini"_s), u"/proc/vantrel/settings.ini"_s}) {
        Settings settings(nowhere);
        EXPECT_EQ(settings.appearancePreference(), ColorScheme::light);
        settings.setAppearancePreference(ColorScheme::dark);
        QSignalSpy problems(&settings, &Settings::problemChanged);
        EXPECT_TRUE(problems.wait()) << "it is tried without being told";
        EXPECT_FALSE(settings.save()) << nowhere.toStdString();
        EXPECT_THAT(settings.problem().toStdString(),
                    ::testing::StartsWith("The settings could not be stored: " + nowhere.toStdString()));
        EXPECT_EQ(problems.count(), 1) << "said once";
        EXPECT_EQ(settings.appearancePreference(), ColorScheme::dark) << "until the program ends";
    }
}

TEST(UsageAnalyticsTests, followsTheSettings) {
    const QTemporaryDir home;
    const std::pair<const char *, QByteArray> variables[] = {{"XDG_CONFIG_HOME", home.path().toUtf8()},
                                                             {"XDG_CACHE_HOME", home.path().toUtf8()},
                                                             {"DO_NOT_TRACK", "0"}};
    std::map<std::string, QByteArray> before;
    for (const auto &[name, value] : variables) {
        before[name] = qgetenv(name);
        qputenv(name, value);
    }
    Settings settings(home.filePath(u"settings.ini"_s));
    settings.setAnalyticsDisabled(true);
    const auto kept = [&home](const char *key) -> QString {
        const QStringList files = QDir(home.path()).entryList({u"com.telemetrydeck.*.ini"_s});
        return files.isEmpty() ? QString()
                               : PreferencesFile(home.filePath(files.constFirst())).value(QLatin1String(key));
    };
    const auto identifier = [&kept] { return kept("defaultUserIdentifier"); };
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
        EXPECT_TRUE(QTest::qWaitFor([&] { return !kept("recentSessions").isEmpty(); }, 20'000));
        settings.setAnalyticsDisabled(true);
    }
    EXPECT_NE(users.constFirst(), users.constLast());
    for (const auto &[name, value] : variables)
        qputenv(name, before[name]);
}

class SingleInstanceTests : public ::testing::Test {
protected:
    using Role = SingleInstance::Role;

    QTemporaryDir directory{QDir::tempPath() + u"/v-XXXXXX"_s}; // sockets have short names

    /// A start while the event loop of the first one runs.
    Role startAgain(const QByteArray &token = {}, const QString &screen = {}) {
        std::atomic<bool> ended = false;
        Role role = Role::alone;
        std::thread second([&] {
            role = SingleInstance(directory.path(), screen).claim(token);
            ended = true;
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return ended.load(); }));
        second.join();
        return role;
    }
};

TEST_F(SingleInstanceTests, aSecondStartRaisesTheFirst) {
    auto first = std::make_unique<SingleInstance>(directory.path(), QString());
    ASSERT_EQ(first->claim(), Role::first);
    QSignalSpy raised(first.get(), &SingleInstance::raiseRequested);
    EXPECT_EQ(startAgain("token-1"), Role::second);
    EXPECT_EQ(startAgain(), Role::second);
    ASSERT_EQ(raised.count(), 2);
    EXPECT_EQ(raised.at(0).constFirst().toByteArray(), "token-1");
    EXPECT_EQ(raised.at(1).constFirst().toByteArray(), "");

    // The user's other session would not see that window: it has one of its own, and a second start there.
    SingleInstance elsewhere(directory.path(), u"/tmp/a path/:1"_s);
    EXPECT_EQ(elsewhere.claim(), Role::first);
    QSignalSpy raisedElsewhere(&elsewhere, &SingleInstance::raiseRequested);
    EXPECT_EQ(startAgain("token-2", u"/tmp/a path/:1"_s), Role::second);
    EXPECT_EQ(raisedElsewhere.count(), 1);
    EXPECT_EQ(raised.count(), 2);

    first.reset();
    SingleInstance next(directory.path(), QString());
    EXPECT_EQ(next.claim(), Role::first);
}

TEST_F(SingleInstanceTests, takesOverAfterABadEnd) {
    {
        // What a killed program leaves: a socket nobody listens on, and a lock of a process that is gone.
        QLocalServer::removeServer(directory.filePath(u"vantrel.socket"_s));
        QFile socket(directory.filePath(u"vantrel.socket"_s));
        ASSERT_TRUE(socket.open(QIODevice::WriteOnly));
        QFile lock(directory.filePath(u"vantrel.lock"_s));
        ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
        lock.write("4194304\nvantrel\n" + QSysInfo::machineHostName().toLocal8Bit() + "\n\n\n");
    }
    SingleInstance first(directory.path(), QString());
    EXPECT_EQ(first.claim(), Role::first);
    EXPECT_EQ(startAgain(), Role::second);
}

TEST_F(SingleInstanceTests, startsAnywayWhenItCannotFindOut) {
    EXPECT_EQ(SingleInstance(QString()).claim(), Role::alone);
    EXPECT_EQ(SingleInstance(u"/proc/vantrel"_s).claim(), Role::alone);
    EXPECT_EQ(SingleInstance(directory.filePath(u"missing"_s)).claim(), Role::alone);

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
