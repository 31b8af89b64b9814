#pragma once

#include <QByteArray>
#include <QList>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QUrl>

#include <functional>
#include <memory>

namespace vantrel::test {

/// An HTTP server on this computer that misbehaves as it is told. Runs in the event loop of its thread.
class LocalHttpServer {
public:
    enum class Transport {
        plain,
        tls, ///< with a certificate for "localhost" alone, which nobody has signed
    };
    /// What it does with a request that has arrived completely.
    using Behaviour = std::function<void(QTcpSocket *)>;

    struct Answer {
        int status = 200;
        QByteArray body = "ok";
        QByteArray location = {};    ///< of a redirect
        bool announcesLength = true; ///< with a Content-Length
        qint64 missing = 0;          ///< bytes that are announced and never come
    };

    explicit LocalHttpServer(Transport transport = Transport::plain);

    [[nodiscard]] QUrl url(const QString &path = {}, const QString &host = QStringLiteral("localhost")) const;
    /// For clients that are to trust the certificate.
    [[nodiscard]] static QSslConfiguration trustingConfiguration();
    /// Refuses connections from now on.
    void close() { m_server->close(); }

    Behaviour behaviour = answer({});
    QList<QByteArray> heads;  ///< of the requests so far: everything before the empty line
    QList<QByteArray> bodies; ///< of the requests so far
    /// Of the last request.
    [[nodiscard]] QByteArray path() const { return heads.constLast().split(' ').value(1); }

    [[nodiscard]] static Behaviour answer(const Answer &answer);
    /// The first bytes of a response, then a reset of the connection.
    [[nodiscard]] static Behaviour reset(const QByteArray &before);
    /// Nothing, for ever.
    [[nodiscard]] static Behaviour silence();
    /// A body of this size; `sent` counts what the client has let through.
    [[nodiscard]] static Behaviour flood(qint64 size, qint64 *sent);
    /// The head of an answer, and then a byte of the body every few milliseconds without end.
    [[nodiscard]] static Behaviour trickle();

private:
    void serve(QTcpSocket *socket);

    std::unique_ptr<QTcpServer> m_server;
};

} // namespace vantrel::test
