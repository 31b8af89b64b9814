#include "support/LocalHttpServer.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <sys/socket.h>

namespace vantrel::test {

std::optional<QSslConfiguration> selfSignedCertificate() {
    const QTemporaryDir directory;
    QFile keyFile(directory.filePath(QStringLiteral("key.pem")));
    QFile certificateFile(directory.filePath(QStringLiteral("certificate.pem")));
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  QStringLiteral("req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "
                                 "-subj /CN=localhost -addext subjectAltName=DNS:localhost -keyout")
                          .split(u' ') +
                      QStringList{keyFile.fileName(), QStringLiteral("-out"), certificateFile.fileName()});
    if (!openssl.waitForFinished() || !keyFile.open(QIODevice::ReadOnly) ||
        !certificateFile.open(QIODevice::ReadOnly))
        return std::nullopt;
    QSslConfiguration result = QSslConfiguration::defaultConfiguration();
    result.setLocalCertificate(QSslCertificate(&certificateFile));
    result.setPrivateKey(QSslKey(&keyFile, QSsl::Ec));
    return result;
}

LocalHttpServer::LocalHttpServer(const std::optional<QSslConfiguration> &certificate) {
    if (certificate) {
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(*certificate);
        m_server = std::move(server);
    } else {
        m_server = std::make_unique<QTcpServer>();
    }
    QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(), [this] {
        while (QTcpSocket *socket = m_server->nextPendingConnection())
            serve(socket);
    });
    m_server->listen(QHostAddress::LocalHost);
}

QUrl LocalHttpServer::url(const QString &host) const {
    const bool isTls = qobject_cast<QSslServer *>(m_server.get()) != nullptr;
    QUrl result;
    result.setScheme(isTls ? QStringLiteral("https") : QStringLiteral("http"));
    result.setHost(host);
    result.setPort(m_server->serverPort());
    return result;
}

void LocalHttpServer::serve(QTcpSocket *socket) {
    const auto received = std::make_shared<QByteArray>();
    const auto read = [this, socket, received] {
        *received += socket->readAll();
        const qsizetype end = received->indexOf("\r\n\r\n");
        static const QRegularExpression lengthHeader(QStringLiteral("content-length: *(\\d+)"),
                                                     QRegularExpression::CaseInsensitiveOption);
        const QByteArray head = received->left(end);
        const qsizetype length = lengthHeader.match(QString::fromLatin1(head)).captured(1).toLongLong();
        if (end < 0 || received->size() < end + 4 + length)
            return;
        heads.append(head);
        bodies.append(received->mid(end + 4, length));
        received->clear();
        behaviour(socket);
    };
    QObject::connect(socket, &QTcpSocket::readyRead, socket, read);
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    read();
}

LocalHttpServer::Behaviour LocalHttpServer::answer(const QByteArray &status, const QByteArray &headers) {
    return [status, headers](QTcpSocket *socket) {
        socket->write("HTTP/1.1 " + status + "\r\nContent-Length: 2\r\nConnection: close\r\n" + headers +
                      "\r\nok");
        socket->disconnectFromHost();
    };
}

LocalHttpServer::Behaviour LocalHttpServer::reset(const QByteArray &before) {
    return [before](QTcpSocket *socket) {
        socket->write(before);
        socket->flush();
        const linger none{1, 0};
        setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &none, sizeof none);
        socket->abort();
    };
}

LocalHttpServer::Behaviour LocalHttpServer::silence() {
    return [](QTcpSocket *) {};
}

LocalHttpServer::Behaviour LocalHttpServer::flood(qint64 size, qint64 *sent) {
    return [size, sent](QTcpSocket *socket) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(size) + "\r\n\r\n");
        const auto more = [size, sent, socket] {
            const QByteArray block(64 * 1024, 'x');
            while (*sent < size && socket->bytesToWrite() < block.size())
                *sent += socket->write(block);
        };
        QObject::connect(socket, &QTcpSocket::bytesWritten, socket, more);
        more();
    };
}

LocalHttpServer::Behaviour LocalHttpServer::trickle() {
    return [](QTcpSocket *socket) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n");
        auto *timer = new QTimer(socket);
        QObject::connect(timer, &QTimer::timeout, socket, [socket] { socket->write("x"); });
        timer->start(std::chrono::milliseconds(5));
    };
}

} // namespace vantrel::test
