#include "Analytics/HttpClient.h"

#include "Analytics/SerialQueue.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <mutex>

namespace vantrel {

namespace {

constexpr qint64 maximumBodySize = 64 * 1024;

/// Whether the server answered. A connection that broke after the status line also has a status, but no
/// answer.
bool isAnswer(QNetworkReply::NetworkError error) {
    return error == QNetworkReply::NoError ||
           (error >= QNetworkReply::ContentAccessDenied && error != QNetworkReply::ProtocolUnknownError &&
            error != QNetworkReply::ProtocolFailure);
}

class NetworkHttpClient final : public HttpClient {
public:
    ~NetworkHttpClient() override {
        if (m_queue)
            m_queue->sync([this] { m_network.reset(); });
    }

    void post(HttpRequest request, Completion completion) override {
        std::call_once(m_started, [this] { m_queue.emplace(QStringLiteral("vantrel.analytics.http")); });
        m_queue->async([this, request = std::move(request), completion = std::move(completion)] {
            if (!m_network)
                m_network = std::make_unique<QNetworkAccessManager>();
            start(request, completion);
        });
    }

private:
    void start(const HttpRequest &details, const Completion &completion) {
        struct Exchange {
            QByteArray body;
            bool isComplete = false;
            bool isTimedOut = false;
        };

        QNetworkRequest request(details.url);
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
        QNetworkReply *reply = m_network->post(request, details.json);
        reply->setReadBufferSize(maximumBodySize);
        const auto exchange = std::make_shared<Exchange>();

        // Not the toolkit's transfer time-out: that one starts again with every byte of a trickle.
        QTimer::singleShot(details.timeout, reply, [reply, exchange] {
            exchange->isTimedOut = true;
            reply->abort();
        });
        // The status has decided by now; the rest of a long answer is not worth the wait.
        QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, exchange] {
            exchange->body += reply->read(maximumBodySize - exchange->body.size());
            if (exchange->body.size() < maximumBodySize)
                return;
            exchange->isComplete = true;
            reply->abort();
        });
        QObject::connect(reply, &QNetworkReply::finished, reply, [reply, exchange, completion] {
            reply->deleteLater();
            if (exchange->isTimedOut)
                return completion(tl::unexpected(QStringLiteral("The request timed out.")));
            if (!exchange->isComplete && !isAnswer(reply->error()))
                return completion(tl::unexpected(reply->errorString()));
            const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
            completion(HttpResponse{status.isValid() ? std::optional(status.toInt()) : std::nullopt,
                                    exchange->body});
        });
    }

    std::once_flag m_started;
    std::unique_ptr<QNetworkAccessManager> m_network; // lives on m_queue
    std::optional<SerialQueue> m_queue;
};

} // namespace

std::shared_ptr<HttpClient> networkHttpClient() {
    return std::make_shared<NetworkHttpClient>();
}

} // namespace vantrel
