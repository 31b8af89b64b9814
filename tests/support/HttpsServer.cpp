#include "support/HttpsServer.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>

#include <memory>
#include <stdexcept>
#include <utility>

namespace vantrel::test {

namespace {

QByteArray read(const char *name) {
    QFile file(QStringLiteral(VANTREL_TEST_DATA "/tls/") + QLatin1StringView(name));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read " + file.fileName().toStdString());
    return file.readAll();
}

QSslCertificate certificate() {
    return QSslCertificate(read("localhost.crt"));
}

} // namespace

HttpsServer::HttpsServer(std::function<Answer(const QByteArray &)> answer) : m_answer(std::move(answer)) {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(certificate());
    configuration.setPrivateKey(QSslKey(read("localhost.key"), QSsl::Ec));
    m_server.setSslConfiguration(configuration);
    QObject::connect(&m_server, &QTcpServer::pendingConnectionAvailable, &m_server, [this] {
        while (QTcpSocket *connection = m_server.nextPendingConnection())
            serve(connection);
    });
    if (!m_server.listen(QHostAddress::LocalHost))
        throw std::runtime_error(m_server.errorString().toStdString());
}

QUrl HttpsServer::url(const QString &path, const QString &host) const {
    return QUrl(QStringLiteral("https://%1:%2%3").arg(host).arg(m_server.serverPort()).arg(path));
}

QSslConfiguration HttpsServer::trustingConfiguration() {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates({certificate()});
    return configuration;
}

void HttpsServer::serve(QTcpSocket *connection) {
    QObject::connect(connection, &QTcpSocket::disconnected, connection, &QObject::deleteLater);
    const auto head = std::make_shared<QByteArray>();
    const auto readHead = [this, connection, head] {
        *head += connection->readAll();
        if (!head->contains("\r\n\r\n"))
            return;
        requests.append(std::exchange(*head, {}));
        const Answer answer = m_answer(requests.constLast().split(' ').value(1));
        if (answer.delivery == Answer::Delivery::never)
            return;
        QByteArray response =
            "HTTP/1.1 " + QByteArray::number(answer.status) + " Answer\r\nConnection: close\r\n";
        const qsizetype missing = answer.delivery == Answer::Delivery::broken ? 100 : 0;
        if (answer.announcesLength)
            response += "Content-Length: " + QByteArray::number(answer.body.size() + missing) + "\r\n";
        if (!answer.location.isEmpty())
            response += "Location: " + answer.location + "\r\n";
        connection->write(response + "\r\n" + answer.body);
        connection->disconnectFromHost();
    };
    QObject::connect(connection, &QTcpSocket::readyRead, connection, readHead);
    readHead(); // the request may have come with the handshake
}

} // namespace vantrel::test
