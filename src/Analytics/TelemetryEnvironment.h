#pragma once

#include "Analytics/DefaultParameters.h"

#include <QStandardPaths>

#include <chrono>
#include <functional>

namespace vantrel {

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
