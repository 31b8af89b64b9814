#pragma once

#include "Analytics/TelemetryManagerConfiguration.h"

#include <QList>

#include <memory>

namespace vantrel {

/// The signals that wait to be sent, oldest first; when there are more than the configuration's `cacheLimit`,
/// the oldest are given up. They survive the end of the program in a file. One thread; the file blocks.
class SignalCache {
public:
    static constexpr qsizetype maximumNumberOfSignalsToPopAtOnce = 100;

    /// The file is "telemetrysignalcache" in `directory`; with an empty one there is none.
    SignalCache(std::shared_ptr<const TelemetryManagerConfiguration> configuration, const QString &directory);
    /// Where that file is.
    [[nodiscard]] static QString filePath(const QString &directory);

    [[nodiscard]] qsizetype size() const { return m_signals.size(); }
    void push(const QList<SignalPostBody> &batch);
    /// Removes and returns the oldest signals.
    [[nodiscard]] QList<SignalPostBody> pop();

    /// Takes over the signals that earlier runs left in the file, which is deleted.
    void load();
    /// Writes all signals to the file. Signals that another running copy of the program has left there stay
    /// in it.
    void save();

private:
    const std::shared_ptr<const TelemetryManagerConfiguration> m_configuration;
    std::optional<QUrl> m_cacheFileURL;
    QList<SignalPostBody> m_signals;
};

} // namespace vantrel
