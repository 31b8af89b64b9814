#pragma once

#include "Records/FileItem.h"

#include <QFuture>
#include <QList>
#include <QString>

#include <optional>
#include <tl/expected.hpp>

namespace vantrel {

class Desktop;

/// A failed listing of a folder of this computer, with the text that the user reads.
class MacFileError {
public:
    enum class Kind { notFound, notDirectory, listFailed };

    [[nodiscard]] static MacFileError notFound(const QString &path) { return {Kind::notFound, path}; }
    [[nodiscard]] static MacFileError notDirectory(const QString &path) { return {Kind::notDirectory, path}; }
    [[nodiscard]] static MacFileError listFailed(const QString &message) {
        return {Kind::listFailed, message};
    }

    [[nodiscard]] Kind kind() const { return m_kind; }
    /// The user-facing description.
    [[nodiscard]] QString errorDescription() const;

    friend bool operator==(const MacFileError &, const MacFileError &) = default;

private:
    MacFileError(Kind kind, QString text) : m_kind(kind), m_text(std::move(text)) {}

    Kind m_kind;
    QString m_text;
};

/// The computer's own file system, as the computer's pane uses it. Stateless. Every path is standardized
/// before use. What touches the disk blocks and belongs on a worker; what takes a Desktop belongs on the main
/// thread.
namespace MacFileClient {

/// The path with a leading "~" expanded, "." and ".." resolved and no trailing slash. Pure.
[[nodiscard]] QString standardizedPath(const QString &path);
/// The folder that contains the path; "/" contains itself. Pure.
[[nodiscard]] QString parentPath(const QString &path);

/// The visible entries of a folder, folders first. A symbolic link is described by itself and is never a
/// folder.
[[nodiscard]] tl::expected<QList<FileItem>, MacFileError> listDirectory(const QString &path);
/// The entries of these paths, in the order of listDirectory(), without those that are not there.
[[nodiscard]] QList<FileItem> entriesAt(const QStringList &paths);
/// Bytes free to the user on the volume that holds the path, if that can be told.
[[nodiscard]] std::optional<qint64> availableBytes(const QString &path);
/// Creates one folder and returns its path. Fails, in words, when the name is not a single path component,
/// and with the system's own text; leaves what exists untouched.
[[nodiscard]] tl::expected<QString, QString> createFolder(const QString &name, const QString &parent);
/// Whether anything, a dangling link included, stands at the path.
[[nodiscard]] bool exists(const QString &path);

/// Opens a file with its default application.
void open(Desktop &desktop, const QString &path);
/// Shows a file, selected, in the file manager.
void revealInFinder(Desktop &desktop, const QString &path);
/// Puts the path on the clipboard.
void copyPath(Desktop &desktop, const QString &path);
/// Asks the user for a folder; `startingAt` may be empty.
[[nodiscard]] QFuture<std::optional<QString>> chooseFolder(Desktop &desktop, const QString &startingAt);

} // namespace MacFileClient

} // namespace vantrel
