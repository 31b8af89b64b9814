#pragma once

#include <QByteArray>
#include <QList>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

namespace vantrel::test {

/// A certificate for "localhost" that nobody has signed, and its key. Made with the openssl command.
[[nodiscard]] std::optional<QSslConfiguration> selfSignedCertificate();

/// An HTTP server on this computer that misbehaves as it is told. Runs in the event loop of its thread.
class LocalHttpServer {
public:
    /// What it does with a request that has arrived completely.
    using Behaviour = std::function<void(QTcpSocket *)>;

    /// With a certificate it speaks TLS only.
    explicit LocalHttpServer(const std::optional<QSslConfiguration> &certificate = std::nullopt);

    [[nodiscard]] QUrl url(const QString &host = QStringLiteral("127.0.0.1")) const;
    /// Refuses connections from now on.
    void close() { m_server->close(); }

    Behaviour behaviour = answer("200 OK");
    QList<QByteArray> heads;  ///< of the requests so far: everything before the empty line
    QList<QByteArray> bodies; ///< of the requests so far

    /// A complete answer.
    [[nodiscard]] static Behaviour answer(const QByteArray &status, const QByteArray &headers = {});
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
