#pragma once

#include <QString>

#include <functional>

namespace vantrel {

enum class LogLevel { Debug = 0, Info = 1, Error = 2 };

/// Where the analytics client's messages go.
struct LogHandler {
    LogLevel minimumLevel = LogLevel::Info; ///< messages below it are not passed on
    /// Called on whatever thread has something to say, several at once.
    std::function<void(LogLevel level, const QString &message)> function;

    /// The platform's log, category "vantrel.analytics".
    [[nodiscard]] static LogHandler platformLog(LogLevel minimumLevel = LogLevel::Info);
};

} // namespace vantrel
