#pragma once

#include "Analytics/TelemetryManagerConfiguration.h"

/// The application's way in: the one shared analytics client. Main thread.
namespace vantrel::TelemetryDeck {

/// Whether the environment variable DO_NOT_TRACK is set to anything but nothing, "0" or "false".
[[nodiscard]] bool isDeclinedByEnvironment();

/// Starts the client, unless there is no destination, or the user has declined, in the environment or by the
/// configuration's analyticsDisabled, or this is a preview: then nothing is recorded, read, written or sent.
/// Returns whether it runs. Needs the application object; with its aboutToQuit() signal unsent signals are
/// saved, and with its end the client ends. A second call does nothing.
bool initialize(TelemetryManagerConfiguration configuration, TelemetryEnvironment environment = {});

/// Records a signal; dropped while no client runs.
void signal(const QString &name, const SignalParameters &parameters = {},
            std::optional<double> floatValue = std::nullopt,
            const std::optional<QString> &customUserID = std::nullopt);

/// The application lost the user's attention, or has it again.
void movedToBackground();
void returnedToForeground();

/// Saves what has not been sent and ends the client and its thread. Happens by itself at the end of the
/// application object.
void shutDown();

/// Ends the client, where one runs, and removes everything that such a client keeps on this computer:
/// identifier, history, unsent signals.
void forget(const TelemetryManagerConfiguration &configuration, const TelemetryEnvironment &environment = {});

} // namespace vantrel::TelemetryDeck
