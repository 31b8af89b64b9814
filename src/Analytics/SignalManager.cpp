#include "Analytics/SignalManager.h"

#include "Analytics/SignalJson.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

/// The statuses that will not change by asking again, with their names.
const QMap<int, QString> rejections{
    {400, QStringLiteral("Bad Request (400)")},
    {401, QStringLiteral("Unauthorized (401)")},
    {403, QStringLiteral("Forbidden (403)")},
    {404, QStringLiteral("Not Found (404)")},
    {413, QStringLiteral("Payload Too Large (413)")},
    {422, QStringLiteral("Unprocessable Entity (422)")},
    {501, QStringLiteral("Not Implemented (501)")},
    {505, QStringLiteral("HTTP Version Not Supported (505)")},
};

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

SignalManager::SignalManager(std::shared_ptr<const TelemetryManagerConfiguration> configuration,
                             const QString &cachesDirectory)
    : m_configuration(std::move(configuration)), m_signalCache(m_configuration, cachesDirectory) {
    m_sendTimerSource.setSingleShot(true);
    m_sendTimerSource.setTimerType(Qt::PreciseTimer);
    connect(&m_sendTimerSource, &QTimer::timeout, this, &SignalManager::attemptSend);
    m_signalCache.load();
    attemptSend();
    m_consecutiveFailures = 0;
    scheduleNextTransmission();
}

void SignalManager::save() {
    m_sendTimerSource.stop();
    for (const auto &batch : std::exchange(m_inFlight, {}))
        m_signalCache.push(batch);
    m_signalCache.save();
}

void SignalManager::scheduleNextTransmission() {
    const double delay = std::min(m_configuration->transmitInterval * std::exp2(m_consecutiveFailures),
                                  m_configuration->maxBackoffInterval);
    m_sendTimerSource.start(std::chrono::milliseconds(qRound64(std::max(0.0, delay) * 1000.0)));
}

void SignalManager::attemptSend() {
    const auto log = [this](LogLevel level, const QString &message) { m_configuration->log(level, message); };
    log(LogLevel::debug, QStringLiteral("Current signal cache count: %1").arg(m_signalCache.size()));
    const QList<SignalPostBody> batch = m_signalCache.pop();
    if (batch.isEmpty())
        return finishSuccess();
    log(LogLevel::info, QStringLiteral("Sending %1 signals leaving a cache of %2 signals")
                            .arg(batch.size())
                            .arg(m_signalCache.size()));
    const auto fail = [&](const TelemetryError &error) {
        log(LogLevel::error, error.description);
        finishFailure(batch);
    };
    const auto json = encodeSignals(batch, DateForm::network);
    if (!json)
        return fail(json.error());
    if (m_configuration->logs(LogLevel::debug))
        log(LogLevel::debug, QString::fromUtf8(*json));
    const auto url = serviceURL(*m_configuration);
    if (!url) {
        log(LogLevel::error, QStringLiteral("Unable to construct signal API URL for namespace ") +
                                 m_configuration->nameSpace.value_or(QStringLiteral("nil")));
        return fail(TelemetryError::invalidEndpointUrl());
    }
    const int attempt = ++m_lastAttempt;
    m_inFlight.insert(attempt, batch);
    m_configuration->urlSession({.url = *url, .json = *json}, this, [this, attempt](const Result &result) {
        complete(m_inFlight.take(attempt), result);
    });
}

void SignalManager::complete(const QList<SignalPostBody> &batch, const Result &result) {
    const auto log = [this](LogLevel level, const QString &message) { m_configuration->log(level, message); };
    if (!result) {
        log(LogLevel::error, result.error().text);
        return finishFailure(batch);
    }
    const int status = result->status;
    if (status >= 200 && status <= 299) {
        log(LogLevel::debug, QString::fromUtf8(result->body));
        return finishSuccess();
    }
    if (rejections.contains(status)) {
        log(LogLevel::error, QStringLiteral("Dropping %1 signal(s): rejected by server %2")
                                 .arg(batch.size())
                                 .arg(rejections.value(status)));
        return finishSuccess();
    }
    log(LogLevel::debug,
        QStringLiteral("Failed to send events (status %1), will try again later").arg(status));
    finishFailure(batch);
}

void SignalManager::finishSuccess() {
    m_consecutiveFailures = 0;
    scheduleNextTransmission();
}

void SignalManager::finishFailure(const QList<SignalPostBody> &batch) {
    m_signalCache.push(batch);
    ++m_consecutiveFailures;
    scheduleNextTransmission();
}

} // namespace vantrel
