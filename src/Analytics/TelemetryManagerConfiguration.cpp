#include "Analytics/TelemetryManagerConfiguration.h"

#include <QLoggingCategory>

namespace vantrel {

Q_LOGGING_CATEGORY(lcAnalytics, "vantrel.analytics")

LogHandler LogHandler::platformLog(LogLevel minimumLevel) {
    return {minimumLevel, [](LogLevel level, const QString &message) {
                if (level == LogLevel::debug)
                    qCDebug(lcAnalytics).noquote() << message;
                else if (level == LogLevel::info)
                    qCInfo(lcAnalytics).noquote() << message;
                else
                    qCCritical(lcAnalytics).noquote() << message;
            }};
}

} // namespace vantrel
