#include "Analytics/SessionManager.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <numeric>

namespace vantrel {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr qint64 historySeconds = 7'776'000; // 90 days
constexpr qint64 monthSeconds = 2'592'000;   // 30 days
// A disk need not be woken every second; a crash loses at most this much of a session's length.
constexpr auto flushInterval = 30s;

/// The full date in the computer's time zone. Such dates compare as text like the days they name.
QString fullDate(const QDateTime &moment) {
    return moment.toLocalTime().date().toString(Qt::ISODate);
}

QByteArray encode(const QList<StoredSession> &sessions) {
    QJsonArray json;
    for (const StoredSession &session : sessions)
        json.append(QJsonObject{{u"startedAt"_s, session.startedAt.toMSecsSinceEpoch()},
                                {u"durationInSeconds"_s, session.durationInSeconds}});
    return QJsonDocument(json).toJson(QJsonDocument::Compact);
}

/// Empty when the text is not entirely what encode() writes.
QList<StoredSession> decode(const QByteArray &json) {
    QList<StoredSession> sessions;
    const QJsonArray array = QJsonDocument::fromJson(json).array();
    for (const QJsonValue &value : array) {
        const QJsonValue startedAt = value[u"startedAt"_s];
        const QJsonValue duration = value[u"durationInSeconds"_s];
        if (!startedAt.isDouble() || !duration.isDouble())
            return {};
        sessions.append({QDateTime::fromMSecsSinceEpoch(startedAt.toInteger(), Qt::UTC), duration.toInt()});
    }
    return sessions;
}

} // namespace

SessionManager::SessionManager(std::shared_ptr<Clock> clock, std::shared_ptr<PreferencesStore> preferences)
    : m_clock(std::move(clock)), m_preferences(std::move(preferences)),
      m_unsafeRecentSessions(decode(m_preferences->value(u"recentSessions"_s).toByteArray())),
      m_deletedSessionsCount(m_preferences->value(u"deletedSessionsCount"_s).toInt()),
      m_distinctDaysUsed(m_preferences->value(u"distinctDaysUsed"_s).toStringList()),
      m_firstSessionDate(m_preferences->value(u"firstSessionDate"_s).toString()),
      m_persistenceQueue(u"com.telemetrydeck.sessionmanager.persistence"_s) {
    const QDateTime oldest = m_clock->now().addSecs(-historySeconds);
    const auto removed = m_unsafeRecentSessions.removeIf(
        [&oldest](const StoredSession &session) { return session.startedAt <= oldest; });
    if (removed > 0) {
        m_deletedSessionsCount += int(removed);
        store(u"deletedSessionsCount"_s, m_deletedSessionsCount);
        // Together with the count, or the same sessions are counted again next time.
        store(u"recentSessions"_s, encode(m_unsafeRecentSessions));
    }
    if (m_distinctDaysUsed.isEmpty() || m_distinctDaysUsed.last() != today()) {
        m_distinctDaysUsed.append(today());
        store(u"distinctDaysUsed"_s, m_distinctDaysUsed);
    }
}

std::optional<QString> SessionManager::startNewSession() {
    std::optional<QString> firstSessionDate;
    const QMutexLocker locker(&m_sessionsLock);
    // An empty history alone is not proof: the first session may have been shorter than a second, or be 90
    // days ago.
    if (m_unsafeRecentSessions.isEmpty() && m_firstSessionDate.isEmpty()) {
        m_firstSessionDate = today();
        store(u"firstSessionDate"_s, m_firstSessionDate);
        firstSessionDate = m_firstSessionDate;
    }
    m_currentSessionStartedAt = m_clock->now();
    m_currentSessionDuration = 0ms;
    m_sessionDurationLastUpdatedAt = m_clock->uptime();
    m_sessionDurationUpdater = m_clock->startTimer(1s, [this] { tick(); });
    return firstSessionDate;
}

void SessionManager::tick() {
    updateSessionDuration();
    m_sessionDurationUpdater = m_clock->startTimer(1s, [this] { tick(); });
}

void SessionManager::updateSessionDuration() {
    persist(Flush::WhenDue);
}

void SessionManager::updateAndFlush() {
    persist(Flush::Now);
}

void SessionManager::persist(Flush flush) {
    if (!m_sessionDurationLastUpdatedAt)
        return;
    const auto now = m_clock->uptime();
    m_currentSessionDuration += now - *m_sessionDurationLastUpdatedAt;
    m_sessionDurationLastUpdatedAt = now;
    const StoredSession current{m_currentSessionStartedAt, int(m_currentSessionDuration / 1s)};
    if (current.durationInSeconds < 1)
        return;
    m_persistenceQueue.async([this, current, flush, now] {
        m_preferences->setValue(u"recentSessions"_s, encode(remember(current)));
        if (flush == Flush::WhenDue && m_lastFlush && now - *m_lastFlush < flushInterval)
            return;
        m_lastFlush = now;
        m_preferences->flush();
    });
}

QList<StoredSession> SessionManager::remember(const StoredSession &session) {
    const QMutexLocker locker(&m_sessionsLock);
    const auto stored =
        std::find_if(m_unsafeRecentSessions.begin(), m_unsafeRecentSessions.end(),
                     [&session](const StoredSession &other) { return other.startedAt == session.startedAt; });
    if (stored != m_unsafeRecentSessions.end())
        *stored = session;
    else
        m_unsafeRecentSessions.append(session);
    return m_unsafeRecentSessions;
}

void SessionManager::stop(std::function<void()> done) {
    m_sessionDurationUpdater.reset();
    m_persistenceQueue.async([this, done = std::move(done)] {
        m_preferences->flush();
        done();
    });
}

SignalParameters SessionManager::retentionParameters() const {
    const QMutexLocker locker(&m_sessionsLock);
    const qsizetype count = m_unsafeRecentSessions.size();
    int average = -1;
    if (count == 1) {
        average = m_unsafeRecentSessions.first().durationInSeconds;
    } else if (count > 1) { // without the latest, which is still running
        const qint64 sum = std::accumulate(
            m_unsafeRecentSessions.begin(), m_unsafeRecentSessions.end() - 1, qint64(0),
            [](qint64 total, const StoredSession &session) { return total + session.durationInSeconds; });
        average = int(sum / (count - 1));
    }
    const QString monthAgo = fullDate(m_clock->now().addSecs(-monthSeconds));
    const auto daysLastMonth = std::count_if(m_distinctDaysUsed.begin(), m_distinctDaysUsed.end(),
                                             [&monthAgo](const QString &day) { return day >= monthAgo; });

    SignalParameters parameters{
        {u"TelemetryDeck.Acquisition.firstSessionDate"_s,
         m_firstSessionDate.isEmpty() ? today() : m_firstSessionDate},
        {u"TelemetryDeck.Retention.averageSessionSeconds"_s, QString::number(average)},
        {u"TelemetryDeck.Retention.distinctDaysUsed"_s, QString::number(m_distinctDaysUsed.size())},
        {u"TelemetryDeck.Retention.distinctDaysUsedLastMonth"_s, QString::number(daysLastMonth)},
        {u"TelemetryDeck.Retention.totalSessionsCount"_s, QString::number(count + m_deletedSessionsCount)},
    };
    if (count > 1)
        parameters.insert(u"TelemetryDeck.Retention.previousSessionSeconds"_s,
                          QString::number(m_unsafeRecentSessions[count - 2].durationInSeconds));
    return parameters;
}

QString SessionManager::today() const {
    return fullDate(m_clock->now());
}

void SessionManager::store(const QString &key, const QVariant &value) {
    m_persistenceQueue.async([this, key, value] { m_preferences->setValue(key, value); });
}

} // namespace vantrel
