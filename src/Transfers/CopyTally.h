#pragma once

#include "Transfers/CopyRun.h"

#include <mutex>
#include <optional>

namespace vantrel {

/// What has become of a job's entries so far: counted here, and told from here. Entries go by their place in
/// the job, sizes are bytes. Any thread: two runs of adb may bring files of one entry, and what one of them
/// has brought may end it.
class CopyTally {
public:
    /// The job and the watcher must outlive the tally.
    CopyTally(const CopyJob &job, const CopyWatcher &watcher, std::stop_token stop);

    using Problems = QList<CopyProblem> CopyReport::*;
    /// Whether compared files have come in this run, or stood there before it.
    enum class Arrival { staged, there };

    [[nodiscard]] bool isWanted(qsizetype entry) const;
    [[nodiscard]] bool hasEnded(qsizetype entry) const;
    /// Whether nothing more is to be done for it.
    [[nodiscard]] bool isGivenUp(qsizetype entry) const;
    /// Whether it neither was stopped nor lost its phone.
    [[nodiscard]] bool hasEndedForGood(qsizetype entry) const;
    [[nodiscard]] qint64 totalBytes(qsizetype entry) const;

    // -- Planning

    /// A file of the entry, of which something is to be told in the end.
    void find(qsizetype entry, qint64 bytes);
    /// What is to be told of it, whatever becomes of the rest.
    void note(qsizetype entry, Problems list, const QList<CopyProblem> &problems);
    /// A file that is to be copied: placed() or problem() is to follow.
    void expect(qsizetype entry);
    void countAsThere(qsizetype entry, qint64 bytes);
    void countAsCompared(qsizetype entry, bool couldBe);
    /// Tells how much there is to do.
    void announce(qsizetype entry);

    // -- Copying

    /// A file is through and has no name yet, or (-1) no more.
    void stage(qsizetype entry, qint64 bytes, int change);
    /// So many bytes of the entry were there before this run, or (negative) were of no use.
    void keep(qsizetype entry, qint64 bytes);
    void compare(qsizetype entry, qint64 bytes);
    /// Tells how far an entry has come; `underWay` bytes of its next file are through. Where copies are
    /// verified, comparing is half of the way.
    void report(qsizetype entry, qint64 underWay, std::optional<Arrival> compared = std::nullopt);
    void placed(qsizetype entry, qint64 bytes);
    void problem(qsizetype entry, Problems list, const CopyProblem &problem);

    // -- Ending; nothing that follows for the entry counts

    /// Ends the entry, if none of its files is to follow.
    void endIfDone(qsizetype entry);
    void end(qsizetype entry);
    void fail(qsizetype entry, const QString &message);
    void failAll(const QString &message);
    /// The entries that fail from now on have lost their phone.
    void losePhone();
    [[nodiscard]] bool hasLostPhone() const;

private:
    struct Entry {
        CopyReport report;
        QueueItemStatus::Progress progress;
        qsizetype filesLeft = 0; ///< planned files that have not ended
        qint64 stagedBytes = 0;  ///< through, but without their names
        qsizetype stagedFiles = 0;
        qint64 comparedBytes = 0;
        qint64 keptBytes = 0; ///< that had been there before this run
        bool hasEnded = false;
    };

    const CopyJob &m_job;
    const CopyWatcher &m_watcher;
    const std::stop_token m_stop;
    mutable std::recursive_mutex m_guard;
    QList<Entry> m_entries;
    bool m_hasLostPhone = false;
};

} // namespace vantrel
