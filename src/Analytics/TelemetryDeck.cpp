#include "Analytics/TelemetryDeck.h"

#include "Analytics/TelemetryManager.h"

#include <QCoreApplication>

namespace vantrel::TelemetryDeck {

namespace {

std::unique_ptr<TelemetryManager> shared;
// Signals come from any thread, and none may find the manager half gone. Recursive: an enricher may send one.
QReadWriteLock sharedLock(QReadWriteLock::Recursive);

} // namespace

bool isDeclinedByEnvironment() {
    const QByteArray doNotTrack = qgetenv("DO_NOT_TRACK").trimmed().toLower();
    return !doNotTrack.isEmpty() && doNotTrack != "0" && doNotTrack != "false";
}

bool initialize(TelemetryManagerConfiguration configuration, TelemetryEnvironment environment) {
    if (shared || configuration.analyticsDisabled || isDeclinedByEnvironment())
        return shared != nullptr;
    {
        const QWriteLocker locker(&sharedLock);
        shared = std::make_unique<TelemetryManager>(std::move(configuration), std::move(environment));
    }
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, shared.get(), &aboutToTerminate);
    qAddPostRoutine(shutDown);
    return true;
}

void signal(const QString &name, const SignalParameters &parameters, std::optional<double> floatValue,
            const std::optional<QString> &customUserID) {
    const QReadLocker locker(&sharedLock);
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

void aboutToTerminate() {
    if (shared)
        shared->aboutToTerminate();
}

void shutDown() {
    qRemovePostRoutine(shutDown);
    aboutToTerminate();
    const QWriteLocker locker(&sharedLock);
    shared.reset();
}

} // namespace vantrel::TelemetryDeck
