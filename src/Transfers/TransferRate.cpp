#include "Transfers/TransferRate.h"

#include <algorithm>

namespace vantrel {

namespace {

constexpr qint64 window = 3000;
constexpr qint64 sampleLength = 100;
constexpr qint64 shortest = 500;

} // namespace

void TransferRate::addAt(qint64 bytes, qint64 time) {
    constexpr qint64 most = qint64(1) << 42; // a phone may claim any size
    bytes = std::clamp(bytes, -most, most);
    m_samples.removeIf([time](const Sample &sample) { return sample.time < time - window; });
    if (!m_samples.isEmpty() && time - m_samples.last().time < sampleLength)
        m_samples.last().bytes += bytes;
    else
        m_samples.append({time, bytes});
}

std::optional<double> TransferRate::bytesPerSecondAt(qint64 time) const {
    qint64 bytes = 0;
    qint64 first = time;
    for (const Sample &sample : m_samples) {
        if (sample.time < time - window)
            continue;
        first = std::min(first, sample.time);
        bytes += sample.bytes;
    }
    if (time - first < shortest || bytes <= 0)
        return std::nullopt;
    return static_cast<double>(bytes) * 1000 / static_cast<double>(time - first);
}

} // namespace vantrel
