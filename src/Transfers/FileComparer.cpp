#include "Transfers/FileComparer.h"

#include "Transfers/CopyText.h"
#include "Transfers/LocalStaging.h"

#include <future>
#include <utility>

namespace vantrel {

FileComparer::FileComparer(const CopySide &from, const CopySide &to, CopyTally &tally, std::stop_token stop)
    : m_from(from), m_to(to), m_tally(tally), m_stop(std::move(stop)) {}

ADBResult<QList<FileComparer::Comparison>> FileComparer::compare(const QList<Pair> &pairs,
                                                                 CopyTally::Arrival arrival) const {
    using Outcome = Comparison::Outcome;
    // A phone is asked for its sums; the other side, which is this computer, is read by this run.
    const CopySide &asked = m_to.isPhone() ? m_to : m_from;
    QStringList paths;
    for (const Pair &pair : pairs)
        paths.append(m_to.isPhone() ? pair.copied : pair.file.source);
    std::stop_source enough;
    const std::stop_callback stopsBoth(m_stop, [&enough] { enough.request_stop(); });
    auto asking = std::async(std::launch::async, [&] {
        auto answer = asked.sums(paths, m_stop);
        if (!answer || answer->isUnavailable)
            enough.request_stop();
        return answer;
    });
    const bool areStaged = arrival == CopyTally::Arrival::staged;
    const auto stageAll = [&](int change) {
        for (const Pair &pair : pairs)
            m_tally.stage(pair.file.entry, pair.file.sizeBytes, change);
    };
    if (areStaged)
        stageAll(+1);
    QList<std::optional<QByteArray>> here;
    for (const auto &[file, copied] : pairs) {
        qint64 read = 0;
        const auto onBytes = [&, entry = file.entry](qint64 bytes) {
            m_tally.compare(entry, bytes - std::exchange(read, bytes));
            m_tally.report(entry, areStaged ? 0 : bytes, arrival);
        };
        here.append(m_tally.isWanted(file.entry)
                        ? LocalFiles::sum(m_to.isPhone() ? file.source : copied, enough.get_token(), onBytes)
                        : std::nullopt);
        m_tally.compare(file.entry, file.sizeBytes - read);
        if (!areStaged)
            m_tally.stage(file.entry, file.sizeBytes, +1);
    }
    stageAll(-1);
    const auto there = asking.get();
    if (!there)
        return tl::make_unexpected(there.error());
    QList<Comparison> compared;
    for (qsizetype i = 0; i < pairs.size(); ++i) {
        const QByteArray &sum = there->sums.at(i);
        if (there->isUnavailable)
            compared.append({Outcome::unavailable});
        else if (sum.isEmpty())
            compared.append({Outcome::unreadable, explainedCopyError(there->complaint), there->complaint});
        else if (!here.at(i))
            compared.append({Outcome::unreadable, QStringLiteral("This computer can’t read it.")});
        else
            compared.append({*here.at(i) == sum ? Outcome::same : Outcome::different});
    }
    return compared;
}

} // namespace vantrel
