#pragma once

#include <QList>
#include <QString>

namespace vantrel {

/// Something that a copy did not bring over, and why.
struct CopyProblem {
    QString path;   ///< below the copied folder; the name of a single file
    QString reason; ///< what the user reads
    friend bool operator==(const CopyProblem &, const CopyProblem &) = default;
};

/// What a copy needs to know of one file or folder, on either side.
struct TreeEntry {
    enum class Kind {
        file,
        folder,
        other ///< a link, a pipe, a device: never copied
    };

    QString path; ///< below the tree's root, parts joined by "/"; empty for the root itself
    Kind kind = Kind::other;
    qint64 sizeBytes = 0; ///< of a file
    qint64 modified = 0;  ///< whole seconds since 1970, UTC
    friend bool operator==(const TreeEntry &, const TreeEntry &) = default;
};

/// A file, or a folder with everything below it, as it was when it was looked at.
struct FileTree {
    QList<TreeEntry> entries;      ///< the root first; empty when nothing stands there
    QList<CopyProblem> leftOut;    ///< names that cannot be copied
    QList<CopyProblem> unreadable; ///< folders that may not be read, what went away meanwhile
    friend bool operator==(const FileTree &, const FileTree &) = default;
};

} // namespace vantrel
