#pragma once

#include "Transfers/CopyPlan.h"

#include <mutex>
#include <optional>

namespace vantrel {

/// Files that are copied by one run of adb.
struct CopyBatch {
    QList<PlannedFile> files;
    bool isCompared = false; ///< with its source: one that was continued
    bool isLast = false;     ///< no other is to come
    bool isStagingGone = false;

    /// Whether it is one file, copied by itself.
    [[nodiscard]] bool isLarge() const { return files.size() == 1 && files.first().isLarge(); }
};

/// The planned files in the batches in which they are copied. Any thread.
class CopyBatches {
public:
    /// The tally must outlive the batches.
    CopyBatches(const QList<PlannedFile> &files, const CopyTally &tally);

    [[nodiscard]] bool isEmpty() const { return m_files.isEmpty(); }
    [[nodiscard]] QList<PlannedFile> largeFiles() const;
    /// Divides the files so that two runs of adb can share them, if these are many and small: a run of adb
    /// waits for the phone's answer after each small file. Two at a time are faster than one, and while the
    /// one's files get their names the other copies. To be asked before the first batch is taken.
    [[nodiscard]] bool areForTwo();
    /// The next files that may be copied by one run of adb into one folder: no two of one name, not more than
    /// the command line takes. Nothing when none is left.
    [[nodiscard]] std::optional<CopyBatch> take();

private:
    mutable std::mutex m_guard;
    QList<PlannedFile> m_files;
    const CopyTally &m_tally;
    qsizetype m_next = 0;
    qsizetype m_mostTogether = 1000;
};

} // namespace vantrel
