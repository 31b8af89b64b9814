#pragma once

#include <QByteArray>
#include <QObject>
#include <QSslConfiguration>
#include <QString>
#include <QUrl>

#include <tl/expected.hpp>

#include <chrono>
#include <functional>
#include <optional>

namespace vantrel {

struct HttpRequest {
    QUrl url;
    QByteArray json = {}; ///< posted as "application/json"; without any the address is read with GET
    QList<std::pair<QByteArray, QByteArray>> headers = {};
    std::chrono::milliseconds timeout = std::chrono::seconds(60); ///< for everything, redirects included
    qint64 maximumSize = 65'536;                                  ///< of the answer's body, in bytes
    int maximumRedirects = 0; ///< followed on the same host over HTTPS; with 0 a redirect is the answer
    std::optional<QSslConfiguration> tls = std::nullopt; ///< the system's unless given
};

struct HttpResponse {
    int status = 0;
    QByteArray body;
    bool isCutOff = false; ///< `body` is the beginning of something larger than the request's maximumSize
};

/// Why there is no answer.
struct HttpError {
    enum class Kind {
        timedOut,
        notSecure, ///< the server could not prove who it is
        redirectedToPlainHttp,
        redirectedElsewhere, ///< to another host
        redirectedTooOften,
        failed, ///< not reached, or broken off, or no HTTP
    };

    Kind kind = Kind::failed;
    QString text; ///< a sentence; of `redirectedElsewhere` the host
};

using HttpCompletion = std::function<void(tl::expected<HttpResponse, HttpError>)>;

/// Asks once and calls `completion` once, from the event loop of the calling thread. When `context`, an
/// object of that thread, is destroyed first, the exchange is given up and `completion` is not called.
/// Nothing is posted twice, whatever the connection does. No cookies are stored or sent.
void startHttpExchange(HttpRequest request, QObject *context, HttpCompletion completion);

} // namespace vantrel
