#include "support/DemoPhone.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

using namespace vantrel;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

constexpr int patience = 30000;

struct Outcome {
    int exitStatus = -1; ///< negative: the signal that ended it
    std::string out;
    std::string err;
};

Outcome outcomeOf(QProcess &process) {
    EXPECT_TRUE(process.waitForFinished(patience)) << qPrintable(process.arguments().join(QLatin1Char(' ')));
    process.kill();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -process.exitCode(),
            process.readAllStandardOutput().toStdString(), process.readAllStandardError().toStdString()};
}

Outcome adb(const QStringList &arguments) {
    QProcess process;
    process.start(DemoPhone::adb(), arguments);
    return outcomeOf(process);
}

QStringList onPhone(QStringList arguments) {
    arguments.prepend(DemoPhone::serial());
    arguments.prepend(QStringLiteral("-s"));
    return arguments;
}

Outcome shell(const std::string &line) {
    return adb(onPhone({QStringLiteral("shell"), QString::fromStdString(line)}));
}

Outcome copy(const char *verb, const QString &from, const QString &to) {
    return adb(onPhone({QString::fromLatin1(verb), from, to}));
}

/// Runs adb with a terminal as its standard output and returns what it shows.
std::string shownOnTerminal(const QStringList &arguments, const char *terminalType) {
    const int ours = ::posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_TRUE(ours >= 0 && ::grantpt(ours) == 0 && ::unlockpt(ours) == 0);
    const int theirs = ::open(::ptsname(ours), O_RDWR | O_NOCTTY);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TERM"), QString::fromLatin1(terminalType));
    process.setProcessEnvironment(environment);
    process.setChildProcessModifier([theirs] { ::dup2(theirs, STDOUT_FILENO); });
    process.start(DemoPhone::adb(), arguments);
    EXPECT_TRUE(process.waitForStarted(patience));
    ::close(theirs);
    std::string shown;
    std::array<char, 4096> block{};
    for (ssize_t got = 0; (got = ::read(ours, block.data(), block.size())) > 0;)
        shown.append(block.data(), static_cast<std::size_t>(got));
    ::close(ours);
    outcomeOf(process);
    return shown;
}

/// Bytes that differ from place to place, so that a block in the wrong one is noticed.
QByteArray someBytes(int size) {
    QByteArray bytes;
    while (bytes.size() < size)
        bytes += QCryptographicHash::hash(QByteArray::number(bytes.size()), QCryptographicHash::Sha256);
    return bytes.first(size);
}

QByteArray contentsOf(const QString &path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

/// The last word of each line: of a listing the names, as long as they hold no space.
std::vector<std::string> lastWords(const std::string &text) {
    std::vector<std::string> words;
    for (const QString &line : QString::fromStdString(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        words.push_back(line.section(QLatin1Char(' '), -1).toStdString());
    return words;
}

} // namespace

// -- Devices and what they say of themselves

TEST(DemoPhoneDevices, statesAreListedAndRefuseInAdbsWords) {
    const struct {
        const char *state;
        const char *error; ///< null when the phone answers
    } cases[] = {
        {"device", nullptr},
        {"offline", "device offline"},
        {"unauthorized", "device unauthorized.\nThis adb server's $ADB_VENDOR_KEYS is not set"},
        {"authorizing", "device still authorizing"},
        {"no permissions (user in plugdev group; are your udev rules wrong?); see [http://example.org]",
         "insufficient permissions for device"},
    };
    DemoPhone phone;
    for (const auto &[state, error] : cases) {
        SCOPED_TRACE(state);
        phone.set(QStringLiteral("state"), state);
        EXPECT_EQ(adb({QStringLiteral("devices")}).out,
                  std::string("List of devices attached\ndemo-phone\t") + state + "\n\n");
        const Outcome shellRun = shell("getprop ro.product.model");
        const Outcome copyRun = copy("pull", QStringLiteral("/sdcard/nothing"), phone.root());
        if (error) {
            EXPECT_EQ(shellRun.exitStatus, 1);
            EXPECT_EQ(shellRun.out, "");
            EXPECT_THAT(shellRun.err, StartsWith(std::string("error: ") + error));
            EXPECT_THAT(copyRun.out,
                        StartsWith(std::string("adb: error: failed to get feature set: ") + error));
            EXPECT_EQ(copyRun.err, "");
        } else {
            EXPECT_EQ(shellRun.out, "Demo Phone\n");
            EXPECT_THAT(copyRun.out, HasSubstr("failed to stat remote object '/sdcard/nothing'"));
        }
        EXPECT_EQ(copyRun.exitStatus, 1);
    }
    phone.unplug();
    EXPECT_EQ(adb({QStringLiteral("devices")}).out, "List of devices attached\n\n");
    EXPECT_EQ(shell("df /sdcard").err, "error: device 'demo-phone' not found\n");
}

TEST(DemoPhoneDevices, serialModelAndStorageAreSettings) {
    DemoPhone phone;
    phone.set(QStringLiteral("serial"), "R58 M4\\2");
    phone.set(QStringLiteral("model"), "Pixel ünï 7");
    phone.set(QStringLiteral("storage-total"), "4096000");
    phone.set(QStringLiteral("storage-used"), "1024000");
    EXPECT_THAT(adb({QStringLiteral("devices")}).out, HasSubstr("\nR58 M4\\2\tdevice\n"));
    EXPECT_EQ(shell("getprop ro.product.model").err, "error: device 'demo-phone' not found\n");
    for (const char *path : {"/sdcard", "/data"}) {
        const Outcome df = adb({QStringLiteral("-s"), QStringLiteral("R58 M4\\2"), QStringLiteral("shell"),
                                QStringLiteral("df"), QString::fromLatin1(path)});
        EXPECT_THAT(df.out, MatchesRegex("Filesystem .*\n/dev/[^ ]+ +4000 1000  3000  25% /[a-z/]+\n"));
    }
    phone.reset(QStringLiteral("serial"));
    EXPECT_EQ(shell("getprop ro.product.model").out, "Pixel ünï 7\n");
}

// -- The shell

TEST(DemoPhoneShell, refusesEveryLineThatIsNotOneOfItsOwn) {
    DemoPhone phone;
    phone.write(QStringLiteral("a.txt"), "a");
    const char *lines[] = {
        "",
        "id",
        "ls",
        "ls -l '/sdcard/'",
        "ls -la '/sdcard/' '/sdcard/'",
        "ls -la '/sdcard/'; touch /sdcard/x",
        "ls -la '/sdcard/'; touch x; ''",
        "ls -la '/sdcard/' && touch x",
        "ls -la '/sdcard/' | sh",
        "ls -la '/sdcard/' > x",
        "ls -la /sdcard/$HOME",
        "ls -la \"/sdcard/\"",
        "ls -la `id`",
        "ls -la /sdcard/*",
        "ls -la '/sdcard/",
        "ls -la '/sdcard/'\nid",
        "| ls -la '/sdcard/'",
        "ls -la '/sdcard/' |",
        "; true",
        "getprop",
        "getprop ro.serialno",
        "df /",
        "rm -rf '/sdcard/'",
        "find -L '/sdcard' -iname '*a*'",
        "find -L '/sdcard' -iname '*a*' -delete 2>/dev/null | head -n 5; true",
        "find -L '/sdcard' -iname '*a[b]*' 2>/dev/null | head -n 5; true",
        "find -L '/sdcard' -iname '*a*' 2>/dev/null | head -n x; true",
        "find -L '/sdcard' -iname '*a*' 2>/dev/null | head -n 5; false",
        "stat -c '%n' '/sdcard/a.txt'",
        "stat -c '%n|%F|%s|%Y'",
    };
    for (const char *line : lines) {
        const Outcome run = shell(line);
        EXPECT_EQ(run.exitStatus, 1) << line;
        EXPECT_EQ(run.out, "") << line;
        EXPECT_THAT(run.err, StartsWith("demo phone: no such command: -s demo-phone shell")) << line;
    }
    for (const QStringList &arguments :
         {QStringList{}, QStringList{QStringLiteral("version")},
          onPhone({QStringLiteral("pull"), QStringLiteral("x")}),
          onPhone({QStringLiteral("push"), QStringLiteral("-a"), QStringLiteral("b"), QStringLiteral("c")})})
        EXPECT_EQ(adb(arguments).exitStatus, 1) << qPrintable(arguments.join(QLatin1Char(' ')));
    EXPECT_EQ(QDir(phone.root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("a.txt")});
}

TEST(DemoPhoneShell, quotedNamesAreOneWordWhateverTheyHold) {
    DemoPhone phone;
    const QString names[] = {
        QStringLiteral("it's"),          QStringLiteral("'; touch x; '"),  QStringLiteral("$(id) `id` $HOME"),
        QStringLiteral("a | b & c > d"), QStringLiteral("two  spaces\\n"), QStringLiteral("-la"),
        QStringLiteral("link -> here"),  QStringLiteral("🎉 *?[x]{y}!#~"),  QString(84, QChar(0x65E5))};
    for (const QString &name : names) {
        phone.write(name + QStringLiteral("/inside.txt"), "12345");
        QString quoted = QStringLiteral("/sdcard/") + name;
        quoted.replace(QLatin1Char('\''), QLatin1String("'\\''"));
        // As adb does, in any number of arguments.
        const Outcome ls = adb(onPhone({QStringLiteral("shell"), QStringLiteral("ls"), QStringLiteral("-la"),
                                        QLatin1Char('\'') + quoted + QStringLiteral("/'")}));
        EXPECT_EQ(ls.exitStatus, 0) << qPrintable(name) << ls.err;
        EXPECT_THAT(lastWords(ls.out), ElementsAre(testing::_, ".", "..", "inside.txt")) << qPrintable(name);
        const Outcome stat = shell("stat -c '%n|%F|%s|%Y' '" + quoted.toStdString() + "' 2>/dev/null; true");
        EXPECT_THAT(stat.out, StartsWith("/sdcard/" + name.toStdString() + "|directory|"))
            << qPrintable(name);
    }
    EXPECT_EQ(QDir(phone.root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(),
              static_cast<int>(std::size(names)));
}

// -- Listings

TEST(DemoPhoneListing, isInToyboxFormat) {
    DemoPhone phone;
    const QDateTime time(QDate(2024, 5, 1), QTime(13, 7, 59));
    phone.write(QStringLiteral("d/big file.bin"), QByteArray(12345, 'x'), time);
    phone.write(QStringLiteral("d/.hidden"), "", time);
    phone.makeFolder(QStringLiteral("d/sub"));
    phone.link(QStringLiteral("d/link"), QStringLiteral("/sdcard/d/sub"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(phone.hostPath(QStringLiteral("d/pipe"))).constData(), 0640), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(phone.hostPath(QStringLiteral("d/big file.bin"))).constData(), 04751),
              0);

    const Outcome ls = shell("ls -la '/storage/emulated/0/d/'");
    EXPECT_EQ(ls.exitStatus, 0);
    EXPECT_EQ(ls.err, "");
    const QStringList lines = QString::fromStdString(ls.out).split(QLatin1Char('\n'));
    const char *patterns[] = {
        R"(total \d+)",
        R"(drwxr-xr-x 3 u0_a1 media_rw +\d+ \d{4}-\d\d-\d\d \d\d:\d\d \.)",
        R"(drwxr-xr-x \d u0_a1 media_rw +\d+ \d{4}-\d\d-\d\d \d\d:\d\d \.\.)",
        R"(-rw-r--r-- 1 u0_a1 media_rw +0 2024-05-01 13:07 \.hidden)",
        R"(-rwsr-x--x 1 u0_a1 media_rw 12345 2024-05-01 13:07 big file\.bin)",
        R"(lrwxrwxrwx 1 u0_a1 media_rw +13 \d{4}-\d\d-\d\d \d\d:\d\d link -> /sdcard/d/sub)",
        R"(prw-r----- 1 u0_a1 media_rw +0 \d{4}-\d\d-\d\d \d\d:\d\d pipe)",
        R"(drwxr-xr-x 2 u0_a1 media_rw +\d+ \d{4}-\d\d-\d\d \d\d:\d\d sub)",
        "",
    };
    ASSERT_EQ(lines.size(), static_cast<int>(std::size(patterns))) << ls.out;
    for (int i = 0; i < lines.size(); ++i) {
        const QRegularExpression pattern(
            QRegularExpression::anchoredPattern(QString::fromLatin1(patterns[i])));
        EXPECT_TRUE(pattern.match(lines[i]).hasMatch()) << qPrintable(lines[i]) << "\n" << patterns[i];
    }
}

TEST(DemoPhoneListing, pathsLeadWhereThePhonesWouldAndNeverOut) {
    DemoPhone phone;
    phone.write(QStringLiteral("in/file.txt"), "x");
    phone.link(QStringLiteral("up"), QStringLiteral(".."));
    phone.link(QStringLiteral("host"), QStringLiteral("/etc"));
    phone.link(QStringLiteral("climb"), QStringLiteral("../../../../../../../../etc"));
    phone.link(QStringLiteral("in/self"), QStringLiteral("self"));
    phone.link(QStringLiteral("alias"), QStringLiteral("in"));
    phone.link(QStringLiteral("absolute"), QStringLiteral("/sdcard/alias"));
    const struct {
        const char *path;
        const char *error;                   ///< of standard error; null when it is listed
        std::vector<std::string> names = {}; ///< without "." and ".."
    } cases[] = {
        {"/sdcard/in/", nullptr, {"self", "file.txt"}},
        {"/sdcard/./in/../in//", nullptr, {"self", "file.txt"}},
        {"/sdcard/alias/", nullptr, {"self", "file.txt"}},
        {"/sdcard/absolute/", nullptr, {"self", "file.txt"}},
        {"/sdcard/nope/", "ls: /sdcard/nope/: No such file or directory\n"},
        {"/sdcard/in/file.txt/", "ls: /sdcard/in/file.txt/: Not a directory\n"},
        {"/sdcard/in/file.txt/x/", "ls: /sdcard/in/file.txt/x/: Not a directory\n"},
        {"/sdcard/in/self/", "ls: /sdcard/in/self/: Too many levels of symbolic links\n"},
        {"/sdcard/host/", "ls: /sdcard/host/: No such file or directory\n"},
        {"/sdcard/climb/", "ls: /sdcard/climb/: No such file or directory\n"},
        {"/sdcard/up/", nullptr, {"0"}},
        {"/sdcard/../../../../../../../etc/",
         "ls: /sdcard/../../../../../../../etc/: No such file or directory\n"},
        {"/sdcard/nope/../../../../../../tmp/",
         "ls: /sdcard/nope/../../../../../../tmp/: No such file or directory\n"},
        {"/data/", "ls: /data/: Permission denied\n"},
        {"/storage/", nullptr, {"emulated"}},
    };
    for (const auto &[path, error, names] : cases) {
        const Outcome ls = shell(std::string("ls -la '") + path + "'");
        EXPECT_EQ(ls.exitStatus, error ? 1 : 0) << path;
        EXPECT_EQ(ls.err, error ? error : "") << path;
        std::vector<std::string> listed = lastWords(ls.out);
        listed.erase(listed.begin(), listed.begin() + std::min<std::ptrdiff_t>(3, std::ssize(listed)));
        EXPECT_THAT(listed, testing::UnorderedElementsAreArray(names)) << path << "\n" << ls.out;
    }
}

TEST(DemoPhoneListing, unreadableEntriesSpoilOnlyTheExitStatus) {
    DemoPhone phone;
    phone.write(QStringLiteral("a.txt"), "a");
    phone.write(QStringLiteral("Secret/inside.txt"), "b");
    phone.makeFolder(QStringLiteral("closed"));
    phone.deny(QStringLiteral("Secret"));
    ASSERT_EQ(::chmod(QFile::encodeName(phone.hostPath(QStringLiteral("closed"))).constData(), 0300), 0);

    const Outcome ls = shell("ls -la '/sdcard/'");
    EXPECT_EQ(ls.exitStatus, 1);
    EXPECT_EQ(ls.err, "ls: /sdcard/Secret: Permission denied\n");
    EXPECT_THAT(ls.out, testing::ContainsRegex("\nd[?]{9} +[?] [?] +[?] +[?] +[?] Secret\n"));
    EXPECT_THAT(ls.out, HasSubstr(" a.txt\n"));
    for (const std::string path : {"/sdcard/Secret/", "/storage/emulated/0/Secret/", "/sdcard/closed/"})
        EXPECT_EQ(shell("ls -la '" + path + "'").err, "ls: " + path + ": Permission denied\n");
    EXPECT_EQ(shell("stat -c '%n|%F|%s|%Y' '/sdcard/Secret/inside.txt' 2>/dev/null; true").out, "");
    phone.reset(QStringLiteral("fail"));
    EXPECT_EQ(shell("ls -la '/sdcard/'").exitStatus, 0);
    const Outcome root = shell("ls -la '/'");
    EXPECT_EQ(root.exitStatus, 1);
    EXPECT_THAT(root.out, HasSubstr(" sdcard -> /storage/emulated/0\n"));
}

// -- Search and facts

TEST(DemoPhoneSearch, findsNamesInAnyCaseAndEndsAtTheLimit) {
    DemoPhone phone;
    phone.write(QStringLiteral("Holiday/HOLIDAY plan.txt"), "");
    phone.write(QStringLiteral("Holiday/.holiday"), "");
    phone.write(QStringLiteral("Café/ÉTÉ.jpg"), "");
    // A name that is no UTF-8.
    const QByteArray odd = QFile::encodeName(phone.root()) + "/\xFFholid\xE9";
    ::close(::open(odd.constData(), O_CREAT | O_WRONLY, 0600));
    phone.link(QStringLiteral("Holiday/loop"), QStringLiteral("."));
    phone.link(QStringLiteral("Holiday/broken holiday"), QStringLiteral("nowhere"));
    phone.link(QStringLiteral("other"), QStringLiteral("Café"));
    phone.write(QStringLiteral("Denied/holiday"), "");
    phone.deny(QStringLiteral("Denied"));
    const struct {
        const char *root;
        const char *text;
        const char *limit;
        const char *found;
    } cases[] = {
        {"/sdcard", "holiday", "200",
         "/sdcard/Holiday\n/sdcard/Holiday/.holiday\n/sdcard/Holiday/HOLIDAY plan.txt\n"
         "/sdcard/Holiday/broken holiday\n"},
        {"/sdcard", "holiday", "2", "/sdcard/Holiday\n/sdcard/Holiday/.holiday\n"},
        {"/sdcard", "holiday", "0", ""},
        {"/sdcard", "été", "200", "/sdcard/Café/ÉTÉ.jpg\n/sdcard/other/ÉTÉ.jpg\n"},
        {"/storage/emulated/0/Café", "JPG", "9", "/storage/emulated/0/Café/ÉTÉ.jpg\n"},
        {"/sdcard", "sd", "9", "/sdcard\n"},
        {"/sdcard", "HOLID", "1", "/sdcard/Holiday\n"},
        {"/nope", "sd", "9", ""},
        {"/sdcard", "'; touch x; '", "9", ""},
    };
    for (const auto &[root, text, limit, found] : cases) {
        const std::string quoted =
            QString::fromUtf8(text).replace(QLatin1Char('\''), QLatin1String("'\\''")).toStdString();
        const Outcome find = shell(std::string("find -L '") + root + "' -iname '*" + quoted +
                                   "*' 2>/dev/null | head -n " + limit + "; true");
        EXPECT_EQ(find.out, found) << text;
        EXPECT_EQ(find.err, "") << text;
        EXPECT_EQ(find.exitStatus, 0) << text;
    }
    ::unlink(odd.constData()); // Qt has no name for it and would leave it lying
}

TEST(DemoPhoneSearch, factsNameTheTypeOfEachPathAndSkipWhatIsMissing) {
    DemoPhone phone;
    const QDateTime time = QDateTime::fromSecsSinceEpoch(1'714'567'890);
    phone.write(QStringLiteral("a|b.txt"), "hello", time);
    phone.write(QStringLiteral("empty"), "", time);
    phone.link(QStringLiteral("link"), QStringLiteral("folder"));
    phone.makeFolder(QStringLiteral("folder"));
    const std::string line =
        "stat -c '%n|%F|%s|%Y' '/sdcard/a|b.txt' '/sdcard/nope' '/sdcard/empty' '/sdcard/link' "
        "'/sdcard/folder'";
    const char *expected = "/sdcard/a\\|b.txt\\|regular file\\|5\\|1714567890\n"
                           "/sdcard/empty\\|regular empty file\\|0\\|1714567890\n"
                           "/sdcard/link\\|symbolic link\\|6\\|[0-9]+\n"
                           "/sdcard/folder\\|directory\\|[0-9]+\\|[0-9]+\n";
    const Outcome quiet = shell(line + " 2>/dev/null; true");
    EXPECT_THAT(quiet.out, MatchesRegex(expected));
    EXPECT_EQ(quiet.err, "");
    EXPECT_EQ(quiet.exitStatus, 0);
    const Outcome loud = shell(line);
    EXPECT_EQ(loud.out, quiet.out);
    EXPECT_EQ(loud.err, "stat: '/sdcard/nope': No such file or directory\n");
    EXPECT_EQ(loud.exitStatus, 1);
}

// -- Copies

TEST(DemoPhoneCopy, carriesFilesAndFoldersBothWays) {
    DemoPhone phone;
    QTemporaryDir here;
    const QByteArray bytes = someBytes(300'000);
    const QDateTime time = QDateTime::fromSecsSinceEpoch(1'600'000'001);
    phone.write(QStringLiteral("d/one.bin"), bytes, time);
    phone.write(QStringLiteral("d/deeper/empty"), "");
    phone.makeFolder(QStringLiteral("d/bare"));
    phone.link(QStringLiteral("d/deeper/round"), QStringLiteral("/sdcard/d"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(phone.hostPath(QStringLiteral("d/pipe"))).constData(), 0600), 0);

    EXPECT_THAT(copy("pull", QStringLiteral("/sdcard/d/one.bin"), here.path()).out,
                MatchesRegex("/sdcard/d/one.bin: 1 file pulled, 0 skipped. [0-9.]+ MB/s "
                             "\\(300000 bytes in [0-9.]+s\\)\n"));
    EXPECT_EQ(contentsOf(here.filePath(QStringLiteral("one.bin"))), bytes);
    EXPECT_NE(QFileInfo(here.filePath(QStringLiteral("one.bin"))).lastModified(), time);

    const QString local = here.filePath(QStringLiteral("copy"));
    EXPECT_THAT(copy("pull", QStringLiteral("/sdcard/d"), local).out,
                StartsWith("/sdcard/d/: 2 files pulled, 1 skipped. "));
    EXPECT_EQ(contentsOf(local + QStringLiteral("/one.bin")), bytes);
    EXPECT_EQ(contentsOf(local + QStringLiteral("/deeper/empty")), "");
    EXPECT_TRUE(QFileInfo(local + QStringLiteral("/bare")).isDir());

    QFile source(local + QStringLiteral("/one.bin"));
    ASSERT_TRUE(source.open(QIODevice::ReadWrite) &&
                source.setFileTime(time, QFileDevice::FileModificationTime));
    source.close();
    EXPECT_THAT(copy("push", local, QStringLiteral("/sdcard/new/place")).out,
                MatchesRegex(local.toStdString() + "/: 2 files pushed, 0 skipped\\. .*\n"));
    EXPECT_EQ(phone.read(QStringLiteral("new/place/one.bin")), bytes);
    EXPECT_TRUE(phone.exists(QStringLiteral("new/place/bare")));
    EXPECT_EQ(QFileInfo(phone.hostPath(QStringLiteral("new/place/one.bin"))).lastModified(), time);

    // Onto what is there: a folder lands inside, a file is replaced.
    EXPECT_EQ(copy("push", local, QStringLiteral("/sdcard/new/place")).exitStatus, 0);
    EXPECT_EQ(phone.read(QStringLiteral("new/place/copy/one.bin")), bytes);
    EXPECT_EQ(copy("pull", QStringLiteral("/sdcard/d"), local).exitStatus, 0);
    EXPECT_EQ(contentsOf(local + QStringLiteral("/d/one.bin")), bytes);
    phone.write(QStringLiteral("d/one.bin"), "short");
    EXPECT_EQ(
        copy("pull", QStringLiteral("/sdcard/d/one.bin"), local + QStringLiteral("/one.bin")).exitStatus, 0);
    EXPECT_EQ(contentsOf(local + QStringLiteral("/one.bin")), "short");
    EXPECT_EQ(copy("push", local + QStringLiteral("/one.bin"), QStringLiteral("/sdcard/new")).exitStatus, 0);
    EXPECT_EQ(phone.read(QStringLiteral("new/one.bin")), "short");
}

TEST(DemoPhoneCopy, failsInAdbsWordsOnStandardOutput) {
    DemoPhone phone;
    QTemporaryDir here;
    phone.write(QStringLiteral("file"), "x");
    phone.write(QStringLiteral("Secret/file"), "x");
    phone.write(QStringLiteral("mode"), "x");
    phone.deny(QStringLiteral("Secret"));
    ASSERT_EQ(::chmod(QFile::encodeName(phone.hostPath(QStringLiteral("mode"))).constData(), 0), 0);
    const QString local = here.filePath(QStringLiteral("local"));
    const auto writeLocal = [&] {
        QFile file(local);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("was here") == 8);
    };
    const QString missing = here.filePath(QStringLiteral("no/such/place"));
    const struct {
        const char *verb;
        QString from;
        QString to;
        QString error;
    } cases[] = {
        {"pull", QStringLiteral("/sdcard/nope"), local,
         QStringLiteral("failed to stat remote object '/sdcard/nope': No such file or directory")},
        {"pull", QStringLiteral("/sdcard/file"), missing,
         QStringLiteral("cannot create file/directory '%1': No such file or directory").arg(missing)},
        {"pull", QStringLiteral("/sdcard/mode"), local,
         QStringLiteral("failed to copy '/sdcard/mode' to '%1': remote open failed: Permission denied")
             .arg(local)},
        {"pull", QStringLiteral("/sdcard/Secret/file"), local,
         QStringLiteral("failed to copy '/sdcard/Secret/file' to '%1': remote open failed: Permission denied")
             .arg(local)},
        {"push", missing, QStringLiteral("/sdcard/x"),
         QStringLiteral("cannot stat '%1': No such file or directory").arg(missing)},
        {"push", local, QStringLiteral("/system/x"),
         QStringLiteral("failed to copy '%1' to '/system/x': remote couldn't create file: Permission denied")
             .arg(local)},
        {"push", local, QStringLiteral("/sdcard/Secret/new"),
         QStringLiteral("failed to copy '%1' to '/sdcard/Secret/new': remote couldn't create file: "
                        "Permission denied")
             .arg(local)},
        {"push", local, QStringLiteral("/sdcard/../../../../../etc/x"),
         QStringLiteral("failed to copy '%1' to '/sdcard/../../../../../etc/x': remote couldn't create file: "
                        "Permission denied")
             .arg(local)},
        {"push", local, QStringLiteral("/sdcard/file/x"),
         QStringLiteral("stat failed when trying to push to /sdcard/file/x: Not a directory")},
    };
    for (const auto &[verb, from, to, error] : cases) {
        writeLocal();
        const Outcome run = copy(verb, from, to);
        EXPECT_EQ(run.exitStatus, 1) << qPrintable(error);
        EXPECT_THAT(run.out, StartsWith("adb: error: " + error.toStdString() + "\n"));
        EXPECT_EQ(run.err, "") << qPrintable(error);
    }
    // The target of a pull that got as far as opening is gone, as with the real tool.
    writeLocal();
    copy("pull", QStringLiteral("/sdcard/nope"), local);
    EXPECT_TRUE(QFile::exists(local));
    copy("pull", QStringLiteral("/sdcard/mode"), local);
    EXPECT_FALSE(QFile::exists(local));
}

TEST(DemoPhoneCopy, folderStopsAtItsFirstFailingFile) {
    DemoPhone phone;
    QTemporaryDir here;
    for (const char *name : {"d/a", "d/b", "d/c"})
        phone.write(QString::fromLatin1(name), "12");
    phone.deny(QStringLiteral("d/b"));
    const QString local = here.filePath(QStringLiteral("d"));
    const Outcome pull = copy("pull", QStringLiteral("/sdcard/d"), local);
    EXPECT_EQ(pull.exitStatus, 1);
    EXPECT_THAT(pull.out, HasSubstr("adb: error: failed to copy '/sdcard/d/b'"));
    EXPECT_THAT(pull.out, HasSubstr("\n/sdcard/d/: 1 file pulled, 0 skipped."));
    EXPECT_EQ(QDir(local).entryList(QDir::Files), QStringList{QStringLiteral("a")});
}

TEST(DemoPhoneCopy, showsProgressOnATerminalAsAdb29Does) {
    DemoPhone phone;
    QTemporaryDir here;
    phone.set(QStringLiteral("stderr-progress"), "off");
    phone.write(QStringLiteral("f.bin"), someBytes(200'000));
    phone.write(QStringLiteral("d/a"), someBytes(100'000));
    phone.write(QStringLiteral("d/b"), someBytes(70'000));
    const auto pull = [&](const char *name) {
        return onPhone(
            {QStringLiteral("pull"), QStringLiteral("/sdcard/") + QString::fromLatin1(name), here.path()});
    };
    // The terminal turns each newline into CR LF.
    EXPECT_THAT(
        shownOnTerminal(pull("f.bin"), "xterm"),
        StartsWith("\r[ 32%] /sdcard/f.bin\x1b[K\r[ 65%] /sdcard/f.bin\x1b[K\r[ 98%] /sdcard/f.bin\x1b[K"
                   "\r[100%] /sdcard/f.bin\x1b[K\r/sdcard/f.bin: 1 file pulled, 0 skipped. "));
    EXPECT_THAT(shownOnTerminal(pull("d"), "xterm"),
                StartsWith("\rpull: building file list...\x1b[K\r[ 38%] /sdcard/d/a: 65%\x1b[K"
                           "\r[ 58%] /sdcard/d/a: 100%\x1b[K\r[ 97%] /sdcard/d/b: 93%\x1b[K"
                           "\r[100%] /sdcard/d/b: 100%\x1b[K\r/sdcard/d/: 2 files pulled, 0 skipped. "));
    const auto push = onPhone(
        {QStringLiteral("push"), here.filePath(QStringLiteral("f.bin")), QStringLiteral("/sdcard/up.bin")});
    EXPECT_THAT(shownOnTerminal(push, "xterm"), StartsWith("\r[ 32%] /sdcard/up.bin\x1b[K"));
    EXPECT_EQ(shownOnTerminal(pull("nope"), "xterm"),
              "\radb: error: failed to stat remote object '/sdcard/nope': No such file or directory\r\n");
    for (const char *type : {"dumb", ""})
        EXPECT_THAT(shownOnTerminal(pull("f.bin"), type), StartsWith("/sdcard/f.bin: 1 file pulled")) << type;
}

TEST(DemoPhoneCopy, percentagesOnStandardErrorAreASetting) {
    DemoPhone phone;
    QTemporaryDir here;
    phone.write(QStringLiteral("f.bin"), someBytes(200'000));
    const auto errors = [&] { return copy("pull", QStringLiteral("/sdcard/f.bin"), here.path()).err; };
    EXPECT_EQ(errors(),
              "[ 32%] /sdcard/f.bin\n[ 65%] /sdcard/f.bin\n[ 98%] /sdcard/f.bin\n[100%] /sdcard/f.bin\n");
    phone.set(QStringLiteral("stderr-progress"), "off");
    EXPECT_EQ(errors(), "");
}

// -- Faults

TEST(DemoPhoneFaults, unpluggedInTheMiddleItEndsWithoutAWordAndIsGone) {
    for (const char *verb : {"pull", "push"}) {
        SCOPED_TRACE(verb);
        DemoPhone phone;
        QTemporaryDir here;
        const QString local = here.filePath(QStringLiteral("f.bin"));
        const QByteArray bytes = someBytes(500'000);
        phone.write(QStringLiteral("f.bin"), bytes);
        EXPECT_EQ(copy("pull", QStringLiteral("/sdcard/f.bin"), local).exitStatus, 0);
        phone.set(QStringLiteral("stderr-progress"), "off");
        phone.set(QString::fromLatin1(verb) + QStringLiteral(".unplug-after"), "123456");
        const bool isPull = qstrcmp(verb, "pull") == 0;
        const QString remote = QStringLiteral("/sdcard/f.bin");
        const Outcome run = isPull ? copy(verb, remote, local) : copy(verb, local, remote);
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(run.out + run.err, "");
        if (isPull)
            EXPECT_FALSE(QFile::exists(local));
        else
            EXPECT_EQ(phone.read(remote), bytes.first(123'456));
        EXPECT_EQ(adb({QStringLiteral("devices")}).out, "List of devices attached\n\n");
        phone.plug();
        EXPECT_EQ((isPull ? copy(verb, remote, local) : copy(verb, local, remote)).exitStatus, 0);
    }
}

TEST(DemoPhoneFaults, settingsTakeHoldWhileACopyRuns) {
    DemoPhone phone;
    QTemporaryDir here;
    phone.write(QStringLiteral("f.bin"), QByteArray(2'000'000, 'x'));
    phone.set(QStringLiteral("bandwidth"), "0.01");
    const auto pull = onPhone({QStringLiteral("pull"), QStringLiteral("/sdcard/f.bin"), here.path()});
    QProcess process;
    process.start(DemoPhone::adb(), pull);
    process.setReadChannel(QProcess::StandardError);
    ASSERT_TRUE(process.waitForReadyRead(patience));
    QElapsedTimer timer;
    timer.start();
    // At the first rate it would take minutes.
    phone.set(QStringLiteral("bandwidth"), "0");
    EXPECT_EQ(outcomeOf(process).exitStatus, 0);
    EXPECT_LT(timer.elapsed(), patience / 2);

    phone.set(QStringLiteral("bandwidth"), "4");
    timer.restart();
    EXPECT_EQ(adb(pull).exitStatus, 0);
    EXPECT_GE(timer.elapsed(), 450) << "2 MB at 4 MB a second";

    phone.set(QStringLiteral("bandwidth"), "0.01");
    process.start(DemoPhone::adb(), pull);
    ASSERT_TRUE(process.waitForStarted(patience));
    phone.unplug();
    EXPECT_EQ(outcomeOf(process).exitStatus, 1);
}

TEST(DemoPhoneFaults, aCommandCanBeMadeToMisbehave) {
    DemoPhone phone;
    const auto df = [] { return shell("df /sdcard"); };
    const struct {
        const char *setting;
        const char *value;
        std::function<void(const Outcome &)> check;
    } cases[] = {
        {"df.exit", "255", [](const Outcome &run) { EXPECT_EQ(run.exitStatus, 255); }},
        {"df.stdout", "\xff\xfe\n", [](const Outcome &run) { EXPECT_EQ(run.out, "\xff\xfe\n"); }},
        {"df.stdout", "", [](const Outcome &run) { EXPECT_EQ(run.out, ""); }},
        {"df.stderr", "df: oops\n", [](const Outcome &run) { EXPECT_EQ(run.err, "df: oops\n"); }},
        {"df.stdout-noise", "1048576",
         [](const Outcome &run) {
             EXPECT_GT(run.out.size(), 1048576U);
             EXPECT_THAT(run.out.substr(1048576), StartsWith("Filesystem"));
         }},
        {"df.stderr-noise", "1000", [](const Outcome &run) { EXPECT_EQ(run.err.size(), 1000U); }},
        {"df.crash", "9", [](const Outcome &run) { EXPECT_EQ(run.exitStatus, -9); }},
        {"df.crash", "11", [](const Outcome &run) { EXPECT_EQ(run.exitStatus, -11); }},
        {"df.chatter", "stderr",
         [](const Outcome &run) { EXPECT_THAT(run.err, StartsWith("* daemon not")); }},
        {"df.chatter", "stdout",
         [](const Outcome &run) { EXPECT_THAT(run.out, StartsWith("* daemon not")); }},
    };
    const std::string usual = df().out;
    EXPECT_THAT(usual, StartsWith("Filesystem"));
    for (const auto &[setting, value, check] : cases) {
        SCOPED_TRACE(std::string(setting) + "=" + value);
        phone.set(QString::fromLatin1(setting), value);
        check(df());
        // Only the command that was named.
        EXPECT_EQ(shell("getprop ro.product.model").out, "Demo Phone\n");
        phone.reset(QString::fromLatin1(setting));
    }
    const Outcome after = df();
    EXPECT_EQ(after.out, usual);
    EXPECT_EQ(after.err, "");
}

TEST(DemoPhoneFaults, itHangsUntilToldOtherwiseAndFloodsUntilNobodyListens) {
    DemoPhone phone;
    phone.set(QStringLiteral("ls.hang"), "on");
    QProcess process;
    process.start(DemoPhone::adb(), onPhone({QStringLiteral("shell"), QStringLiteral("ls -la '/sdcard/'")}));
    EXPECT_FALSE(process.waitForFinished(200));
    EXPECT_EQ(shell("df /sdcard").exitStatus, 0);
    phone.reset(QStringLiteral("ls.hang"));
    EXPECT_THAT(outcomeOf(process).out, StartsWith("total "));

    phone.set(QStringLiteral("ls.delay"), "0.3");
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(shell("ls -la '/sdcard/'").exitStatus, 0);
    EXPECT_GE(timer.elapsed(), 300);

    phone.reset(QStringLiteral("ls.delay"));
    phone.set(QStringLiteral("ls.stdout-noise"), "endless");
    QProcess head;
    process.setStandardOutputProcess(&head);
    process.start(DemoPhone::adb(), onPhone({QStringLiteral("shell"), QStringLiteral("ls -la '/sdcard/'")}));
    head.start(QStringLiteral("head"), {QStringLiteral("-c"), QStringLiteral("5000000")});
    EXPECT_EQ(outcomeOf(head).out.size(), 5'000'000U);
    EXPECT_EQ(outcomeOf(process).exitStatus, -SIGPIPE);
}

TEST(DemoPhoneFaults, theFileWinsOverTheEnvironment) {
    DemoPhone phone;
    qputenv("DEMO_PHONE_MODEL", "From the environment");
    qputenv("DEMO_PHONE_DF_EXIT", "7");
    EXPECT_EQ(shell("getprop ro.product.model").out, "From the environment\n");
    EXPECT_EQ(shell("df /sdcard").exitStatus, 7);
    phone.set(QStringLiteral("model"), "From the file");
    phone.reset(QStringLiteral("exit"));
    EXPECT_EQ(shell("getprop ro.product.model").out, "From the file\n");
    EXPECT_EQ(shell("df /sdcard").exitStatus, 0);
    qunsetenv("DEMO_PHONE_MODEL");
    qunsetenv("DEMO_PHONE_DF_EXIT");
    phone.set(QStringLiteral("df.exit"), "x");
    EXPECT_EQ(shell("df /sdcard").err, "demo phone: 'x' is no value for the setting 'exit'\n");
    phone.set(QStringLiteral("colour"), "red");
    EXPECT_THAT(shell("df /sdcard").err,
                MatchesRegex("demo phone: no such setting in .*\\.conf: colour=red\n"));
}

// -- The furnished phone and the fixture

TEST(DemoPhoneFurnishing, aFolderThatDoesNotExistIsFilledOnce) {
    DemoPhone phone;
    ASSERT_TRUE(QDir(phone.root()).removeRecursively());
    // Several at once, as the program starts them.
    std::array<QProcess, 3> processes;
    for (QProcess &process : processes)
        process.start(DemoPhone::adb(), {QStringLiteral("devices")});
    for (QProcess &process : processes)
        EXPECT_EQ(outcomeOf(process).exitStatus, 0);
    EXPECT_THAT(QDir(QFileInfo(phone.root()).path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                ElementsAre(QStringLiteral("phone")));

    qint64 bytes = 0;
    const QDateTime now = QDateTime::currentDateTime();
    QDirIterator files(phone.root(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QFileInfo file(files.next());
        bytes += file.isFile() ? file.size() : 0;
        const qint64 days = file.lastModified().daysTo(now);
        EXPECT_TRUE(days >= 2 && days <= 731) << qPrintable(file.filePath()) << days;
        if (file.suffix() == QLatin1String("png")) {
            const QByteArray png = contentsOf(file.filePath());
            EXPECT_TRUE(png.startsWith("\x89PNG\r\n\x1a\n")) << qPrintable(file.filePath());
            EXPECT_EQ(png.last(12), QByteArray("\0\0\0\0IEND\xae\x42\x60\x82", 12))
                << qPrintable(file.filePath());
        }
    }
    EXPECT_GT(bytes, 20'000'000);
    EXPECT_LT(bytes, 40'000'000);

    ASSERT_TRUE(QFile::remove(phone.hostPath(QStringLiteral("Documents/empty.txt"))));
    EXPECT_EQ(adb({QStringLiteral("devices")}).exitStatus, 0);
    EXPECT_FALSE(phone.exists(QStringLiteral("Documents/empty.txt")));
}

TEST(DemoPhoneFixture, recordsCommandLinesAndPutsTheEnvironmentBack) {
    qputenv("VANTREL_RESOURCES", "before");
    qputenv("DEMO_PHONE_MODEL", "a person's own");
    {
        DemoPhone phone;
        EXPECT_EQ(qgetenv("DEMO_PHONE_ROOT"), QFile::encodeName(phone.root()));
        EXPECT_TRUE(
            QFileInfo(qEnvironmentVariable("VANTREL_RESOURCES") + QStringLiteral("/platform-tools/adb"))
                .isExecutable());
        EXPECT_EQ(shell("getprop ro.product.model").out, "Demo Phone\n");
        shell("tab\there\nand \\ there");
        EXPECT_EQ(phone.commandLines(),
                  (QList<QStringList>{
                      onPhone({QStringLiteral("shell"), QStringLiteral("getprop ro.product.model")}),
                      onPhone({QStringLiteral("shell"), QStringLiteral("tab\there\nand \\ there")})}));
    }
    EXPECT_EQ(qgetenv("VANTREL_RESOURCES"), "before");
    EXPECT_EQ(qgetenv("DEMO_PHONE_MODEL"), "a person's own");
    EXPECT_FALSE(qEnvironmentVariableIsSet("DEMO_PHONE_ROOT"));
    qunsetenv("VANTREL_RESOURCES");
    qunsetenv("DEMO_PHONE_MODEL");
}
