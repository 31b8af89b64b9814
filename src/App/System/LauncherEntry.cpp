#include "App/System/LauncherEntry.h"

#include "App/System/Product.h"

#include <QDBusMessage>
#include <QVariantMap>

namespace vantrel {

LauncherEntry::LauncherEntry(const SessionBus &bus, QObject *parent) : QObject(parent), m_bus(bus) {
    m_pause.setSingleShot(true);
    m_pause.setInterval(shortestPause);
    m_pause.callOnTimeout(this, &LauncherEntry::send);
}

LauncherEntry::~LauncherEntry() {
    m_wanted = {};
    send();
}

void LauncherEntry::show(const Look &look) {
    m_wanted = look;
    if (!m_pause.isActive())
        send();
}

void LauncherEntry::send() {
    if (m_wanted == m_shown || !m_bus.isConnected())
        return;
    m_shown = m_wanted;
    m_pause.start();
    QDBusMessage update = QDBusMessage::createSignal(QStringLiteral("/com/vantrelapp/Vantrel"),
                                                     QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                                     QStringLiteral("Update"));
    update << QString(QStringLiteral("application://") % product::identifier() % QStringLiteral(".desktop"))
           << QVariantMap{{QStringLiteral("progress"), m_shown.progress.value_or(0)},
                          {QStringLiteral("progress-visible"), m_shown.progress.has_value()},
                          {QStringLiteral("urgent"), m_shown.isUrgent}};
    m_bus.send(update);
}

} // namespace vantrel
