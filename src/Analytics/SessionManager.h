#pragma once

#include "Analytics/Clock.h"
#include "Analytics/PreferencesStore.h"
#include "Analytics/SerialQueue.h"
#include "Analytics/SignalPostBody.h"

#include <QList>
#include <QMutex>
#include <QStringList>

namespace vantrel {

/// One use of the application, past or present.
struct StoredSession {
    QDateTime startedAt; ///< UTC, to the millisecond
    int durationInSeconds = 0;
    friend bool operator==(const StoredSession &, const StoredSession &) = default;
};

/// Remembers on this computer when and how long the application was used during the last 90 days, and makes
/// figures of it. Everything runs on the main thread but for the writing, which has a queue of its own.
class SessionManager {
public:
    /// Reads the history, forgets (and counts) what is older than 90 days, and notes that today is a day of
    /// use.
    SessionManager(std::shared_ptr<Clock> clock, std::shared_ptr<PreferencesStore> preferences);

    /// Begins to measure a new session. When it is the first one ever, returns today's date ("2024-05-31").
    [[nodiscard]] std::optional<QString> startNewSession();
    /// Adds the time since the last update to the session and stores it, once it is a second long. Runs by
    /// itself every second.
    void updateSessionDuration();
    /// updateSessionDuration(), and has the preferences written to disk at the next opportunity.
    void updateAndFlush();
    /// Measures no further, and calls `done` on another thread when everything is on disk. Returns at once.
    void stop(std::function<void()> done);

    /// The parameters that every signal carries.
    [[nodiscard]] SignalParameters retentionParameters() const;

private:
    enum class Flush { WhenDue, Now };

    [[nodiscard]] QString today() const;
    void tick();
    void persist(Flush flush);
    /// Updates the session in the list or appends it; returns the list.
    QList<StoredSession> remember(const StoredSession &session);
    void store(const QString &key, const QVariant &value);

    const std::shared_ptr<Clock> m_clock;
    const std::shared_ptr<PreferencesStore> m_preferences;

    mutable QMutex m_sessionsLock;
    QList<StoredSession> m_unsafeRecentSessions; // oldest first; only under the lock
    int m_deletedSessionsCount = 0;
    QStringList m_distinctDaysUsed;
    QString m_firstSessionDate;

    QDateTime m_currentSessionStartedAt;
    std::chrono::milliseconds m_currentSessionDuration{0};
    std::unique_ptr<QObject> m_sessionDurationUpdater;
    // On the clock that does not jump: setting the computer's date is not a year of use.
    std::optional<std::chrono::milliseconds> m_sessionDurationLastUpdatedAt;
    std::optional<std::chrono::milliseconds> m_lastFlush; // the persistence queue's alone

    SerialQueue m_persistenceQueue; // last: its work uses the rest
};

} // namespace vantrel
