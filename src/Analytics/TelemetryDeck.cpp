#include "Analytics/TelemetryDeck.h"

#include "Analytics/SignalCache.h"
#include "Analytics/TelemetryManager.h"

#include <QCoreApplication>
#include <QFile>

namespace vantrel::TelemetryDeck {

namespace {

std::unique_ptr<TelemetryManager> shared;

} // namespace

bool isDeclinedByEnvironment() {
    const QByteArray doNotTrack = qgetenv("DO_NOT_TRACK").trimmed().toLower();
    return !doNotTrack.isEmpty() && doNotTrack != "0" && doNotTrack != "false";
}

bool initialize(TelemetryManagerConfiguration configuration, TelemetryEnvironment environment) {
    const bool isWanted = !configuration.apiBaseURL.isEmpty() && !configuration.analyticsDisabled &&
                          !configuration.previewMode.value_or(false) && !isDeclinedByEnvironment();
    if (shared || !isWanted)
        return shared != nullptr;
    shared = std::make_unique<TelemetryManager>(std::move(configuration), std::move(environment));
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, shared.get(), &TelemetryManager::aboutToTerminate);
    qAddPostRoutine(shutDown);
    return true;
}

void signal(const QString &name, const SignalParameters &parameters, std::optional<double> floatValue,
            const std::optional<QString> &customUserID) {
    if (shared)
        shared->signal(name, parameters, floatValue, customUserID);
}

void movedToBackground() {
    if (shared)
        shared->movedToBackground();
}

void returnedToForeground() {
    if (shared)
        shared->returnedToForeground();
}

void shutDown() {
    qRemovePostRoutine(shutDown);
    shared.reset();
}

void forget(const TelemetryManagerConfiguration &configuration, const TelemetryEnvironment &environment) {
    if (shared)
        shared->abandon();
    shutDown();
    const QString preferences =
        preferencesPath(environment.preferencesDirectory, configuration.telemetryAppID);
    const QString cache = SignalCache::filePath(environment.cachesDirectory);
    for (const QString &path : QStringList{preferences, preferences + QStringLiteral(".damaged"), cache})
        QFile::remove(path);
}

} // namespace vantrel::TelemetryDeck
