#pragma once

#include "Analytics/SignalPostBody.h"
#include "Analytics/TelemetryManagerConfiguration.h"
#include "Preferences/PreferencesFile.h"

#include <QList>
#include <QStringList>
#include <QTimer>

namespace vantrel {

/// One use of the application, past or present.
struct StoredSession {
    QDateTime startedAt; ///< UTC, to the millisecond
    int durationInSeconds = 0;
};

/// Remembers on this computer when and how long the application was used during the last 90 days, and makes
/// figures of it. Lives on one thread with an event loop; what stores something blocks.
class SessionManager {
public:
    /// Reads the history, forgets (and counts) what is older than 90 days, and notes that today is a day of
    /// use. The preferences must outlive it.
    SessionManager(PreferencesFile &preferences, std::function<Moment()> now);

    /// Begins to measure a new session. When it is the first one ever, returns today's date ("2024-05-31").
    [[nodiscard]] std::optional<QString> startNewSession();
    /// Adds the time since the last update to the session and stores it, once it is a second long. Runs by
    /// itself after the first second and from then on every half minute.
    void updateSessionDuration();

    /// The parameters that every signal carries.
    [[nodiscard]] SignalParameters retentionParameters() const;

private:
    [[nodiscard]] QString today() const;

    PreferencesFile &m_preferences;
    const std::function<Moment()> m_now;
    QList<StoredSession> m_recentSessions; // oldest first
    StoredSession m_currentSession;
    std::chrono::milliseconds m_currentSessionDuration{0};
    QTimer m_sessionDurationUpdater;
    // On the clock that does not jump: setting the computer's date is not a year of use.
    std::optional<std::chrono::milliseconds> m_sessionDurationLastUpdatedAt;
};

} // namespace vantrel
