#pragma once

#include "Analytics/DefaultParameters.h"
#include "Analytics/SignalPostBody.h"
#include "Network/HttpExchange.h"

#include <QStandardPaths>
#include <QUrl>
#include <QUuid>

#include <chrono>
#include <functional>
#include <optional>

namespace vantrel {

enum class LogLevel { debug, info, error };

/// Where the analytics client's messages go.
struct LogHandler {
    LogLevel minimumLevel = LogLevel::info; ///< messages below it are not passed on
    /// Called on whatever thread has something to say, several at once.
    std::function<void(LogLevel level, const QString &message)> function;

    /// The platform's log, category "vantrel.analytics".
    [[nodiscard]] static LogHandler platformLog(LogLevel minimumLevel = LogLevel::info);
};

/// Adds parameters to a signal, given its name, the user identifier it was recorded with and its value.
/// Called on the main thread.
using SignalEnricher = std::function<SignalParameters(
    const QString &signalType, const std::optional<QString> &clientUser, std::optional<double> floatValue)>;

/// How the client behaves.
struct TelemetryManagerConfiguration {
    /// Without a `baseURL` there is no destination, and no client is started.
    explicit TelemetryManagerConfiguration(QString appID, QString hashSalt = {}, QUrl baseURL = {},
                                           std::optional<QString> serviceNamespace = std::nullopt)
        : telemetryAppID(std::move(appID)), apiBaseURL(std::move(baseURL)),
          nameSpace(std::move(serviceNamespace)), salt(std::move(hashSalt)) {}

    QString telemetryAppID;
    QUrl apiBaseURL;
    std::optional<QString> nameSpace; ///< part of the service's address
    QString salt;                     ///< hashed behind the user identifier
    std::optional<QString> defaultUser;
    std::optional<QString> defaultSignalPrefix;
    std::optional<QString> defaultParameterPrefix;
    /// Called on the main thread for every signal.
    std::function<SignalParameters()> defaultParameters = [] { return SignalParameters(); };
    bool sendNewSessionBeganSignal = true;
    /// Of a running client it is set with TelemetryManager::setSessionID(), which begins a new session.
    QUuid sessionID = QUuid::createUuid();
    /// Called on the client's own thread.
    std::function<void(HttpRequest, QObject *context, HttpCompletion)> urlSession = &startHttpExchange;
    int cacheLimit = 10000;                       ///< signals
    double transmitInterval = 10.0;               ///< seconds
    double maxBackoffInterval = 300.0;            ///< seconds
    bool sendSignalsInDebugConfiguration = false; ///< for the caller's use; sending does not consult it
    std::optional<bool> testMode;                 ///< unset counts as false
    std::optional<bool> previewMode;              ///< true: nothing is recorded or sent
    bool analyticsDisabled = false;               ///< true: nothing is recorded or sent
    bool reservedParameterWarningsEnabled = true;
    bool sessionStatsEnabled = true;
    bool showDebugLogs = false; ///< true: debug messages pass whatever the handler's minimum level
    std::optional<LogHandler> logHandler = LogHandler::platformLog();
    QList<SignalEnricher> metadataEnrichers;

    /// Whether a message of this level would be passed on; spares putting long ones together.
    [[nodiscard]] bool logs(LogLevel level) const {
        return logHandler && (showDebugLogs || level >= logHandler->minimumLevel);
    }
    void log(LogLevel level, const QString &message) const {
        if (logs(level))
            logHandler->function(level, message);
    }
};

/// A point in time, twice.
struct Moment {
    QDateTime date;                   ///< in UTC, as the computer believes; it may jump either way
    std::chrono::milliseconds uptime; ///< since some fixed moment; never runs backwards

    [[nodiscard]] static Moment now() {
        return {QDateTime::currentDateTimeUtc(), std::chrono::duration_cast<std::chrono::milliseconds>(
                                                     std::chrono::steady_clock::now().time_since_epoch())};
    }
};

/// What the client needs from outside. The defaults are the computer's own.
struct TelemetryEnvironment {
    std::function<Moment()> now = &Moment::now; ///< any thread
    /// The directory of the client's preferences file.
    QString preferencesDirectory = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    /// The directory of the file that keeps unsent signals; empty: they are not kept.
    QString cachesDirectory = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    /// What only the application knows. Called on the main thread for every signal.
    std::function<ApplicationFacts()> applicationFacts = [] { return ApplicationFacts(); };
};

} // namespace vantrel
