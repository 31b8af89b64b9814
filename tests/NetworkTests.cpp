// The bounded exchange against a real server on this computer.

#include "Network/HttpExchange.h"
#include "support/LocalHttpServer.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::LocalHttpServer;
using Kind = HttpError::Kind;
using Result = tl::expected<HttpResponse, HttpError>;

/// The outcome of one exchange.
Result outcome(const HttpRequest &request) {
    QObject context;
    std::optional<Result> result;
    startHttpExchange(request, &context, [&result](const Result &found) {
        EXPECT_FALSE(result) << "it ended twice";
        result = found;
    });
    EXPECT_FALSE(result) << "not before the event loop runs";
    EXPECT_TRUE(waitFor([&result] { return result.has_value(); }));
    return result.value_or(tl::unexpected(HttpError{}));
}

/// The most memory this process has had so far, in bytes.
qint64 peakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss * 1024;
}

TEST(HttpExchangeTests, oneAttemptIsOnePostWhateverTheServerDoes) {
    const QByteArray half = "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nhalf";
    const LocalHttpServer::Behaviour close = [](QTcpSocket *socket) { socket->disconnectFromHost(); };
    struct Case {
        const char *name;
        LocalHttpServer::Behaviour behaviour;
        std::optional<Kind> error; // none: status 200
        std::chrono::milliseconds timeout = 60s;
    };
    for (const auto transport : {LocalHttpServer::Transport::plain, LocalHttpServer::Transport::tls}) {
        for (const auto &[name, behaviour, error, timeout] : {
                 Case{"answer", LocalHttpServer::answer({}), std::nullopt},
                 Case{"close", close, Kind::failed},
                 Case{"reset", LocalHttpServer::reset(""), Kind::failed},
                 Case{"reset in the middle", LocalHttpServer::reset(half), Kind::failed},
                 Case{"garbage", LocalHttpServer::reset("220 mail.example ready\r\n"), Kind::failed},
                 Case{"silence", LocalHttpServer::silence(), Kind::timedOut, 300ms},
                 Case{"an answer without end", LocalHttpServer::trickle(), Kind::timedOut, 300ms},
             }) {
            SCOPED_TRACE(name);
            LocalHttpServer server(transport);
            server.behaviour = behaviour;
            const Result result = outcome({.url = server.url(u"/in"_s),
                                           .json = "[1]",
                                           .timeout = timeout,
                                           .tls = LocalHttpServer::trustingConfiguration()});
            EXPECT_EQ(result ? result->status : 0, error ? 0 : 200);
            EXPECT_EQ(result ? std::nullopt : std::optional(result.error().kind), error);
            // A repetition would have been seen: it comes before the outcome.
            EXPECT_EQ(server.bodies, QList<QByteArray>{"[1]"});
            EXPECT_TRUE(server.heads.value(0).startsWith("POST /in HTTP/1.1\r\n"));
            EXPECT_TRUE(server.heads.value(0).contains("Content-Type: application/json"));
        }
    }
}

TEST(HttpExchangeTests, statusesAndRedirectsAreAnswersUnlessTheyAreToBeFollowed) {
    for (const int status : {204, 301, 302, 307, 308, 400, 401, 404, 429, 500, 503}) {
        LocalHttpServer elsewhere;
        LocalHttpServer server;
        const bool isRedirect = status / 100 == 3;
        server.behaviour = LocalHttpServer::answer(
            {.status = status, .location = isRedirect ? elsewhere.url(u"/v2/"_s).toEncoded() : ""});
        const Result result = outcome({.url = server.url(), .json = "[]"});
        ASSERT_TRUE(result) << status;
        EXPECT_EQ(result->status, status);
        EXPECT_EQ(server.heads.size(), 1) << status;
        EXPECT_EQ(elsewhere.heads.size(), 0) << status;
    }
}

TEST(HttpExchangeTests, aLongAnswerIsCutOffAndNotKept) {
    qint64 sent = 0;
    LocalHttpServer server;
    server.behaviour = LocalHttpServer::flood(100 * 1024 * 1024, &sent);
    const qint64 before = peakMemory();
    const Result result = outcome({.url = server.url(), .json = "[]"});
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->isCutOff);
    EXPECT_EQ(result->body, QByteArray(64 * 1024, 'x'));
    EXPECT_LT(sent, 32 * 1024 * 1024);
    EXPECT_LT(peakMemory() - before, 64 * 1024 * 1024);
}

TEST(HttpExchangeTests, onlyTheRightCertificateIsTrusted) {
    const std::optional trusting = LocalHttpServer::trustingConfiguration();
    for (const auto &[name, trust, host, isSent] :
         {std::tuple("signed by nobody", std::optional<QSslConfiguration>(), u"localhost"_s, false),
          {"of another host", trusting, u"127.0.0.1"_s, false},
          {"the right one", trusting, u"localhost"_s, true}}) {
        LocalHttpServer server(LocalHttpServer::Transport::tls);
        const Result result = outcome({.url = server.url({}, host), .json = "[]", .tls = trust});
        EXPECT_EQ(result.has_value(), isSent) << name;
        EXPECT_EQ(server.bodies.size(), isSent ? 1 : 0) << name;
        EXPECT_TRUE(isSent || result.error().kind == Kind::notSecure) << name;
    }
}

TEST(HttpExchangeTests, cookiesAreNeitherKeptNorSent) {
    LocalHttpServer server;
    server.behaviour = [](QTcpSocket *socket) {
        socket->write("HTTP/1.1 200 OK\r\nSet-Cookie: id=7\r\nContent-Length: 0\r\n\r\n");
    };
    for (int time = 0; time < 2; ++time)
        EXPECT_TRUE(outcome({.url = server.url()}));
    ASSERT_EQ(server.heads.size(), 2);
    EXPECT_FALSE(server.heads[1].toLower().contains("cookie"));
}

TEST(HttpExchangeTests, endsAtOnceWithItsContext) {
    LocalHttpServer server;
    server.behaviour = LocalHttpServer::silence();
    auto context = std::make_unique<QObject>();
    startHttpExchange({.url = server.url()}, context.get(),
                      [](const Result &) { ADD_FAILURE() << "nobody is there to hear it"; });
    ASSERT_TRUE(waitFor([&server] { return server.heads.size() == 1; }));
    context.reset();
    QCoreApplication::processEvents();

    LocalHttpServer closed;
    closed.close();
    // A completion may destroy the context it was given.
    auto *own = new QObject;
    bool isDone = false;
    startHttpExchange({.url = closed.url()}, own, [own, &isDone](const Result &result) {
        EXPECT_FALSE(result);
        delete own;
        isDone = true;
    });
    EXPECT_TRUE(waitFor([&isDone] { return isDone; }));
}

} // namespace
} // namespace vantrel
