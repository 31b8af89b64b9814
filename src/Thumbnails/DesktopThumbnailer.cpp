#include "Thumbnails/DesktopThumbnailer.h"

#include "Thumbnails/ThumbnailFolder.h"
#include "Thumbnails/ThumbnailStore.h"
#include "Worker/Worker.h"

#include <QDBusPendingCallWatcher>
#include <QMimeDatabase>

#include <utility>

namespace vantrel {

namespace {

const QString service = QStringLiteral("org.freedesktop.thumbnails.Thumbnailer1"); // its interface, too
const QString path = QStringLiteral("/org/freedesktop/thumbnails/Thumbnailer1");

QDBusMessage call(const QString &method) {
    return QDBusMessage::createMethodCall(service, path, service, method);
}

/// What kinds of files these are, by their names.
QStringList kindsOf(const QStringList &paths) {
    const QMimeDatabase database;
    QStringList kinds;
    for (const QString &file : paths)
        kinds.append(database.mimeTypeForFile(file, QMimeDatabase::MatchExtension).name());
    return kinds;
}

} // namespace

DesktopThumbnailer::DesktopThumbnailer(ThumbnailStore &store, const QDBusConnection &bus)
    : m_store(store), m_bus(bus) {
    connect(&store, &ThumbnailStore::desktopIsAsked, this, &DesktopThumbnailer::ask);
}

DesktopThumbnailer::~DesktopThumbnailer() {
    withdraw();
}

void DesktopThumbnailer::ask(const QStringList &paths, int edge) {
    m_wanted = paths;
    // What it has answered meanwhile is no longer asked for: that needs no other request.
    const QStringList open = m_open.values();
    m_isNew = QSet(paths.begin(), paths.end()) != QSet(open.begin(), open.end()) ||
              (edge != m_edge && !paths.isEmpty());
    m_edge = edge;
    send();
}

void DesktopThumbnailer::withdraw() {
    m_open.clear();
    if (const uint handle = std::exchange(m_handle, 0))
        m_bus.send(call(QStringLiteral("Dequeue")) << handle);
}

QCoro::Task<> DesktopThumbnailer::send() {
    if (m_isAsking || m_isAbsent || !m_bus.isConnected() || !std::exchange(m_isNew, false))
        co_return;
    if (m_wanted.isEmpty()) {
        withdraw();
        co_return;
    }
    m_isAsking = true;
    const QStringList paths = m_wanted;
    const QString flavor = ThumbnailFolder::flavorFor(m_edge);
    const QStringList kinds = co_await Background::run(this, &kindsOf, paths);
    listen();
    m_open.clear();
    QStringList addresses;
    for (const QString &file : paths) {
        addresses.append(QString::fromLatin1(ThumbnailFolder::uriOf(file)));
        m_open.insert(addresses.last(), file);
    }
    QDBusMessage question = call(QStringLiteral("Queue"));
    question << addresses << kinds << flavor << QStringLiteral("default") << m_handle;
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        m_isAsking = false;
        m_isAbsent = answer->isError();
        m_handle = m_isAbsent ? 0 : answer->reply().arguments().value(0).toUInt();
        m_server = answer->reply().service();
        send();
    });
}

void DesktopThumbnailer::listen() {
    if (std::exchange(m_isListening, true))
        return;
    // Of any sender, which takeSignal() looks at: to be told of one by name, the toolkit would wait for the
    // bus.
    for (const char *signal : {"Ready", "Error", "Finished"})
        m_bus.connect(QString(), path, service, QLatin1String(signal), this, SLOT(takeSignal(QDBusMessage)));
}

void DesktopThumbnailer::takeSignal(const QDBusMessage &message) {
    const QVariantList arguments = message.arguments();
    if (m_handle == 0 || arguments.value(0).toUInt() != m_handle || message.service() != m_server)
        return;
    const bool isAll = message.member() == QLatin1String("Finished");
    const QStringList addresses = isAll ? m_open.keys() : arguments.value(1).toStringList();
    QStringList paths;
    for (const QString &address : addresses) {
        if (m_open.contains(address))
            paths.append(m_open.take(address));
    }
    if (isAll)
        m_handle = 0;
    m_store.hearOfDesktop(paths);
}

} // namespace vantrel
