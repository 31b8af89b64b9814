// Every operation crossed with every fault: what the user sees then, and what is on disk afterwards. The
// table below is also the one in docs/reliability.md; VANTREL_WRITE_MATRIX=1 writes it there.

#include "support/DemoPhone.h"
#include "support/FakeDesktop.h"
#include "support/Printers.h"
#include "support/Processes.h"

#include "ADB/ADBClient.h"
#include "State/AppState.h"
#include "State/FilePreview.h"
#include "State/background.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace {
bool isDiskFull = false;
} // namespace

/// In place of the system's, for the disk of this computer that is full when a folder is to be made on it.
extern "C" int mkdir(const char *path, mode_t mode) noexcept {
    if (isDiskFull) {
        errno = ENOSPC;
        return -1;
    }
    return int(::syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}

namespace vantrel {
namespace {

enum Operation { refresh, list, search, open, pull, push, pullFolder, pushFolder, newFolder };
constexpr const char *operationNames[] = {"refresh", "list",        "search",      "open",      "pull",
                                          "push",    "pull folder", "push folder", "new folder"};

enum Fault {
    toolMissing,
    cannotStart,
    killed,
    hangs,
    exitsSilently,
    invalidUtf8,
    endlessOutput,
    unplugged,
    unauthorized,
    offline,
    anotherPhone,
    sourceDenied,
    targetDenied,
    diskFull,
    targetRemoved,
    sourceChanged
};
constexpr const char *faultNames[] = {"tool missing",
                                      "tool cannot start",
                                      "tool killed",
                                      "tool hangs",
                                      "tool exits 1 silently",
                                      "invalid UTF-8",
                                      "endless output",
                                      "phone unplugged",
                                      "phone unauthorized",
                                      "phone offline",
                                      "another phone in its place",
                                      "no permission to read",
                                      "no permission to write",
                                      "disk full",
                                      "target folder removed",
                                      "source changed"};

struct Row {
    QList<Operation> operations;
    QList<Fault> faults;
    const char *seen; ///< the exact text, or its end behind "…"; null where the cross makes no sense
    const char *disk; ///< or why it makes none
};

constexpr const char *missing = "Vantrel’s Android tools are missing. Please reinstall the app.";
constexpr const char *noDevice = "No Android device connected. Plug in your phone and turn on USB debugging.";
constexpr const char *tooLong = "The phone’s answer was longer than 64 MB and was not read to its end.";
constexpr const char *disconnected = "The phone was disconnected during the copy.";
constexpr const char *busy = "the spinner";
constexpr const char *nothing = "nothing new";
constexpr const char *part = "a part";
constexpr const char *whole = "all of the source as it is now";

const QList<Row> &table() {
    static const QList<Row> rows{
        {{refresh, list, search, open, pull, push, pullFolder, pushFolder}, {toolMissing}, missing, nothing},
        {{refresh, list, search, open, pull, push, pullFolder, pushFolder},
         {cannotStart},
         "… Exec format error",
         nothing},

        {{refresh, list, search}, {killed}, "adb exited with 9", nothing},
        {{open, pull, push, pullFolder, pushFolder}, {killed}, "adb exited with 9", part},

        {{refresh, list, search}, {hangs}, busy, nothing},
        {{open}, {hangs}, busy, part},
        {{pull}, {hangs}, "66 KB / 300 KB", part},
        {{push}, {hangs}, "63 KB / 300 KB", part},
        {{pullFolder, pushFolder}, {hangs}, "Transferring…", part},

        {{refresh, list, search, open, pull, push, pullFolder, pushFolder},
         {exitsSilently},
         "adb exited with 1",
         nothing},

        {{refresh}, {invalidUtf8}, noDevice, nothing},
        {{list}, {invalidUtf8}, "0 items • Zero KB", nothing},
        {{search}, {invalidUtf8}, "0 results for “.bin”", nothing},
        {{open, pull, push, pullFolder, pushFolder}, {invalidUtf8}, "adb exited with 1", nothing},

        {{refresh, list, search}, {endlessOutput}, tooLong, nothing},
        {{open}, {endlessOutput}, busy, nothing},
        {{pull, push}, {endlessOutput}, "Zero KB / 300 KB", nothing},
        {{pullFolder, pushFolder}, {endlessOutput}, "Transferring…", nothing},

        {{refresh}, {unplugged, unauthorized, offline}, noDevice, nothing},
        {{list, search}, {unplugged, anotherPhone}, "error: device 'demo-phone' not found", nothing},
        {{list, search},
         {unauthorized},
         "error: device unauthorized.\nThis adb server's $ADB_VENDOR_KEYS is not set\n"
         "Try 'adb kill-server' if that seems wrong.\n"
         "Otherwise check for a confirmation dialog on your device.",
         nothing},
        {{list, search}, {offline}, "error: device offline", nothing},
        {{refresh}, {anotherPhone}, "Other Phone", nothing},
        {{open, pull}, {unplugged, unauthorized, offline, anotherPhone}, disconnected, nothing},
        {{push, pullFolder, pushFolder},
         {unplugged, unauthorized, offline, anotherPhone},
         disconnected,
         part},

        {{list}, {sourceDenied}, "ls: /sdcard/from/: Permission denied", nothing},
        {{search}, {sourceDenied}, "1 result for “.bin”", nothing},
        {{open},
         {sourceDenied},
         "failed to copy '/sdcard/from/song.bin' to 'CACHE/sdcard_from_song.bin/song.bin': remote open "
         "failed: Permission denied",
         nothing},
        {{pull},
         {sourceDenied},
         "failed to copy '/sdcard/from/song.bin' to 'HERE/song.bin': remote open failed: Permission denied",
         nothing},
        {{push}, {sourceDenied}, "cannot open 'MINE/song.bin': Permission denied", nothing},
        {{pullFolder}, {sourceDenied}, "ls: /sdcard/from/Album/: Permission denied", part},
        {{pushFolder}, {sourceDenied}, "cannot open 'MINE/Album': Permission denied", nothing},

        {{open}, {targetDenied}, "Can’t write to the cache folder: CACHE/sdcard_from_song.bin", nothing},
        {{pull}, {targetDenied}, "cannot create file/directory 'HERE/song.bin': Permission denied", nothing},
        {{push},
         {targetDenied},
         "failed to copy 'MINE/song.bin' to '/sdcard/to/song.bin': remote couldn't create file: Permission "
         "denied",
         nothing},
        {{pullFolder},
         {targetDenied},
         "cannot create file/directory 'HERE/Album': Permission denied",
         nothing},
        {{pushFolder},
         {targetDenied},
         "failed to copy 'MINE/Album' to '/sdcard/to/Album': remote couldn't create file: Permission denied",
         nothing},
        {{newFolder}, {targetDenied}, "Permission denied", nothing},

        {{open},
         {diskFull},
         "cannot write 'CACHE/sdcard_from_song.bin/song.bin': No space left on device",
         nothing},
        {{pull}, {diskFull}, "cannot write 'HERE/song.bin': No space left on device", nothing},
        {{push},
         {diskFull},
         "failed to copy 'MINE/song.bin' to '/sdcard/to/song.bin': remote write failed: No space left on "
         "device",
         nothing},
        {{pullFolder}, {diskFull}, "cannot write 'HERE/Album/b.bin': No space left on device", part},
        {{pushFolder},
         {diskFull},
         "failed to copy 'MINE/Album/b.bin' to '/sdcard/to/Album/b.bin': remote write failed: No space left "
         "on device",
         part},
        {{newFolder}, {diskFull}, "No space left on device", nothing},

        {{open},
         {targetRemoved},
         "Can’t write to the cache folder: CACHE/sdcard_from_song.bin/song.bin",
         nothing},
        {{pull}, {targetRemoved}, "“song.bin” was removed here while it was copied.", nothing},
        {{pullFolder},
         {targetRemoved},
         "cannot create file/directory 'HERE/Album/b.bin': No such file or directory",
         nothing},
        {{push}, {targetRemoved}, "Done", nothing},
        {{pushFolder}, {targetRemoved}, "Done", part},
        {{newFolder}, {targetRemoved}, "No such file or directory", nothing},

        {{open}, {sourceChanged}, "opened song.bin", whole},
        {{pull, push}, {sourceChanged}, "Done", whole},
        {{pullFolder},
         {sourceChanged},
         "failed to copy '/sdcard/from/Album/b.bin' to 'HERE/Album/b.bin': remote open failed: No such file "
         "or directory",
         whole},
        {{pushFolder}, {sourceChanged}, "cannot open 'MINE/Album/b.bin': No such file or directory", whole},

        {{refresh}, {sourceDenied}, nullptr, "no file is read"},
        {{refresh, list, search}, {targetDenied, diskFull, targetRemoved}, nullptr, "nothing is written"},
        {{refresh, list, search}, {sourceChanged}, nullptr, "nothing is copied"},
        {{newFolder},
         {toolMissing, cannotStart, killed, hangs, exitsSilently, invalidUtf8, endlessOutput, unplugged,
          unauthorized, offline, anotherPhone, sourceDenied, sourceChanged},
         nullptr,
         "no tool and no phone take part"},
    };
    return rows;
}

struct Cell {
    Operation operation;
    Fault fault;
    const char *seen;
    const char *disk;
};

/// Named, so that a failure says which cell it is.
std::string nameOf(const Cell &cell) {
    const QString name = QString::fromLatin1(operationNames[cell.operation]) % QLatin1Char('_') %
                         QString::fromLatin1(faultNames[cell.fault]);
    return QString(name).replace(QLatin1Char(' '), QLatin1Char('_')).remove(QLatin1Char('-')).toStdString();
}

void PrintTo(const Cell &cell, std::ostream *stream) {
    *stream << nameOf(cell);
}

std::vector<Cell> cells() {
    std::vector<Cell> all;
    for (const Row &row : table()) {
        for (const Operation operation : row.operations) {
            for (const Fault fault : row.faults) {
                if (row.seen)
                    all.push_back({operation, fault, row.seen, row.disk});
            }
        }
    }
    return all;
}

QByteArray markdown() {
    const auto names = [](const auto &values, const char *const *texts) {
        QStringList list;
        for (const auto value : values)
            list.append(QString::fromLatin1(texts[value]));
        return list.join(QStringLiteral(", "));
    };
    QString text =
        QStringLiteral("| fault | operation | the user sees | on disk |\n| --- | --- | --- | --- |\n");
    for (const Row &row : table()) {
        const QString seen = QString::fromUtf8(row.seen ? row.seen : "–").replace(u'\n', u' ');
        text += QStringLiteral("| %1 | %2 | %3 | %4 |\n")
                    .arg(names(row.faults, faultNames), names(row.operations, operationNames), seen,
                         QString::fromUtf8(row.disk));
    }
    return text.toUtf8();
}

/// Everything below a folder: files with their contents, and folders with nothing in them.
using Tree = QMap<QString, QByteArray>;

/// Root may do everything; the demo phone's tool and this program must find closed doors closed. Returns
/// whether they do.
bool becomeLikeAnyUser() {
    for (const int capability : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH})
        ::prctl(PR_CAPBSET_DROP, capability);
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3] = {};
    ::syscall(SYS_capget, &header, sets);
    for (const int capability : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
        sets[0].effective &= ~(1U << capability);
        sets[0].permitted &= ~(1U << capability);
    }
    ::syscall(SYS_capset, &header, sets);
    const QTemporaryDir closed;
    const QByteArray path = QFile::encodeName(closed.path());
    ::chmod(path.constData(), 0);
    const bool holds = ::access(path.constData(), R_OK) != 0;
    ::chmod(path.constData(), 0700);
    return holds;
}

class FaultMatrix : public ::testing::TestWithParam<Cell> {
protected:
    static void SetUpTestSuite() { m_closedDoorsHold = becomeLikeAnyUser(); }

    FaultMatrix() {
        m_savedPath = qgetenv("PATH");
        qputenv("XDG_CACHE_HOME", QFile::encodeName(mac.filePath(QStringLiteral("cache"))));
        phone.set(QStringLiteral("stderr-progress"), "off");
        for (const QString &name :
             {QStringLiteral("song.bin"), QStringLiteral("Album/a.bin"), QStringLiteral("Album/b.bin")}) {
            phone.write(QStringLiteral("from/") + name, contents);
            write(mine() + QLatin1Char('/') + name, contents);
        }
        phone.write(QStringLiteral("to/kept.txt"), "kept");
        write(here() + QStringLiteral("/kept.txt"), "kept");
        QDir().mkpath(mac.filePath(QStringLiteral("cache")));
        const QString noProgram = mac.filePath(QStringLiteral("tools/platform-tools/adb"));
        write(noProgram, "\x7f and no more");
        ::chmod(QFile::encodeName(noProgram).constData(), 0755);
    }
    ~FaultMatrix() override {
        isDiskFull = false;
        state.reset();
        Background::stop();
        reopen();
        qputenv("PATH", m_savedPath);
    }

    static void write(const QString &path, const QByteArray &bytes, QIODevice::OpenMode how = {}) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | how));
        file.write(bytes);
    }
    void close(const QString &path, mode_t mode) {
        m_closed.append(path);
        ::chmod(QFile::encodeName(path).constData(), mode);
    }
    void reopen() const {
        for (const QString &path : m_closed)
            ::chmod(QFile::encodeName(path).constData(), 0755);
    }
    static bool waitFor(const std::function<bool()> &condition) { return QTest::qWaitFor(condition, 30'000); }

    [[nodiscard]] QString here() const { return mac.filePath(QStringLiteral("here")); }
    [[nodiscard]] QString mine() const { return mac.filePath(QStringLiteral("mine")); }
    [[nodiscard]] bool isFolder() const { return op == pullFolder || op == pushFolder; }
    [[nodiscard]] bool isPush() const { return op == push || op == pushFolder; }
    [[nodiscard]] bool isCopy() const { return op >= open && op <= pushFolder; }
    [[nodiscard]] QString entry() const {
        return isFolder() ? QStringLiteral("Album") : QStringLiteral("song.bin");
    }
    [[nodiscard]] QString source() const {
        return (isPush() ? mine() : phone.hostPath(QStringLiteral("from"))) + QLatin1Char('/') + entry();
    }
    [[nodiscard]] QString targetFolder() const {
        if (op == open)
            return FilePreview::cacheFolder() + QStringLiteral("/sdcard_from_song.bin");
        return isPush() ? phone.hostPath(QStringLiteral("to")) : here();
    }
    /// The setting's name for the tool that does this operation.
    [[nodiscard]] QString setting(const char *key) const {
        static const char *const tools[] = {"devices.", "ls.",   "find.", "pull.", "pull.",
                                            "push.",    "pull.", "push.", ""};
        return QString::fromLatin1(tools[op]) + QString::fromLatin1(key);
    }

    void prepare() {
        state->refreshDevice(AppState::Spinner::shown);
        ASSERT_TRUE(waitFor([&] { return state->device().isConnected && !state->isRefreshingDevice(); }));
        state->browseAndroid(isPush() ? QStringLiteral("/sdcard/to") : QStringLiteral("/sdcard/from"));
        state->browseMac(isPush() ? mine() : here());
        ASSERT_TRUE(waitFor([&] { return !state->isLoadingAndroid() && !state->isLoadingMac(); }));
        if (isCopy())
            phone.set(QStringLiteral("bandwidth"), "0.000001"); // it stands still after the first block
    }

    void start() {
        const BrowserSide side = isPush() ? BrowserSide::mac : BrowserSide::android;
        FileItem chosen;
        for (const FileItem &item : state->visibleItems(side)) {
            if (item.name == entry())
                chosen = item;
        }
        switch (op) {
        case refresh:
            state->refreshDevice(AppState::Spinner::shown);
            break;
        case list:
            state->browseAndroid(QStringLiteral("/sdcard/from"));
            break;
        case search:
            state->setAndroidSearchScope(AndroidSearchScope::everywhere);
            state->setAndroidSearchText(QStringLiteral(".bin"));
            state->scheduleAndroidSearch();
            break;
        case open:
            state->openAndroidFile(chosen);
            break;
        case newFolder:
            desktop.nextText = QStringLiteral("Trip");
            state->createMacFolder();
            break;
        default:
            state->selectItem(chosen, side);
            isPush() ? state->transferMacToAndroid() : state->transferAndroidToMac();
        }
    }

    /// The text that stands where this operation's outcome is shown.
    [[nodiscard]] QString seen() const {
        const QString spinner = QString::fromUtf8(busy);
        switch (op) {
        case refresh:
            return state->isRefreshingDevice() ? spinner
                                               : state->deviceStatusMessage().value_or(state->device().name);
        case list:
            return state->isLoadingAndroid()
                       ? spinner
                       : state->androidBrowseError().value_or(state->androidFooterStats());
        case search:
            return state->isSearchingAndroid()
                       ? spinner
                       : state->androidBrowseError().value_or(state->androidFooterStats());
        case open:
            return state->isOpeningAndroidFile()
                       ? spinner
                       : state->androidBrowseError().value_or(QStringLiteral("opened ") +
                                                              QFileInfo(desktop.opened.value(0)).fileName());
        case newFolder:
            return state->macBrowseError().value_or(QString());
        default:
            return state->queue().first().progressLabel();
        }
    }

    /// Faults that are there when the operation starts. True when it is one of these.
    bool applyBefore(Fault fault) {
        switch (fault) {
        case toolMissing:
            qputenv("VANTREL_RESOURCES", "/nowhere");
            qputenv("PATH", "/nowhere");
            return true;
        case cannotStart:
            qputenv("VANTREL_RESOURCES", QFile::encodeName(mac.filePath(QStringLiteral("tools"))));
            return true;
        case exitsSilently:
            phone.set(setting("stdout"), "");
            phone.set(setting("exit"), "1");
            return true;
        case invalidUtf8:
            phone.set(setting("stdout"), isCopy() ? "" : "drwxr-xr-x 2 a b 1 2024-05-01 10:00 \xff\xfe\n");
            phone.set(setting("stderr"), "\xff\xfe");
            phone.set(setting("exit"), isCopy() ? "1" : "0");
            return true;
        case endlessOutput:
            phone.set(setting("stdout-noise"), "endless");
            return true;
        case sourceDenied:
            if (isPush())
                close(source(), 0);
            else
                phone.deny(op == list     ? QStringLiteral("/sdcard/from")
                           : op == search ? QStringLiteral("/sdcard/from/Album")
                                          : QStringLiteral("/sdcard/from/") + entry());
            return true;
        case targetDenied:
            close(op == open ? mac.filePath(QStringLiteral("cache")) : targetFolder(), 0555);
            return true;
        case diskFull:
            isDiskFull = op == newFolder;
            if (isCopy())
                phone.set(setting("full-after"), isFolder() ? "400000" : "100000");
            return true;
        default:
            if (isCopy())
                return false;
            applyNow(fault);
            return true;
        }
    }

    /// Faults that strike in the middle of a copy.
    void applyNow(Fault fault) {
        switch (fault) {
        case killed:
            if (!isCopy())
                return phone.set(setting("crash"), "9");
            for (const processes::Child &child : processes::children())
                ::kill(child.pid, SIGKILL);
            break;
        case hangs:
            if (!isCopy())
                phone.set(setting("hang"), "on");
            break;
        case unplugged:
            phone.unplug();
            break;
        case unauthorized:
            phone.set(QStringLiteral("state"), "unauthorized");
            break;
        case offline:
            phone.set(QStringLiteral("state"), "offline");
            break;
        case anotherPhone: // the one that is taken out ends its copies
            phone.unplug();
            EXPECT_TRUE(!isCopy() || waitFor([&] { return processes::children().isEmpty(); }));
            phone.set(QStringLiteral("serial"), "other-phone");
            phone.set(QStringLiteral("model"), "Other Phone");
            phone.plug();
            break;
        case targetRemoved:
            QDir(targetFolder()).removeRecursively();
            break;
        case sourceChanged:
            if (isFolder())
                QFile::remove(source() + QStringLiteral("/b.bin"));
            else
                write(source(), "and more", QIODevice::Append);
            break;
        default:
            FAIL() << "not a fault of this kind";
        }
    }

    [[nodiscard]] Tree tree() const {
        Tree found;
        for (const QString &root : {mac.path(), phone.root()}) {
            QDirIterator entries(root, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                 QDirIterator::Subdirectories);
            while (entries.hasNext()) {
                const QString path = entries.next();
                if (QFileInfo(path).isFile())
                    found.insert(path, processes::contentsOf(path));
                else if (QDir(path).isEmpty() && !path.startsWith(mac.filePath(QStringLiteral("cache"))))
                    found.insert(path + QLatin1Char('/'), {});
            }
        }
        return found;
    }

    /// What is new in one of the trees, in the table's words; whatever else has changed is named.
    [[nodiscard]] QString difference(const Tree &before, const Tree &after) const {
        Tree expected;
        QDirIterator sources(source(), QDir::Files, QDirIterator::Subdirectories);
        if (!isFolder())
            expected.insert(targetFolder() + QLatin1Char('/') + entry(), processes::contentsOf(source()));
        while (sources.hasNext()) {
            const QString path = sources.next();
            expected.insert(targetFolder() + QLatin1Char('/') + entry() + path.mid(source().size()),
                            processes::contentsOf(path));
        }
        Tree added;
        for (auto it = after.begin(); it != after.end(); ++it) {
            if (!before.contains(it.key()))
                added.insert(it.key(), it.value());
            else if (before.value(it.key()) != it.value())
                return QStringLiteral("changed: ") + it.key();
        }
        for (auto it = before.begin(); it != before.end(); ++it) {
            if (!after.contains(it.key()))
                return QStringLiteral("gone: ") + it.key();
        }
        if (added.isEmpty())
            return QString::fromUtf8(nothing);
        if (added == expected)
            return QString::fromUtf8(whole);
        for (auto it = added.begin(); it != added.end(); ++it) {
            if (it.key() != targetFolder() + QLatin1Char('/') + entry() + QLatin1Char('/') &&
                !expected.value(it.key()).startsWith(it.value()))
                return QStringLiteral("not of the source: ") + it.key();
        }
        return QString::fromUtf8(part);
    }

    DemoPhone phone;
    QTemporaryDir mac;
    FakeDesktop desktop;
    std::unique_ptr<AppState> state = AppState::designPreview(desktop);
    const Operation op = GetParam().operation;
    const QByteArray contents = QByteArray(300'000, 'x');

    static inline bool m_closedDoorsHold = false;
    QStringList m_closed;

private:
    QByteArray m_savedPath;
};

TEST_P(FaultMatrix, isSurvivedAndSaid) {
    const Cell &cell = GetParam();
    prepare();
    Tree before = tree();
    const bool isBefore = applyBefore(cell.fault);
    if (cell.fault == targetRemoved && op == newFolder)
        before = tree();
    if (!m_closed.isEmpty() && !m_closedDoorsHold)
        GTEST_SKIP() << "this user may do everything, and may not give that up";
    start();
    if (!isBefore) {
        const QString growing =
            targetFolder() + QLatin1Char('/') + entry() + (isFolder() ? QStringLiteral("/a.bin") : QString());
        ASSERT_TRUE(waitFor([&] { return QFileInfo(growing).size() > 0; })) << seen().toStdString();
        applyNow(cell.fault);
        // What the fault itself did on disk is none of the program's doing.
        const Tree now = tree();
        for (const QString &path : before.keys()) {
            if (!now.contains(path))
                before.remove(path);
            else
                before.insert(path, now.value(path));
        }
    }
    const bool isEndless = cell.fault == hangs || (cell.fault == endlessOutput && isCopy());
    if (!isEndless)
        phone.reset(QStringLiteral("bandwidth"));

    QString text = QString::fromUtf8(cell.seen);
    text.replace(QStringLiteral("HERE"), here()).replace(QStringLiteral("MINE"), mine());
    text.replace(QStringLiteral("CACHE"), FilePreview::cacheFolder());
    const auto isSeen = [&, end = text.mid(2)] {
        return text.startsWith(QChar(0x2026)) ? seen().endsWith(end) : seen() == text;
    };
    EXPECT_TRUE(waitFor(isSeen)) << seen().toStdString();
    if (isEndless) {
        // The window goes on meanwhile.
        state->browseMac(here());
        EXPECT_TRUE(waitFor([&] { return !state->isLoadingMac() && !state->macItems().isEmpty(); }));
        EXPECT_TRUE(waitFor([&] { return processes::children().size() == 1; }));
        EXPECT_TRUE(isSeen());
    } else {
        EXPECT_TRUE(waitFor([&] { return Background::workers().activeThreadCount() == 0; }));
        EXPECT_TRUE(isSeen()) << "and it stays";
    }

    // Quitting ends at once, whatever is under way, and leaves no child behind.
    QElapsedTimer clock;
    clock.start();
    state.reset();
    Background::stop();
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_TRUE(processes::children().isEmpty());
    reopen();
    EXPECT_EQ(difference(before, tree()), QString::fromUtf8(cell.disk));
}

INSTANTIATE_TEST_SUITE_P(, FaultMatrix, ::testing::ValuesIn(cells()),
                         [](const auto &instance) { return nameOf(instance.param); });

TEST(FaultTable, holdsEveryCrossOnce) {
    QMap<std::pair<int, int>, int> crosses;
    for (const Row &row : table()) {
        for (const Operation operation : row.operations) {
            for (const Fault fault : row.faults)
                ++crosses[{operation, fault}];
        }
    }
    EXPECT_EQ(crosses.size(), qsizetype(std::size(operationNames) * std::size(faultNames)));
    for (auto it = crosses.begin(); it != crosses.end(); ++it)
        EXPECT_EQ(it.value(), 1) << operationNames[it.key().first] << ", " << faultNames[it.key().second];
}

TEST(FaultTable, isTheDocumentedOne) {
    const QByteArray begin = "<!-- from tests/FaultMatrixTests.cpp -->\n";
    const QByteArray end = "<!-- end -->\n";
    QFile file(QStringLiteral(VANTREL_TEST_DATA "/../../docs/reliability.md"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray text = file.readAll();
    file.close();
    const qsizetype first = text.indexOf(begin) + begin.size();
    qsizetype last = text.indexOf(end, first);
    ASSERT_GE(last, first);
    if (qEnvironmentVariableIsSet("VANTREL_WRITE_MATRIX")) {
        text.replace(first, last - first, markdown());
        last = first + markdown().size();
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    EXPECT_EQ(text.mid(first, last - first).toStdString(), markdown().toStdString())
        << "VANTREL_WRITE_MATRIX=1 writes it anew";
}

} // namespace
} // namespace vantrel
