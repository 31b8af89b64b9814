#pragma once

#include <QByteArray>
#include <QList>
#include <QSslConfiguration>
#include <QSslServer>
#include <QString>
#include <QUrl>

#include <functional>

namespace vantrel::test {

/// An HTTPS server on a free port of this machine, in the event loop of the test. It answers every request
/// with what `answer` gives for its path, and closes the connection.
class HttpsServer {
public:
    struct Answer {
        enum class Delivery {
            whole,
            broken, ///< says that there is more to come, then closes the connection
            never,  ///< keeps the connection open and says nothing
        };

        int status = 200;
        QByteArray body;
        QByteArray location = {};    ///< of a redirect
        bool announcesLength = true; ///< with a Content-Length
        Delivery delivery = Delivery::whole;
    };

    explicit HttpsServer(std::function<Answer(const QByteArray &path)> answer);

    /// An address on this server. Its certificate is valid for "localhost" and for "127.0.0.1".
    [[nodiscard]] QUrl url(const QString &path, const QString &host = QStringLiteral("localhost")) const;
    /// For clients that are to trust the server.
    [[nodiscard]] static QSslConfiguration trustingConfiguration();

    /// The heads of the requests so far, with their header lines.
    QList<QByteArray> requests;

private:
    void serve(QTcpSocket *connection);

    std::function<Answer(const QByteArray &)> m_answer;
    QSslServer m_server;
};

} // namespace vantrel::test
