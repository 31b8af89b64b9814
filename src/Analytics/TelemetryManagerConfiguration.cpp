#include "Analytics/TelemetryManagerConfiguration.h"

namespace vantrel {

TelemetryManagerConfiguration::TelemetryManagerConfiguration(QString appID, QString hashSalt, QUrl baseURL,
                                                             std::optional<QString> serviceNamespace)
    : telemetryAppID(std::move(appID)), apiBaseURL(std::move(baseURL)),
      nameSpace(std::move(serviceNamespace)), salt(std::move(hashSalt)) {}

bool TelemetryManagerConfiguration::logs(LogLevel level) const {
    return logHandler && logHandler->function && (showDebugLogs || level >= logHandler->minimumLevel);
}

void TelemetryManagerConfiguration::log(LogLevel level, const QString &message) const {
    if (logs(level))
        logHandler->function(level, message);
}

SharedConfiguration::SharedConfiguration(TelemetryManagerConfiguration configuration)
    : m_current(std::make_shared<TelemetryManagerConfiguration>(std::move(configuration))) {}

std::shared_ptr<const TelemetryManagerConfiguration> SharedConfiguration::current() const {
    const QReadLocker locker(&m_lock);
    return m_current;
}

void SharedConfiguration::change(const std::function<void(TelemetryManagerConfiguration &)> &edit) {
    const QWriteLocker locker(&m_lock);
    auto changed = std::make_shared<TelemetryManagerConfiguration>(*m_current);
    edit(*changed);
    m_current = std::move(changed);
}

} // namespace vantrel
