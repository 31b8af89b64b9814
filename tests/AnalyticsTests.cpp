#include "support/AnalyticsSupport.h"

#include "Analytics/TelemetryDeck.h"

#include <QProcess>
#include <QRegularExpression>
#include <QThread>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using namespace vantrel;
using namespace vantrel::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const QString installSignal = u"TelemetryDeck.Acquisition.newInstallDetected"_s;
const QString sessionSignal = u"TelemetryDeck.Session.started"_s;

SignalPostBody sampleBody() {
    return {QDateTime(QDate(2024, 5, 31), QTime(23, 59, 7, 125), Qt::UTC),
            u"app"_s,
            u"user"_s,
            u"SESSION"_s,
            u"na\"me\\\n\u0001 ü"_s,
            2.5,
            {{u"b"_s, u"2"_s}, {u"a"_s, u""_s}},
            u"false"_s};
}

tl::expected<HttpResponse, QString> status(int code) {
    return HttpResponse{code, {}};
}

std::string text(const QString &value) {
    return value.toStdString();
}

/// A world with sessions and their statistics.
struct SessionWorld : AnalyticsWorld {
    SessionWorld() {
        configuration.sessionStatsEnabled = true;
        configuration.sendNewSessionBeganSignal = true;
    }
    QJsonArray storedSessions() const {
        return QJsonDocument::fromJson(preferences->value(u"recentSessions"_s).toByteArray()).array();
    }
    void storeSession(std::chrono::seconds ago, int durationInSeconds) {
        QJsonArray sessions = storedSessions();
        const qint64 startedAt = clock->now().addSecs(-ago.count()).toMSecsSinceEpoch();
        sessions.append(
            QJsonObject{{u"startedAt"_s, startedAt}, {u"durationInSeconds"_s, durationInSeconds}});
        preferences->setValue(u"recentSessions"_s, QJsonDocument(sessions).toJson());
        preferences->setValue(u"firstSessionDate"_s, u"2023-12-24"_s);
    }
};

// -- The record

TEST(AnalyticsJson, KeepsKeyOrderAndBothDateForms) {
    const std::string rest = R"(,"appID":"app","clientUser":"user","sessionID":"SESSION",)"
                             R"("type":"na\"me\\\u000a\u0001 ü","floatValue":2.5,)"
                             R"("payload":{"a":"","b":"2"},"isTestMode":"false"}])";
    const auto json = [](DateForm form) { return encodeSignals({sampleBody()}, form)->toStdString(); };
    EXPECT_EQ(json(DateForm::Network), "[{\"receivedAt\":\"2024-05-31T23:59:07+0000\"" + rest);
    EXPECT_EQ(json(DateForm::Disk), "[{\"receivedAt\":738892747.125" + rest);

    SignalPostBody whole = sampleBody();
    whole.floatValue.reset();
    const auto both = encodeSignals({sampleBody(), whole}, DateForm::Disk);
    EXPECT_EQ(both->count("floatValue"), 1);
    EXPECT_EQ(decodeSignals(*both), (QList{sampleBody(), whole}));

    whole.floatValue = std::numeric_limits<double>::infinity();
    const auto failed = encodeSignals({whole}, DateForm::Network);
    ASSERT_FALSE(failed);
    EXPECT_TRUE(failed.error().description().startsWith(u"Failed to encode signal batch: "_s));
    EXPECT_EQ(text(TelemetryError::invalidEndpointUrl().description()), "Invalid endpoint URL");
}

TEST(AnalyticsRecord, HoldsWhatWasRecordedAndWhoRecordedIt) {
    AnalyticsWorld world;
    world.configuration.salt = u"salt"_s;
    world.configuration.testMode = true;
    world.start();
    const QUuid session = world.manager->configuration().current()->sessionID;
    world.manager->signal(u"one"_s, {}, 1.5, u"abc"_s);
    world.manager->configure([](auto &edited) { edited.salt.clear(); });
    world.manager->signal(u"two"_s, {}, std::numeric_limits<double>::quiet_NaN(), u"abc"_s);
    world.manager->configure([](auto &edited) {
        edited.testMode.reset();
        edited.defaultUser = u"abcsalt"_s;
    });
    world.manager->signal(u"three"_s);
    world.clock->jump(24h); // sending is later than recording
    const auto records = world.nextRecords();
    ASSERT_EQ(records.size(), 3);
    // SHA-256 of "abcsalt" and of "abc"
    const QString salted = hashed(u"abcsalt"_s, {});
    EXPECT_EQ(text(records[1][u"clientUser"].toString()),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(records[0][u"clientUser"], salted);
    EXPECT_EQ(records[2][u"clientUser"], salted);
    EXPECT_EQ(records[0][u"floatValue"], 1.5);
    EXPECT_FALSE(records[1].contains(u"floatValue"));
    EXPECT_EQ(records[0][u"isTestMode"], u"true"_s);
    EXPECT_EQ(records[2][u"isTestMode"], u"false"_s);
    EXPECT_EQ(records[0][u"receivedAt"], u"2024-05-31T12:00:00+0000"_s);
    EXPECT_EQ(records[0][u"sessionID"], session.toString(QUuid::WithoutBraces).toUpper());
    world.manager->signal(u"four"_s); // the first session has begun by now
    EXPECT_NE(world.nextRecords().at(0)[u"sessionID"], records[0][u"sessionID"]);
}

TEST(AnalyticsRecord, KeepsOneRandomIdentifierPerInstallation) {
    const auto firstUser = [](AnalyticsWorld &world) {
        world.start();
        world.manager->signal(u"s"_s);
        return world.nextRecords().at(0)[u"clientUser"].toString();
    };
    AnalyticsWorld first;
    AnalyticsWorld again;
    AnalyticsWorld other;
    again.preferences = first.preferences;
    again.environment.preferences = first.preferences;
    const QString user = firstUser(first);
    EXPECT_EQ(user, hashed(first.preferences->value(u"defaultUserIdentifier"_s).toString(), {}));
    EXPECT_EQ(firstUser(again), user);
    EXPECT_NE(firstUser(other), user);
    // The domain ends with the last twelve digits of the hash of the application's identifier.
    EXPECT_EQ(text(preferencesDomainName(u"abc"_s)), "com.telemetrydeck.ff61f20015ad");
}

TEST(AnalyticsRecord, PrefixesNamesAndWarnsOfReservedOnes) {
    const QString end = u" will cause unexpected behavior. Please use another "_s;
    const QString signalPrefix =
        u"Sending signal with reserved prefix 'TelemetryDeck.'"_s + end + u"prefix instead."_s;
    const QString keyPrefix =
        u"Sending parameter with reserved key prefix 'TelemetryDeck.'"_s + end + u"prefix instead."_s;
    struct Case {
        QString signalPrefix, name, keyPrefix, key;
        QStringList warnings;
    };
    const QList<Case> cases{
        {u"My."_s, u"start"_s, u"Your."_s, u"key"_s, {}},
        {{}, u"telemetrydeck.x"_s, {}, u"TELEMETRYDECK.y"_s, {signalPrefix, keyPrefix}},
        {u"Telemetry"_s, u"Deck.x"_s, {}, u"key"_s, {signalPrefix}},
        {u"My."_s, u"TelemetryDeck.x"_s, u"My."_s, u"platform"_s, {}},
        {{},
         u"Type"_s,
         {},
         u"appversion"_s,
         {u"Sending signal with reserved name 'Type'"_s + end + u"name instead."_s,
          u"Sending parameter with reserved key 'appversion'"_s + end + u"key instead."_s}},
    };
    for (const auto &[prefix, name, parameterPrefix, key, warnings] : cases) {
        SCOPED_TRACE(text(prefix + name + parameterPrefix + key));
        AnalyticsWorld world;
        world.configuration.defaultSignalPrefix = prefix;
        world.configuration.defaultParameterPrefix = parameterPrefix;
        world.start();
        world.manager->signal(name, {{key, u"mine"_s}});
        const auto records = world.nextRecords();
        ASSERT_EQ(records.size(), 1);
        EXPECT_EQ(records[0][u"type"].toString(), prefix + name);
        EXPECT_EQ(records[0][u"payload"][parameterPrefix + key], u"mine"_s);
        EXPECT_EQ(world.messages(LogLevel::Error), warnings);
        world.manager->configure([](auto &edited) { edited.reservedParameterWarningsEnabled = false; });
        world.manager->signal(name, {{key, u"mine"_s}});
        EXPECT_EQ(world.messages(LogLevel::Error), warnings);
    }
}

TEST(AnalyticsRecord, LetsTheParametersClosestToTheSignalWin) {
    AnalyticsWorld world;
    world.configuration.defaultParameters = [] {
        return SignalParameters{
            {u"a"_s, u"default"_s}, {u"b"_s, u"default"_s}, {u"platform"_s, u"default"_s}};
    };
    world.configuration.metadataEnrichers = {[](const QString &type, const auto &, auto value) {
        return SignalParameters{{u"b"_s, type + QString::number(value.value_or(0))},
                                {u"region"_s, u"enricher"_s},
                                {u"c"_s, u"enricher"_s}};
    }};
    world.start();
    world.manager->signal(u"s"_s, {{u"c"_s, u"own"_s}}, 4.0);
    const QJsonValue payload = world.nextRecords().at(0)[u"payload"];
    const QStringList found{payload[u"a"].toString(), payload[u"b"].toString(), payload[u"c"].toString(),
                            payload[u"platform"].toString(), payload[u"region"].toString()};
    EXPECT_EQ(found, (QStringList{u"default"_s, u"s4"_s, u"own"_s, u"macOS"_s, u"enricher"_s}));
}

TEST(AnalyticsRecord, HoldsExactlyWhatTheReadmeLists) {
    SessionWorld world;
    world.storeSession(2h, 30);
    world.storeSession(1h, 60);
    world.environment.applicationFacts = [] {
        return ApplicationFacts{u"1.2"_s,        u"34"_s, 1920,
                                1080.5,          2,       ApplicationFacts::ColorScheme::Dark,
                                Qt::RightToLeft, true,    false};
    };
    world.start();
    const auto records = world.nextRecords();
    ASSERT_EQ(records.size(), 1);
    const QJsonObject payload = records[0][u"payload"].toObject();

    QFile page(QDir::cleanPath(QStringLiteral(VANTREL_TEST_DATA "/../../README.md")));
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QString section = QString::fromUtf8(page.readAll())
                                .section(u"\n### What a signal holds\n"_s, 1)
                                .section(u"\n### "_s, 0, 0);
    QSet<QString> listed;
    for (auto matches = QRegularExpression(u"`([^`]+)`"_s).globalMatch(section); matches.hasNext();)
        listed.insert(matches.next().captured(1));
    const QStringList sent = records[0].keys() + payload.keys();
    EXPECT_EQ(listed, QSet(sent.begin(), sent.end()));

    const SignalParameters expected{
        {u"TelemetryDeck.AppInfo.versionAndBuildNumber"_s, u"1.2 (build 34)"_s},
        {u"TelemetryDeck.Device.platform"_s, u"macOS"_s},
        {u"operatingSystem"_s, u"macOS"_s},
        {u"TelemetryDeck.Device.architecture"_s, u"arm64"_s},
        {u"TelemetryDeck.Device.orientation"_s, u"Fixed"_s},
        {u"TelemetryDeck.Device.screenResolutionHeight"_s, u"1080.5"_s},
        {u"TelemetryDeck.Device.screenScaleFactor"_s, u"2"_s},
        {u"TelemetryDeck.Accessibility.isReduceMotionEnabled"_s, u"true"_s},
        {u"TelemetryDeck.RunContext.targetEnvironment"_s, u"native"_s},
        {u"isSimulator"_s, u"false"_s},
        {u"isTestFlight"_s, u"false"_s},
        {u"isAppStore"_s, u"true"_s},
        {u"TelemetryDeck.Calendar.dayOfYear"_s, u"152"_s}, // 31 May of a leap year, a Friday
        {u"TelemetryDeck.Calendar.weekOfYear"_s, u"22"_s},
        {u"TelemetryDeck.Calendar.quarterOfYear"_s, u"2"_s},
        {u"TelemetryDeck.Calendar.isWeekend"_s, u"false"_s},
    };
    for (auto it = expected.cbegin(); it != expected.cend(); ++it)
        EXPECT_EQ(text(payload[it.key()].toString()), text(it.value())) << text(it.key());
}

TEST(AnalyticsRecord, IsNotMadeForThoseWhoDecline) {
    for (const bool preview : {true, false}) {
        AnalyticsWorld world;
        world.configuration.sendNewSessionBeganSignal = true;
        world.configuration.sessionStatsEnabled = true;
        (preview ? world.configuration.previewMode.emplace() : world.configuration.analyticsDisabled) = true;
        world.start();
        world.manager->signal(u"s"_s);
        if (preview) // left by another run
            world.manager->signalManager().push(sampleBody());
        EXPECT_THAT(world.sentAfter(20s), IsEmpty());
        EXPECT_FALSE(world.preferences->value(u"distinctDaysUsed"_s).isValid());
    }
}

TEST(AnalyticsFacade, AsksTheUserAndSavesAtTheEnd) {
    AnalyticsWorld world;
    world.http->hold(); // what the first attempt takes is under way at the end
    const QByteArray doNotTrack = qgetenv("DO_NOT_TRACK");
    for (const char *value : {"1", "true", "yes"}) {
        qputenv("DO_NOT_TRACK", value);
        EXPECT_FALSE(TelemetryDeck::initialize(world.configuration, world.environment)) << value;
    }
    qputenv("DO_NOT_TRACK", "0");
    world.configuration.analyticsDisabled = true;
    EXPECT_FALSE(TelemetryDeck::initialize(world.configuration, world.environment));
    TelemetryDeck::signal(u"dropped"_s);
    world.configuration.analyticsDisabled = false;
    ASSERT_TRUE(TelemetryDeck::initialize(world.configuration, world.environment));
    TelemetryDeck::signal(u"kept"_s);
    TelemetryDeck::movedToBackground();
    TelemetryDeck::returnedToForeground(); // at once: no new session
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    TelemetryDeck::signal(u"too late"_s);
    TelemetryDeck::shutDown();
    EXPECT_EQ(typesIn(world.cacheFileContents()), QStringList(u"kept"_s));
    qputenv("DO_NOT_TRACK", doNotTrack);
}

TEST(AnalyticsPlatform, PreferencesTimeAndLogAreThoseOfTheSystem) {
    const QTemporaryDir directory;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, directory.path());
    const QStringList days{u"2024-05-31"_s, u"2024-06-01"_s};
    {
        const auto preferences = preferencesDomain(u"com.example.test"_s);
        preferences->setValue(u"days"_s, days);
        preferences->setValue(u"count"_s, 1);
        preferences->flush();
        preferences->setValue(u"count"_s, 2); // not stored without another flush
        EXPECT_EQ(preferences->value(u"count"_s), 2);
    }
    const auto preferences = preferencesDomain(u"com.example.test"_s);
    EXPECT_EQ(preferences->value(u"days"_s).toStringList(), days);
    EXPECT_EQ(preferences->value(u"count"_s).toInt(), 1);

    QFile file(directory.filePath(u"com.example.test.ini"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[General]\ncount=1\nlarge=@Variant(\\0\\0\\0\\t(\\0\\0\\0\\x7f)\n"); // 2 GB, says the file
    file.close();
    EXPECT_FALSE(preferencesDomain(u"com.example.test"_s)->value(u"count"_s).isValid());

    const auto clock = systemClock();
    const auto begin = clock->uptime();
    bool isFired = false;
    const auto timer = clock->startTimer(20ms, [&isFired] { isFired = true; });
    clock->startTimer(0ms, [] { ADD_FAILURE() << "its timer was given up"; }).reset();
    EXPECT_TRUE(QTest::qWaitFor([&isFired] { return isFired; }));
    EXPECT_GE(clock->uptime() - begin, 20ms);
    EXPECT_LT(std::abs(clock->now().msecsTo(QDateTime::currentDateTimeUtc())), 5000);

    static QStringList lines;
    const auto previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context, const QString &message) {
            lines.append(QLatin1String(context.category) + u": "_s + message);
        });
    TelemetryManagerConfiguration configuration(u"app"_s);
    configuration.logHandler = LogHandler::platformLog(LogLevel::Info);
    for (const LogLevel level : {LogLevel::Debug, LogLevel::Info, LogLevel::Error})
        configuration.log(level, u"level %1"_s.arg(int(level)));
    qInstallMessageHandler(previous);
    EXPECT_EQ(lines, (QStringList{u"vantrel.analytics: level 1"_s, u"vantrel.analytics: level 2"_s}));
}

// -- Sending

TEST(AnalyticsSending, FormsTheServiceAddress) {
    struct Case {
        const char *base;
        std::optional<QString> nameSpace;
        const char *expected;
    };
    const QList<Case> cases{
        {"https://a.example", u"com.x"_s, "https://a.example/v2/namespace/com.x/"},
        {"https://a.example/in/", u"com.x"_s, "https://a.example/in/v2/namespace/com.x/"},
        {"http://a.example:8080", {}, "http://a.example:8080/v2/"},
        {"https://a.example", u""_s, "https://a.example/v2/"},
        {"https://a.example", u"a b"_s, nullptr},
        {"", u"com.x"_s, nullptr},
        {"signals.example", {}, nullptr},
        {"file:///tmp", {}, nullptr},
    };
    for (const auto &[base, nameSpace, expected] : cases) {
        const auto url = serviceURL(
            TelemetryManagerConfiguration(u"app"_s, {}, QUrl(QString::fromLatin1(base)), nameSpace));
        EXPECT_EQ(url, expected ? std::optional(QUrl(QString::fromLatin1(expected))) : std::nullopt) << base;
    }
}

TEST(AnalyticsSending, GoesOutInBatchesAndOnlyWhenThereIsSomething) {
    AnalyticsWorld world;
    world.start();
    EXPECT_THAT(world.sentAfter(30s), IsEmpty());
    EXPECT_THAT(world.clock->takeQueueDelays(), ElementsAre(10, 10, 10));
    world.recordMany(250);
    const auto sent = world.sentAfter(40s);
    ASSERT_EQ(sent.size(), 3);
    EXPECT_THAT((QList{sent[0].size(), sent[1].size(), sent[2].size()}), ElementsAre(100, 100, 50));
    EXPECT_EQ(sent[0].first(), u"s1"_s);
    EXPECT_EQ(sent[2].last(), u"s250"_s);
    EXPECT_THAT(world.messages(LogLevel::Info),
                Contains(u"Sending 100 signals leaving a cache of 150 signals"_s));
    EXPECT_THAT(world.messages(LogLevel::Debug), Contains(u"Current signal cache count: 250"_s));
}

TEST(AnalyticsSending, BacksOffAndRecovers) {
    AnalyticsWorld world;
    world.start();
    world.recordMany(2);
    for (int failure = 0; failure < 6; ++failure)
        world.http->answer(failure % 2 == 0 ? status(503) : tl::unexpected(u"unplugged"_s));
    QList<QStringList> sent;
    QList<qint64> delays{10};
    for (int attempt = 0; attempt < 8; ++attempt) {
        EXPECT_THAT(world.sentAfter(std::chrono::seconds(delays.last() - 1)), IsEmpty());
        sent += world.sentAfter(1s);
        delays += world.clock->takeQueueDelays();
    }
    EXPECT_THAT(delays, ElementsAre(10, 20, 40, 80, 160, 300, 300, 10, 10));
    EXPECT_EQ(sent, QList<QStringList>(7, {u"s1"_s, u"s2"_s}));
    EXPECT_EQ(world.messages(LogLevel::Error), QStringList(3, u"unplugged"_s));
}

TEST(AnalyticsSending, JudgesEveryStatus) {
    struct Case {
        std::optional<int> status;
        QString rejection; // empty: the batch is kept or delivered
        bool isDelivered = false;
    };
    QList<Case> cases{
        {std::nullopt, {}},
        {400, u"Bad Request (400)"_s},
        {401, u"Unauthorized (401)"_s},
        {403, u"Forbidden (403)"_s},
        {404, u"Not Found (404)"_s},
        {413, u"Payload Too Large (413)"_s},
        {422, u"Unprocessable Entity (422)"_s},
        {501, u"Not Implemented (501)"_s},
        {505, u"HTTP Version Not Supported (505)"_s},
    };
    for (const int code : {200, 202, 299})
        cases.append(Case{code, {}, true});
    for (const int code : {100, 301, 307, 402, 408, 429, 500, 502, 503, 599})
        cases.append(Case{code, {}});
    for (const auto &[code, rejection, isDelivered] : cases) {
        SCOPED_TRACE(code.value_or(0));
        const bool isKept = rejection.isEmpty() && !isDelivered;
        AnalyticsWorld world;
        world.start();
        world.recordMany(3);
        world.http->answer(HttpResponse{code, "the answer"});
        EXPECT_EQ(world.sentAfter(10s).size(), 1);
        EXPECT_EQ(world.manager->signalManager().consecutiveFailures(), isKept ? 1 : 0);
        EXPECT_EQ(world.sentAfter(20s).size(), isKept ? 1 : 0);
        EXPECT_EQ(world.messages(LogLevel::Error),
                  rejection.isEmpty()
                      ? QStringList()
                      : QStringList(u"Dropping 3 signal(s): rejected by server "_s + rejection));
        const QStringList debug = world.messages(LogLevel::Debug);
        EXPECT_EQ(debug.contains(u"the answer"_s), isDelivered);
        EXPECT_EQ(debug.contains(
                      u"Failed to send events (status %1), will try again later"_s.arg(code.value_or(0))),
                  isKept);
    }
}

TEST(AnalyticsSending, WithoutADestinationKeepsSignalsAndBacksOff) {
    AnalyticsWorld world;
    world.configuration.apiBaseURL = QUrl();
    world.configuration.cacheLimit = 3;
    world.start();
    world.recordMany(5);
    EXPECT_THAT(world.sentAfter(30s), IsEmpty());
    EXPECT_THAT(world.clock->takeQueueDelays(), ElementsAre(20, 40));
    EXPECT_THAT(world.messages(LogLevel::Error),
                Contains(u"Unable to construct signal API URL for namespace com.example"_s));
    world.terminate();
    EXPECT_EQ(typesIn(world.cacheFileContents()), (QStringList{u"s3"_s, u"s4"_s, u"s5"_s}));
}

TEST(AnalyticsSending, IgnoresJumpsOfTheDate) {
    SessionWorld world;
    world.storeSession(1h, 30);
    world.start();
    EXPECT_EQ(world.sentAfter(10s), QList<QStringList>{QStringList(sessionSignal)});
    for (const auto jump : {-48h, 400 * 24h}) {
        world.clock->jump(jump);
        world.manager->signal(u"s"_s);
        EXPECT_EQ(world.sentAfter(9s), QList<QStringList>());
        EXPECT_EQ(world.sentAfter(1s), QList<QStringList>{QStringList(u"s"_s)});
    }
    world.manager->movedToBackground();
    world.clock->jump(-48h);
    world.manager->returnedToForeground(); // a negative absence is none
    world.terminate();
    EXPECT_EQ(world.storedSessions().at(1)[u"durationInSeconds"], 29); // 30 seconds less the first half
    EXPECT_EQ(world.storedSessions().size(), 2);
}

// -- The cache and its file

TEST(AnalyticsCache, ReadsWhatItCanAndSurvivesTheRest) {
    const QByteArray good = *encodeSignals({sampleBody()}, DateForm::Disk);
    const auto changed = [&good](const char *from, const QByteArray &to) {
        return QByteArray(good).replace(from, to);
    };
    const QByteArray large = '"' + QByteArray(50 * 1024 * 1024, 'x') + '"';
    struct Case {
        const char *name;
        std::optional<QByteArray> contents;
        qsizetype loaded = -1; // -1: nothing to load
        qint64 size = 0;       // padded to this size
    };
    const QList<Case> cases{
        {"missing", std::nullopt},
        {"empty", ""},
        {"truncated", good.left(good.size() - 9)},
        {"not JSON", "signals!"},
        {"not a list", good.mid(1, good.size() - 2)},
        {"other keys", changed("clientUser", "user")},
        {"date of the network", *encodeSignals({sampleBody()}, DateForm::Network)},
        {"number as parameter", changed("\"2\"", "2")},
        {"one of two is bad", good.chopped(1) + ",{}]"},
        {"beyond any sense", good, -1, 200 * 1024 * 1024},
        {"good", good, 1},
        {"an unknown key more", changed("\"appID\"", "\"new\":[],\"appID\""), 1},
        {"50 MB", changed("\"2\"", large), 1},
    };
    for (const auto &[name, contents, loaded, size] : cases) {
        SCOPED_TRACE(name);
        AnalyticsWorld world;
        world.configuration.logHandler->minimumLevel = LogLevel::Info;
        world.environment.cacheFileURL = QUrl::fromLocalFile(world.directory.filePath(u"cache"_s));
        if (contents) {
            QFile file(world.cacheFile());
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(*contents) == contents->size());
            ASSERT_TRUE(size == 0 || file.resize(size));
        }
        world.start();
        EXPECT_EQ(world.http->takeRequests().size(), loaded > 0 ? 1 : 0);
        EXPECT_FALSE(QFile::exists(world.cacheFile()));
        EXPECT_EQ(world.messages(LogLevel::Info).filter(u"Loaded "_s),
                  loaded < 0 ? QStringList() : QStringList(u"Loaded %1 signals"_s.arg(loaded)));
        world.manager->signal(u"new"_s);
        world.terminate();
        EXPECT_EQ(typesIn(world.cacheFileContents()), QStringList(u"new"_s));
        const QString location = world.environment.cacheFileURL->toString();
        EXPECT_EQ(world.messages(LogLevel::Info).first(), u"Loading Telemetry cache from: "_s + location);
        EXPECT_EQ(world.messages(LogLevel::Info).last(),
                  u"Saved Telemetry cache "_s + location + u" of 1 signals"_s);
    }
}

TEST(AnalyticsCache, ReportsAFileThatCannotBeWritten) {
    AnalyticsWorld world;
    QFile blocker(world.directory.filePath(u"file"_s));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    for (const QString &path : QStringList{blocker.fileName() + u"/below a file"_s, world.directory.path()}) {
        world.environment.cacheFileURL = QUrl::fromLocalFile(path);
        world.log.clear();
        world.start();
        world.manager->signal(u"s"_s);
        world.terminate();
        EXPECT_EQ(world.messages(LogLevel::Error), QStringList(u"Error saving Telemetry cache"_s))
            << text(path);
    }
    world.environment.cacheFileURL.reset();
    for (const QString &caches : {QString(), world.directory.filePath(u"new"_s)}) {
        world.environment.cachesDirectory = caches;
        world.log.clear();
        world.start();
        world.manager->signal(u"s"_s);
        world.terminate();
        EXPECT_EQ(
            world.messages(LogLevel::Error).contains(u"Failed to get disk cache url from FileManager."_s),
            caches.isEmpty());
        EXPECT_EQ(QFile::exists(caches + u"/telemetrysignalcache"_s), !caches.isEmpty());
    }
}

TEST(AnalyticsCache, GivesUpTheOldestBeyondItsLimitAndNeverKeepsTheWindowOpen) {
    AnalyticsWorld world;
    QSemaphore diskIsBack;
    const LogHandler quick = *world.configuration.logHandler;
    world.configuration.logHandler = LogHandler{LogLevel::Info, [&](LogLevel level, const QString &message) {
                                                    if (message.startsWith(u"Saved"_s))
                                                        diskIsBack.acquire();
                                                    quick.function(level, message);
                                                }};
    world.start();
    for (int i = 1; i <= 10'001; ++i) {
        SignalPostBody body = sampleBody();
        body.type = QString::number(i);
        world.manager->signalManager().push(body);
    }
    QElapsedTimer timer;
    timer.start();
    world.manager->aboutToTerminate(); // returns although the cache's queue is stuck
    EXPECT_LT(timer.elapsed(), 200);
    EXPECT_THAT(world.messages(LogLevel::Info).filter(u"Saved"_s), IsEmpty());
    diskIsBack.release();
    world.terminate();
    const QStringList saved = typesIn(world.cacheFileContents());
    ASSERT_EQ(saved.size(), 10'000);
    EXPECT_EQ(saved.first(), u"2"_s);
    EXPECT_EQ(saved.last(), u"10001"_s);
}

TEST(AnalyticsCache, SavesSignalsUnderWayAndThoseOfOtherThreads) {
    AnalyticsWorld world;
    world.start();
    world.recordMany(102, u"s"_s);
    world.http->hold();
    EXPECT_EQ(world.sentAfter(10s).size(), 1); // s1 to s100, never answered
    const std::unique_ptr<QThread> other(QThread::create([&world] { world.manager->signal(u"other"_s); }));
    other->start();
    other->wait(); // the main thread has not seen it yet
    world.manager->aboutToTerminate();
    world.http->release(status(200)); // too late: sent twice is better than not at all
    world.terminate();

    const QStringList saved = typesIn(world.cacheFileContents());
    EXPECT_EQ(saved.size(), 103);
    EXPECT_EQ(QSet(saved.begin(), saved.end()).size(), 103);
    EXPECT_TRUE(saved.contains(u"other"_s));

    world.start(); // the next run sends them: a batch at once, the rest in its turn
    QStringList sent;
    for (const QStringList &batch : world.sentAfter(10s))
        sent += batch;
    EXPECT_EQ(sent, saved);
}

/// Not a test of its own: what SurvivesSeveralProcesses runs in each of its processes.
TEST(AnalyticsCache, DISABLED_OneOfSeveralProcesses) {
    AnalyticsWorld world;
    world.environment.cacheFileURL = QUrl::fromLocalFile(qEnvironmentVariable("VANTREL_TEST_CACHE"));
    world.http->hold(); // what it takes over from the others is under way for ever
    world.manager = std::make_unique<TelemetryManager>(world.configuration, world.environment);
    world.recordMany(20, qEnvironmentVariable("VANTREL_TEST_NAME"));
    world.terminate();
    EXPECT_TRUE(world.messages(LogLevel::Info).last().startsWith(u"Saved"_s));
}

TEST(AnalyticsCache, SurvivesSeveralProcesses) {
    AnalyticsWorld world;
    std::deque<QProcess> processes(4);
    QStringList expected;
    for (QProcess &process : processes) {
        const QString name = QString::number(expected.size()) + u'-';
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert(u"VANTREL_TEST_CACHE"_s, world.cacheFile());
        variables.insert(u"VANTREL_TEST_NAME"_s, name);
        process.setProcessEnvironment(variables);
        process.start(QCoreApplication::applicationFilePath(),
                      {u"--gtest_filter=*OneOfSeveralProcesses"_s, u"--gtest_also_run_disabled_tests"_s});
        for (int i = 1; i <= 20; ++i)
            expected.append(name + QString::number(i));
    }
    for (QProcess &process : processes) {
        ASSERT_TRUE(process.waitForFinished(60'000));
        ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardOutput().constData();
    }
    QStringList saved = typesIn(world.cacheFileContents());
    saved.sort();
    expected.sort();
    EXPECT_EQ(saved, expected);
}

// -- Sessions

TEST(AnalyticsSessions, TellsAnInstallationOnce) {
    SessionWorld world;
    world.start();
    EXPECT_THAT(world.sentAfter(0s), IsEmpty());
    const auto records = world.nextRecords();
    ASSERT_EQ(records.size(), 2);
    EXPECT_EQ(records[0][u"type"], installSignal);
    EXPECT_EQ(records[0][u"payload"][u"TelemetryDeck.Acquisition.firstSessionDate"], u"2024-05-31"_s);
    EXPECT_EQ(records[1][u"type"], sessionSignal);
    EXPECT_EQ(records[1][u"payload"][u"TelemetryDeck.Retention.averageSessionSeconds"], u"-1"_s);
    EXPECT_FALSE(
        records[1][u"payload"].toObject().contains(u"TelemetryDeck.Retention.previousSessionSeconds"));
    EXPECT_THAT(world.messages(LogLevel::Error), IsEmpty());
    world.terminate();

    world.start();
    EXPECT_EQ(world.sentAfter(10s), QList<QStringList>{QStringList(sessionSignal)});
    EXPECT_EQ(world.preferences->value(u"distinctDaysUsed"_s).toStringList(), QStringList(u"2024-05-31"_s));
}

TEST(AnalyticsSessions, StoresSessionsThatLastASecond) {
    for (const auto &[length, stored] : {std::pair(1400ms, 0), std::pair(1500ms, 1)}) {
        SessionWorld world;
        world.start();
        world.clock->advance(length); // half a second passes before the session
        world.terminate();
        EXPECT_EQ(world.storedSessions().size(), stored);
    }
    SessionWorld world;
    world.start();
    world.clock->advance(3s);
    world.manager->movedToBackground();
    world.clock->advance(300s);
    world.manager->returnedToForeground(); // not long enough for a new session
    world.manager->movedToBackground();
    world.clock->advance(301s);
    world.manager->returnedToForeground();
    world.clock->advance(1s);
    EXPECT_EQ(world.sentAfter(10s), (QList<QStringList>{{installSignal, sessionSignal}, {sessionSignal}}));
    world.terminate();
    const QJsonArray sessions = world.storedSessions();
    ASSERT_EQ(sessions.size(), 2);
    EXPECT_EQ(sessions[0][u"durationInSeconds"], 603);
    EXPECT_EQ(sessions[1][u"durationInSeconds"], 11);
}

TEST(AnalyticsSessions, CountsWhatWasStored) {
    SessionWorld world;
    world.storeSession(90 * 24h, 500); // exactly 90 days: too old
    world.storeSession(72h, 30);
    world.storeSession(48h, 60);
    world.storeSession(24h, 90);
    world.preferences->setValue(u"deletedSessionsCount"_s, 4);
    world.preferences->setValue(u"distinctDaysUsed"_s,
                                QStringList{u"2024-04-30"_s, u"2024-05-01"_s, u"2024-05-30"_s});
    for (int run = 0; run < 2; ++run) { // pruned once, and one day of use
        world.start();
        const QJsonValue payload = world.nextRecords(1s + 9s).at(0)[u"payload"];
        const QString family = u"TelemetryDeck.Retention."_s;
        EXPECT_EQ(payload[family + u"totalSessionsCount"], QString::number(8 + run));
        EXPECT_EQ(payload[family + u"distinctDaysUsed"], u"4"_s);
        EXPECT_EQ(payload[family + u"distinctDaysUsedLastMonth"], u"3"_s); // the 1st is 30 days ago
        EXPECT_EQ(payload[family + u"averageSessionSeconds"], run == 0 ? u"45"_s : u"60"_s);
        EXPECT_EQ(payload[family + u"previousSessionSeconds"], run == 0 ? u"60"_s : u"90"_s);
        EXPECT_EQ(payload[u"TelemetryDeck.Acquisition.firstSessionDate"], u"2023-12-24"_s);
        world.terminate();
        EXPECT_EQ(world.preferences->value(u"deletedSessionsCount"_s).toInt(), 5);
    }
}

} // namespace
