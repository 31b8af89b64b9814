#pragma once

#include "Analytics/SerialQueue.h"
#include "Analytics/SignalPostBody.h"
#include "Analytics/TelemetryManagerConfiguration.h"

#include <QList>
#include <QUrl>

#include <deque>
#include <functional>
#include <memory>

namespace vantrel {

/// The signals that wait to be sent, oldest first; when there are more than the configuration's `cacheLimit`,
/// the oldest are given up. They survive the end of the program in a file. The list and the file are touched
/// only on the cache's own queue; every function may be called on any other thread.
class SignalCache {
public:
    static constexpr qsizetype maximumNumberOfSignalsToPopAtOnce = 100;

    /// Without a `cacheFileURL` the file is "telemetrysignalcache" in `cachesDirectory`; with neither there
    /// is none.
    SignalCache(std::shared_ptr<SharedConfiguration> configuration, std::optional<QUrl> cacheFileURL,
                const QString &cachesDirectory);

    /// Appends the signals and returns at once.
    void push(QList<SignalPostBody> batch);

    struct Popped {
        QList<SignalPostBody> batch;
        qsizetype remaining = 0;
    };
    /// Removes and returns the oldest signals. Waits for the queue.
    [[nodiscard]] Popped pop();

    /// Takes over the signals that earlier runs left in the file, which is deleted. Returns at once.
    void load();
    /// Writes all signals to the file and calls `done`, on the queue. Returns at once. Signals that another
    /// running copy of the program has left there stay in it.
    void save(std::function<void()> done);

private:
    void trim();
    [[nodiscard]] QString path() const { return m_cacheFileURL->toLocalFile(); }
    void readFile();
    void writeFile();

    const std::shared_ptr<SharedConfiguration> m_configuration;
    std::optional<QUrl> m_cacheFileURL;
    std::deque<SignalPostBody> m_signals;
    SerialQueue m_queue; // last: its work uses the rest
};

} // namespace vantrel
