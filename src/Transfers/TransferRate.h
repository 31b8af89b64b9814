#pragma once

#include <QElapsedTimer>
#include <QList>

#include <optional>

namespace vantrel {

/// How fast bytes have come in over the last few seconds. Single reports say little: a push runs ahead of the
/// cable by what the sockets hold.
class TransferRate {
public:
    TransferRate() { m_clock.start(); }

    /// So many bytes more have come; less than none when a copy begins again.
    void add(qint64 bytes) { addAt(bytes, m_clock.elapsed()); }
    /// Bytes per second; nothing until there is enough to go by.
    [[nodiscard]] std::optional<double> bytesPerSecond() const { return bytesPerSecondAt(m_clock.elapsed()); }
    void forget() { m_samples.clear(); }

    /// The same at a time of the caller's, in milliseconds, which never runs back.
    void addAt(qint64 bytes, qint64 time);
    [[nodiscard]] std::optional<double> bytesPerSecondAt(qint64 time) const;

private:
    /// What came within a tenth of a second.
    struct Sample {
        qint64 time;
        qint64 bytes;
    };

    QElapsedTimer m_clock;
    QList<Sample> m_samples;
};

} // namespace vantrel
