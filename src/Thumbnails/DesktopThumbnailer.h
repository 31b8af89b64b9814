#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QHash>
#include <QObject>
#include <QStringList>

#include <QCoroTask>

namespace vantrel {

class ThumbnailStore;

/// Has the desktop's own thumbnailer make the pictures that a store cannot have otherwise: of films, of
/// documents. It puts them into the ThumbnailFolder, where the store finds them.
///
/// One request at a time: the next one takes the place of what is left of it, so that nothing is worked on
/// that nobody looks at any more. Where no thumbnailer runs and the bus can start none, it is asked once and
/// nothing else happens. Main thread; nothing here waits.
class DesktopThumbnailer : public QObject {
    Q_OBJECT

public:
    /// The store must outlive this object. `bus` is the one of the session.
    DesktopThumbnailer(ThumbnailStore &store, const QDBusConnection &bus);
    ~DesktopThumbnailer() override;

private:
    Q_SLOT void takeSignal(const QDBusMessage &message);
    void ask(const QStringList &paths, int edge);
    QCoro::Task<> send();
    void withdraw();
    void listen();

    ThumbnailStore &m_store;
    QDBusConnection m_bus;
    QStringList m_wanted;
    int m_edge = 0;
    bool m_isNew = false;    ///< the thumbnailer has not been told of it
    bool m_isAsking = false; ///< and has not answered yet
    bool m_isAbsent = false;
    bool m_isListening = false;
    uint m_handle = 0;              ///< the thumbnailer's, of the request; 0: there is none
    QString m_server;               ///< who has it
    QHash<QString, QString> m_open; ///< the paths that it is working on, by their addresses
};

} // namespace vantrel
