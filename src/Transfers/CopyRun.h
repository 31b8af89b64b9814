#pragma once

#include "Records/QueueItem.h"

#include <QList>

#include <functional>
#include <stop_token>

namespace vantrel {

/// Entries that are copied together, with as few runs of adb as they allow: one direction, one phone, into
/// one folder.
struct CopyJob {
    TransferDirection direction = TransferDirection::androidToMac;
    QString serial;
    QString folder;
    QList<QueueItem> entries;
    /// Each file is compared with its source by hash before it takes its name, and what is there already too.
    bool verifies = false;
};

/// How one entry has ended. Nothing is missing when `failure`, `failed`, `taken` and `leftOut` are empty.
struct CopyReport {
    qsizetype fileCount = 0;
    qsizetype copied = 0;
    qsizetype alreadyThere = 0; ///< the same size and time, and if it was verified the same content
    qsizetype verified = 0;     ///< of the files copied or there already, compared by hash
    qsizetype unverified = 0;   ///< not compared, because the phone has no tool for it
    QList<CopyProblem> failed;  ///< worth another try
    QList<CopyProblem> taken;   ///< another content stands under the name
    QList<CopyProblem> leftOut; ///< links, pipes, names that cannot be copied, folders that cannot be read
    qint64 totalBytes = 0;
    bool wasStopped = false;  ///< by the request to stop
    bool isPhoneGone = false; ///< the phone left before the entry had ended
    QString failure;          ///< why the whole entry ended early, or empty
};

/// What a run tells, and asks. All of it is called on background threads, never twice at once for one entry;
/// the end of an entry comes after its last progress.
struct CopyWatcher {
    /// The fraction is 0 to 0.99 and rises by more than 0.001 from call to call.
    std::function<void(const QUuid &id, const QueueItemStatus::Progress &)> onProgress;
    std::function<void(const QUuid &id, const CopyReport &)> onEnd;
    /// Something has come through, whether or not it is worth a report.
    std::function<void()> onLife;
    /// Whether the entry is still wanted. One that is not is left out of what is still to do, and nobody is
    /// told how it ended.
    std::function<bool(const QUuid &id)> isWanted;
};

/// Copies a job's entries: looks at both sides, copies what is missing into a hidden staging folder beside
/// the destinations, checks that it arrived whole, and only then gives it its name. Blocking; a request to
/// stop ends it within 0.5 s. Whatever happens, nothing that stands on either side is replaced or deleted,
/// and a final name is a whole file.
bool runCopyJob(const CopyJob &job, const CopyWatcher &watcher, const std::stop_token &stop);

} // namespace vantrel
