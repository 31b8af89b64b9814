#include "App/System/SingleInstance.h"

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
const QByteArray heard = QByteArrayLiteral("raised\n");

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
    const QString wayland = qEnvironmentVariable("WAYLAND_DISPLAY");
    if (!wayland.isEmpty()) {
        const QString directory = userDirectory() + u'/'; // where it is, if it does not say so itself
        return wayland.startsWith(directory) ? wayland.sliced(directory.size()) : wayland;
    }
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
    // The other one may hold the lock without listening yet, as it is just starting, or not any more, as it
    // is about to end: then this one takes its place.
    const QDeadlineTimer deadline(patience);
    while (!m_lock->tryLock(0)) {
        const bool somebodyHoldsIt = m_lock->error() == QLockFile::LockFailedError;
        if (somebodyHoldsIt && askFirst(activationToken, deadline)) {
            m_lock.reset();
            return Role::second;
        }
        if (!somebodyHoldsIt || deadline.hasExpired()) {
            m_lock.reset();
            return Role::alone;
        }
        QThread::msleep(retryInterval);
    }
    listen();
    return m_server.isListening() ? Role::first : Role::alone;
}

/// Whether it has said that it heard. One that ends closes the connection, too.
bool SingleInstance::askFirst(const QByteArray &activationToken, const QDeadlineTimer &deadline) const {
    const auto remaining = [&] { return static_cast<int>(deadline.remainingTime()); };
    QLocalSocket socket;
    socket.connectToServer(m_socketPath);
    if (!socket.waitForConnected(remaining()))
        return false;
    socket.write(request + activationToken.left(maximumTokenSize) + '\n');
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(remaining()))
            return false;
    }
    return socket.readLine() == heard;
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
        const bool isRequest = line.startsWith(request);
        if (isRequest)
            connection->write(heard);
        connection->disconnectFromServer();
        if (isRequest)
            Q_EMIT raiseRequested(line.sliced(request.size()));
    };
    connect(connection, &QLocalSocket::readyRead, this, read);
    read(); // the line may have come with the connection
}

} // namespace vantrel
