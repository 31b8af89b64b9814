#include "App/System/Settings.h"

#include "App/System/Product.h"

#include <QStandardPaths>

namespace vantrel {

namespace {

const QString appearanceKey = QStringLiteral("appearancePreference");
const QString toolTipDelayKey = QStringLiteral("NSInitialToolTipDelay");
const QString doubleClickKey = QStringLiteral("AppleActionOnDoubleClick");
const QString analyticsKey = QStringLiteral("analyticsDisabled");

} // namespace

#ifdef Q_OS_MACOS

// The user defaults of the bundle, which include what the system's own settings hold.
Settings::Settings() : m_store(product::websiteDomain(), product::name()) {}

Settings::Settings(const QString &path) : m_store(path, QSettings::IniFormat) {}

QString Settings::value(const QString &key) const {
    return m_store.value(key).toString();
}

bool Settings::save() {
    m_store.sync();
    return m_store.status() == QSettings::NoError;
}

#else

Settings::Settings()
    : Settings(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
               QStringLiteral("/vantrel/settings.ini")) {}

Settings::Settings(const QString &path) : m_store(path) {
    m_saving.setSingleShot(true);
    m_saving.callOnTimeout(this, &Settings::save);
    using State = PreferencesFile::State;
    if (m_store.state() == State::damaged || m_store.state() == State::unreadable)
        setValue(analyticsKey, QStringLiteral("true"));
}

QString Settings::value(const QString &key) const {
    return m_store.value(key);
}

bool Settings::save() {
    m_saving.stop();
    const QString reason = m_store.save();
    const QString problem =
        reason.isEmpty() ? QString() : QStringLiteral("The settings could not be stored: %1.").arg(reason);
    if (problem != m_problem) {
        m_problem = problem;
        Q_EMIT problemChanged(m_problem);
    }
    return m_problem.isEmpty();
}

#endif

Settings::~Settings() {
    save();
}

void Settings::setValue(const QString &key, const QString &value) {
    m_store.setValue(key, value);
    m_saving.start(0);
}

ColorScheme Settings::appearancePreference() const {
    return value(appearanceKey) == QLatin1String("dark") ? ColorScheme::dark : ColorScheme::light;
}

void Settings::setAppearancePreference(ColorScheme scheme) {
    setValue(appearanceKey, scheme == ColorScheme::dark ? QStringLiteral("dark") : QStringLiteral("light"));
}

void Settings::storeToolTipDelay() {
    setValue(toolTipDelayKey, QString::number(toolTipDelay.count()));
}

QString Settings::doubleClickAction() const {
    const QString action = value(doubleClickKey);
    return action.isEmpty() ? QStringLiteral("Maximize") : action;
}

bool Settings::analyticsDisabled() const {
    // As the toolkit reads a truth value; anything unknown may be meant as a wish to be left alone.
    const QString text = value(analyticsKey).toLower();
    return !text.isEmpty() && text != QLatin1String("false") && text != QLatin1String("0");
}

void Settings::setAnalyticsDisabled(bool disabled) {
    const bool isChange = analyticsDisabled() != disabled;
    setValue(analyticsKey, disabled ? QStringLiteral("true") : QStringLiteral("false"));
    if (isChange)
        Q_EMIT analyticsDisabledChanged(disabled);
}

} // namespace vantrel
