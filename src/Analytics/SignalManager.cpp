#include "Analytics/SignalManager.h"

#include "Analytics/SignalJson.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

/// The statuses that will not change by asking again, with their names; null for every other.
const char *rejectionReason(int status) {
    switch (status) {
    case 400:
        return "Bad Request (400)";
    case 401:
        return "Unauthorized (401)";
    case 403:
        return "Forbidden (403)";
    case 404:
        return "Not Found (404)";
    case 413:
        return "Payload Too Large (413)";
    case 422:
        return "Unprocessable Entity (422)";
    case 501:
        return "Not Implemented (501)";
    case 505:
        return "HTTP Version Not Supported (505)";
    default:
        return nullptr;
    }
}

} // namespace

std::optional<QUrl> serviceURL(const TelemetryManagerConfiguration &configuration) {
    QString text = configuration.apiBaseURL.toString(QUrl::FullyEncoded);
    if (!text.endsWith(u'/'))
        text += u'/';
    const QString nameSpace = configuration.nameSpace.value_or(QString());
    text += nameSpace.isEmpty() ? QStringLiteral("v2/") : QStringLiteral("v2/namespace/%1/").arg(nameSpace);

    const QUrl url(text, QUrl::StrictMode);
    const bool isHttp = url.scheme() == QStringLiteral("https") || url.scheme() == QStringLiteral("http");
    return url.isValid() && isHttp && !url.host().isEmpty() ? std::optional(url) : std::nullopt;
}

SignalManager::SignalManager(std::shared_ptr<SharedConfiguration> configuration,
                             const TelemetryEnvironment &environment)
    : m_configuration(std::move(configuration)), m_clock(environment.clock),
      m_requestTimeout(environment.requestTimeout),
      m_signalCache(m_configuration, environment.cacheFileURL, environment.cachesDirectory),
      m_timerQueue(std::make_shared<SerialQueue>(QStringLiteral("com.telemetrydeck.SignalTimer"))),
      m_urlSession(m_configuration->current()->urlSession) {
    if (!m_urlSession)
        m_urlSession = networkHttpClient();
    m_signalCache.load();
    m_timerQueue->async([this] {
        attemptSend();
        m_consecutiveFailures = 0;
        scheduleNextTransmission();
    });
}

SignalManager::~SignalManager() {
    m_timerQueue->sync([this] {
        m_alive.reset();
        m_sendTimerSource.reset();
    });
}

void SignalManager::stopAndSave(std::function<void()> done) {
    m_timerQueue->async([this, done = std::move(done)] {
        m_alive.reset();
        m_sendTimerSource.reset();
        for (const auto &batch : std::as_const(m_inFlight))
            m_signalCache.push(batch);
        m_inFlight.clear();
        m_signalCache.save(done);
    });
}

int SignalManager::consecutiveFailures() {
    int count = 0;
    m_timerQueue->sync([this, &count] { count = m_consecutiveFailures; });
    return count;
}

int SignalManager::sendCompletions() {
    int count = 0;
    m_timerQueue->sync([this, &count] { count = m_sendCompletions; });
    return count;
}

void SignalManager::scheduleNextTransmission() {
    const auto configuration = m_configuration->current();
    const double delay = std::min(configuration->transmitInterval * std::exp2(m_consecutiveFailures),
                                  configuration->maxBackoffInterval);
    m_sendTimerSource.reset();
    m_sendTimerSource = m_clock->startTimer(
        std::chrono::milliseconds(qRound64(std::max(0.0, delay) * 1000.0)), [this] { attemptSend(); });
}

void SignalManager::attemptSend() {
    const auto configuration = m_configuration->current();
    const auto [batch, remaining] =
        configuration->previewMode.value_or(false) ? SignalCache::Popped() : m_signalCache.pop();
    configuration->log(LogLevel::Debug, QStringLiteral("Current signal cache count: ") +
                                            QString::number(batch.size() + remaining));
    const int attempt = ++m_lastAttempt;
    m_inFlight.insert(attempt, batch);
    // Every outcome takes the way over the queue, so that it is booked after the caller has scheduled.
    const auto completion = [this, attempt, queue = m_timerQueue,
                             alive = std::weak_ptr(m_alive)](const Result &result) {
        queue->async([this, attempt, alive, result] {
            if (!alive.expired())
                complete(attempt, result);
        });
    };
    if (batch.isEmpty())
        return completion(HttpResponse{200, {}});

    configuration->log(LogLevel::Info, QStringLiteral("Sending ") + QString::number(batch.size()) +
                                           QStringLiteral(" signals leaving a cache of ") +
                                           QString::number(remaining) + QStringLiteral(" signals"));
    const auto json = encodeSignals(batch, DateForm::Network);
    if (!json)
        return completion(tl::unexpected(json.error().description()));
    if (configuration->logs(LogLevel::Debug))
        configuration->log(LogLevel::Debug, QString::fromUtf8(*json));
    const auto url = serviceURL(*configuration);
    if (!url) {
        configuration->log(LogLevel::Error,
                           QStringLiteral("Unable to construct signal API URL for namespace ") +
                               configuration->nameSpace.value_or(QStringLiteral("nil")));
        return completion(tl::unexpected(TelemetryError::invalidEndpointUrl().description()));
    }
    m_urlSession->post({*url, *json, m_requestTimeout}, completion);
}

void SignalManager::complete(int attempt, const Result &result) {
    const auto configuration = m_configuration->current();
    const QList<SignalPostBody> batch = m_inFlight.take(attempt);
    if (batch.isEmpty())
        return finishSuccess();
    if (!result) {
        configuration->log(LogLevel::Error, result.error());
        return finishFailure(batch);
    }
    const int status = result->status.value_or(0);
    if (status >= 200 && status <= 299) {
        configuration->log(LogLevel::Debug, QString::fromUtf8(result->body));
        return finishSuccess();
    }
    if (const char *reason = rejectionReason(status)) {
        configuration->log(LogLevel::Error, QStringLiteral("Dropping ") + QString::number(batch.size()) +
                                                QStringLiteral(" signal(s): rejected by server ") +
                                                QLatin1String(reason));
        return finishSuccess();
    }
    configuration->log(LogLevel::Debug, QStringLiteral("Failed to send events (status ") +
                                            QString::number(status) +
                                            QStringLiteral("), will try again later"));
    finishFailure(batch);
}

void SignalManager::finishSuccess() {
    m_consecutiveFailures = 0;
    ++m_sendCompletions;
    scheduleNextTransmission();
}

void SignalManager::finishFailure(const QList<SignalPostBody> &batch) {
    m_signalCache.push(batch);
    ++m_sendCompletions;
    ++m_consecutiveFailures;
    scheduleNextTransmission();
}

} // namespace vantrel
