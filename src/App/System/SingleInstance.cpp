#include "App/System/SingleInstance.h"

#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

#include <utility>

namespace vantrel {

namespace {

constexpr qsizetype maximumTokenSize = 512;
constexpr int retryInterval = 20;
constexpr int connectionLifetime = 5000;

const QByteArray request = QByteArrayLiteral("raise ");

QString baseName(const QString &directory, const QString &screen) {
    if (directory.isEmpty())
        return {};
    static const QRegularExpression special(QStringLiteral("[^A-Za-z0-9.-]"));
    const QString base = directory + QStringLiteral("/vantrel");
    // The name of a socket must be short, and what is special about a screen stands at its end.
    return screen.isEmpty() ? base : base + u'-' + screen.right(24).replace(special, QStringLiteral("_"));
}

} // namespace

SingleInstance::SingleInstance(const QString &directory, const QString &screen, QObject *parent)
    : QObject(parent), m_base(baseName(directory, screen)), m_socketPath(m_base + QStringLiteral(".socket")) {
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *connection = m_server.nextPendingConnection())
            receive(connection);
    });
}

QString SingleInstance::userDirectory() {
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
}

QString SingleInstance::userScreen() {
    QString wayland = qEnvironmentVariable("WAYLAND_DISPLAY");
    if (!wayland.isEmpty())
        return wayland;
    QString display = qEnvironmentVariable("DISPLAY");
    return display.endsWith(QLatin1StringView(".0")) ? display.chopped(2) : display; // two names of one
}

QByteArray SingleInstance::activationToken() {
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token;
}

SingleInstance::Role SingleInstance::claim(const QByteArray &activationToken, int patience) {
    if (m_base.isEmpty())
        return Role::alone;
    m_lock = std::make_unique<QLockFile>(m_base + QStringLiteral(".lock"));
    m_lock->setStaleLockTime(0); // a lock is as old as its program; only a dead one's lock is stale
    if (m_lock->tryLock(0)) {
        listen();
        return m_server.isListening() ? Role::first : Role::alone;
    }
    const bool somebodyHoldsIt = m_lock->error() == QLockFile::LockFailedError;
    m_lock.reset();
    return somebodyHoldsIt && askFirst(activationToken, patience) ? Role::second : Role::alone;
}

bool SingleInstance::askFirst(const QByteArray &activationToken, int patience) const {
    // The other one may hold the lock without listening yet: it is just starting.
    const QDeadlineTimer deadline(patience);
    while (true) {
        QLocalSocket socket;
        socket.connectToServer(m_socketPath);
        const auto remaining = [&] { return static_cast<int>(deadline.remainingTime()); };
        if (socket.waitForConnected(remaining())) {
            socket.write(request + activationToken.left(maximumTokenSize) + '\n');
            // It answers by closing: then it has heard.
            return socket.waitForBytesWritten(remaining()) &&
                   (socket.state() == QLocalSocket::UnconnectedState ||
                    socket.waitForDisconnected(remaining()));
        }
        if (deadline.hasExpired())
            return false;
        QThread::msleep(retryInterval);
    }
}

void SingleInstance::listen() {
    // Holding the lock, so a socket that is there was left behind by a program that ended badly.
    QLocalServer::removeServer(m_socketPath);
    m_server.listen(m_socketPath);
}

void SingleInstance::receive(QLocalSocket *connection) {
    connect(connection, &QLocalSocket::disconnected, connection, &QObject::deleteLater);
    QTimer::singleShot(connectionLifetime, connection, &QLocalSocket::abort);
    connection->setReadBufferSize(request.size() + maximumTokenSize + 1);
    const auto read = [this, connection] {
        if (!connection->canReadLine()) {
            if (connection->bytesAvailable() >= connection->readBufferSize())
                connection->abort();
            return;
        }
        const QByteArray line = connection->readLine().chopped(1);
        connection->disconnectFromServer();
        if (line.startsWith(request))
            Q_EMIT raiseRequested(line.sliced(request.size()));
    };
    connect(connection, &QLocalSocket::readyRead, this, read);
    read(); // the line may have come with the connection
}

} // namespace vantrel
