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
constexpr auto updateInterval = 30s;

/// The full date in the computer's time zone. Such dates compare as text like the days they name.
QString fullDate(const QDateTime &moment) {
    return moment.toLocalTime().date().toString(Qt::ISODate);
}

QString encode(const QList<StoredSession> &sessions) {
    QJsonArray json;
    for (const StoredSession &session : sessions)
        json.append(QJsonObject{{u"startedAt"_s, session.startedAt.toMSecsSinceEpoch()},
                                {u"durationInSeconds"_s, session.durationInSeconds}});
    return QString::fromUtf8(QJsonDocument(json).toJson(QJsonDocument::Compact));
}

/// Empty when the text is not entirely what encode() writes. Earlier versions wrote it in a wrapping of the
/// toolkit's: "@ByteArray([{\"startedAt\": …}])".
QList<StoredSession> decode(QString text) {
    if (const auto begin = "\"@ByteArray("_L1; text.startsWith(begin) && text.endsWith(")\""_L1))
        text = text.chopped(2).sliced(begin.size()).replace(u"\\\""_s, u"\""_s);
    QList<StoredSession> sessions;
    const QJsonArray array = QJsonDocument::fromJson(text.toUtf8()).array();
    for (const QJsonValue value : array) {
        const QJsonValue startedAt = value[u"startedAt"_s];
        const QJsonValue duration = value[u"durationInSeconds"_s];
        if (!startedAt.isDouble() || !duration.isDouble())
            return {};
        sessions.append({QDateTime::fromMSecsSinceEpoch(startedAt.toInteger(), Qt::UTC), duration.toInt()});
    }
    return sessions;
}

QStringList days(const PreferencesFile &preferences) {
    return preferences.value(u"distinctDaysUsed"_s).remove(u' ').split(u',', Qt::SkipEmptyParts);
}

} // namespace

SessionManager::SessionManager(PreferencesFile &preferences, std::function<Moment()> now)
    : m_preferences(preferences), m_now(std::move(now)),
      m_recentSessions(decode(m_preferences.value(u"recentSessions"_s))) {
    const QDateTime oldest = m_now().date.addSecs(-historySeconds);
    const auto removed = m_recentSessions.removeIf(
        [&oldest](const StoredSession &session) { return session.startedAt <= oldest; });
    if (removed > 0) {
        const int deleted = m_preferences.value(u"deletedSessionsCount"_s).toInt() + int(removed);
        m_preferences.setValue(u"deletedSessionsCount"_s, QString::number(deleted));
        // Together with the count, or the same sessions are counted again next time.
        m_preferences.setValue(u"recentSessions"_s, encode(m_recentSessions));
    }
    QStringList used = days(m_preferences);
    if (used.isEmpty() || used.last() != today())
        m_preferences.setValue(u"distinctDaysUsed"_s, (used << today()).join(u','));
    m_sessionDurationUpdater.callOnTimeout([this] {
        updateSessionDuration();
        // A timer may be early: then the session is not a second long yet.
        const bool isStored = m_currentSession.durationInSeconds >= 1;
        m_sessionDurationUpdater.start(isStored ? updateInterval : 1s);
    });
}

std::optional<QString> SessionManager::startNewSession() {
    updateSessionDuration(); // of the session that ends
    m_currentSession = {m_now().date, 0};
    m_currentSessionDuration = 0ms;
    m_sessionDurationLastUpdatedAt = m_now().uptime;
    m_sessionDurationUpdater.start(1s);
    // An empty history alone is not proof: the first session may have been shorter than a second, or be 90
    // days ago.
    if (!m_recentSessions.isEmpty() || !m_preferences.value(u"firstSessionDate"_s).isEmpty())
        return std::nullopt;
    m_preferences.setValue(u"firstSessionDate"_s, today());
    return today();
}

void SessionManager::updateSessionDuration() {
    if (!m_sessionDurationLastUpdatedAt)
        return;
    const auto now = m_now().uptime;
    m_currentSessionDuration += now - *m_sessionDurationLastUpdatedAt;
    m_sessionDurationLastUpdatedAt = now;
    m_currentSession.durationInSeconds = int(m_currentSessionDuration / 1s);
    if (m_currentSession.durationInSeconds < 1)
        return;
    m_preferences.reload(); // another running copy of the program stores its sessions there, too
    m_recentSessions = decode(m_preferences.value(u"recentSessions"_s));
    const auto stored =
        std::find_if(m_recentSessions.begin(), m_recentSessions.end(), [this](const StoredSession &other) {
            return other.startedAt == m_currentSession.startedAt;
        });
    if (stored != m_recentSessions.end())
        *stored = m_currentSession;
    else
        m_recentSessions.append(m_currentSession);
    m_preferences.setValue(u"recentSessions"_s, encode(m_recentSessions));
    static_cast<void>(m_preferences.save()); // what cannot be stored now is tried again next time
}

SignalParameters SessionManager::retentionParameters() const {
    const qsizetype count = m_recentSessions.size();
    int average = -1;
    if (count == 1) {
        average = m_recentSessions.first().durationInSeconds;
    } else if (count > 1) { // without the latest, which is still running
        const qint64 sum = std::accumulate(
            m_recentSessions.begin(), m_recentSessions.end() - 1, qint64(0),
            [](qint64 total, const StoredSession &session) { return total + session.durationInSeconds; });
        average = int(sum / (count - 1));
    }
    const QStringList used = days(m_preferences);
    const QString monthAgo = fullDate(m_now().date.addSecs(-monthSeconds));
    const auto usedLastMonth =
        std::count_if(used.begin(), used.end(), [&monthAgo](const QString &day) { return day >= monthAgo; });
    const QString firstSessionDate = m_preferences.value(u"firstSessionDate"_s);
    const int deleted = m_preferences.value(u"deletedSessionsCount"_s).toInt();

    SignalParameters parameters{
        {u"TelemetryDeck.Acquisition.firstSessionDate"_s,
         firstSessionDate.isEmpty() ? today() : firstSessionDate},
        {u"TelemetryDeck.Retention.averageSessionSeconds"_s, QString::number(average)},
        {u"TelemetryDeck.Retention.distinctDaysUsed"_s, QString::number(used.size())},
        {u"TelemetryDeck.Retention.distinctDaysUsedLastMonth"_s, QString::number(usedLastMonth)},
        {u"TelemetryDeck.Retention.totalSessionsCount"_s, QString::number(count + deleted)},
    };
    if (count > 1)
        parameters.insert(u"TelemetryDeck.Retention.previousSessionSeconds"_s,
                          QString::number(m_recentSessions[count - 2].durationInSeconds));
    return parameters;
}

QString SessionManager::today() const {
    return fullDate(m_now().date);
}

} // namespace vantrel
