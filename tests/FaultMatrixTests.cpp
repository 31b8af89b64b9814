// Every operation crossed with every fault, as the table in docs/reliability.md says: what the user sees
// then, and what is on disk afterwards. The table is read from there.

#include "support/DemoPhone.h"
#include "support/FakeDesktop.h"
#include "support/Printers.h"
#include "support/Processes.h"
#include "support/WaitFor.h"

#include "ADB/ADBClient.h"
#include "State/AppState.h"
#include "State/FilePreview.h"
#include "Transfers/StagedName.h"
#include "Worker/Worker.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <utility>

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

using namespace Qt::StringLiterals;

enum Operation {
    refresh,
    list,
    search,
    newFolder,
    open,
    pull,
    push,
    pullFolder,
    pushFolder,
    pullMerge, // half of the folder is there already
    pushMerge,
    pullBoth, // the user keeps both
    pushBoth,
    pullBatch, // of many small entries in three runs
    pushBatch,
    pullRest, // of a large file that was interrupted
    pushRest
};
const QStringList operationNames =
    u"refresh|list|search|new folder|open|pull|push|pull folder|push folder|pull merge|push merge|pull keep both|push keep both|pull batch|push batch|pull continue|push continue"_s
        .split(u'|');

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
const QStringList faultNames =
    u"tool missing|tool cannot start|tool killed|tool hangs|tool exits 1 silently|invalid UTF-8|endless output|phone unplugged|phone unauthorized|phone offline|another phone in its place|no permission to read|no permission to write|disk full|target folder removed|source changed"_s
        .split(u'|');

/// One cross of the table.
struct Cell {
    Operation operation;
    Fault fault;
    QString seen; ///< the exact text, or its end behind "… "; "–" where the cross makes no sense
    QString disk; ///< or why it makes none
};

/// Named, so that a failure says which cell it is.
std::string nameOf(const Cell &cell) {
    QString name = operationNames[cell.operation] % u' ' % faultNames[cell.fault];
    return name.replace(u' ', u'_').remove(u'-').toStdString();
}

void PrintTo(const Cell &cell, std::ostream *stream) {
    *stream << nameOf(cell);
}

/// The table's crosses. A name that it does not know ends the program.
QList<Cell> documentedCells() {
    const auto text =
        QString::fromUtf8(processes::contentsOf(u"" VANTREL_TEST_DATA "/../../docs/reliability.md"_s));
    const QString section = text.section(u"## Faults"_s, 1).section(u"\n## "_s, 0, 0);
    QList<Cell> cells;
    for (const QString &line : section.split(u'\n').filter(QRegularExpression(u"^\\| .*\\|$"_s)).mid(2)) {
        const QStringList columns = line.mid(2).chopped(2).split(u" | "_s);
        for (const QString &operation : columns.value(1).split(u", "_s)) {
            for (const QString &fault : columns.value(0).split(u", "_s)) {
                cells.append({Operation(operationNames.indexOf(operation)), Fault(faultNames.indexOf(fault)),
                              columns.value(2), columns.value(3)});
                if (cells.last().operation < 0 || cells.last().fault < 0)
                    qFatal("no such operation or fault: %s", qPrintable(line));
            }
        }
    }
    return cells;
}

QList<Cell> possibleCells() {
    QList<Cell> cells = documentedCells();
    cells.removeIf([](const Cell &cell) { return cell.seen == u"–"_s; });
    return cells;
}

/// Everything below a folder: files with their contents, and folders with nothing in them.
using Tree = QMap<QString, QByteArray>;

/// Root may do everything; the demo phone's tool and this program must find closed doors closed. Returns
/// whether they do.
bool becomeLikeAnyUser() {
    bool holds = true; // for children, which get back what root may do
    for (const int capability : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH})
        holds = ::prctl(PR_CAPBSET_DROP, capability) == 0 && holds;
    holds = holds || ::geteuid() != 0;
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
    holds = holds && ::access(path.constData(), R_OK) != 0;
    ::chmod(path.constData(), 0700);
    return holds;
}

class FaultMatrix : public ::testing::TestWithParam<Cell> {
protected:
    static void SetUpTestSuite() { m_closedDoorsHold = becomeLikeAnyUser(); }

    FaultMatrix() {
        m_savedPath = qgetenv("PATH");
        qputenv("XDG_CACHE_HOME", QFile::encodeName(mac.filePath(u"cache"_s)));
        phone.set(u"stderr-progress"_s, "off");
        for (const QString &name : {u"song.bin"_s, u"Album/a.bin"_s, u"Album/b.bin"_s}) {
            phone.write(u"from/"_s + name, contents);
            write(mine() + u'/' + name, contents);
        }
        for (const QString &path : batch()) {
            write(path, QByteArray(60'000, path.at(path.size() - 5).toLatin1()));
            makeOld(path);
        }
        if (op == pullMerge || op == pushMerge)
            write(target() + u"/a.bin"_s, contents);
        if (isBoth())
            write(target(), "another");
        if (isRest())
            write(source(), contents.repeated(110)); // 33 MB
        phone.write(u"to/kept.txt"_s, "kept");
        write(here() + u"/kept.txt"_s, "kept");
        QDir().mkpath(mac.filePath(u"cache"_s));
        const QString noProgram = mac.filePath(u"tools/platform-tools/adb"_s);
        write(noProgram, "\x7f and no more");
        ::chmod(QFile::encodeName(noProgram).constData(), 0755);
    }
    ~FaultMatrix() override {
        isDiskFull = false;
        state.reset();
        Background::stop(&ADBClient::stopRunningTools);
        reopen();
        qputenv("PATH", m_savedPath);
    }

    static void write(const QString &path, const QByteArray &bytes, QIODevice::OpenMode how = {}) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | how));
        file.write(bytes);
    }
    /// So that what arrives without its time is told from what arrived with it.
    static void makeOld(const QString &path) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.setFileTime(QDateTime::fromSecsSinceEpoch(1'600'000'000), QFileDevice::FileModificationTime);
    }
    void close(const QString &path, mode_t mode) {
        m_closed.append(path);
        ::chmod(QFile::encodeName(path).constData(), mode);
    }
    void reopen() const {
        for (const QString &path : m_closed)
            ::chmod(QFile::encodeName(path).constData(), 0755);
    }

    [[nodiscard]] QString here() const { return mac.filePath(u"here"_s); }
    [[nodiscard]] QString mine() const { return mac.filePath(u"mine"_s); }
    [[nodiscard]] bool isFolder() const { return op >= pullFolder && op <= pushMerge; }
    [[nodiscard]] bool isBoth() const { return op == pullBoth || op == pushBoth; }
    [[nodiscard]] bool isBatch() const { return op == pullBatch || op == pushBatch; }
    [[nodiscard]] bool isRest() const { return op == pullRest || op == pushRest; }
    [[nodiscard]] bool isPush() const { return op > open && (op - open) % 2 == 0; }
    [[nodiscard]] bool isCopy() const { return op >= open; }
    [[nodiscard]] QString entry() const { return isFolder() ? u"Album"_s : u"song.bin"_s; }
    [[nodiscard]] QString source() const {
        return (isPush() ? mine() : phone.hostPath(u"from"_s)) + u'/' + entry();
    }
    [[nodiscard]] QString targetFolder() const {
        if (op == open)
            return FilePreview::cacheFolder() + u"/sdcard_from_song.bin"_s;
        return isPush() ? phone.hostPath(u"to"_s) : here();
    }
    [[nodiscard]] QString target() const { return targetFolder() + u'/' + entry(); }
    /// The sources of many small entries; empty for other operations.
    [[nodiscard]] QStringList batch() const {
        constexpr int size = 15;
        QStringList paths;
        for (int i = 0; isBatch() && i < size; ++i)
            paths.append(source().section(u'/', 0, -2) + u"/%1.jpg"_s.arg(i));
        return paths;
    }
    /// The setting's name for the tool that does this operation.
    [[nodiscard]] QString setting(const char *key) const {
        const QString tool = op == refresh     ? u"devices."_s
                             : op == list      ? u"ls."_s
                             : op == search    ? u"find."_s
                             : op == newFolder ? QString()
                             : op == pullRest  ? u"tail."_s
                             : op == pushRest  ? u"cat."_s
                             : isPush()        ? u"push."_s
                                               : u"pull."_s;
        return tool + QString::fromLatin1(key);
    }

    void prepare() {
        state->refreshDevice(PhoneWatch::Spinner::shown);
        ASSERT_TRUE(waitFor([&] { return state->device().isConnected && !state->isRefreshingDevice(); }));
        state->browseAndroid(isPush() ? u"/sdcard/to"_s : u"/sdcard/from"_s);
        state->browseMac(isPush() ? mine() : here());
        ASSERT_TRUE(waitFor([&] { return !state->isLoadingAndroid() && !state->isLoadingMac(); }));
        if (isBoth()) {
            copySelected();
            ASSERT_TRUE(waitFor([&] { return state->queue().first().canKeepBoth(); }));
        }
        if (isRest()) {
            phone.set(u"bandwidth"_s, "20"); // what adb removes at once cannot be kept
            phone.set(u"unplug-after"_s, "2000000");
            copySelected();
            ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
            ASSERT_FALSE(staged().isEmpty()) << seen().toStdString();
            phone.plug();
        }
        if (isCopy())
            phone.set(u"bandwidth"_s, "0.000001"); // it stands still after the first block
    }

    void copySelected() {
        const BrowserSide side = isPush() ? BrowserSide::mac : BrowserSide::android;
        for (const FileItem &item : state->pane(side).visibleItems()) {
            if (isBatch() ? item.name.endsWith(u".jpg"_s) : item.name == entry())
                state->toggleSelection(item, side);
        }
        isPush() ? state->transferMacToAndroid() : state->transferAndroidToMac();
    }
    /// Whether the operation is under way, so that a fault strikes in its middle.
    [[nodiscard]] bool hasBegun() const {
        if (!isRest())
            return staged().size() >= (isBatch() ? 3 : 1);
        const auto lines = phone.commandLines();
        return std::any_of(lines.begin(), lines.end(), [](const QStringList &line) {
            return line.last().startsWith(u"tail "_s) || line.last().startsWith(u"cat "_s);
        });
    }

    void start() {
        const BrowserSide side = isPush() ? BrowserSide::mac : BrowserSide::android;
        FileItem chosen;
        for (const FileItem &item : state->pane(side).visibleItems()) {
            if (item.name == entry())
                chosen = item;
        }
        switch (op) {
        case refresh:
            state->refreshDevice(PhoneWatch::Spinner::shown);
            break;
        case list:
            state->browseAndroid(u"/sdcard/from"_s);
            break;
        case search:
            state->setAndroidSearchScope(AndroidSearchScope::everywhere);
            state->setAndroidSearchText(u".bin"_s);
            state->scheduleAndroidSearch();
            break;
        case open:
            state->openAndroidFile(chosen);
            break;
        case newFolder:
            desktop.nextText = u"Trip"_s;
            state->createMacFolder();
            break;
        case pullBoth:
        case pushBoth:
            state->transfers().keepAllBoth();
            break;
        case pullRest:
        case pushRest:
            state->refreshDevice(PhoneWatch::Spinner::shown);
            break;
        default:
            copySelected();
        }
    }

    /// The text that stands where this operation's outcome is shown.
    [[nodiscard]] QString seen() const {
        const QString spinner = u"the spinner"_s;
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
                       : state->androidBrowseError().value_or(u"opened "_s +
                                                              QFileInfo(desktop.opened.value(0)).fileName());
        case newFolder:
            return state->macBrowseError().value_or(QString());
        default: {
            QStringList labels;
            for (const QueueItem &item : state->queue())
                labels.append(item.progressLabel());
            labels.removeDuplicates();
            labels.sort();
            return labels.join(u"; "_s);
        }
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
            qputenv("VANTREL_RESOURCES", QFile::encodeName(mac.filePath(u"tools"_s)));
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
            for (const QString &path : batch())
                isPush() ? close(path, 0) : phone.deny(u"from/"_s + QFileInfo(path).fileName());
            if (isPush())
                close(source(), 0);
            else
                phone.deny(op == list     ? u"/sdcard/from"_s
                           : op == search ? u"/sdcard/from/Album"_s
                                          : u"/sdcard/from/"_s + entry());
            return true;
        case targetDenied:
            close(op == open ? mac.filePath(u"cache"_s) : targetFolder(), 0555);
            return true;
        case diskFull:
            isDiskFull = op == newFolder;
            if (isCopy())
                phone.set(setting("full-after"), op == pullFolder || op == pushFolder ? "400000" : "100000");
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
            phone.set(u"state"_s, "unauthorized");
            break;
        case offline:
            phone.set(u"state"_s, "offline");
            break;
        case anotherPhone: // the one that is taken out ends its copies
            phone.unplug();
            EXPECT_TRUE(!isCopy() || waitFor([&] { return processes::children().isEmpty(); }));
            phone.set(u"serial"_s, "other-phone");
            phone.set(u"model"_s, "Other Phone");
            phone.plug();
            break;
        case targetRemoved:
            // A copy may put something into it meanwhile.
            EXPECT_TRUE(waitFor([&] { return QDir(targetFolder()).removeRecursively(); }));
            break;
        case sourceChanged:
            if (op == pullFolder || op == pushFolder)
                QFile::remove(source() + u"/b.bin"_s);
            else if (isFolder())
                write(source() + u"/b.bin"_s, "and more", QIODevice::Append);
            else
                for (const QString &path : isBatch() ? batch() : QStringList{source()})
                    write(path, "and more", QIODevice::Append);
            break;
        default:
            FAIL() << "not a fault of this kind";
        }
    }

    /// What has begun to arrive under a hidden name, on either side.
    [[nodiscard]] QStringList staged() const {
        QStringList found;
        for (const QString &root : {mac.path(), phone.root()}) {
            QDirIterator files(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
            while (files.hasNext()) {
                if (QFileInfo(files.next()).size() > 0 &&
                    StagedName::isStaged(files.fileInfo().dir().dirName()))
                    found.append(files.filePath());
            }
        }
        return found;
    }

    /// All but what is staged.
    [[nodiscard]] Tree tree() const {
        Tree found;
        for (const QString &root : {mac.path(), phone.root()}) {
            QDirIterator entries(root, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                 QDirIterator::Subdirectories);
            while (entries.hasNext()) {
                const QString path = entries.next();
                const QStringList names = path.split(u'/');
                if (std::any_of(names.begin(), names.end(), &StagedName::isStaged))
                    continue;
                if (QFileInfo(path).isFile())
                    found.insert(path, processes::contentsOf(path));
                else if (QDir(path).isEmpty() && !path.startsWith(mac.filePath(u"cache"_s)))
                    found.insert(path + u'/', {});
            }
        }
        return found;
    }

    /// What is new in one of the trees, in the table's words; whatever else has changed is named.
    [[nodiscard]] QString difference(const Tree &before, const Tree &after) const {
        Tree expected;
        QDirIterator sources(source(), QDir::Files, QDirIterator::Subdirectories);
        if (isBoth())
            expected.insert(targetFolder() + u"/song 2.bin"_s, processes::contentsOf(source()));
        else if (!isFolder() && !isBatch())
            expected.insert(target(), processes::contentsOf(source()));
        for (const QString &path : batch())
            expected.insert(targetFolder() + path.mid(path.lastIndexOf(u'/')), processes::contentsOf(path));
        while (sources.hasNext()) {
            const QString path = sources.next();
            const QString there = target() + path.mid(source().size());
            if (!before.contains(there))
                expected.insert(there, processes::contentsOf(path));
        }
        Tree added;
        for (auto it = after.begin(); it != after.end(); ++it) {
            if (!before.contains(it.key()))
                added.insert(it.key(), it.value());
            else if (before.value(it.key()) != it.value())
                return u"changed: "_s + it.key();
        }
        for (auto it = before.begin(); it != before.end(); ++it) {
            if (!after.contains(it.key()))
                return u"gone: "_s + it.key();
        }
        const QString swept = staged().isEmpty() ? QString() : u", staged"_s;
        if (added.isEmpty())
            return u"nothing new"_s + swept;
        if (added == expected)
            return u"all of the source as it is now"_s + swept;
        bool areFolders = true;
        for (auto it = added.begin(); it != added.end(); ++it) {
            const bool isFolderKey = it.key().endsWith(u'/');
            areFolders = areFolders && isFolderKey;
            if (!isFolderKey && expected.value(it.key()) != it.value())
                return u"not a whole file of the source: "_s + it.key();
        }
        return (areFolders ? u"an empty folder"_s : u"whole files"_s) + swept;
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
        ASSERT_TRUE(waitFor([&] { return hasBegun(); })) << seen().toStdString();
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
    // What a continued pull prints is the file itself, of which more than there is ends it.
    const bool isEndless = cell.fault == hangs || (cell.fault == endlessOutput && isCopy() && op != pullRest);
    if (!isEndless)
        phone.reset(u"bandwidth"_s);

    QString text = cell.seen;
    text.replace(u"{from}"_s, isPush() ? source() : QString(u"/sdcard/from/"_s + entry()));
    text.replace(u"{into}"_s, targetFolder());
    text.replace(u"{to}"_s, isPush() ? QString(u"/sdcard/to/"_s + entry()) : target());
    const auto isSeen = [&, end = text.mid(2)] {
        const QString now = seen().replace(u'\n', u' '); // a table has one line for each row
        return text.startsWith(u"… "_s) ? now.endsWith(end) : now == text;
    };
    // Nothing more will come: a search is put off for less, and no copy stands still for so long.
    QElapsedTimer still;
    std::pair<QString, bool> last;
    const auto isOver = [&] {
        const bool isBusy = !processes::children().isEmpty() || Background::workers().activeThreadCount() > 0;
        if (std::exchange(last, {seen(), isBusy}) != std::pair(seen(), isBusy) || !still.isValid())
            still.start();
        return still.hasExpired(isBusy ? 90'000 : 2000);
    };
    EXPECT_TRUE(waitFor([&] { return isSeen() || isOver(); }));
    EXPECT_TRUE(isSeen()) << seen().toStdString();
    if (isEndless) {
        // The window goes on meanwhile.
        state->browseMac(here());
        EXPECT_TRUE(waitFor([&] { return !state->isLoadingMac() && !state->macItems().isEmpty(); }));
        const QByteArray tool = setting("").chopped(1).toLatin1(); // what comes before it is over
        EXPECT_TRUE(waitFor([&] {
            return isCopy() ? processes::childrenCalled(tool.constData()) == (isBatch() ? 3 : 1)
                            : processes::children().size() == 1;
        }));
        EXPECT_TRUE(isSeen());
    } else {
        EXPECT_TRUE(waitFor([&] { return Background::workers().activeThreadCount() == 0; }));
        EXPECT_TRUE(isSeen()) << "and it stays";
    }

    // Quitting ends at once, whatever is under way, and leaves no child behind.
    QElapsedTimer clock;
    clock.start();
    state.reset();
    Background::stop(&ADBClient::stopRunningTools);
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_TRUE(processes::children().isEmpty());
    reopen();
    QString disk = difference(before, tree());
    if (isEndless && isPush()) // whether the phone still clears up is a matter of milliseconds
        disk.remove(u", staged"_s);
    EXPECT_EQ(disk, cell.disk);
}

INSTANTIATE_TEST_SUITE_P(, FaultMatrix, ::testing::ValuesIn(possibleCells()),
                         [](const auto &instance) { return nameOf(instance.param); });

TEST(FaultTable, holdsEveryCrossOnce) {
    std::map<std::string, int> crosses;
    for (const Cell &cell : documentedCells())
        EXPECT_EQ(++crosses[nameOf(cell)], 1) << nameOf(cell);
    EXPECT_EQ(qsizetype(crosses.size()), operationNames.size() * faultNames.size());
}

} // namespace
} // namespace vantrel
