#pragma once

#include "Analytics/SignalCache.h"

#include <QMap>
#include <QObject>
#include <QTimer>

#include <chrono>

namespace vantrel {

/// The address that batches go to; nothing when the configuration gives none that HTTP can use.
[[nodiscard]] std::optional<QUrl> serviceURL(const TelemetryManagerConfiguration &configuration);

/// Sends what is in the cache, a batch at a time, for as long as it exists: every `transmitInterval`, and
/// twice as late after every failure in a row up to `maxBackoffInterval`. The cache file is read at the
/// beginning. Lives on one thread with an event loop.
class SignalManager : public QObject {
public:
    /// The cache file is in `cachesDirectory`.
    SignalManager(std::shared_ptr<const TelemetryManagerConfiguration> configuration,
                  const QString &cachesDirectory);

    /// Puts a signal into the cache.
    void push(const SignalPostBody &body) { m_signalCache.push({body}); }
    /// Writes every signal that has not been answered to the cache file, those under way included. The last
    /// thing to do with a manager.
    void save();

    /// Failed attempts since the last success.
    [[nodiscard]] int consecutiveFailures() const { return m_consecutiveFailures; }
    /// The pending attempt.
    [[nodiscard]] QTimer &sendTimerSource() { return m_sendTimerSource; }

private:
    using Result = tl::expected<HttpResponse, HttpError>;

    void scheduleNextTransmission();
    void attemptSend();
    void complete(const QList<SignalPostBody> &batch, const Result &result);
    void finishSuccess();
    void finishFailure(const QList<SignalPostBody> &batch);

    const std::shared_ptr<const TelemetryManagerConfiguration> m_configuration;
    SignalCache m_signalCache;
    QTimer m_sendTimerSource;
    int m_consecutiveFailures = 0;
    int m_lastAttempt = 0;
    // By attempt: the first timer may fire before the first answer.
    QMap<int, QList<SignalPostBody>> m_inFlight;
};

} // namespace vantrel
