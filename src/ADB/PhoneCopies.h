#pragma once

#include "ADB/ADBError.h"
#include "Records/FileTree.h"
#include "Records/QueueItem.h"

#include <QHash>
#include <QStringList>

#include <functional>
#include <stop_token>

/// What a copy asks of the phone. Everything blocks, is stateless and belongs on a worker; a request to stop
/// ends it within 0.12 s. Nothing here replaces or deletes what the program has not written itself.
namespace vantrel::ADBClient {

/// What stands at the path and below it: one run of adb, however large the tree. A link at the path itself is
/// followed, links below are not. An empty tree when nothing stands there; an error when the phone does not
/// say so.
[[nodiscard]] ADBResult<FileTree> fetchTree(const QString &serial, const QString &path,
                                            const std::stop_token &stop);
/// What stands at each path; paths where nothing stands are missing. Links are followed where they lead
/// somewhere. A run of adb for every 48 KB of paths.
[[nodiscard]] ADBResult<QHash<QString, TreeEntry>> fetchFacts(const QString &serial, const QStringList &paths,
                                                              const std::stop_token &stop);
/// The names in a folder that bear a mark: that begin with `prefix`, which holds letters, digits, "." and
/// "-".
[[nodiscard]] ADBResult<QStringList> namesBeginningWith(const QString &serial, const QString &folder,
                                                        const QString &prefix, const std::stop_token &stop);

/// Makes the folder, whose parent must be there, and an empty one called `marker` in it; fails with the
/// phone's own reason ("Permission denied"). adb makes folders that went away again, but not the one in it.
[[nodiscard]] ADBResult<void> makeMarkedFolder(const QString &serial, const QString &path,
                                               const QString &marker, const std::stop_token &stop);
/// Makes each folder and those above it; one that is there already is left as it is. Whether each could be
/// made shows where files are put into it.
[[nodiscard]] ADBResult<void> makeFolders(const QString &serial, const QStringList &paths,
                                          const std::stop_token &stop);

/// From where to where one file is moved on the phone.
struct PhoneMove {
    QString from;
    QString to;
};
/// Moves files within one volume, none over anything that is there: `mv -n`, which looks right before it
/// renames. Gives what did not move: source to the phone's complaint, which is empty where the name was
/// taken. Afterwards the staging folder may go, with what did not move.
enum class AfterMoves { keepStaging, removeStaging };
[[nodiscard]] ADBResult<QHash<QString, QString>> moveFiles(const QString &serial,
                                                           const QList<PhoneMove> &moves,
                                                           const QString &stagingFolder, AfterMoves after,
                                                           const std::stop_token &stop);
/// Removes what the program made: folders with everything in them, or files. Each path must hold the
/// program's mark, which the caller has checked.
ADBResult<void> removeOwn(const QString &serial, const QStringList &paths);

/// How far a batch has come: so many files have ended, the next is through by this fraction. Called on a
/// background thread whenever something has come, though both may be as before.
using BatchProgress = std::function<void(int endedFiles, double fractionOfNext)>;
/// What adb tells of its way: every percent, for which it needs a terminal, or just each file that is
/// through. Of many small files the percentages cost adb as much as the copying.
enum class BatchDetail { percent, file };
/// One adb push or pull of several files into a folder that is there. A file that fails does not end the
/// batch. Gives adb's error lines: what arrived is for the caller to look at. An error when adb could not be
/// run to its end, when it was stopped, or when the phone left.
///
/// `expectedBytes` is what all sources have together. When a phone sends mostGrowth more than that, adb is
/// ended, and the lines say so.
[[nodiscard]] ADBResult<QStringList> copyFiles(TransferDirection direction, const QString &serial,
                                               const QStringList &sources, const QString &folder,
                                               qint64 expectedBytes, BatchDetail detail,
                                               const std::stop_token &stop, const BatchProgress &onProgress);

/// Called on the thread that copies, with all bytes that are through.
using BytesProgress = std::function<void(qint64 bytes)>;
/// Appends to a file of this computer what a phone's file holds behind the bytes that are in it already. An
/// error as of copyFiles, or the phone's own reason; what has come stays. The source has `sizeBytes`: where
/// more comes, that fails within 0.12 s, since it was changed meanwhile.
[[nodiscard]] ADBResult<void> continuePull(const QString &serial, const QString &source, qint64 sizeBytes,
                                           const QString &localPath, const std::stop_token &stop,
                                           const BytesProgress &onProgress);
/// The same from a file of this computer to one of the phone, which holds the first `from` bytes of it, and
/// is made where it is missing.
[[nodiscard]] ADBResult<void> continuePush(const QString &serial, const QString &localPath, qint64 sizeBytes,
                                           qint64 from, const QString &path, const std::stop_token &stop,
                                           const BytesProgress &onProgress);
/// Sets a file's time, in seconds since 1970.
[[nodiscard]] ADBResult<void> setModified(const QString &serial, const QString &path, qint64 modified,
                                          const std::stop_token &stop);
/// What the phone finds when it reads the whole of some files.
struct PhoneSums {
    QList<QByteArray> sums;     ///< MD5, 32 digits for each file in its place; empty where there is none
    QString complaint = {};     ///< why there is none, in the phone's words
    bool isUnavailable = false; ///< because this phone has no tool for it
};
/// The MD5 sums of the files' contents. A run of adb for every 48 KB of paths.
[[nodiscard]] ADBResult<PhoneSums> fetchSums(const QString &serial, const QStringList &paths,
                                             const std::stop_token &stop);

} // namespace vantrel::ADBClient
