// The client against a real server on this computer. Only the waiting between attempts is made up.

#include "support/AnalyticsSupport.h"
#include "support/LocalHttpServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

using namespace vantrel;
using namespace vantrel::test;

namespace {

const QStringList sample{u"s1"_s, u"s2"_s, u"s3"_s};

/// A client that sends to this server.
struct NetworkWorld : AnalyticsWorld {
    explicit NetworkWorld(const QUrl &url) {
        configuration.urlSession.reset();
        configuration.apiBaseURL = url;
    }
    /// Starts, records three signals, and waits for the attempt to send them.
    [[nodiscard]] bool tryToSend() {
        start();
        recordMany(3);
        clock->advance(10s);
        return waitForAttempts(2);
    }
    /// Whether a later attempt has ended.
    [[nodiscard]] bool tryAgain() {
        clock->advance(20s);
        return waitForAttempts(3);
    }
};

/// The most memory this process has had so far, in bytes.
qint64 peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:"))
            return std::stoll(line.substr(6)) * 1024;
    return -1;
}

TEST(AnalyticsNetwork, KeepsOrDropsBySortOfFailure) {
    const QByteArray half = "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nhalf";
    struct Case {
        std::string name;
        LocalHttpServer::Behaviour behaviour;
        bool isKept;
        std::chrono::milliseconds timeout = 60s;
    };
    QList<Case> cases{
        {"reset before the answer", LocalHttpServer::reset(""), true},
        {"reset in the middle of the answer", LocalHttpServer::reset(half), true},
        {"not HTTP", LocalHttpServer::reset("220 mail.example ready\r\n"), true},
        {"no answer", LocalHttpServer::silence(), true, 1500ms},
        {"an answer without end", LocalHttpServer::trickle(), true, 1500ms},
    };
    for (const int status : {200, 204, 400, 401, 403, 404, 413, 422, 501, 505})
        cases.append({std::to_string(status), LocalHttpServer::answer({.status = status}), false});
    for (const int status : {429, 500, 503})
        cases.append({std::to_string(status), LocalHttpServer::answer({.status = status}), true});
    for (const auto &[name, behaviour, isKept, timeout] : cases) {
        SCOPED_TRACE(name);
        LocalHttpServer server;
        server.behaviour = behaviour;
        NetworkWorld world(server.url());
        world.environment.requestTimeout = timeout;
        ASSERT_TRUE(world.tryToSend());
        EXPECT_EQ(world.manager->signalManager().consecutiveFailures(), isKept ? 1 : 0);
        EXPECT_EQ(typesIn(server.bodies.value(0)), sample);
        EXPECT_EQ(world.messages(LogLevel::Error).contains(u"The request timed out."_s), timeout < 60s);
        server.behaviour = LocalHttpServer::answer({});
        server.bodies.clear();
        ASSERT_TRUE(world.tryAgain());
        EXPECT_EQ(server.bodies.size(), isKept ? 1 : 0);
        EXPECT_EQ(typesIn(server.bodies.value(0)), isKept ? sample : QStringList());
        EXPECT_EQ(world.manager->signalManager().consecutiveFailures(), 0);
    }
}

TEST(AnalyticsNetwork, DoesNotFollowRedirects) {
    for (const int status : {301, 302, 307, 308}) {
        LocalHttpServer elsewhere;
        LocalHttpServer server;
        server.behaviour =
            LocalHttpServer::answer({.status = status, .location = elsewhere.url(u"/v2/"_s).toEncoded()});
        NetworkWorld world(server.url());
        ASSERT_TRUE(world.tryToSend());
        EXPECT_EQ(world.manager->signalManager().consecutiveFailures(), 1) << status;
        server.behaviour = LocalHttpServer::answer({});
        ASSERT_TRUE(world.tryAgain());
        EXPECT_EQ(typesIn(server.bodies.last()), sample) << status;
        EXPECT_EQ(elsewhere.heads.size(), 0) << status;
    }
}

TEST(AnalyticsNetwork, OutlastsARefusedConnection) {
    LocalHttpServer server;
    NetworkWorld world(server.url());
    server.close();
    ASSERT_TRUE(world.tryToSend());
    EXPECT_EQ(world.manager->signalManager().consecutiveFailures(), 1);
    EXPECT_EQ(world.messages(LogLevel::Error).size(), 1);
    LocalHttpServer later;
    world.manager->configure([&later](auto &edited) { edited.apiBaseURL = later.url(); });
    ASSERT_TRUE(world.tryAgain());
    EXPECT_EQ(typesIn(later.bodies.value(0)), sample);
}

TEST(AnalyticsNetwork, KeepsLittleOfALongAnswer) {
    qint64 sent = 0;
    LocalHttpServer server;
    server.behaviour = LocalHttpServer::flood(100 * 1024 * 1024, &sent);
    const qint64 before = peakMemory();
    NetworkWorld world(server.url());
    ASSERT_TRUE(world.tryToSend());
    EXPECT_EQ(world.manager->signalManager().consecutiveFailures(), 0);
    EXPECT_TRUE(world.messages(LogLevel::Debug).contains(QString(64 * 1024, u'x')));
    EXPECT_LT(sent, 32 * 1024 * 1024);
    EXPECT_LT(peakMemory() - before, 64 * 1024 * 1024);
}

TEST(AnalyticsNetwork, TrustsOnlyTheRightCertificate) {
    const QSslConfiguration system = QSslConfiguration::defaultConfiguration();
    const QSslConfiguration trusting = LocalHttpServer::trustingConfiguration();
    struct Case {
        const char *name;
        QSslConfiguration trust;
        QString host;
        bool isSent;
    };
    const QList<Case> cases{
        {"signed by nobody", system, u"localhost"_s, false},
        {"of another host", trusting, u"127.0.0.1"_s, false},
        {"the right one", trusting, u"localhost"_s, true},
    };
    for (const auto &[name, trust, host, isSent] : cases) {
        QSslConfiguration::setDefaultConfiguration(trust);
        LocalHttpServer server(LocalHttpServer::Transport::tls);
        NetworkWorld world(server.url({}, host));
        ASSERT_TRUE(world.tryToSend());
        EXPECT_EQ(world.manager->signalManager().consecutiveFailures(), isSent ? 0 : 1) << name;
        EXPECT_EQ(server.bodies.size(), isSent ? 1 : 0) << name;
        world.terminate();
        EXPECT_EQ(typesIn(world.cacheFileContents()), isSent ? QStringList() : sample) << name;
    }
    QSslConfiguration::setDefaultConfiguration(system);
}

TEST(AnalyticsNetwork, EndsAtOnceWithARequestUnderWay) {
    LocalHttpServer server;
    server.behaviour = LocalHttpServer::silence();
    NetworkWorld world(server.url());
    world.start();
    world.recordMany(3);
    world.clock->advance(10s);
    ASSERT_TRUE(QTest::qWaitFor([&server] { return server.bodies.size() == 1; }, 30'000));
    QElapsedTimer timer;
    timer.start();
    world.terminate();
    EXPECT_LT(timer.elapsed(), 5'000); // far from the request's 60 seconds
    EXPECT_EQ(typesIn(world.cacheFileContents()), sample);
}

} // namespace
