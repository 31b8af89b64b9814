#pragma once

#include "Records/FileTree.h"
#include "Transfers/StagedName.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <stop_token>
#include <sys/types.h>
#include <tl/expected.hpp>

/// This computer's side of a copy: where it arrives, and how it takes its name. Blocking; any thread. Errors
/// are the system's own texts.
namespace vantrel {

/// A hidden folder beside a destination, for the user alone. It goes with everything in it when this object
/// goes.
class LocalStaging {
public:
    /// Makes one in a folder that is there.
    [[nodiscard]] static tl::expected<LocalStaging, QString> create(const QString &folder,
                                                                    const QString &name = StagedName::make());
    ~LocalStaging();
    LocalStaging(LocalStaging &&other) noexcept;
    LocalStaging(const LocalStaging &) = delete;
    LocalStaging &operator=(const LocalStaging &) = delete;
    LocalStaging &operator=(LocalStaging &&) = delete;

    [[nodiscard]] const QString &path() const { return m_path; }
    /// Leaves the folder where it is, its name in use.
    void keep() { m_path.clear(); }
    /// The permissions of a file that the user makes.
    [[nodiscard]] mode_t newFileMode() const { return m_newFileMode; }

private:
    LocalStaging() = default;

    QString m_path;
    mode_t m_newFileMode = 0644;
};

namespace LocalFiles {

enum class Placing {
    placed,
    nameTaken, ///< something stands there, and was left as it is
    failed     ///< errno says why
};

/// Gives a staged file its name, and never that of something that is there: with the rename that refuses to
/// replace; where the file system knows none, with a hard link; where it knows no links either (FAT, exFAT,
/// some network drives), with a look right before an ordinary rename. Only there another program that makes
/// the same name between the look and the rename would lose its file.
[[nodiscard]] Placing place(const QString &staged, const QString &destination);

/// What stands at a path, links not followed; nothing when there is nothing.
[[nodiscard]] std::optional<TreeEntry> look(const QString &path);
/// What stands at a path and below it. A link at the path itself is followed, links below are not.
[[nodiscard]] FileTree readTree(const QString &path);
/// Makes a folder; one that is there is left as it is. The system's text when there is none afterwards.
[[nodiscard]] tl::expected<void, QString> makeFolder(const QString &path);
/// Whether a folder is another one or lies anywhere below it, however either is spelled.
[[nodiscard]] bool isWithin(const QString &folder, const QString &other);
/// Copies a file's content behind its first `from` bytes, which the copy has, and gives the copy its time.
/// `onBytes` is told, on this thread, how much of the size it has come to. Content that was put behind that
/// size meanwhile is left. Fails as adb would say it; also when a stop is requested, which leaves what has
/// come.
[[nodiscard]] tl::expected<void, QString> copy(const QString &source, const QString &copied, qint64 from,
                                               const std::stop_token &stop,
                                               const std::function<void(qint64 bytes, qint64 size)> &onBytes);
/// Sets a file's time, in seconds since 1970.
bool setModified(const QString &path, qint64 modified);
/// The MD5 sum of a file's content, 32 digits; nothing when it cannot be read or a stop is requested.
/// `onBytes` is told how much of it has been read.
[[nodiscard]] std::optional<QByteArray> sum(const QString &path, const std::stop_token &stop,
                                            const std::function<void(qint64 bytes)> &onBytes);
/// The names in a folder of what dead programs of this user have left of their copies.
[[nodiscard]] QStringList leftOver(const QString &folder);
/// Removes it.
void sweep(const QString &folder);

} // namespace LocalFiles

} // namespace vantrel
