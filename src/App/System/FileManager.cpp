#include "App/System/FileManager.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QStringList>
#include <QUrl>

namespace vantrel {

void showInFileManager(const QDBusConnection &bus, const QString &path, QObject *context,
                       const std::function<void()> &onFailure) {
    constexpr int patience = 5000; // milliseconds; the file manager may have to be started first
    const QString interface = QStringLiteral("org.freedesktop.FileManager1");
    QDBusMessage call = QDBusMessage::createMethodCall(
        interface, QStringLiteral("/org/freedesktop/FileManager1"), interface, QStringLiteral("ShowItems"));
    const QStringList uris{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)};
    const QString startupId;
    call << uris << startupId;
    if (!bus.isConnected()) { // a call on it would never be answered
        QMetaObject::invokeMethod(context, onFailure, Qt::QueuedConnection);
        return;
    }
    auto *answer = new QDBusPendingCallWatcher(bus.asyncCall(call, patience), context);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, context, [answer, onFailure] {
        answer->deleteLater();
        if (answer->isError())
            onFailure();
    });
}

} // namespace vantrel
