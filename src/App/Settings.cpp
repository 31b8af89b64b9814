#include "App/Settings.h"

#include "App/Product.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace vantrel {

namespace {

const QString appearanceKey = QStringLiteral("appearancePreference");
const QString toolTipDelayKey = QStringLiteral("NSInitialToolTipDelay");
const QString doubleClickKey = QStringLiteral("AppleActionOnDoubleClick");
const QString analyticsKey = QStringLiteral("analyticsDisabled");

/// Where the settings are, off the Mac.
QString userPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/vantrel/settings.ini");
}

/// A damaged file would be read in part and never be written again. It is put aside, where a curious user
/// finds it.
QString withoutDamage(const QString &path) {
    if (!QFileInfo(path).isFile())
        return path;
    const QSettings probe(path, QSettings::IniFormat);
    probe.allKeys(); // reads to the end, which the constructor does not
    if (probe.status() == QSettings::FormatError) {
        const QString aside = path + QStringLiteral(".damaged");
        QFile::remove(aside);
        QFile::rename(path, aside);
    }
    return path;
}

} // namespace

#ifdef Q_OS_MACOS
// The user defaults of the bundle, which include what the system's own settings hold.
Settings::Settings() : m_store(product::websiteDomain(), product::name()) {}
#else
Settings::Settings() : Settings(userPath()) {}
#endif

Settings::Settings(const QString &path) : m_store(withoutDamage(path), QSettings::IniFormat) {}

ColorScheme Settings::appearancePreference() const {
    return m_store.value(appearanceKey).toString() == QLatin1StringView("dark") ? ColorScheme::dark
                                                                                : ColorScheme::light;
}

void Settings::setAppearancePreference(ColorScheme scheme) {
    m_store.setValue(appearanceKey,
                     scheme == ColorScheme::dark ? QStringLiteral("dark") : QStringLiteral("light"));
}

void Settings::storeToolTipDelay() {
    m_store.setValue(toolTipDelayKey, toolTipDelay);
}

QString Settings::doubleClickAction() const {
    const QString action = m_store.value(doubleClickKey).toString();
    return action.isEmpty() ? QStringLiteral("Maximize") : action;
}

bool Settings::analyticsDisabled() const {
    return m_store.value(analyticsKey, false).toBool();
}

bool Settings::save() {
    m_store.sync();
    return m_store.status() == QSettings::NoError;
}

} // namespace vantrel
