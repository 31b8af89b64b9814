#include "Analytics/SessionManager.h"
#include "Analytics/SignalJson.h"
#include "Analytics/SignalManager.h"
#include "Analytics/TelemetryDeck.h"
#include "Analytics/TelemetryManager.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/LocalHttpServer.h"
#include "support/WaitFor.h"

#include <QtTest>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

SignalPostBody sample(const QString &type = u"na\"me\\\n\u0001 ü"_s) {
    const QDateTime receivedAt(QDate(2024, 5, 31), QTime(23, 59, 7, 125), Qt::UTC);
    const SignalParameters payload{{u"b"_s, u"2"_s}, {u"a"_s, u""_s}};
    return {receivedAt, u"app"_s, u"user"_s, u"SESSION"_s, type, 2.5, payload, u"false"_s};
}

QStringList typesIn(const QJsonArray &records) {
    QStringList types;
    for (const QJsonValue &record : records)
        types.append(record[u"type"].toString());
    return types;
}

/// A client's surroundings: files of its own, a server that answers as it is told, a log, a clock.
struct World {
    World() {
        configuration.logHandler = LogHandler{LogLevel::debug, [this](LogLevel level, const QString &text) {
                                                  const QMutexLocker locker(&lock);
                                                  log[level].append(text);
                                              }};
        configuration.urlSession = [this](const HttpRequest &request, QObject *, const HttpCompletion &done) {
            QMutexLocker locker(&lock);
            ++posts;
            for (const QJsonValueRef record : QJsonDocument::fromJson(request.json).array())
                sent.append(record);
            if (isHeld)
                return;
            const auto answer = answers.isEmpty() ? HttpResponse{200, "the answer"} : answers.takeFirst();
            locker.unlock(); // it is logged
            done(answer);
        };
        configuration.transmitInterval = 0.01;
        environment.preferencesDirectory = environment.cachesDirectory = directory.path();
        environment.now = [this] { return copyOf(now); };
    }
    void start() { manager = std::make_unique<TelemetryManager>(configuration, environment); }
    /// Of what the client's thread changes, too.
    template <class Value>
    Value copyOf(const Value &value) {
        const QMutexLocker locker(&lock);
        return value;
    }
    QStringList messages(LogLevel level) { return copyOf(log).value(level); }
    /// Every record sent so far, once there are that many.
    QJsonArray records(qsizetype count) {
        EXPECT_TRUE(waitFor([&] { return copyOf(sent).size() >= count; }));
        return copyOf(sent);
    }
    void pass(std::chrono::seconds date, std::chrono::milliseconds uptime = 0ms) {
        const QMutexLocker locker(&lock);
        now = {now.date.addSecs(date.count()), now.uptime + uptime};
    }
    auto shared() const { return std::make_shared<TelemetryManagerConfiguration>(configuration); }
    QString cacheFile() const { return SignalCache::filePath(directory.path()); }
    QStringList saved() const { return typesIn(QJsonDocument::fromJson(contents(cacheFile())).array()); }
    auto preferencesFile() const { return preferencesPath(directory.path(), configuration.telemetryAppID); }

    const Environment before{
        Environment::Values{{"DO_NOT_TRACK", qgetenv("DO_NOT_TRACK")}}}; // what a test changes is put back
    QTemporaryDir directory;
    QMutex lock;
    QMap<LogLevel, QStringList> log;
    int posts = 0;
    QJsonArray sent;                                      ///< the records in them
    QList<tl::expected<HttpResponse, HttpError>> answers; ///< 200 when there is none
    bool isHeld = false;                                  ///< true: no answer ever comes
    Moment now{QDateTime(QDate(2024, 5, 31), QTime(12, 0), Qt::UTC), 0ms};
    TelemetryManagerConfiguration configuration{
        u"3C9A5E21-7B4D-4F08-9E6A-1D2C3B4A5F60"_s, {}, QUrl(u"https://signals.example"_s), u"com.example"_s};
    TelemetryEnvironment environment;
    std::unique_ptr<TelemetryManager> manager; // first to go
};

TEST(AnalyticsRecordTests, isWrittenInOrderWithBothFormsOfDates) {
    const std::string rest = R"(,"appID":"app","clientUser":"user","sessionID":"SESSION",)"
                             R"("type":"na\"me\\\n\u0001 ü","floatValue":2.5,)"
                             R"("payload":{"a":"","b":"2"},"isTestMode":"false"}])";
    const auto json = [](DateForm form) { return encodeSignals({sample()}, form)->toStdString(); };
    EXPECT_EQ(json(DateForm::network), "[{\"receivedAt\":\"2024-05-31T23:59:07+0000\"" + rest);
    EXPECT_EQ(json(DateForm::disk), "[{\"receivedAt\":738892747.125" + rest);
    SignalPostBody whole = sample();
    whole.floatValue.reset();
    const QList both{sample(), whole};
    EXPECT_EQ(decodeSignals(*encodeSignals(both, DateForm::disk)), both);
    whole.floatValue = qInf();
    const auto failed = encodeSignals({whole}, DateForm::network);
    ASSERT_FALSE(failed);
    EXPECT_TRUE(failed.error().description.startsWith(u"Failed to encode signal batch: "_s));
}

/// Not a test of its own: what everyValueIsTrue runs where the language and the time zone are others.
TEST(AnalyticsRecordTests, DISABLED_sendsOne) {
    TelemetryManagerConfiguration configuration(u"app"_s, {}, QUrl(qEnvironmentVariable("VANTREL_TEST_URL")));
    configuration.transmitInterval = 0.01;
    TelemetryEnvironment environment;
    environment.preferencesDirectory = qEnvironmentVariable("VANTREL_TEST_DIRECTORY");
    environment.cachesDirectory = environment.preferencesDirectory + u"/sent"_s;
    constexpr auto dark = ApplicationFacts::ColorScheme::dark;
    const ApplicationFacts facts{u"1.2"_s, u"34"_s, 1920, 1080.5, 2, dark, Qt::RightToLeft};
    environment.applicationFacts = [facts] { return facts; };
    const TelemetryManager manager(configuration, environment);
    EXPECT_TRUE(waitFor([&] { return QFile::exists(environment.cachesDirectory); })); // it was received
}

TEST(AnalyticsRecordTests, everyValueIsTrueAndListedInTheDocuments) {
    QStringList sent{u"payload"_s, u"sessionID"_s};
    for (const QString &place :
         {u"TZ=UTC0 LC_ALL=C.UTF-8"_s, u"TZ=EST5 LC_ALL=de_AT.UTF-8"_s, u"TZ=IST-5:30 LC_ALL=en_IN.UTF-8"_s,
          u"TZ=NST3:30NDT,M3.2.0,M11.1.0 LC_ALL=pt_BR.UTF-8"_s}) {
        SCOPED_TRACE(place.toStdString());
        const QTemporaryDir directory;
        // Left by a version that used the toolkit's own format.
        ASSERT_TRUE(QFile::copy(u"" VANTREL_TEST_DATA "/signal/earlier.ini"_s,
                                preferencesPath(directory.path(), u"app"_s)));
        test::LocalHttpServer server;
        QProcess client;
        QStringList variables = QProcess::systemEnvironment() + place.split(u' ');
        variables << u"LANGUAGE="_s << u"USER_ID=ME-AND-NOBODY-ELSE"_s
                  << u"VANTREL_TEST_URL="_s + server.url().toString()
                  << u"VANTREL_TEST_DIRECTORY="_s + directory.path();
        client.setEnvironment(variables);
        client.start(QCoreApplication::applicationFilePath(),
                     {u"--gtest_filter=*DISABLED_sendsOne"_s, u"--gtest_also_run_disabled_tests"_s});
        ASSERT_TRUE(waitFor([&] { return !server.bodies.isEmpty(); }));
        QDir(directory.path()).mkdir(u"sent"_s);
        ASSERT_TRUE(waitFor([&] { return client.state() == QProcess::NotRunning; }));
        ASSERT_EQ(client.exitCode(), 0) << client.readAllStandardOutput().toStdString();
        QJsonObject record = QJsonDocument::fromJson(server.bodies.first()).array().first().toObject();
        QVariantMap values = record.take(u"payload"_s).toObject().toVariantMap();
        EXPECT_FALSE(QUuid(record.take(u"sessionID"_s).toString()).isNull());
        QProcess shell;
        shell.setEnvironment(variables << u"AT="_s + record[u"receivedAt"_s].toString());
        shell.start(u"sh"_s, {u"-c"_s, u"sh \"$0\" | grep -v '=$' | LC_ALL=C sort"_s,
                              u"" VANTREL_TEST_DATA "/signal/expected.sh"_s});
        ASSERT_TRUE(shell.waitForFinished());
        QStringList found;
        values.insert(record.toVariantMap());
        for (const QString &key : values.keys())
            found.append(key + u'=' + values[key].toString());
        sent += values.keys();
        found.sort();
        EXPECT_EQ(found.join(u'\n').toUtf8().toStdString(),
                  shell.readAllStandardOutput().trimmed().toStdString());
    }
    const QString page = QString::fromUtf8(contents(u"" VANTREL_TEST_DATA "/../../docs/privacy.md"_s));
    const QString section = page.section(u"## What a signal holds"_s, 1).section(u"\n## "_s, 0, 0);
    QSet<QString> listed;
    for (auto matches = QRegularExpression(u"`([^`]+)`"_s).globalMatch(section); matches.hasNext();)
        listed.insert(matches.next().captured(1));
    EXPECT_EQ(listed, QSet<QString>(sent.begin(), sent.end())) << "docs/privacy.md";
}

TEST(AnalyticsRecordTests, holdsWhatWasRecordedAndWhoRecordedIt) {
    World world;
    world.configuration.salt = u"salt"_s;
    world.configuration.testMode = true;
    world.configuration.sendNewSessionBeganSignal = world.configuration.sessionStatsEnabled = false;
    const SignalParameters defaults{{u"a"_s, u"base"_s}, {u"platform"_s, u"base"_s}};
    world.configuration.defaultParameters = [&] { return defaults; };
    world.configuration.metadataEnrichers = {[](const QString &type, const auto &, auto value) {
        const QString seen = type + QString::number(value.value_or(0));
        return SignalParameters{{u"locale"_s, seen}, {u"c"_s, u"enricher"_s}};
    }};
    world.start();
    world.manager->signal(u"one"_s, {{u"c"_s, u"own"_s}}, 1.5, u"abc"_s);
    world.pass(24h); // sending is later than recording
    world.manager->signal(u"two"_s, {}, qQNaN());
    const auto records = world.records(2);
    EXPECT_EQ(records[0][u"receivedAt"], u"2024-05-31T12:00:00+0000"_s);
    EXPECT_EQ(records[0][u"sessionID"],
              world.configuration.sessionID.toString(QUuid::WithoutBraces).toUpper());
    EXPECT_EQ(records[0][u"clientUser"], hashed(u"abcsalt"_s, {}));
    EXPECT_EQ(records[0][u"floatValue"], 1.5);
    EXPECT_TRUE(records[1][u"floatValue"].isUndefined());
    EXPECT_EQ(records[0][u"isTestMode"], u"true"_s);
    const QJsonValue payload = records[0][u"payload"];
    EXPECT_EQ(payload[u"a"].toString() + payload[u"platform"].toString(), u"basemacOS"_s);
    EXPECT_EQ(payload[u"locale"].toString() + payload[u"c"].toString(), u"one1.5own"_s);
    const QString identifier = PreferencesFile(world.preferencesFile()).value(u"defaultUserIdentifier"_s);
    EXPECT_EQ(records[1][u"clientUser"], hashed(identifier, u"salt"_s));
    EXPECT_EQ(QUuid(identifier).toString(QUuid::WithoutBraces).toUpper(), identifier);
    EXPECT_TRUE(preferencesPath(u"/x"_s, u"abc"_s) == u"/x/com.telemetrydeck.ff61f20015ad.ini"_s);
}

TEST(AnalyticsRecordTests, prefixesNamesAndWarnsOfReservedOnes) {
    const QRegularExpression form(
        u"^Sending (.*) will cause unexpected behavior\\. Please use another (.*) instead\\.$"_s);
    const QString name = u"signal with reserved prefix 'TelemetryDeck.'|prefix"_s;
    const QString key = u"parameter with reserved key prefix 'TelemetryDeck.'|prefix"_s;
    const QStringList both{u"signal with reserved name 'Type'|name"_s,
                           u"parameter with reserved key 'appversion'|key"_s};
    for (const auto &[prefix, signal, parameter, warnings] :
         {std::tuple(u"My."_s, u"TelemetryDeck.x"_s, u"platform"_s, QStringList()),
          {u""_s, u"telemetrydeck.x"_s, u"TELEMETRYDECK.y"_s, {name, key}},
          {u"Telemetry"_s, u"Deck.x"_s, u"Deck.key"_s, {name, key}},
          {u""_s, u"Type"_s, u"appversion"_s, both}}) {
        World world;
        world.configuration.defaultSignalPrefix = world.configuration.defaultParameterPrefix = prefix;
        world.start();
        world.manager->signal(signal, {{parameter, u"mine"_s}});
        const auto records = world.records(1);
        EXPECT_EQ(records[0][u"type"].toString(), prefix + signal);
        EXPECT_EQ(records[0][u"payload"][prefix + parameter], u"mine"_s);
        EXPECT_EQ(world.messages(LogLevel::error).replaceInStrings(form, u"\\1|\\2"_s), warnings)
            << signal.toStdString();
    }
}

TEST(AnalyticsChoiceTests, nothingHappensWithoutADestinationOrForThoseWhoDecline) {
    for (const std::string reason : {"1", "yes", "no destination", "disabled", "preview"}) {
        SCOPED_TRACE(reason);
        World world;
        qputenv("DO_NOT_TRACK", reason == "1" || reason == "yes" ? reason.c_str() : "0");
        world.configuration.apiBaseURL = QUrl(reason == "no destination" ? u""_s : u"https://a.example"_s);
        world.configuration.analyticsDisabled = reason == "disabled";
        world.configuration.previewMode = reason == "preview";
        EXPECT_FALSE(TelemetryDeck::initialize(world.configuration, world.environment));
        TelemetryDeck::signal(u"dropped"_s);
        TelemetryDeck::shutDown();
        EXPECT_EQ(QDir(world.directory.path()).entryList(QDir::Files), QStringList());
        EXPECT_TRUE(world.log.isEmpty());
    }
}

TEST(AnalyticsChoiceTests, whoCannotBeRememberedIsNotCounted) {
    World world;
    ASSERT_EQ(mkfifo(world.preferencesFile().toLocal8Bit().constData(), 0600), 0); // nobody ever writes to it
    world.start();
    world.manager->signal(u"s"_s);
    world.manager.reset();
    EXPECT_EQ(world.posts, 0);
    EXPECT_TRUE(world.messages(LogLevel::error).contains(world.preferencesFile() + u" cannot be read"_s));
    EXPECT_EQ(world.saved(), QStringList());
}

/// Lets the pending attempt of a manager on this thread begin now: what it sent, at once, and the next delay.
std::pair<QStringList, int> attempt(SignalManager &manager, World &world) {
    world.sent = {};
    world.posts = 0;
    QMetaObject::invokeMethod(&manager.sendTimerSource(), "timeout");
    EXPECT_EQ(world.posts, world.sent.isEmpty() ? 0 : 1);
    return {typesIn(world.sent), manager.sendTimerSource().interval() / 1000};
}

TEST(AnalyticsSendingTests, formsTheServiceAddressOrWaitsForABetterOne) {
    for (const auto &[base, nameSpace, expected] :
         {std::tuple(u"https://a.example"_s, u"com.x"_s, u"https://a.example/v2/namespace/com.x/"_s),
          {u"https://a.example/in/"_s, u"com.x"_s, u"https://a.example/in/v2/namespace/com.x/"_s},
          {u"http://a.example:8080"_s, u""_s, u"http://a.example:8080/v2/"_s},
          {u"https://a.example"_s, u"a b"_s, u""_s},
          {u"signals.example"_s, u""_s, u""_s},
          {u"file:///tmp"_s, u""_s, u""_s}}) {
        World world;
        world.configuration.apiBaseURL = QUrl(base);
        world.configuration.nameSpace = nameSpace;
        EXPECT_EQ(serviceURL(world.configuration).value_or(QUrl()), QUrl(expected)) << base.toStdString();
        SignalManager manager(world.shared(), world.directory.path());
        manager.push(sample());
        EXPECT_EQ(attempt(manager, world).first.isEmpty(), expected.isEmpty());
        EXPECT_EQ(manager.consecutiveFailures(), expected.isEmpty() ? 1 : 0);
        const QString refused =
            u"Unable to construct signal API URL for namespace %1. Invalid endpoint URL"_s;
        EXPECT_EQ(world.messages(LogLevel::error).join(u". "_s),
                  expected.isEmpty() ? refused.arg(nameSpace) : QString());
    }
}

TEST(AnalyticsSendingTests, goesOutInBatchesBacksOffAndRecovers) {
    World world;
    world.configuration.transmitInterval = 10;
    SignalManager manager(world.shared(), world.directory.path());
    EXPECT_EQ(attempt(manager, world), std::pair(QStringList(), 10)) << "nothing to send is no request";
    for (int i = 1; i <= 250; ++i)
        manager.push(sample(QString::number(i)));
    for (const int count : {100, 100, 50})
        EXPECT_EQ(attempt(manager, world).first.size(), count);
    EXPECT_EQ(world.messages(LogLevel::info)[1], u"Sending 100 signals leaving a cache of 150 signals"_s);
    manager.push(sample(u"s"_s));
    for (const int delay : {20, 40, 80, 160, 300, 300, 10}) {
        world.answers = {HttpResponse{delay == 10 ? 200 : 503, {}}};
        if (delay == 40)
            world.answers = {tl::unexpected(HttpError{HttpError::Kind::failed, u"unplugged"_s})};
        EXPECT_EQ(attempt(manager, world), std::pair(QStringList(u"s"_s), delay));
    }
    EXPECT_EQ(attempt(manager, world), std::pair(QStringList(), 10));
    EXPECT_EQ(world.messages(LogLevel::error), QStringList(u"unplugged"_s));
}

TEST(AnalyticsSendingTests, judgesEveryStatus) {
    const QList<int> rejected{400, 401, 403, 404, 413, 422, 501, 505};
    for (const int code : {0,   100, 200, 202, 299, 301, 307, 400, 401, 402, 403,
                           404, 408, 413, 422, 429, 500, 501, 502, 503, 505, 599}) {
        SCOPED_TRACE(code);
        const bool isKept = code / 100 != 2 && !rejected.contains(code);
        World world;
        SignalManager manager(world.shared(), world.directory.path());
        for (int time = 0; time < 3; ++time)
            manager.push(sample());
        world.answers.append(HttpResponse{code, "the answer"});
        EXPECT_EQ(attempt(manager, world).first.size(), 3);
        const QString later = u"Failed to send events (status %1), will try again later"_s.arg(code);
        EXPECT_EQ(world.messages(LogLevel::debug).contains(later), isKept);
        EXPECT_EQ(attempt(manager, world).first.size(), isKept ? 3 : 0);
        const QString errors = world.messages(LogLevel::error).join(u'|');
        EXPECT_EQ(errors.startsWith(u"Dropping 3 signal(s): rejected by server "_s), rejected.contains(code));
        EXPECT_EQ(errors.endsWith(u" (%1)"_s.arg(code)), rejected.contains(code));
    }
}

TEST(AnalyticsCacheTests, readsWhatItCanAndSurvivesTheRest) {
    const QByteArray good = *encodeSignals({sample()}, DateForm::disk);
    const auto changed = [&good](const char *from, const QByteArray &to) {
        return QByteArray(good).replace(from, to);
    };
    const QByteArray large = '"' + QByteArray(50 * 1024 * 1024, 'x') + '"';
    QByteArrayList unreadable{"", "signals!", "beyond any sense", good.chopped(9), good.mid(1).chopped(1)};
    unreadable << changed("clientUser", "user") << changed("\"2\"", "2") << good.chopped(1) + ",{}]"
               << *encodeSignals({sample()}, DateForm::network);
    const auto readable = QByteArrayList{good, changed("\"appID\"", "\"new\":[],\"appID\"")}
                          << changed("\"2\"", large);
    for (const QByteArray &text : unreadable + readable) {
        SCOPED_TRACE(text.left(200).toStdString());
        const bool isLoaded = readable.contains(text);
        World world;
        write(world.cacheFile(), text);
        ASSERT_TRUE(text != "beyond any sense" || QFile::resize(world.cacheFile(), 200 * 1024 * 1024));
        SignalCache cache(world.shared(), world.directory.path());
        cache.load();
        EXPECT_EQ(cache.size(), isLoaded ? 1 : 0);
        EXPECT_FALSE(QFile::exists(world.cacheFile()));
        cache.push({sample(u"new"_s)});
        cache.save();
        EXPECT_EQ(world.saved().last(), u"new"_s);
        const QString log = u"Loading Telemetry cache from: %1|%2Saved Telemetry cache %1 of %3 signals"_s;
        EXPECT_EQ(world.messages(LogLevel::info).join(u'|'),
                  log.arg(QUrl::fromLocalFile(world.cacheFile()).toString(),
                          isLoaded ? u"Loaded 1 signals|"_s : u""_s)
                      .arg(cache.size()));
    }
}

TEST(AnalyticsCacheTests, keepsTheNewestAndSaysWhatItCannotWrite) {
    World world;
    SignalCache cache(world.shared(), world.directory.path());
    for (int i = 1; i <= 10'001; ++i)
        cache.push({sample(QString::number(i))});
    cache.save();
    const QStringList saved = world.saved();
    ASSERT_EQ(saved.size(), 10'000);
    EXPECT_EQ(saved.first(), u"2"_s);
    // A full disk leaves what was there.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit full{0, RLIM_INFINITY}, unlimited{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
    cache.save();
    setrlimit(RLIMIT_FSIZE, &unlimited);
    EXPECT_EQ(world.saved(), saved);
    SignalCache(world.shared(), QString()).save();
    EXPECT_EQ(world.messages(LogLevel::error).join(u". "_s),
              u"Error saving Telemetry cache. Failed to get disk cache url from FileManager."_s);
}

TEST(AnalyticsCacheTests, savesSignalsUnderWayAndNeverKeepsTheWindowOpen) {
    World world;
    world.isHeld = true;
    world.start();
    QSet<QString> recorded;
    for (int i = 1; i <= 102; ++i) {
        recorded.insert(QString::number(i));
        world.manager->signal(QString::number(i));
    }
    world.records(1);  // by then the session may have begun, too
    world.lock.lock(); // the thread is stuck when it wants to say that it has saved
    const QDeadlineTimer patience(5s);
    world.manager->aboutToTerminate(); // returns all the same
    EXPECT_FALSE(patience.hasExpired());
    EXPECT_EQ(world.log.value(LogLevel::info).filter(u"Saved"_s), QStringList());
    world.lock.unlock();
    world.manager->signal(u"too late"_s);
    world.manager.reset();
    const QStringList saved = world.saved();
    EXPECT_FALSE(saved.contains(u"too late"_s));
    EXPECT_TRUE(QSet(saved.begin(), saved.end()).contains(recorded));
}

TEST(AnalyticsSessionTests, aSessionLastsAsLongAsTheComputerRanAndIsStoredFromOneSecondOn) {
    World world;
    PreferencesFile preferences(world.preferencesFile());
    SessionManager sessions(preferences, world.environment.now);
    EXPECT_EQ(sessions.startNewSession(), u"2024-05-31"_s);
    EXPECT_EQ(sessions.retentionParameters()[u"TelemetryDeck.Retention.averageSessionSeconds"_s], u"-1"_s);
    world.pass(0s, 999ms);
    sessions.updateSessionDuration();
    EXPECT_EQ(PreferencesFile(world.preferencesFile()).value(u"recentSessions"_s), QString());
    for (const int days : {400, -700}) { // setting the date is not a year of use
        world.pass(days * 24h, 1001ms);
        sessions.updateSessionDuration();
    }
    EXPECT_EQ(sessions.startNewSession(), std::nullopt);
    world.pass(0s, 5s);
    // Meanwhile another copy of the program has stored something.
    PreferencesFile other(world.preferencesFile());
    other.setValue(u"deletedSessionsCount"_s, u"7"_s);
    EXPECT_EQ(other.save(), QString());
    sessions.updateSessionDuration();
    const PreferencesFile stored(world.preferencesFile());
    EXPECT_EQ(stored.value(u"recentSessions"_s), u"[{\"durationInSeconds\":3,\"startedAt\":1717156800000},"
                                                 "{\"durationInSeconds\":5,\"startedAt\":1691236800000}]"_s);
    EXPECT_EQ(stored.value(u"deletedSessionsCount"_s), u"7"_s);
    SessionManager(preferences, world.environment.now); // the day is another, and counted once
    EXPECT_EQ(preferences.value(u"distinctDaysUsed"_s), u"2024-05-31,2023-08-05"_s);
}

TEST(AnalyticsSessionTests, countsWhatWasStored) {
    World world;
    // Sessions of 90 days ago, which is too long, and of the last three days.
    write(
        world.preferencesFile(),
        R"(recentSessions=[{"startedAt":1709380800000,"durationInSeconds":500},)"
        R"({"startedAt":1716897600000,"durationInSeconds":30},{"startedAt":1716984000000,"durationInSeconds":60},)"
        R"({"startedAt":1717070400000,"durationInSeconds":90}])"
        "\ndeletedSessionsCount=4\ndistinctDaysUsed=2024-04-30,2024-05-01,2024-05-30\n");
    PreferencesFile preferences(world.preferencesFile());
    for (int run = 0; run < 2; ++run) { // pruned once, and one day of use
        SessionManager sessions(preferences, world.environment.now);
        EXPECT_EQ(sessions.startNewSession(), std::nullopt);
        // First date, average, days, of the last month (the 1st is 30 days ago), previous, total.
        EXPECT_EQ(QStringList(sessions.retentionParameters().values()).join(u' '),
                  u"2024-05-31 45 4 3 60 8"_s);
        EXPECT_EQ(preferences.value(u"deletedSessionsCount"_s), u"5"_s);
    }
}

TEST(AnalyticsSessionTests, aLongAbsenceBeginsANewOne) {
    World world;
    qputenv("DO_NOT_TRACK", "0");
    ASSERT_TRUE(TelemetryDeck::initialize(world.configuration, world.environment));
    EXPECT_EQ(world.records(2).at(0)[u"payload"][u"TelemetryDeck.Acquisition.firstSessionDate"],
              u"2024-05-31"_s);
    for (const auto away : {300s, -300s, 301s}) {
        TelemetryDeck::movedToBackground();
        world.pass(away);
        TelemetryDeck::returnedToForeground();
        TelemetryDeck::signal(u"back"_s);
    }
    EXPECT_EQ(typesIn(world.records(6)).join(u' '),
              u"TelemetryDeck.Acquisition.newInstallDetected TelemetryDeck.Session.started back back "
              u"TelemetryDeck.Session.started back"_s);
    TelemetryDeck::shutDown();
    TelemetryDeck::signal(u"too late"_s);
    EXPECT_EQ(world.saved(), QStringList());
}

} // namespace
} // namespace vantrel
