#include "App/System/Settings.h"

#include "App/System/Product.h"

#include <QStandardPaths>

#include <cmath>
#include <utility>

namespace vantrel {

namespace {

const QString appearanceKey = QStringLiteral("appearancePreference");
const QString toolTipDelayKey = QStringLiteral("NSInitialToolTipDelay");
const QString doubleClickKey = QStringLiteral("AppleActionOnDoubleClick");
const QString queueHeightKey = QStringLiteral("queueHeight");
const QString tileSizeKey = QStringLiteral("tileSize");
const QString verifyKey = QStringLiteral("verifyCopies");
const QString analyticsKey = QStringLiteral("analyticsDisabled");
const QString wirelessPhonesKey = QStringLiteral("wirelessPhones");
const QString windowSizeKey = QStringLiteral("windowSize");
const QString windowPositionKey = QStringLiteral("windowPosition");
const QString windowZoomedKey = QStringLiteral("windowZoomed");

/// The two numbers of a text like "1280x820" or "-40,20"; nothing for any other text.
std::optional<std::pair<int, int>> numbersIn(const QString &text, QChar separator) {
    constexpr int most = 100'000; // pixels; what is larger is nonsense, and sums of it must not overflow
    const QStringList parts = text.split(separator);
    bool isFirst = false;
    bool isSecond = false;
    const int first = parts.value(0).toInt(&isFirst);
    const int second = parts.value(1).toInt(&isSecond);
    if (parts.size() != 2 || !isFirst || !isSecond || std::abs(double(first)) > most ||
        std::abs(double(second)) > most)
        return std::nullopt;
    return std::pair(first, second);
}

QString orderKey(BrowserSide side) {
    return side == BrowserSide::mac ? QStringLiteral("macFileOrder") : QStringLiteral("androidFileOrder");
}

QString pair(int first, QChar separator, int second) {
    return QString::number(first) + separator + QString::number(second);
}

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

bool Settings::hasAppearancePreference() const {
    return !value(appearanceKey).isEmpty();
}

void Settings::setAppearancePreference(ColorScheme scheme) {
    setValue(appearanceKey, scheme == ColorScheme::dark ? QStringLiteral("dark") : QStringLiteral("light"));
}

WindowGeometry Settings::windowGeometry() const {
    WindowGeometry geometry;
    if (const auto size = numbersIn(value(windowSizeKey), u'x'); size && size->first > 0 && size->second > 0)
        geometry.size = QSize(size->first, size->second);
    if (const auto position = numbersIn(value(windowPositionKey), u','))
        geometry.position = QPoint(position->first, position->second);
    geometry.isZoomed = value(windowZoomedKey) == QLatin1StringView("true");
    return geometry;
}

void Settings::setWindowGeometry(const WindowGeometry &geometry) {
    if (geometry.size)
        setValue(windowSizeKey, pair(geometry.size->width(), u'x', geometry.size->height()));
    if (geometry.position)
        setValue(windowPositionKey, pair(geometry.position->x(), u',', geometry.position->y()));
    setValue(windowZoomedKey, geometry.isZoomed ? QStringLiteral("true") : QStringLiteral("false"));
}

void Settings::storeToolTipDelay() {
    setValue(toolTipDelayKey, QString::number(toolTipDelay.count()));
}

QString Settings::doubleClickAction() const {
    const QString action = value(doubleClickKey);
    return action.isEmpty() ? QStringLiteral("Maximize") : action;
}

std::optional<int> Settings::queueHeight() const {
    constexpr int most = 100'000;
    const int height = value(queueHeightKey).toInt();
    return height > 0 && height < most ? std::optional(height) : std::nullopt;
}

void Settings::setQueueHeight(std::optional<int> height) {
    setValue(queueHeightKey, height ? QString::number(*height) : QString());
}

FileOrder Settings::fileOrder(BrowserSide side) const {
    return fileOrderFromRawValue(value(orderKey(side))).value_or(FileOrder());
}

void Settings::setFileOrder(BrowserSide side, FileOrder order) {
    setValue(orderKey(side), rawValue(order));
}

int Settings::tileSize() const {
    bool isNumber = false;
    const int size = value(tileSizeKey).toInt(&isNumber);
    return isNumber ? TileSize::nearest(size) : TileSize::standard;
}

void Settings::setTileSize(int size) {
    setValue(tileSizeKey, QString::number(size));
}

bool Settings::verifiesCopies() const {
    return value(verifyKey) == QLatin1String("true");
}

void Settings::setVerifiesCopies(bool verifies) {
    const bool isChange = verifiesCopies() != verifies;
    setValue(verifyKey, verifies ? QStringLiteral("true") : QStringLiteral("false"));
    if (isChange)
        Q_EMIT verifiesCopiesChanged(verifies);
}

QStringList Settings::wirelessPhones() const {
    return value(wirelessPhonesKey).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

void Settings::setWirelessPhones(const QStringList &addresses) {
    setValue(wirelessPhonesKey, addresses.join(QLatin1Char(' ')));
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
