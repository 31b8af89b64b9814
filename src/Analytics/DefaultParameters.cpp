#include "Analytics/DefaultParameters.h"

#include <QFile>
#include <QLocale>
#include <QSysInfo>

#include <algorithm>
#include <vector>

#ifdef Q_OS_MACOS
#include <sys/sysctl.h>
#endif

namespace vantrel {

namespace {

using namespace Qt::StringLiterals;

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

/// A parameter's name behind "TelemetryDeck.", the short name that it also has (or none) and its value.
struct Parameter {
    const char *name;
    const char *shortName;
    QString value;
};

void add(SignalParameters &parameters, const std::vector<Parameter> &added) {
    for (const auto &[name, shortName, value] : added) {
        parameters.insert(u"TelemetryDeck."_s + QLatin1String(name), value);
        if (shortName)
            parameters.insert(QLatin1String(shortName), value);
    }
}

void addApplication(SignalParameters &parameters, const ApplicationFacts &facts) {
    const QString library = u"VantrelAnalytics"_s;
    const QString libraryVersion = u"1.0.0"_s;
    const bool isDark = facts.colorScheme == ApplicationFacts::ColorScheme::dark;
    const bool isRightToLeft = facts.layoutDirection == Qt::RightToLeft;
    add(parameters,
        {
            {"AppInfo.buildNumber", "buildNumber", facts.buildNumber},
            {"AppInfo.version", "appVersion", facts.version},
            {"AppInfo.versionAndBuildNumber", nullptr,
             facts.version + u" (build " + facts.buildNumber + u')'},
            {"SDK.name", nullptr, library},
            {"SDK.version", "telemetryClientVersion", libraryVersion},
            {"SDK.nameAndVersion", nullptr, library + u' ' + libraryVersion},
            {"UserPreference.colorScheme", nullptr, isDark ? u"Dark"_s : u"Light"_s},
            {"UserPreference.layoutDirection", nullptr, isRightToLeft ? u"rightToLeft"_s : u"leftToRight"_s},
            {"Device.screenResolutionHeight", nullptr, decimal(facts.screenHeight)},
            {"Device.screenResolutionWidth", nullptr, decimal(facts.screenWidth)},
            {"Device.screenScaleFactor", nullptr, decimal(facts.screenScaleFactor)},
        });
}

/// One platform and one architecture whatever the computer: the service knows the product as a single build.
/// What a system has no such thing as is left out: a store, a test flight and an orientation off the Mac, and
/// extensions everywhere.
void addDeviceAndRunContext(SignalParameters &parameters) {
    static const std::vector<Parameter> values{
        {"Device.architecture", "architecture", u"arm64"_s},
        {"Device.modelName", "modelName", modelName()},
        {"Device.operatingSystem", "operatingSystem", u"macOS"_s},
#ifdef Q_OS_MACOS
        {"Device.orientation", nullptr, u"Fixed"_s},
        {"RunContext.isAppStore", "isAppStore", u"true"_s}, // the negation of isTestFlight
        {"RunContext.isTestFlight", "isTestFlight", u"false"_s},
#endif
        {"Device.platform", "platform", u"macOS"_s},
        {"Device.systemMajorMinorVersion", "majorMinorSystemVersion", systemVersion(2)},
        {"Device.systemMajorVersion", "majorSystemVersion", systemVersion(1)},
        {"Device.systemVersion", "systemVersion", systemVersion(3)},
        {"RunContext.isDebug", "isDebug", u"false"_s},
        {"RunContext.isSimulator", "isSimulator", u"false"_s},
        {"RunContext.targetEnvironment", "targetEnvironment", u"native"_s},
    };
    add(parameters, values);
}

void addLocale(SignalParameters &parameters, const QDateTime &local) {
    const QLocale locale;
    const QString language = QLocale::languageToCode(locale.language());
    const QString region = QLocale::territoryToCode(locale.territory());
    const int offset = local.offsetFromUtc() / 60; // minutes
    // The offset and not the zone's name, which tells more about the user.
    const QString timeZone = u"UTC%1%2:%3"_s.arg(QLatin1Char(offset < 0 ? '-' : '+'))
                                 .arg(std::abs(offset) / 60, 2, 10, QLatin1Char('0'))
                                 .arg(std::abs(offset) % 60, 2, 10, QLatin1Char('0'));
    add(parameters, {
                        {"Device.timeZone", nullptr, timeZone},
                        {"RunContext.language", "appLanguage", language},
                        {"RunContext.locale", "locale", locale.name()},
                        {"UserPreference.language", "preferredLanguage",
                         QLocale::system().uiLanguages().value(0, language)},
                    });
    if (!region.isEmpty()) // the language "C" is spoken nowhere
        add(parameters, {{"UserPreference.region", "region", region}});
}

void addCalendar(SignalParameters &parameters, const QDateTime &local) {
    const QDate date = local.date();
    const bool isWeekend = !QLocale().weekdays().contains(Qt::DayOfWeek(date.dayOfWeek()));
    const auto number = [&parameters](const char *name, int value) {
        parameters.insert(u"TelemetryDeck.Calendar."_s + QLatin1String(name), QString::number(value));
    };
    number("dayOfMonth", date.day());
    number("dayOfWeek", date.dayOfWeek()); // Monday is 1
    number("dayOfYear", date.dayOfYear());
    number("weekOfYear", date.weekNumber()); // ISO 8601
    number("monthOfYear", date.month());
    number("quarterOfYear", (date.month() + 2) / 3);
    number("hourOfDay", local.time().hour()); // 0 to 23
    parameters.insert(u"TelemetryDeck.Calendar.isWeekend"_s, isWeekend ? u"true"_s : u"false"_s);
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
