#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QString>

#include <memory>

class QLocalSocket;

namespace vantrel {

/// Sees to it that a user has one running program on a screen: the first start keeps a lock and listens; a
/// later one asks it to come to the front and is done. Where neither is possible the program simply runs.
/// Main thread.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    enum class Role {
        first,  ///< holds the lock and hears of later starts
        second, ///< another one runs and was asked to come to the front: nothing is left to do
        alone,  ///< could not find out; run, but nobody will hear of it
    };

    /// `directory` holds the lock and the socket; it should belong to the user alone. `screen` tells apart
    /// the sessions of one user: a window on another screen helps nobody. Nothing happens yet.
    explicit SingleInstance(const QString &directory, const QString &screen = userScreen(),
                            QObject *parent = nullptr);

    /// The user's directory for such things.
    [[nodiscard]] static QString userDirectory();
    /// What the desktop calls the screen that this program's window would appear on; may be empty.
    [[nodiscard]] static QString userScreen();

    /// What the desktop gave this start to let a window come to the front: Wayland's token or X11's startup
    /// identifier; may be empty. To be asked before there is an application object, which takes the latter.
    [[nodiscard]] static QByteArray activationToken();

    /// Finds the role. Takes up to `patience` milliseconds when another start holds the lock but does not
    /// answer; when that one ends meanwhile, this one takes its place.
    [[nodiscard]] Role claim(const QByteArray &activationToken = {}, int patience = 2000);

Q_SIGNALS:
    /// Another start asked this one to come to the front, with the desktop's token for that, or an empty one.
    void raiseRequested(const QByteArray &activationToken);

private:
    [[nodiscard]] bool askFirst(const QByteArray &activationToken, const QDeadlineTimer &deadline) const;
    void listen();
    void receive(QLocalSocket *connection);

    QString m_base; // of the names of both files; empty: there is no place for them
    QString m_socketPath;
    std::unique_ptr<QLockFile> m_lock;
    QLocalServer m_server;
};

} // namespace vantrel
