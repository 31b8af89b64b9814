#pragma once

#include "ADB/ADBError.h"
#include "Records/AndroidDevice.h"
#include "Records/FileItem.h"
#include "Records/ListedPhone.h"

#include <QHash>
#include <QList>
#include <QProcessEnvironment>
#include <QSet>
#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>
#include <stop_token>
#include <utility>

/// Everything the program asks of the phone, through the adb command-line tool. Stateless; every operation
/// that runs a tool blocks until the tool has ended, so none belongs on the main thread, and any number may
/// run at once on others. The tool's place and environment are worked out anew on every call, so that an adb
/// that appears or disappears while the program runs is noticed.
namespace vantrel::ADBClient {

// -- The tool (ADBTool.cpp)

/// The copy of adb that ships inside the application, if present and executable. The environment variable
/// VANTREL_RESOURCES names a resource directory that is looked into ahead of the installed one; a development
/// build looks into the source tree's last.
[[nodiscard]] std::optional<QString> bundledADBPath();
/// The adb to use: the bundled one, a usual install location, or the first on the search path.
[[nodiscard]] std::optional<QString> resolveADBPath();
/// The environment for every child: this process's own, with PATH extended.
[[nodiscard]] QProcessEnvironment augmentedEnvironment();
/// Runs a program to its end and returns its standard output, unchanged. Output beyond 64 MB is an error.
[[nodiscard]] ADBResult<QString> runProcess(const QString &executable, const QStringList &arguments,
                                            const QProcessEnvironment &environment);
/// Runs adb with these arguments.
[[nodiscard]] ADBResult<QString> runADB(const QStringList &arguments);

/// All that a tool which ran to its end left behind.
struct ToolAnswer {
    QByteArray output; ///< of standard output, unchanged
    QByteArray errors; ///< of standard error, unchanged
    int exitStatus = 0;
    bool succeeded = false;
    /// Why it did not succeed, in the tool's words.
    [[nodiscard]] ADBError error() const;
};
/// Takes the next piece of what a tool prints, cut anywhere, on the thread that runs it.
using OutputReader = std::function<void(const QByteArray &bytes)>;
/// Runs adb with a question that somebody waits for. A tool that is silent for as long as the phone's
/// patience is killed, and the phone does not answer. With a reader the output is handed to it while the tool
/// works, and does not stand in the answer.
[[nodiscard]] ADBResult<ToolAnswer> askADB(const QStringList &arguments, const OutputReader &read = {});
/// The same with another patience; a request to stop ends the tool within 0.12 s.
[[nodiscard]] ADBResult<ToolAnswer> askADB(const QStringList &arguments, std::chrono::milliseconds patience,
                                           const std::stop_token &stop, const OutputReader &read = {});
/// The same as the first for its standard output as text, where anything but success is an error.
[[nodiscard]] ADBResult<QString> askADBForText(const QStringList &arguments);
/// How long askADB() bears silence: 15 s unless set. Any thread.
[[nodiscard]] std::chrono::milliseconds patience();
void setPatience(std::chrono::milliseconds patience);
/// Ends every tool that is running at this moment, on whatever thread; its operation fails within a fraction
/// of a second. For quitting: nothing may be left running. Operations that start later are not touched.
void stopRunningTools();

// -- The phone and its storage (ADBDevice.cpp)

/// The serials of the phones that are ready, in adb's order.
[[nodiscard]] ADBResult<QStringList> listDeviceSerials();
/// The serial of the one to show: the preferred one while it is ready, else the first that is; null when none
/// is.
[[nodiscard]] QString chosenPhone(const QList<ListedPhone> &phones, const QString &preferred);
/// A phone with its model name and storage. Its total is -1 when only its bytes cannot be read; a phone that
/// answers neither question is an error.
[[nodiscard]] ADBResult<AndroidDevice> fetchDevice(const QString &serial);
/// A phone's model name; may be empty.
[[nodiscard]] ADBResult<QString> fetchModel(const QString &serial);
/// All phones that adb knows, ready or not, in its order and without their models; and the chosen one of them
/// or why there is none.
struct PhoneLook {
    QList<ListedPhone> phones;
    ADBResult<AndroidDevice> phone;
    PhoneTrouble trouble = PhoneTrouble::none;
};
[[nodiscard]] PhoneLook lookForPhones(const QString &preferred);
/// What an error of asking a phone that is ready means for showing it.
[[nodiscard]] PhoneTrouble troubleOf(const ADBError &error);
/// The first phone that is ready.
[[nodiscard]] ADBResult<AndroidDevice> fetchPrimaryDevice();

/// Bytes of a volume.
struct StorageBytes {
    qint64 used = 0;
    qint64 total = 0;
    friend bool operator==(const StorageBytes &, const StorageBytes &) = default;
};
/// The storage of a phone.
struct PhoneStorage {
    StorageBytes shared; ///< /data's bytes where /sdcard's cannot be read
    QList<StorageCard> cards;
};
[[nodiscard]] ADBResult<PhoneStorage> fetchStorage(const QString &serial);

// -- Phones on the network (ADBWireless.cpp)

/// An address as a user types it, the host's name or number and perhaps a port, in adb's form "HOST:PORT";
/// the port is 5555 where none is given. Nothing for a text that is none.
[[nodiscard]] std::optional<QString> wirelessAddress(const QString &text);
/// adb's version: 29 of "Version 29.0.6".
[[nodiscard]] ADBResult<int> fetchVersion();
/// Connects adb to a phone, and gives the serial that the phone then has. Fails with adb's words, when it
/// says nothing for twice its patience, and on a request to stop.
[[nodiscard]] ADBResult<QString> connectTo(const QString &address, const std::stop_token &stop);
/// Makes a phone trust this computer: `address` and `code` are what it shows. Fails as connectTo().
[[nodiscard]] ADBResult<void> pairWith(const QString &address, const QString &code,
                                       const std::stop_token &stop);
/// Ends a connection, if there is one.
[[nodiscard]] ADBResult<void> disconnectFrom(const QString &address);

// -- Folders (ADBListing.cpp)

/// The canonical form of a phone path: "/sdcard" for nothing, no trailing slash but for "/". Blanks around it
/// go, unless it begins with "/": then those at its end belong to a name.
[[nodiscard]] QString normalizePath(const QString &path);
/// The visible entries of a folder, folders first, every name as it is.
struct Listing : QList<FileItem> {
    qsizetype unreadableCount = 0; ///< entries that the phone could tell nothing of
};
/// Lists a folder. Fails with the phone's own words when nothing of it can be read.
[[nodiscard]] ADBResult<Listing> listDirectory(const QString &serial, const QString &path);

/// Makes one folder. Fails, in words, when the name is not a single path component, when something of that
/// name is there, and with the phone's own reason.
[[nodiscard]] ADBResult<void> createFolder(const QString &serial, const QString &parent, const QString &name);

// -- Search (ADBSearch.cpp)

/// What is known about one path. Every field is as `stat` on the phone says.
struct SearchMetadata {
    bool isDirectory = false;
    std::optional<qint64> sizeBytes;
    std::optional<QDateTime> modifiedAt;
    friend bool operator==(const SearchMetadata &, const SearchMetadata &) = default;
};

/// Files and folders below root whose name contains the query, at most `limit`; nothing for a query of fewer
/// than two characters after sanitizeSearchQuery.
[[nodiscard]] ADBResult<QList<FileItem>> search(const QString &serial, const QString &root,
                                                const QString &query, int limit);
/// The same below each of several roots. One behind the first that cannot be searched is passed over: a card
/// may be gone.
[[nodiscard]] ADBResult<QList<FileItem>> searchAll(const QString &serial, const QStringList &roots,
                                                   const QString &query, int limit);
/// Facts about each path, by the path as it was asked for; what cannot be learned is missing. One adb run per
/// 40 paths, or fewer where they are long.
[[nodiscard]] QHash<QString, SearchMetadata> fetchSearchMetadata(const QString &serial,
                                                                 const QStringList &paths);

// -- What files begin with (ADBBeginnings.cpp)

/// A file of the phone, and how many of its first bytes are wanted.
struct FileBeginning {
    QString path;
    qint64 length;
};
/// The first bytes of every file, in the order and with exactly the lengths that were asked for, whatever the
/// files have become: zeros stand behind the end of a file, and for one that cannot be read. One run of adb
/// for all, another when one of them is not as long as was thought, and more where the paths are long; of
/// more than 32 MB in one run nothing is read. Fails as askADB() does, on a request to stop too, and when the
/// answer has another length.
[[nodiscard]] ADBResult<QList<QByteArray>>
readBeginnings(const QString &serial, const QList<FileBeginning> &files, const std::stop_token &stop);

// -- Copies (ADBTransfer.cpp)

/// Receives a running copy's progress: fraction (0 to 0.99, rising by more than 0.001 each time), bytes done,
/// bytes expected. Called on background threads, never on two at once.
using TransferProgress = std::function<void(double fraction, qint64 transferredBytes, qint64 totalBytes)>;

/// So many bytes more than it was said to have may come of a source: a video that is being recorded. What
/// goes on behind that, a phone has made up.
inline constexpr qint64 mostGrowth = 64'000'000;
/// Why a source that has become another one ends its copy.
[[nodiscard]] QString sourceChanged();

/// Runs an adb push or pull to its end. `expectedBytes` is 0 when unknown. `localPathForSizePolling`, when
/// given, is the destination of a pull, whose growth is a source of progress and is ended at mostGrowth more
/// than was expected. Removes nothing, whatever happens. A copy of which nothing is heard for as long as
/// askADB() bears silence is ended, and so is one that is requested to stop.
[[nodiscard]] ADBResult<void> runTransfer(const QStringList &arguments, qint64 expectedBytes,
                                          const std::optional<QString> &localPathForSizePolling,
                                          const TransferProgress &onProgress,
                                          const std::stop_token &stop = {});
/// The bytes that are already present at a local path: a file's size, the sizes of a folder's visible files,
/// or 0.
[[nodiscard]] qint64 allocatedByteCount(const QString &path);

} // namespace vantrel::ADBClient
