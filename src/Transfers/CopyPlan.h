#pragma once

#include "Transfers/CopySide.h"
#include "Transfers/CopyTally.h"

#include <QList>
#include <QSet>

namespace vantrel {

/// A file, or a folder, that is missing on the other side.
struct PlannedFile {
    qsizetype entry = 0; ///< its place in the job
    QString source;
    QString destination;
    QString shownPath; ///< below the entry; its name for a single file
    qint64 sizeBytes = 0;
    qint64 modified = 0; ///< seconds since 1970
    QString wanted = {}; ///< the destination, before a number was added to it

    /// Whether it is copied by itself, so that an interrupted copy can go on.
    [[nodiscard]] bool isLarge() const;
    /// Whether something is a file of its size and time, 2 s apart at most.
    [[nodiscard]] bool isLike(const TreeEntry &there) const;
};

/// What of a job's entries is to be copied: what stands there already is counted, what is kept from its place
/// by another content or cannot be copied is noted, and what is missing is planned. One thread.
class CopyPlan {
public:
    /// All must outlive the plan. The destination has learned what stands there.
    CopyPlan(const CopyJob &job, const CopySide &destination, CopyTally &tally);

    /// What is to be learned of the destination for these sources: folders, with all that is below them, and
    /// single paths.
    struct Places {
        QStringList folders;
        QStringList paths;
    };
    [[nodiscard]] static Places destinationsOf(const CopyJob &job, const QList<FileTree> &sources);

    /// Plans an entry, as it was found on its side.
    void add(qsizetype entry, const FileTree &source);
    /// Plans a file again that stands there with its size and time, and another content.
    void addDifferent(PlannedFile file);
    /// What stands there with its size and time, when copies are verified; for the caller from then on.
    [[nodiscard]] QList<PlannedFile> takeAlike(qsizetype most);

    [[nodiscard]] const QList<PlannedFile> &folders() const { return m_folders; }
    [[nodiscard]] const QList<PlannedFile> &files() const { return m_files; }

    /// Why a file is kept from its place, in the user's words.
    [[nodiscard]] static QString takenReason();

private:
    [[nodiscard]] bool isIntoItself(qsizetype entry, const FileTree &source) const;
    void addTree(qsizetype entry, const FileTree &source, const QString &root);
    void addFile(PlannedFile file);
    [[nodiscard]] QString freeName(const QString &path) const;

    const CopyJob &m_job;
    const CopySide &m_destination;
    CopyTally &m_tally;
    QList<PlannedFile> m_folders;
    QList<PlannedFile> m_files;
    QSet<QString> m_planned;    ///< where the files go
    QList<PlannedFile> m_alike; ///< not compared yet
    QSet<QString> m_different;  ///< of what stands there, what was found to hold something else
};

} // namespace vantrel
