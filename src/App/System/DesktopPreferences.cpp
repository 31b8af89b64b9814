#include "App/System/DesktopPreferences.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QMap>
#include <QStringList>

#include <algorithm>

namespace vantrel {

namespace {

const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface"); // knew of motion before the portal did
const QString gnomeHelp = QStringLiteral("org.gnome.desktop.a11y.interface"); // and of contrast
const QString windows = QStringLiteral("org.gnome.desktop.wm.preferences");
const QString mouse = QStringLiteral("org.gnome.desktop.peripherals.mouse");

/// Under X11 the scale is part of the resolution that the desktop tells the toolkit, which enlarges
/// everything by it.
double scaleLeftToTexts(double scale) {
    const bool isX11 = QGuiApplication::platformName() == QLatin1StringView("xcb");
    return isX11 ? std::max(std::min(scale, 1.0), scale / qGuiApp->devicePixelRatio()) : scale;
}

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
    question << QStringList{appearance, gnome, gnomeHelp, windows, mouse};
    auto *answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QVariant settings = answer->reply().arguments().value(0);
        if (answer->isError() || settings.userType() != qMetaTypeId<QDBusArgument>() ||
            settings.value<QDBusArgument>().currentSignature() != QLatin1StringView("a{sa{sv}}"))
            return;
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(settings);
        for (const QString &group :
             {mouse, windows, gnomeHelp, gnome, appearance}) { // the portal's own comes last
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
    } else if (group == appearance && key == QLatin1StringView("contrast")) {
        Q_EMIT contrastPreferred(value.toUInt() == 1 ? Contrast::high : Contrast::normal);
    } else if (group == gnomeHelp && key == QLatin1StringView("high-contrast")) {
        Q_EMIT contrastPreferred(value.toBool() ? Contrast::high : Contrast::normal);
    } else if (group == gnome && key == QLatin1StringView("text-scaling-factor")) {
        if (const double scale = value.toDouble(); scale > 0) // which is so of no "not a number"
            Q_EMIT textScalePreferred(scaleLeftToTexts(scale));
    } else if (group == windows && key == QLatin1StringView("button-layout")) {
        if (const QString layout = value.toString(); layout.contains(QLatin1Char(':')))
            Q_EMIT titleButtonsPreferred(layout);
    } else if (group == mouse && key == QLatin1StringView("double-click")) {
        if (const int interval = value.toInt(); interval > 0)
            Q_EMIT doubleClickPreferred(interval);
    }
}

} // namespace vantrel
