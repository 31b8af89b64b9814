#pragma once

#include "Analytics/Clock.h"
#include "Analytics/DefaultParameters.h"
#include "Analytics/PreferencesStore.h"

#include <QStandardPaths>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace vantrel {

/// What the client needs from outside. The defaults are the computer's own; tests bring theirs.
struct TelemetryEnvironment {
    std::shared_ptr<Clock> clock = systemClock();
    /// Null: the file of the client's own domain in the user's configuration directory.
    std::shared_ptr<PreferencesStore> preferences;
    /// The file that keeps unsent signals; unset: "telemetrysignalcache" in `cachesDirectory`.
    std::optional<QUrl> cacheFileURL;
    QString cachesDirectory = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    /// What only the application knows. Called on the main thread for every signal.
    std::function<ApplicationFacts()> applicationFacts = [] { return ApplicationFacts(); };
    std::chrono::milliseconds requestTimeout = std::chrono::seconds(60);
};

} // namespace vantrel
