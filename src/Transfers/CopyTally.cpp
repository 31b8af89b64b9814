#include "Transfers/CopyTally.h"

#include "Records/ByteSum.h"

#include <algorithm>
#include <utility>

namespace vantrel {

CopyTally::CopyTally(const CopyJob &job, const CopyWatcher &watcher, std::stop_token stop)
    : m_job(job), m_watcher(watcher), m_stop(std::move(stop)), m_entries(job.entries.size()) {}

bool CopyTally::isWanted(qsizetype entry) const {
    return !m_watcher.isWanted || m_watcher.isWanted(m_job.entries.at(entry).id);
}

bool CopyTally::hasEnded(qsizetype entry) const {
    const std::scoped_lock lock(m_guard);
    return m_entries.at(entry).hasEnded;
}

bool CopyTally::isGivenUp(qsizetype entry) const {
    return hasEnded(entry) || m_stop.stop_requested() || !isWanted(entry);
}

bool CopyTally::hasEndedForGood(qsizetype entry) const {
    const std::scoped_lock lock(m_guard);
    const CopyReport &report = m_entries.at(entry).report;
    return !report.wasStopped && !report.isPhoneGone;
}

qint64 CopyTally::totalBytes(qsizetype entry) const {
    const std::scoped_lock lock(m_guard);
    return m_entries.at(entry).report.totalBytes;
}

// -- Planning

void CopyTally::find(qsizetype entry, qint64 bytes) {
    const std::scoped_lock lock(m_guard);
    Entry &found = m_entries[entry];
    found.progress.fileCount = ++found.report.fileCount;
    found.report.totalBytes = found.progress.totalBytes = byteSum(found.progress.totalBytes, bytes);
}

void CopyTally::note(qsizetype entry, Problems list, const QList<CopyProblem> &problems) {
    const std::scoped_lock lock(m_guard);
    m_entries[entry].report.*list += problems;
}

void CopyTally::expect(qsizetype entry) {
    const std::scoped_lock lock(m_guard);
    ++m_entries[entry].filesLeft;
}

void CopyTally::countAsThere(qsizetype entry, qint64 bytes) {
    const std::scoped_lock lock(m_guard);
    Entry &there = m_entries[entry];
    ++there.report.alreadyThere;
    ++there.progress.files;
    there.progress.transferredBytes = byteSum(there.progress.transferredBytes, bytes);
    there.keptBytes = byteSum(there.keptBytes, bytes);
}

void CopyTally::countAsCompared(qsizetype entry, bool couldBe) {
    const std::scoped_lock lock(m_guard);
    CopyReport &report = m_entries[entry].report;
    ++(couldBe ? report.verified : report.unverified);
}

void CopyTally::announce(qsizetype entry) {
    const std::scoped_lock lock(m_guard);
    if (m_watcher.onProgress && m_job.entries.size() == 1) // one of several waits for its turn
        m_watcher.onProgress(m_job.entries.at(entry).id, m_entries.at(entry).progress);
}

// -- Copying

void CopyTally::stage(qsizetype entry, qint64 bytes, int change) {
    const std::scoped_lock lock(m_guard);
    Entry &staged = m_entries[entry];
    staged.stagedBytes = std::max<qint64>(byteSum(staged.stagedBytes, change * bytes), 0);
    staged.stagedFiles += change;
}

void CopyTally::keep(qsizetype entry, qint64 bytes) {
    const std::scoped_lock lock(m_guard);
    m_entries[entry].keptBytes = byteSum(m_entries.at(entry).keptBytes, bytes);
}

void CopyTally::compare(qsizetype entry, qint64 bytes) {
    const std::scoped_lock lock(m_guard);
    m_entries[entry].comparedBytes = byteSum(m_entries.at(entry).comparedBytes, bytes);
}

void CopyTally::report(qsizetype entry, qint64 underWay, std::optional<Arrival> compared) {
    constexpr double highest = 0.99;
    constexpr double step = 0.001;
    if (m_watcher.onLife)
        m_watcher.onLife();
    const std::scoped_lock lock(m_guard);
    Entry &told = m_entries[entry];
    if (told.hasEnded || !m_watcher.onProgress)
        return;
    QueueItemStatus::Progress now = told.progress;
    now.transferredBytes =
        std::min(byteSum(byteSum(now.transferredBytes, told.stagedBytes), underWay), now.totalBytes);
    now.files += told.stagedFiles;
    now.isVerifying = compared.has_value();
    const qint64 kept =
        byteSum(told.keptBytes, compared == Arrival::there ? byteSum(told.stagedBytes, underWay) : 0);
    now.carriedBytes = std::max<qint64>(now.transferredBytes - kept, 0);
    double part = 0;
    if (now.totalBytes > 0) {
        const auto total = static_cast<double>(now.totalBytes);
        part = static_cast<double>(now.transferredBytes) / total;
        if (m_job.verifies)
            part = (part + static_cast<double>(told.comparedBytes) / total) / 2;
    }
    now.fraction = std::min(highest, part);
    if (now.fraction <= told.progress.fraction + step)
        return;
    told.progress.fraction = now.fraction;
    m_watcher.onProgress(m_job.entries.at(entry).id, now);
}

void CopyTally::placed(qsizetype entry, qint64 bytes) {
    const std::scoped_lock lock(m_guard);
    Entry &placed = m_entries[entry];
    ++placed.report.copied;
    ++placed.progress.files;
    placed.progress.transferredBytes = byteSum(placed.progress.transferredBytes, bytes);
    --placed.filesLeft;
    endIfDone(entry);
}

void CopyTally::problem(qsizetype entry, Problems list, const CopyProblem &problem) {
    const std::scoped_lock lock(m_guard);
    (m_entries[entry].report.*list).append(problem);
    --m_entries[entry].filesLeft;
    endIfDone(entry);
}

// -- Ending

void CopyTally::endIfDone(qsizetype entry) {
    const std::scoped_lock lock(m_guard);
    if (m_entries.at(entry).filesLeft == 0)
        end(entry);
}

void CopyTally::end(qsizetype entry) {
    const std::scoped_lock lock(m_guard);
    if (std::exchange(m_entries[entry].hasEnded, true))
        return;
    if (m_watcher.onEnd && isWanted(entry))
        m_watcher.onEnd(m_job.entries.at(entry).id, m_entries.at(entry).report);
}

void CopyTally::fail(qsizetype entry, const QString &message) {
    const std::scoped_lock lock(m_guard);
    if (m_entries.at(entry).hasEnded)
        return;
    CopyReport &report = m_entries[entry].report;
    report.failure = message;
    report.isPhoneGone = m_hasLostPhone;
    report.wasStopped = m_stop.stop_requested();
    end(entry);
}

void CopyTally::failAll(const QString &message) {
    const std::scoped_lock lock(m_guard);
    for (qsizetype entry = 0; entry < m_entries.size(); ++entry)
        fail(entry, message);
}

void CopyTally::losePhone() {
    const std::scoped_lock lock(m_guard);
    m_hasLostPhone = true;
}

bool CopyTally::hasLostPhone() const {
    const std::scoped_lock lock(m_guard);
    return m_hasLostPhone;
}

} // namespace vantrel
