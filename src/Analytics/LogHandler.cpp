#include "Analytics/LogHandler.h"

#include <QLoggingCategory>

namespace vantrel {

Q_LOGGING_CATEGORY(lcAnalytics, "vantrel.analytics")

LogHandler LogHandler::platformLog(LogLevel minimumLevel) {
    return {minimumLevel, [](LogLevel level, const QString &message) {
                switch (level) {
                case LogLevel::Debug:
                    qCDebug(lcAnalytics).noquote() << message;
                    break;
                case LogLevel::Info:
                    qCInfo(lcAnalytics).noquote() << message;
                    break;
                case LogLevel::Error:
                    qCCritical(lcAnalytics).noquote() << message;
                    break;
                }
            }};
}

} // namespace vantrel
