#pragma once

#include "Analytics/Clock.h"
#include "Analytics/SerialQueue.h"
#include "Analytics/SignalCache.h"
#include "Analytics/TelemetryEnvironment.h"
#include "Analytics/TelemetryManagerConfiguration.h"

#include <QMap>

namespace vantrel {

/// The address that batches go to; nothing when the configuration gives none that HTTP can use.
[[nodiscard]] std::optional<QUrl> serviceURL(const TelemetryManagerConfiguration &configuration);

/// Sends what is in the cache, a batch at a time, for as long as it exists: every `transmitInterval`, and
/// twice as late after every failure in a row up to `maxBackoffInterval`. The cache file is read at the
/// beginning.
class SignalManager {
public:
    SignalManager(std::shared_ptr<SharedConfiguration> configuration,
                  const TelemetryEnvironment &environment);
    ~SignalManager();
    Q_DISABLE_COPY_MOVE(SignalManager)

    /// Puts a signal into the cache. Any thread; returns at once.
    void push(const SignalPostBody &body) { m_signalCache.push({body}); }

    /// Stops sending and writes every signal that has not been answered to the cache file, those under way
    /// included; then calls `done`, on another thread. Returns at once. Once.
    void stopAndSave(std::function<void()> done);

    /// Failed attempts since the last success. Waits for the timer queue.
    [[nodiscard]] int consecutiveFailures();
    /// Finished attempts. Waits for the timer queue.
    [[nodiscard]] int sendCompletions();

private:
    using Result = tl::expected<HttpResponse, QString>;

    void scheduleNextTransmission();
    void attemptSend();
    void complete(int attempt, const Result &result);
    void finishSuccess();
    void finishFailure(const QList<SignalPostBody> &batch);

    const std::shared_ptr<SharedConfiguration> m_configuration;
    const std::shared_ptr<Clock> m_clock;
    const std::chrono::milliseconds m_requestTimeout;
    SignalCache m_signalCache;

    // From here on: the timer queue's alone.
    std::unique_ptr<QObject> m_sendTimerSource; // the pending timer
    int m_consecutiveFailures = 0;
    int m_sendCompletions = 0;
    int m_lastAttempt = 0;
    QMap<int, QList<SignalPostBody>>
        m_inFlight; // by attempt: the first timer may fire before the first answer
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true); // gone: answers are ignored

    const std::shared_ptr<SerialQueue> m_timerQueue; // shared with the completions, which may outlive this
    std::shared_ptr<HttpClient> m_urlSession;
};

} // namespace vantrel
