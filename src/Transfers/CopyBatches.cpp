#include "Transfers/CopyBatches.h"

#include "ADB/AndroidPath.h"
#include "Records/ByteSum.h"

#include <QSet>

#include <algorithm>
#include <functional>
#include <iterator>

namespace vantrel {

CopyBatches::CopyBatches(const QList<PlannedFile> &files, const CopyTally &tally)
    : m_files(files), m_tally(tally) {}

QList<PlannedFile> CopyBatches::largeFiles() const {
    const std::scoped_lock lock(m_guard);
    QList<PlannedFile> large;
    std::copy_if(m_files.begin(), m_files.end(), std::back_inserter(large),
                 std::mem_fn(&PlannedFile::isLarge));
    return large;
}

bool CopyBatches::areForTwo() {
    constexpr qsizetype parts = 4;
    constexpr qsizetype fewest = 250;
    constexpr qint64 small = 256'000;
    const std::scoped_lock lock(m_guard);
    const auto isOfAnother = [&](const PlannedFile &file) { return file.entry != m_files.first().entry; };
    if (m_files.size() < 2 * fewest || std::any_of(m_files.begin(), m_files.end(), isOfAnother) ||
        m_tally.totalBytes(m_files.first().entry) / m_files.size() >= small ||
        std::any_of(m_files.begin(), m_files.end(), std::mem_fn(&PlannedFile::isLarge)))
        return false;
    m_mostTogether = std::clamp(m_files.size() / parts, fewest, m_mostTogether);
    return true;
}

std::optional<CopyBatch> CopyBatches::take() {
    constexpr qint64 mostBytes = 256'000'000;    // what a killed program has to copy again
    constexpr qsizetype mostPathBytes = 400'000; // macOS takes a command line of 1 MB
    const std::scoped_lock lock(m_guard);
    CopyBatch batch;
    QSet<QString> names;
    qint64 bytes = 0;
    qsizetype pathBytes = 0;
    QList<PlannedFile> sameName;
    for (; m_next < m_files.size() && batch.files.size() < m_mostTogether; ++m_next) {
        const PlannedFile &file = m_files.at(m_next);
        if (m_tally.isGivenUp(file.entry))
            continue;
        const QString name = AndroidPath::lastComponent(file.source).toCaseFolded();
        if (names.contains(name)) {
            sameName.append(file);
            continue;
        }
        bytes = byteSum(bytes, file.sizeBytes);
        pathBytes += file.source.toUtf8().size();
        if (!batch.files.isEmpty() && (file.isLarge() || bytes > mostBytes || pathBytes > mostPathBytes))
            break;
        names.insert(name);
        batch.files.append(file);
        if (file.isLarge()) { // for itself, so that it can go on
            ++m_next;
            break;
        }
    }
    m_files += sameName;
    batch.isLast = m_next >= m_files.size();
    return batch.files.isEmpty() ? std::nullopt : std::optional(batch);
}

} // namespace vantrel
