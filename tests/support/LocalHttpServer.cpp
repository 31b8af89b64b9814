#include "support/LocalHttpServer.h"

#include <QFile>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>
#include <QTimer>

#include <sys/socket.h>

namespace vantrel::test {

namespace {

QByteArray read(const char *name) {
    QFile file(QStringLiteral(VANTREL_TEST_DATA "/tls/") + QLatin1StringView(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    return file.readAll();
}

} // namespace

LocalHttpServer::LocalHttpServer(Transport transport) {
    if (transport == Transport::tls) {
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(QSslCertificate(read("localhost.crt")));
        configuration.setPrivateKey(QSslKey(read("localhost.key"), QSsl::Ec));
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(configuration);
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

QUrl LocalHttpServer::url(const QString &path, const QString &host) const {
    const bool isTls = qobject_cast<QSslServer *>(m_server.get()) != nullptr;
    return QUrl(QStringLiteral("%1://%2:%3%4")
                    .arg(isTls ? QStringLiteral("https") : QStringLiteral("http"), host)
                    .arg(m_server->serverPort())
                    .arg(path));
}

QSslConfiguration LocalHttpServer::trustingConfiguration() {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates({QSslCertificate(read("localhost.crt"))});
    return configuration;
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

LocalHttpServer::Behaviour LocalHttpServer::answer(const Answer &answer) {
    return [answer](QTcpSocket *socket) {
        QByteArray head =
            "HTTP/1.1 " + QByteArray::number(answer.status) + " Answer\r\nConnection: close\r\n";
        if (answer.announcesLength)
            head += "Content-Length: " + QByteArray::number(answer.body.size() + answer.missing) + "\r\n";
        if (!answer.location.isEmpty())
            head += "Location: " + answer.location + "\r\n";
        socket->write(head + "\r\n" + answer.body);
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
