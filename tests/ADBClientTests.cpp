// The bridge on real child processes: the demo phone, and scripts where a tool must misbehave in its own way.

#include "support/DemoPhone.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/Printers.h"

#include "ADB/ADBClient.h"
#include "ADB/PhoneCopies.h"
#include "ADB/SearchText.h"

#include <QtTest>
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

using namespace Qt::StringLiterals;
using namespace vantrel;

namespace {

void writeExecutable(const QString &path, const QByteArray &script) {
    write(path, "#!/bin/sh\n" + script);
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

/// An adb that is a shell script in a folder of its own, found as the bundled one. "step" in it waits for the
/// test's step().
class ScriptedADB {
public:
    explicit ScriptedADB(const QByteArray &script) {
        writeExecutable(filePath("adb"), "cd \"$(dirname \"$0\")\"\n"
                                         "step() { until read x < fifo; do :; done; }\n" +
                                             script);
        EXPECT_EQ(::mkfifo(QFile::encodeName(filePath("fifo")).constData(), 0600), 0);
    }
    [[nodiscard]] QString filePath(const char *name) const {
        return m_folder.filePath(u"platform-tools/"_s + QString::fromLatin1(name));
    }
    void step() const { write(filePath("fifo"), "\n"); }

private:
    QTemporaryDir m_folder;
    Environment m_environment{Environment::Values{{"VANTREL_RESOURCES", QFile::encodeName(m_folder.path())}}};
};

struct Report {
    double fraction;
    qint64 done;
    qint64 total;
    friend bool operator==(const Report &, const Report &) = default;
};
using Reports = std::vector<Report>;

void PrintTo(const Report &report, std::ostream *stream) {
    *stream << report.fraction << ' ' << report.done << ' ' << report.total;
}

/// A receiver of progress that remembers.
ADBClient::TransferProgress into(Reports &reports) {
    return [&](double fraction, qint64 done, qint64 total) { reports.push_back({fraction, done, total}); };
}

const QString serial = DemoPhone::serial();

/// What became of a copy.
QString copied(const QStringList &words, qint64 bytes, const std::optional<QString> &growing,
               const ADBClient::TransferProgress &onProgress) {
    const auto result =
        ADBClient::runTransfer(QStringList{u"-s"_s, serial} + words, bytes, growing, onProgress);
    return result ? u"(success)"_s : result.error().errorDescription();
}
QString pull(const QString &remote, const QString &local, qint64 bytes = 0,
             const ADBClient::TransferProgress &onProgress = {}) {
    return copied({u"pull"_s, remote, local}, bytes, local, onProgress);
}
QString push(const QString &local = u"/a"_s, const QString &remote = u"/sdcard/a"_s, qint64 bytes = 0,
             const ADBClient::TransferProgress &onProgress = {}) {
    return copied({u"push"_s, local, remote}, bytes, {}, onProgress);
}

ADBResult<QString> runShell(const QString &script) {
    return ADBClient::runProcess(u"/bin/sh"_s, {u"-c"_s, script}, ADBClient::augmentedEnvironment());
}

ADBResult<QList<FileItem>> search(const QString &query, int limit = 200) {
    return ADBClient::search(serial, u"/sdcard"_s, query, limit);
}

int terminalFlags = 0;

} // namespace

/// Stands before the system's own, to see how a terminal is opened: what happens between that and a later
/// flag cannot be provoked.
extern "C" int posix_openpt(int flags) {
    terminalFlags = flags;
    return ::open("/dev/ptmx", flags);
}

TEST(ADBToolTests, isLookedForInTheResourcesThenTheSearchPathThenMissed) {
    QTemporaryDir folder;
    const Environment environment({{"VANTREL_RESOURCES", QFile::encodeName(folder.filePath(u"resources"_s))},
                                   {"PATH", QFile::encodeName(folder.filePath(u"bin"_s))}});
    const QString bundled = folder.filePath(u"resources/platform-tools/adb"_s);
    const QString onPath = folder.filePath(u"bin/adb"_s);
    writeExecutable(bundled, "exit 0");
    writeExecutable(onPath, "exit 0");
    EXPECT_EQ(ADBClient::bundledADBPath(), bundled);
    EXPECT_EQ(ADBClient::resolveADBPath(), bundled);
    EXPECT_EQ(ADBClient::augmentedEnvironment().value(u"PATH"_s),
              QFileInfo(bundled).path() + u":/opt/homebrew/bin:/usr/local/bin:"_s + QFileInfo(onPath).path());

    QFile::setPermissions(bundled, QFileDevice::ReadOwner);
    EXPECT_EQ(ADBClient::bundledADBPath(), std::nullopt);
    EXPECT_EQ(ADBClient::resolveADBPath(), onPath);

    qunsetenv("PATH");
    EXPECT_EQ(ADBClient::augmentedEnvironment().value(u"PATH"_s), u"/opt/homebrew/bin:/usr/local/bin:"_s);
    qputenv("PATH", "/nowhere");
    EXPECT_EQ(ADBClient::resolveADBPath(), std::nullopt);
    EXPECT_EQ(ADBClient::listDeviceSerials().error().errorDescription(),
              u"Vantrel’s Android tools are missing. Please reinstall the app."_s);
    EXPECT_EQ(push(), ADBError::adbNotFound().errorDescription());
}

TEST(ADBToolTests, isNeverOneThatLiesBelowTheWorkingFolder) {
    const Environment environment({{"VANTREL_RESOURCES", {}}, {"PATH", "/nowhere"}});
    const QString before = QDir::currentPath();
    QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"build/asan"_s));
    for (const char *planted :
         {"src/Resources", "Resources", "build/asan/Resources", "build/asan/src/Resources"})
        writeExecutable(folder.filePath(QLatin1String(planted) + u"/platform-tools/adb"_s), "exit 0");
    ASSERT_TRUE(QDir::setCurrent(folder.filePath(u"build/asan"_s)));
    EXPECT_EQ(ADBClient::resolveADBPath(), std::nullopt);
    QDir::setCurrent(before);
}

TEST(ADBToolTests, aRunSucceedsOrFailsWithTheToolsReason) {
    const struct {
        const char *script;
        const char *output; // null: it fails
        const char *error;
    } cases[] = {
        {"echo out; echo ignored >&2", "out\n", nullptr},
        {"printf 'no newline'", "no newline", nullptr},
        {"printf 'bad \\377 bytes'", "", nullptr},
        {"echo lost; printf '  the reason\\r\\n' >&2; exit 1", nullptr, "the reason"},
        {"exit 255", nullptr, "adb exited with 255"},
        {"printf '\\377' >&2; exit 3", nullptr, "adb exited with 3"},
        {"printf '* daemon not running; starting now at tcp:5037\\n* daemon started successfully\\n' >&2; "
         "exit 4",
         nullptr, "adb exited with 4"},
        {"printf '* daemon started successfully\\nerror: device offline\\n' >&2; exit 1", nullptr,
         "error: device offline"},
        {"printf '*.bin: not found\\n' >&2; exit 1", nullptr, "*.bin: not found"},
        {"printf 'error: one\\nerror: two\\n' >&2; exit 1", nullptr, "error: one\nerror: two"},
        {"printf 'WARNING: linker\\r\\nerror: device unauthorized.\\nLook at the phone.\\n' >&2; exit 1",
         nullptr, "error: device unauthorized.\nLook at the phone."},
        {"printf 'ls: /x: Permission denied\\n* daemon started successfully\\nls: /y: gone\\n' >&2; exit 1",
         nullptr, "ls: /x: Permission denied\nls: /y: gone"},
        {"kill -9 $$", nullptr, "adb exited with 9"},
    };
    for (const auto &c : cases) {
        const auto result = runShell(QString::fromUtf8(c.script));
        if (c.output)
            EXPECT_EQ(result.value_or(u"(failed)"_s), QString::fromUtf8(c.output)) << c.script;
        else
            EXPECT_EQ(result.error().errorDescription(), QString::fromUtf8(c.error)) << c.script;
    }
    const auto missing = ADBClient::runProcess(u"/nowhere/adb"_s, {}, ADBClient::augmentedEnvironment());
    EXPECT_EQ(missing.error().kind(), ADBError::Kind::executionFailed);
    EXPECT_FALSE(missing.error().errorDescription().isEmpty());
}

TEST(ADBToolTests, aRunDrainsBothStreamsAndBoundsThem) {
    const auto megabyte =
        runShell(u"head -c 1000000 /dev/zero | tr '\\0' e >&2; head -c 1000000 /dev/zero | tr '\\0' o"_s);
    EXPECT_EQ(megabyte->size(), 1'000'000);
    for (const QString &tooMuch :
         {u"yes"_s, u"head -c 64000001 /dev/zero"_s, u"head -c 64000001 /dev/zero >&2"_s}) {
        const auto answer = runShell(tooMuch);
        ASSERT_FALSE(answer.has_value()) << tooMuch.toStdString();
        EXPECT_EQ(answer.error().errorDescription(),
                  u"The phone’s answer was longer than 64 MB and was not read to its end.");
    }
}

TEST(ADBToolTests, aRunStopsWhenToolsAreStopped) {
    QTemporaryDir folder;
    const QString started = folder.filePath(u"started"_s);
    std::thread stopper([&] {
        while (!QFile::exists(started))
            std::this_thread::yield();
        ADBClient::stopRunningTools();
    });
    const auto result = runShell(u"echo $$ > '%1'; exec sleep 600"_s.arg(started));
    stopper.join();
    EXPECT_EQ(result.error().errorDescription(), u"adb was stopped."_s);
    // Later operations are not touched.
    EXPECT_TRUE(runShell(u"true"_s).has_value());
}

TEST(ADBToolTests, onlySilenceTriesOnesPatience) {
    const ScriptedADB adb("for i in 1 2 3 4 5; do echo $i; sleep 0.3; done");
    const auto slow = ADBClient::askADB({}, std::chrono::seconds(1), {});
    ASSERT_TRUE(slow) << slow.error().errorDescription().toStdString();
    EXPECT_EQ(slow->output, "1\n2\n3\n4\n5\n");
}

#ifdef Q_OS_LINUX
TEST(ADBToolTests, noToolOutlivesTheProgram) {
    QTemporaryDir folder;
    const QString started = folder.filePath(u"started"_s);
    // The program and its tool hold the second; the first reads an end when both are gone.
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t program = ::fork();
    if (program == 0) {
        (void)runShell(u"echo > '%1'; exec sleep 600"_s.arg(started));
        ::_exit(1);
    }
    ::close(ends[1]);
    while (!QFile::exists(started))
        std::this_thread::yield();
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    pollfd end{ends[0], POLLIN, 0};
    EXPECT_EQ(::poll(&end, 1, 10'000), 1) << "the tool still runs";
    ::close(ends[0]);
}
#endif

TEST(ADBDeviceTests, theFirstPhoneThatIsReady) {
    DemoPhone phone;
    phone.set(u"model"_s, "Pixel 7");
    EXPECT_EQ(ADBClient::fetchPrimaryDevice(),
              (AndroidDevice{serial, u"Pixel 7"_s, true, 20'606'418'944, 118'082'764'800}));
    // A phone that answers one of the two questions is there.
    phone.set(u"getprop.exit"_s, "1");
    EXPECT_EQ(ADBClient::fetchPrimaryDevice()->name, serial);
    phone.set(u"df.stdout"_s, "Filesystem 1K-blocks\n");
    phone.reset(u"getprop.exit"_s);
    EXPECT_EQ(ADBClient::fetchPrimaryDevice(), (AndroidDevice{serial, u"Pixel 7"_s, true, 0, -1}));
    phone.set(u"getprop.exit"_s, "1");
    EXPECT_EQ(ADBClient::fetchPrimaryDevice().error().errorDescription(),
              u"Could not read device storage (df)."_s);

    const QString none = ADBError::noDevice().errorDescription();
    EXPECT_EQ(none, u"No Android device connected. Plug in your phone and turn on USB debugging."_s);
    for (const char *state :
         {"none", "offline", "unauthorized", "authorizing", "recovery",
          "no permissions (user in plugdev group; are your udev rules wrong?); see [http://x]"}) {
        phone.set(u"state"_s, state);
        EXPECT_EQ(ADBClient::fetchPrimaryDevice().error().errorDescription(), none) << state;
    }
    phone.set(u"devices.stdout"_s, "List of devices attached\nA1\toffline\nB2\tdevice\nC3\tdevice\n");
    EXPECT_EQ(*ADBClient::listDeviceSerials(), (QStringList{u"B2"_s, u"C3"_s}));
}

TEST(ADBDeviceTests, storageIsAskedMorePlainlyWhereItCannotBeRead) {
    for (const char *path : {"/sdcard", "/data"}) {
        const ScriptedADB adb(QByteArray("[ \"$5\" = ") + path +
                              " ] && echo '/dev/block 200 100 100 50% x' || exit 1");
        const auto storage = ADBClient::fetchStorage(u"x"_s);
        ASSERT_TRUE(storage) << path;
        EXPECT_EQ(storage->shared, (ADBClient::StorageBytes{102'400, 204'800}));
    }
}

namespace {

/// Names as they stand on a file system, bytes that are no text among them.
const QByteArrayList oddNames =
    QByteArray("plain|a  b| lead|trail |nb\u00a0sp|line\nbreak|tab\tx|back\\slash|a -> b|->|cr\rx|\x1b[31m|"
               "c1\u0085x|ls\u2028x|wide\u3000|\\040|bad\xff\xfe|\xc2|sur\xed\xa0\x80|it's|$(touch pwned)|"
               "`touch pwned`|a;b&c|-rf|\"quoted\"|'; touch pwned; '|" +
               QByteArray(255, 'n'))
        .split('|');

void writeOddNames(const DemoPhone &phone, const QString &folder) {
    phone.makeFolder(folder);
    for (const QByteArray &name : oddNames) {
        const QByteArray path = QFile::encodeName(phone.hostPath(folder)) + '/' + name;
        const int file = ::open(path.constData(), O_WRONLY | O_CREAT, 0600);
        ASSERT_GE(file, 0) << name.constData();
        ASSERT_EQ(::write(file, name.constData(), static_cast<size_t>(name.size())), name.size());
        ::close(file);
    }
}

} // namespace

TEST(ADBListingTests, everyNameIsExactAndLeadsToItsFile) {
    DemoPhone phone;
    const QString folder = u"odd/it's; $(touch pwned)"_s;
    writeOddNames(phone, folder);
    const auto items = ADBClient::listDirectory(serial, u"/sdcard/"_s + folder);
    ASSERT_TRUE(items.has_value());
    EXPECT_EQ(items->size(), std::ssize(oddNames));
    EXPECT_EQ(items->unreadableCount, 0);
    EXPECT_TRUE(phone.commandLines().last().last().endsWith(u"/'"_s)) << "a link would not be followed";
    const QTemporaryDir target;
    QStringList inexact;
    for (const FileItem &item : *items) {
        if (!item.isNameExact) {
            inexact.append(item.name);
            continue;
        }
        const QString local = target.filePath(u"copy"_s);
        EXPECT_EQ(pull(item.path, local), u"(success)") << item.name.toStdString();
        EXPECT_EQ(contents(local), item.name.toUtf8());
        QFile::remove(local);
    }
    EXPECT_FALSE(phone.exists(u"pwned"_s) || phone.exists(folder + u"/pwned"_s));
    inexact.sort();
    EXPECT_EQ(inexact,
              (QStringList{u"bad\ufffd\ufffd"_s, u"c1\ufffdx"_s, u"sur\ufffd\ufffd\ufffd"_s, u"\ufffd"_s}));

    const auto hits = ADBClient::search(serial, u"/sdcard/odd"_s, u"bre"_s, 200);
    ASSERT_TRUE(hits.has_value());
    EXPECT_EQ(namesOf(*hits), QStringList{u"line\nbreak"_s});
    EXPECT_EQ(hits->first().sizeBytes, 10);
    const auto odd = search(u"od"_s);
    EXPECT_EQ(namesOf(*odd), QStringList{u"odd"_s});
    const auto bad = search(u"ba"_s);
    EXPECT_EQ(namesOf(*bad), (QStringList{u"back\\slash"_s, u"bad\ufffd\ufffd"_s}))
        << "one bad name empties it";
    EXPECT_TRUE(bad->first().isNameExact);
    EXPECT_FALSE(bad->last().isNameExact);
}

TEST(ADBListingTests, aPhoneThatKnowsNoEscapesIsAskedWithout) {
    DemoPhone phone;
    phone.set(u"escapes"_s, "off");
    writeOddNames(phone, u"odd"_s);
    phone.write(u"odd/two words"_s, "1");
    const auto items = ADBClient::listDirectory(serial, u"/sdcard/odd"_s);
    ASSERT_TRUE(items.has_value());
    EXPECT_TRUE(namesOf(*items).contains(u"two words"_s));
    EXPECT_TRUE(namesOf(*items).contains(u"bad\ufffd\ufffd"_s)) << "it empties its folder";
    for (const FileItem &item : *items)
        EXPECT_EQ(item.isNameExact, !item.name.contains(QChar(QChar::ReplacementCharacter)))
            << item.name.toStdString();
    EXPECT_EQ(phone.commandLines().last(),
              (QStringList{u"-s"_s, serial, u"shell"_s, u"ls"_s, u"-la"_s, u"'/sdcard/odd/'"_s}));
    const auto missing = ADBClient::listDirectory(serial, u"/sdcard/nope"_s);
    EXPECT_EQ(missing.error().errorDescription(), u"ls: /sdcard/nope/: No such file or directory"_s);
}

TEST(ADBListingTests, whatCanBeReadIsListedAndTheRestIsCounted) {
    const QByteArray row = "-rw-rw---- 1 a a 1 2024-05-01 13:07 a\n";
    const struct {
        const char *name;
        QByteArray output;
        QByteArray errors;
        QByteArray exitStatus;
        qsizetype items; // -1: it fails
        qsizetype unreadable = 0;
    } cases[] = {
        {"a warning", row, "WARNING: linker\n", "0", 1},
        {"one entry", row, "ls: /sdcard/b: Permission denied\n", "1", 1, 1},
        {"three", row, "ls: /sdcard/b: x\nls: /sdcard/c: x\nls: /sdcard/\xff: x\n", "1", 1, 3},
        {"those alone", "total 0\nd????????? ? ? ? ? ? b\n", "ls: /sdcard/b: Permission denied\n", "1", 0, 1},
        {"the folder itself", "", "ls: /sdcard/: Permission denied\n", "1", -1},
        {"the phone went away", row, "error: device offline\n", "1", -1},
        {"the phone went away without a word", row, "", "1", -1}};
    DemoPhone phone;
    for (const auto &c : cases) {
        phone.set(u"ls.stdout"_s, c.output);
        phone.set(u"ls.stderr"_s, c.errors);
        phone.set(u"ls.exit"_s, c.exitStatus);
        const auto before = phone.commandLines().size();
        const auto listing = ADBClient::listDirectory(serial, u"/sdcard"_s);
        EXPECT_EQ(listing ? listing->size() : -1, c.items) << c.name;
        EXPECT_EQ(listing ? listing->unreadableCount : 0, c.unreadable) << c.name;
        EXPECT_EQ(phone.commandLines().size(), before + 1) << c.name;
    }
}

TEST(ADBSearchTests, findsNamesWithTheirFacts) {
    DemoPhone phone;
    const QDateTime noon(QDate(2024, 5, 1), QTime(12, 0));
    phone.write(u"Download/Holiday plan.txt"_s, "abc", noon);
    phone.write(u"DCIM/holiday's.jpg"_s, "12345", noon);
    phone.write(u"DCIM/a|holiday|b.jpg"_s, "1", noon);
    phone.write(u"DCIM/.holiday"_s, "hidden");
    phone.makeFolder(u"Holidays"_s);
    const auto hits = ADBClient::search(serial, u"/sdcard/"_s, u" HOLI*day "_s, 200);
    ASSERT_TRUE(hits.has_value());
    EXPECT_EQ(namesOf(*hits),
              (QStringList{u"Holidays"_s, u"a|holiday|b.jpg"_s, u"Holiday plan.txt"_s, u"holiday's.jpg"_s}));
    EXPECT_TRUE(hits->first().isDirectory);
    EXPECT_EQ(hits->first().sizeBytes, std::nullopt);
    EXPECT_EQ(hits->at(3).sizeBytes, 5);
    EXPECT_EQ(hits->at(3).modifiedAt->toLocalTime(), noon);
    EXPECT_EQ(hits->at(3).path, u"/sdcard/DCIM/holiday's.jpg"_s);

    EXPECT_TRUE(search(u"x'; touch /sdcard/pwned; '"_s)->isEmpty());
    EXPECT_FALSE(phone.exists(u"pwned"_s));
    const auto before = phone.commandLines().size();
    EXPECT_TRUE(search(u" a "_s)->isEmpty());
    EXPECT_EQ(phone.commandLines().size(), before) << "one character is not asked for";
}

TEST(ADBSearchTests, asksForFactsInBatchesAndLivesWithoutThem) {
    DemoPhone phone;
    for (int i = 0; i < 85; ++i)
        phone.write(u"many/hit %1.txt"_s.arg(i, 2, 10, QLatin1Char('0')), "x");
    const auto statRuns = [&] {
        QList<qsizetype> paths;
        for (const QStringList &line : phone.commandLines()) {
            if (line.last().startsWith(u"stat "_s))
                paths.append(line.last().count(u"/sdcard/"_s));
        }
        return paths;
    };
    EXPECT_EQ(search(u"hit"_s)->size(), 85);
    EXPECT_EQ(statRuns(), (QList<qsizetype>{40, 40, 5}));

    phone.set(u"stat.exit"_s, "1");
    const auto bare = search(u"hit"_s, 50);
    ASSERT_EQ(bare->size(), 50);
    EXPECT_EQ(bare->first().sizeBytes, std::nullopt);
    EXPECT_EQ(bare->first().modifiedAt, std::nullopt);

    phone.set(u"find.exit"_s, "1");
    phone.set(u"find.stderr"_s, "error: device offline\n");
    EXPECT_EQ(search(u"hit"_s).error().errorDescription(), u"error: device offline"_s);
}

TEST(ADBSearchTests, factsAreAskedForInQuestionsOfBoundedLength) {
    DemoPhone phone;
    const QString longest = QString(40, u'\'') + QString(69, QChar(u'\u65e5')); // 247 bytes
    QStringList paths;
    for (int i = 0; i < 40; ++i)
        paths.append(u"/sdcard"_s + QString(u'/' + longest).repeated(16) + QString::number(i));
    EXPECT_TRUE(ADBClient::fetchSearchMetadata(serial, paths).isEmpty());
    qsizetype asked = 0;
    for (const QStringList &line : phone.commandLines()) {
        EXPECT_LE(line.last().toUtf8().size(), 65'535) << "adb refuses longer ones";
        asked += line.last().count(u"/sdcard"_s);
    }
    EXPECT_EQ(asked, paths.size());
}

TEST(ADBBeginningTests, everyFilesBytesComeAtTheirPlaceWhateverItHasBecome) {
    DemoPhone phone;
    phone.write(u"a '; rm -rf $HOME.jpg"_s, "0123456789");
    phone.write(u"short.jpg"_s, QByteArray("ab\0\r\n", 5));
    phone.write(u"empty.jpg"_s, {});
    phone.write(u"secret.jpg"_s, "secret");
    phone.deny(u"secret.jpg"_s);
    phone.makeFolder(u"folder.jpg"_s);
    phone.write(u"last.jpg"_s, "the last");
    QList<ADBClient::FileBeginning> files;
    for (const QString &name : {u"a '; rm -rf $HOME.jpg"_s, u"short.jpg"_s, u"empty.jpg"_s, u"secret.jpg"_s,
                                u"folder.jpg"_s, u"gone.jpg"_s, u"last.jpg"_s})
        files.append({u"/sdcard/"_s + name, 8});
    const QByteArray zeros(8, '\0');
    EXPECT_EQ(ADBClient::readBeginnings(serial, files, {}),
              (QList<QByteArray>{"01234567", QByteArray("ab\0\r\n\0\0\0", 8), zeros, zeros, zeros, zeros,
                                 "the last"}));
    EXPECT_EQ(phone.commandLines().size(), 2) << "once in vain: some of them are not as long";
    EXPECT_EQ(ADBClient::readBeginnings(serial, {files.first(), files.last(), {files.last().path, 3}}, {}),
              (QList<QByteArray>{"01234567", "the last", "the"}));
    EXPECT_EQ(phone.commandLines().size(), 3);

    const ADBClient::FileBeginning quoted{u"/sdcard/"_s + QString(200, u'\''), 8};
    files.append(QList<ADBClient::FileBeginning>(400, quoted));
    EXPECT_EQ(ADBClient::readBeginnings(serial, files, {})->size(), files.size());
    for (const QStringList &line : phone.commandLines())
        EXPECT_LE(line.last().toUtf8().size(), 65'535) << "adb refuses longer ones";

    phone.set(u"beginnings.stdout"_s, "of another length");
    EXPECT_FALSE(ADBClient::readBeginnings(serial, {files.first()}, {}));
    EXPECT_FALSE(ADBClient::readBeginnings(serial, {{u"/sdcard/last.jpg"_s, 33'000'000}}, {}));
}

TEST(ADBCopyTests, aFindThatKnowsNoPrintfIsAskedInAnotherWay) {
    // This computer's own shell as that of a phone.
    const ScriptedADB adb("case \"$4\" in *-printf*) echo \"find: bad arg '-printf'\" >&2; echo end;;\n"
                          "*) exec sh -c \"$4\";; esac");
    const QTemporaryDir folder;
    for (const char *name : {"a", "sub/it's b", "two\nlines", ".mark-1"})
        write(folder.filePath(QString::fromLatin1(name)), "1234");
    ASSERT_TRUE(QFile::link(u"nowhere"_s, folder.filePath(u"link"_s)));
    ASSERT_TRUE(QFile::link(folder.path(), folder.filePath(u"sub/root"_s)));
    const auto tree = ADBClient::fetchTree(serial, folder.filePath(u"sub/root"_s), {});
    ASSERT_TRUE(tree) << tree.error().errorDescription().toStdString();
    QMap<QString, TreeEntry::Kind> kinds;
    for (const TreeEntry &entry : tree->entries)
        kinds.insert(entry.path, entry.kind);
    using Kind = TreeEntry::Kind;
    const QMap<QString, Kind> expected{{QString(), Kind::folder},   {u"a"_s, Kind::file},
                                       {u".mark-1"_s, Kind::file},  {u"link"_s, Kind::other},
                                       {u"sub"_s, Kind::folder},    {u"sub/it's b"_s, Kind::file},
                                       {u"sub/root"_s, Kind::other}};
    EXPECT_EQ(kinds, expected);
    EXPECT_EQ(tree->leftOut.size(), 1) << "the name with a line break";
    EXPECT_TRUE(ADBClient::fetchTree(serial, folder.filePath(u"gone"_s), {})->entries.isEmpty());

    const QString file = folder.filePath(u"sub/it's b"_s);
    const auto facts = ADBClient::fetchFacts(serial, {file, folder.filePath(u"gone"_s)}, {});
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->keys(), QStringList{file});
    EXPECT_EQ(facts->value(file).sizeBytes, 4);
    const auto names = ADBClient::namesBeginningWith(serial, folder.path(), u".mark-"_s, {});
    EXPECT_TRUE(names && names->size() == 1 && names->first().endsWith(u"/.mark-1"_s));
}

TEST(ADBTransferTests, percentagesOfEitherStreamAreReportedInOrder) {
    constexpr qint64 largest = std::numeric_limits<qint64>::max();
    const struct {
        const char *script; // each step waits for the test to have seen the percentage before
        qint64 bytes;
        Reports reports;
    } cases[] = {
        {"printf '[  5%%] /sdcard/a\\n' >&2; step; printf '[ 42%%] /sdcard/a\\n' >&2; step\n"
         "printf '[100%%] /sdcard/a\\n[100%%] /sdcard/a\\n' >&2; step",
         1'000'000,
         {{0.05, 50'000, 1'000'000}, {0.42, 420'000, 1'000'000}, {0.99, 1'000'000, 1'000'000}}},
        {"[ -t 1 ] || exit 7; [ \"$TERM\" = xterm ] || exit 8; read x && exit 9\n"
         "printf '\\r[ 25%%] /sdcard/[99%%].bin\\033[K'; step\n"
         "printf '\\r[ 50%%] /sdcard/[99%%].bin\\033[K'; step",
         0,
         {{0.25, 0, 0}, {0.5, 0, 0}}},
        {"printf '[ 42%%] /sdcard/a\\n' >&2; step; printf '[ 17%%] /sdcard/a\\n' >&2; sleep 0.1\n"
         "printf '[ 42%%] /sdcard/a\\n' >&2; sleep 0.1; printf '[ 50%%] /sdcard/a\\n' >&2; step",
         0,
         {{0.42, 0, 0}, {0.5, 0, 0}}}, // of another file by then, and the same again
        // The phone is busy for longer than the reader waits for the terminal at a time.
        {"sleep 0.3; printf '\\r[ 25%%] /sdcard/a\\033[K'; step", 0, {{0.25, 0, 0}}},
        {"printf '\\r[100%%] /sdcard/a\\033[K'; step", largest, {{0.99, largest, largest}}},
    };
    const Environment environment(Environment::Values{{"TERM", "dumb"}});
    for (const auto &c : cases) {
        const ScriptedADB adb(c.script);
        Reports reports;
        EXPECT_EQ(push(u"/a"_s, u"/sdcard/a"_s, c.bytes,
                       [&](double fraction, qint64 done, qint64 total) {
                           reports.push_back({fraction, done, total});
                           adb.step();
                       }),
                  u"(success)");
        EXPECT_EQ(reports, c.reports) << c.script;
    }
}

TEST(ADBTransferTests, theGrowingDestinationIsProgressToo) {
    const ScriptedADB adb("mkdir out; printf 1234567 > out/a; printf 123 > out/.hidden\n"
                          "mkdir out/sub; printf 123 > out/sub/b; step");
    const QString out = adb.filePath("out");
    Report last{};
    EXPECT_EQ(pull(u"/sdcard/out"_s, out, 100,
                   [&](double fraction, qint64 done, qint64 total) {
                       last = {fraction, done, total};
                       if (done >= 10)
                           adb.step();
                   }),
              u"(success)");
    EXPECT_EQ(last, (Report{0.1, 10, 100}));
    EXPECT_EQ(ADBClient::allocatedByteCount(out + u"/a"_s), 7);
    EXPECT_EQ(ADBClient::allocatedByteCount(u"/nowhere"_s), 0);

    const ScriptedADB quick("exit 0");
    Reports reports;
    EXPECT_EQ(pull(u"/sdcard/out"_s, out, 0, into(reports)), u"(success)");
    EXPECT_EQ(reports, Reports()) << "growth is no progress of an unknown size";
}

TEST(ADBTransferTests, theReasonIsTheToolsOwnAndNeverItsChatter) {
    const std::pair<QByteArray, const char *> cases[] = {
        {"printf '\\n the reason \\n' >&2", "the reason"},
        {"echo 'not read'; echo 'the reason' >&2", "the reason"},
        {"echo 'adb: error: of the tool'; echo 'WARNING: something else' >&2", "of the tool"},
        {"echo 'adb: error: of the output'; printf '[ 5%%] a\\nadb: error: of the stream\\n' >&2",
         "adb: error: of the stream"},
        {"echo 'adb: error: of the tool'; printf '* daemon not running; starting now at tcp:5037\\n"
         "* daemon started successfully\\n' >&2",
         "of the tool"},
        {"printf '* daemon not running; starting now at tcp:5037\\n* daemon started successfully\\n'",
         "adb exited with 1"},
        {"printf '* daemon not running; starting now at tcp:5037\\n' >&2", "adb exited with 1"},
    };
    for (const auto &[script, reason] : cases) {
        const ScriptedADB adb("[ \"$1\" = devices ] && exit 2\n" + script + "; exit 1");
        EXPECT_EQ(push(), QString::fromUtf8(reason)) << script.toStdString();
    }
}

TEST(ADBTransferTests, theReasonIsReadAlsoWhenTheToolEndsWhileItsReaderRests) {
    const ScriptedADB adb("[ \"$1\" = devices ] && exit 2\n"
                          "printf '\\r[ 25%%] /sdcard/a\\033[K'; step\n"
                          "printf '\\r\\nadb: error: the last words\\n'; exit 1");
    for (int run = 0; run < 20; ++run) // the rest is short
        EXPECT_EQ(push(u"/a"_s, u"/sdcard/a"_s, 0, [&](double, qint64, qint64) { adb.step(); }),
                  u"the last words");
}

TEST(ADBTransferTests, noOtherChildHoldsTheTerminalOrHoldsUpTheEnd) {
    const ScriptedADB adb("trap '' HUP; (exec 2>/dev/null; yes) & exit 0");
    EXPECT_EQ(push(), u"(success)");
    EXPECT_EQ(terminalFlags, O_RDWR | O_NOCTTY | O_CLOEXEC) << "a flag that is set later comes too late";
}

TEST(ADBTransferTests, endlessOutputIsReadInBoundedMemory) {
    const ScriptedADB adb("[ \"$1\" = devices ] && exit 1\n"
                          "head -c 20000000 /dev/zero | tr '\\0' x >&2; head -c 20000000 /dev/zero; exit 1");
    QElapsedTimer elapsed;
    elapsed.start();
    EXPECT_LT(push().size(), 1'000'000);
    EXPECT_LT(elapsed.elapsed(), 15'000) << "4 KiB at a time, with a rest after each, take 20 seconds";
}
