#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <tl/expected.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace vantrel {

struct HttpRequest {
    QUrl url;
    QByteArray json;                   ///< the body, sent as "application/json"
    std::chrono::milliseconds timeout; ///< for the whole exchange
};

struct HttpResponse {
    std::optional<int> status; ///< absent when what came back is not HTTP
    QByteArray body;           ///< at most its first 64 KB
};

/// Sends JSON somewhere.
class HttpClient {
public:
    /// Called once, on a thread of the client's: the answer, whatever its status, or why there is none.
    using Completion = std::function<void(tl::expected<HttpResponse, QString>)>;

    virtual ~HttpClient() = default;
    /// Posts the request and returns at once. Any thread. A client that is destroyed abandons what is under
    /// way: those completions are not called.
    virtual void post(HttpRequest request, Completion completion) = 0;
};

/// The client that uses the network, on a thread of its own that starts with the first request. Redirects are
/// not followed: a signal goes to the configured host or nowhere. It stores no cookies.
[[nodiscard]] std::shared_ptr<HttpClient> networkHttpClient();

} // namespace vantrel
