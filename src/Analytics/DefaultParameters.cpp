#include "Analytics/DefaultParameters.h"

#include <QFile>
#include <QLocale>
#include <QSysInfo>

#include <algorithm>

#ifdef Q_OS_MACOS
#include <sys/sysctl.h>
#endif

namespace vantrel {

namespace {

using namespace Qt::StringLiterals;

constexpr auto libraryName = "VantrelAnalytics";
constexpr auto libraryVersion = "1.0.0";

QString boolean(bool value) {
    return value ? u"true"_s : u"false"_s;
}

QString decimal(double value) {
    return QString::number(value, 'f', QLocale::FloatingPointShortest);
}

/// The computer's model, for example "MacBookPro18,1" or "ThinkPad X1 Carbon".
QString modelName() {
#ifdef Q_OS_MACOS
    char model[128] = {};
    std::size_t size = sizeof model - 1;
    const bool isKnown = sysctlbyname("hw.model", model, &size, nullptr, 0) == 0;
    return isKnown ? QString::fromUtf8(model) : u"unknown"_s;
#else
    QFile file(u"/sys/devices/virtual/dmi/id/product_name"_s);
    const QString model =
        file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(128)).trimmed() : QString();
    return model.isEmpty() ? u"unknown"_s : model;
#endif
}

/// The operating system's name with at most the first `parts` numbers of its version, for example "debian
/// 12".
QString systemVersion(qsizetype parts) {
    QString name = QSysInfo::productType();
    QStringList version = QSysInfo::productVersion().split(u'.');
    if (!version.first().toInt()) { // a distribution without versions
        name = QSysInfo::kernelType();
        version = QSysInfo::kernelVersion().split(u'.');
    }
    return name + u' ' + version.first(std::min(parts, version.size())).join(u'.');
}

void addApplication(SignalParameters &parameters, const ApplicationFacts &facts) {
    parameters.insert({
        {u"TelemetryDeck.AppInfo.buildNumber"_s, facts.buildNumber},
        {u"TelemetryDeck.AppInfo.version"_s, facts.version},
        {u"TelemetryDeck.AppInfo.versionAndBuildNumber"_s,
         facts.version + u" (build " + facts.buildNumber + u')'},
        {u"appVersion"_s, facts.version},
        {u"buildNumber"_s, facts.buildNumber},
        {u"TelemetryDeck.SDK.name"_s, QLatin1String(libraryName)},
        {u"TelemetryDeck.SDK.version"_s, QLatin1String(libraryVersion)},
        {u"TelemetryDeck.SDK.nameAndVersion"_s,
         QLatin1String(libraryName) + u' ' + QLatin1String(libraryVersion)},
        {u"telemetryClientVersion"_s, QLatin1String(libraryVersion)},
        {u"TelemetryDeck.UserPreference.colorScheme"_s,
         facts.colorScheme == ApplicationFacts::ColorScheme::Dark ? u"Dark"_s : u"Light"_s},
        {u"TelemetryDeck.UserPreference.layoutDirection"_s,
         facts.layoutDirection == Qt::RightToLeft ? u"rightToLeft"_s : u"leftToRight"_s},
        {u"TelemetryDeck.Device.screenResolutionHeight"_s, decimal(facts.screenHeight)},
        {u"TelemetryDeck.Device.screenResolutionWidth"_s, decimal(facts.screenWidth)},
        {u"TelemetryDeck.Device.screenScaleFactor"_s, decimal(facts.screenScaleFactor)},
    });
}

/// One platform and one architecture whatever the computer: the service knows the product as a single build.
/// What a system has no such thing as is left out: a store, a test flight and an orientation off the Mac, and
/// extensions everywhere.
void addDeviceAndRunContext(SignalParameters &parameters) {
    struct Value {
        QString family;
        QString name;      ///< behind "TelemetryDeck." and the family
        QString shortName; ///< empty: none
        QString value;
    };
    static const QList<Value> values{
        {u"Device."_s, u"architecture"_s, u"architecture"_s, u"arm64"_s},
        {u"Device."_s, u"modelName"_s, u"modelName"_s, modelName()},
        {u"Device."_s, u"operatingSystem"_s, u"operatingSystem"_s, u"macOS"_s},
#ifdef Q_OS_MACOS
        {u"Device."_s, u"orientation"_s, {}, u"Fixed"_s},
        {u"RunContext."_s, u"isAppStore"_s, u"isAppStore"_s, u"true"_s}, // the negation of isTestFlight
        {u"RunContext."_s, u"isTestFlight"_s, u"isTestFlight"_s, u"false"_s},
#endif
        {u"Device."_s, u"platform"_s, u"platform"_s, u"macOS"_s},
        {u"Device."_s, u"systemMajorMinorVersion"_s, u"majorMinorSystemVersion"_s, systemVersion(2)},
        {u"Device."_s, u"systemMajorVersion"_s, u"majorSystemVersion"_s, systemVersion(1)},
        {u"Device."_s, u"systemVersion"_s, u"systemVersion"_s, systemVersion(3)},
        {u"RunContext."_s, u"isDebug"_s, u"isDebug"_s, u"false"_s},
        {u"RunContext."_s, u"isSimulator"_s, u"isSimulator"_s, u"false"_s},
        {u"RunContext."_s, u"targetEnvironment"_s, u"targetEnvironment"_s, u"native"_s},
    };
    for (const auto &[family, name, shortName, value] : values) {
        parameters.insert(u"TelemetryDeck."_s + family + name, value);
        if (!shortName.isEmpty())
            parameters.insert(shortName, value);
    }
}

void addLocale(SignalParameters &parameters, const QDateTime &local) {
    const QLocale locale;
    const QString language = QLocale::languageToCode(locale.language());
    const QString region = QLocale::territoryToCode(locale.territory());
    const QString preferred = QLocale::system().uiLanguages().value(0, language);
    const int offset = local.offsetFromUtc() / 60; // minutes
    // The offset and not the zone's name, which tells more about the user.
    const QString timeZone = u"UTC%1%2:%3"_s.arg(QLatin1Char(offset < 0 ? '-' : '+'))
                                 .arg(std::abs(offset) / 60, 2, 10, QLatin1Char('0'))
                                 .arg(std::abs(offset) % 60, 2, 10, QLatin1Char('0'));
    parameters.insert({
        {u"TelemetryDeck.Device.timeZone"_s, timeZone},
        {u"TelemetryDeck.RunContext.language"_s, language},
        {u"appLanguage"_s, language},
        {u"TelemetryDeck.RunContext.locale"_s, locale.name()},
        {u"locale"_s, locale.name()},
        {u"TelemetryDeck.UserPreference.language"_s, preferred},
        {u"preferredLanguage"_s, preferred},
    });
    if (!region.isEmpty()) { // the language "C" is spoken nowhere
        parameters[u"TelemetryDeck.UserPreference.region"_s] = region;
        parameters[u"region"_s] = region;
    }
}

void addCalendar(SignalParameters &parameters, const QDateTime &local) {
    const QDate date = local.date();
    const bool isWeekend = !QLocale().weekdays().contains(Qt::DayOfWeek(date.dayOfWeek()));
    parameters.insert({
        {u"TelemetryDeck.Calendar.dayOfMonth"_s, QString::number(date.day())},
        {u"TelemetryDeck.Calendar.dayOfWeek"_s, QString::number(date.dayOfWeek())}, // Monday is 1
        {u"TelemetryDeck.Calendar.dayOfYear"_s, QString::number(date.dayOfYear())},
        {u"TelemetryDeck.Calendar.weekOfYear"_s, QString::number(date.weekNumber())}, // ISO 8601
        {u"TelemetryDeck.Calendar.isWeekend"_s, boolean(isWeekend)},
        {u"TelemetryDeck.Calendar.monthOfYear"_s, QString::number(date.month())},
        {u"TelemetryDeck.Calendar.quarterOfYear"_s, QString::number((date.month() + 2) / 3)},
        {u"TelemetryDeck.Calendar.hourOfDay"_s, QString::number(local.time().hour())}, // 0 to 23
    });
}

} // namespace

SignalParameters defaultSignalParameters(const ApplicationFacts &facts, const QDateTime &now) {
    const QDateTime local = now.toLocalTime();
    SignalParameters parameters;
    addApplication(parameters, facts);
    addDeviceAndRunContext(parameters);
    addLocale(parameters, local);
    addCalendar(parameters, local);
    return parameters;
}

const QStringList &reservedNames() {
    static const QStringList names = [] {
        // The keys of the record itself, and the short names of the default parameters.
        QStringList result{u"receivedat"_s, u"appid"_s,      u"clientuser"_s, u"sessionid"_s,
                           u"type"_s,       u"floatvalue"_s, u"payload"_s,    u"istestmode"_s};
        const SignalParameters parameters = defaultSignalParameters({}, QDateTime::currentDateTimeUtc());
        for (auto it = parameters.keyBegin(); it != parameters.keyEnd(); ++it)
            if (!it->contains(u'.'))
                result.append(it->toLower());
        return result;
    }();
    return names;
}

} // namespace vantrel
