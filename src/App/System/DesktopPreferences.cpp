#include "App/System/DesktopPreferences.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QMap>
#include <QStringList>

namespace vantrel {

namespace {

const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface"); // knew of motion before the portal did

} // namespace

DesktopPreferences::DesktopPreferences(const QDBusConnection &bus, QObject *parent) : QObject(parent) {
    if (bus.isConnected())
        ask(bus);
}

void DesktopPreferences::ask(QDBusConnection bus) {
    bus.connect(QString(), path, interface, QStringLiteral("SettingChanged"), this,
                SLOT(takeChange(QDBusMessage)));
    QDBusMessage question = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"),
                                                           path, interface, QStringLiteral("ReadAll"));
    question << QStringList{appearance, gnome};
    auto *answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QVariant settings = answer->reply().arguments().value(0);
        if (answer->isError() || settings.userType() != qMetaTypeId<QDBusArgument>() ||
            settings.value<QDBusArgument>().currentSignature() != QLatin1StringView("a{sa{sv}}"))
            return;
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(settings);
        for (const QString &group : {gnome, appearance}) { // what the portal says itself comes last
            const QVariantMap values = groups.value(group);
            for (auto each = values.cbegin(); each != values.cend(); ++each)
                take(group, each.key(), each.value());
        }
    });
}

void DesktopPreferences::takeChange(const QDBusMessage &change) {
    const QVariantList arguments = change.arguments();
    if (change.signature() == QLatin1StringView("ssv"))
        take(arguments[0].toString(), arguments[1].toString(),
             qvariant_cast<QDBusVariant>(arguments[2]).variant());
}

void DesktopPreferences::take(const QString &group, const QString &key, const QVariant &value) {
    if (group == appearance && key == QLatin1StringView("color-scheme")) {
        constexpr uint dark = 1; // 2 is light, anything else no preference
        Q_EMIT colorSchemePreferred(value.toUInt() == dark ? ColorScheme::dark : ColorScheme::light);
    } else if (group == appearance && key == QLatin1StringView("reduced-motion")) {
        Q_EMIT reducedMotionPreferred(value.toUInt() == 1);
    } else if (group == gnome && key == QLatin1StringView("enable-animations")) {
        Q_EMIT reducedMotionPreferred(!value.toBool());
    }
}

} // namespace vantrel
