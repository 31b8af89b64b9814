#pragma once

#include "Records/Enumerations.h"
#include "Records/FileTree.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <functional>
#include <stop_token>

namespace vantrel {

/// What becomes of a copy where another content stands under its name. Nothing is ever replaced.
enum class WhenTaken {
    ask,     ///< it is not made, and the report says so
    keepBoth ///< it is made under the next free name: "name 2.jpg"
};

/// One file or folder of a job.
struct CopyEntry {
    QUuid id;
    QString source;
    QString destination; ///< its full path on the other side
    bool isFolder = false;
    WhenTaken whenTaken = WhenTaken::ask;
};

/// Entries that are copied together, with as few runs of adb as they allow: one direction, one phone, into
/// one folder.
struct CopyJob {
    TransferDirection direction = TransferDirection::androidToMac;
    QString serial;
    QString folder;
    QList<CopyEntry> entries;
};

/// How far one entry has come.
struct CopyProgress {
    double fraction = 0; ///< 0 to 0.99, rising by more than 0.001 from report to report
    qint64 bytes = 0;    ///< done, of totalBytes; what was there already counts
    qint64 totalBytes = 0;
    qsizetype files = 0; ///< done, of fileCount
    qsizetype fileCount = 0;
};

/// How one entry has ended. Nothing is missing when `failure`, `failed`, `taken` and `leftOut` are empty.
struct CopyReport {
    qsizetype fileCount = 0;
    qsizetype copied = 0;
    qsizetype alreadyThere = 0; ///< the same size and time
    QList<CopyProblem> failed;  ///< worth another try
    QList<CopyProblem> taken;   ///< another content stands under the name
    QList<CopyProblem> leftOut; ///< links, pipes, names that cannot be copied, folders that cannot be read
    QString failure;            ///< why the whole entry ended early, or empty
};

/// What a run tells, and asks. All of it is called on background threads, never twice at once for one entry;
/// the end of an entry comes after its last progress.
struct CopyWatcher {
    std::function<void(const QUuid &id, const CopyProgress &)> onProgress;
    std::function<void(const QUuid &id, const CopyReport &)> onEnd;
    /// Whether the entry is still wanted. One that is not is left out of what is still to do, and nobody is
    /// told how it ended.
    std::function<bool(const QUuid &id)> isWanted;
};

/// Copies a job's entries: looks at both sides, copies what is missing into a hidden staging folder beside
/// the destinations, checks that it arrived whole, and only then gives it its name. Blocking; a request to
/// stop ends it within 0.5 s. Whatever happens, nothing that stands on either side is replaced or deleted,
/// and a final name is a whole file.
void runCopyJob(const CopyJob &job, const CopyWatcher &watcher, const std::stop_token &stop);

/// The name for a copy that is kept beside another one: "name 2.jpg", number 2 and up; shortened to what file
/// systems take.
[[nodiscard]] QString numberedName(const QString &name, int number);

} // namespace vantrel
