#include "Network/HttpExchange.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <cstring>
#include <utility>

namespace vantrel {

namespace {

using Kind = HttpError::Kind;

/// A body that can be read once. When a connection breaks before the answer, the toolkit would connect again
/// and send the request again; it gives up when it cannot have the body from the start.
class SingleUseBody : public QIODevice {
public:
    SingleUseBody(QByteArray bytes, QObject *parent) : QIODevice(parent), m_bytes(std::move(bytes)) {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    bool isSequential() const override { return true; }
    bool reset() override { return false; }
    qint64 bytesAvailable() const override { return m_bytes.size() - m_position; }
    bool atEnd() const override { return bytesAvailable() == 0; }

protected:
    qint64 readData(char *data, qint64 size) override {
        size = std::min(size, bytesAvailable());
        std::memcpy(data, m_bytes.constData() + m_position, std::size_t(size));
        m_position += size;
        return size;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const QByteArray m_bytes;
    qint64 m_position = 0;
};

/// Whether the server answered. A connection that broke after the status line also has a status, but no
/// answer.
bool isAnswer(QNetworkReply::NetworkError error) {
    return error == QNetworkReply::NoError ||
           (error >= QNetworkReply::ContentAccessDenied && error != QNetworkReply::ProtocolUnknownError &&
            error != QNetworkReply::ProtocolFailure);
}

/// Lives for one exchange, its connections included: nothing waits for a next one.
class HttpExchange : public QObject {
public:
    HttpExchange(HttpRequest request, QObject *context, HttpCompletion completion)
        : QObject(context), m_request(std::move(request)), m_completion(std::move(completion)) {
        m_network.setAutoDeleteReplies(true);
        // Not the toolkit's transfer time-out: that one starts again with every byte of a trickle.
        QTimer::singleShot(m_request.timeout, this,
                           [this] { fail(Kind::timedOut, QStringLiteral("The request timed out.")); });
        send(m_request.url);
    }

private:
    void send(const QUrl &url) {
        QNetworkRequest request(url);
        for (const auto &[name, value] : std::as_const(m_request.headers))
            request.setRawHeader(name, value);
        if (m_request.tls)
            request.setSslConfiguration(*m_request.tls);
        // Redirects are followed here: asked for a decision, Qt 6.4 follows the second one twice.
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        for (const auto attribute :
             {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
              QNetworkRequest::AuthenticationReuseAttribute})
            request.setAttribute(attribute, QNetworkRequest::Manual);
        if (m_request.json.isEmpty()) {
            m_reply = m_network.get(request);
        } else {
            request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
            request.setHeader(QNetworkRequest::ContentLengthHeader, m_request.json.size());
            request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
            m_reply = m_network.post(request, new SingleUseBody(m_request.json, this));
        }
        m_reply->setReadBufferSize(std::max<qint64>(m_request.maximumSize / 16, 16LL * 1024));
        m_body.clear();
        connect(m_reply, &QNetworkReply::readyRead, this, &HttpExchange::receive);
        connect(m_reply, &QNetworkReply::finished, this, &HttpExchange::replyFinished);
    }

    void receive() {
        m_body += m_reply->readAll();
        if (m_body.size() > m_request.maximumSize)
            finish(HttpResponse{status(), m_body.left(m_request.maximumSize), true});
    }

    void replyFinished() {
        const QNetworkReply::NetworkError error = m_reply->error();
        const QUrl target = m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
        if (error == QNetworkReply::SslHandshakeFailedError)
            fail(Kind::notSecure, m_reply->errorString());
        else if (!isAnswer(error))
            fail(Kind::failed, m_reply->errorString());
        else if (status() == 0)
            fail(Kind::failed, QStringLiteral("The server did not answer with HTTP."));
        else if (target.isValid() && m_request.maximumRedirects > 0)
            follow(m_reply->url().resolved(target));
        else
            receiveRest();
    }

    void receiveRest() {
        receive();
        finish(HttpResponse{status(), m_body, false}); // unless it was too large
    }

    void follow(const QUrl &target) {
        if (!target.isValid() || target.scheme() != QStringLiteral("https"))
            fail(Kind::redirectedToPlainHttp, QStringLiteral("The server redirects to plain HTTP."));
        else if (target.host() != m_request.url.host())
            fail(Kind::redirectedElsewhere, target.host());
        else if (++m_redirects > m_request.maximumRedirects)
            fail(Kind::redirectedTooOften, QStringLiteral("The server redirects too often."));
        else
            send(target);
    }

    [[nodiscard]] int status() const {
        return m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    }

    void fail(Kind kind, const QString &text) { finish(tl::unexpected(HttpError{kind, text})); }

    void finish(const tl::expected<HttpResponse, HttpError> &result) {
        const HttpCompletion completion = std::exchange(m_completion, {});
        if (!completion)
            return;
        m_reply->disconnect(this);
        m_reply->abort();
        deleteLater();
        // Not from within the reply: the completion may destroy the context, and with it all of this.
        QMetaObject::invokeMethod(
            parent(), [completion, result] { completion(result); }, Qt::QueuedConnection);
    }

    const HttpRequest m_request;
    HttpCompletion m_completion; // empty once it was called
    QNetworkAccessManager m_network;
    QNetworkReply *m_reply = nullptr; // of the latest request
    QByteArray m_body;
    int m_redirects = 0;
};

} // namespace

void startHttpExchange(HttpRequest request, QObject *context, HttpCompletion completion) {
    new HttpExchange(std::move(request), context, std::move(completion));
}

} // namespace vantrel
