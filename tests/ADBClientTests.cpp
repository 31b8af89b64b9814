// The bridge on real child processes: the demo phone, and scripts where a tool must misbehave in its own way.

#include "support/DemoPhone.h"
#include "support/Files.h"
#include "support/Printers.h"

#include "ADB/ADBClient.h"
#include "ADB/SearchText.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <limits>
#include <mutex>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace vantrel;

namespace {

/// Puts environment variables back when it goes.
class EnvironmentGuard {
public:
    explicit EnvironmentGuard(QList<QByteArray> names) {
        for (const QByteArray &name : names)
            m_before.append(
                {name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt});
    }
    ~EnvironmentGuard() {
        for (const auto &[name, value] : m_before)
            value ? qputenv(name, *value) : qunsetenv(name);
    }
    Q_DISABLE_COPY_MOVE(EnvironmentGuard)

private:
    QList<std::pair<QByteArray, std::optional<QByteArray>>> m_before;
};

void writeExecutable(const QString &path, const QByteArray &script) {
    write(path, "#!/bin/sh\n" + script);
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

/// An adb that is a shell script, found as the bundled one.
class ScriptedADB {
public:
    explicit ScriptedADB(const QByteArray &script) : m_environment({"VANTREL_RESOURCES"}) {
        writeExecutable(m_folder.filePath(QStringLiteral("platform-tools/adb")), script);
        qputenv("VANTREL_RESOURCES", QFile::encodeName(m_folder.path()));
    }
    [[nodiscard]] QString filePath(const char *name) const {
        return m_folder.filePath(QString::fromLatin1(name));
    }

private:
    EnvironmentGuard m_environment;
    QTemporaryDir m_folder;
};

struct Report {
    double fraction;
    qint64 done;
    qint64 total;
    friend bool operator==(const Report &, const Report &) = default;
};

void PrintTo(const Report &report, std::ostream *stream) {
    *stream << report.fraction << ' ' << report.done << ' ' << report.total;
}

/// A receiver of progress that remembers.
class Reports {
public:
    ADBClient::TransferProgress receiver() {
        return [this](double fraction, qint64 done, qint64 total) {
            const std::scoped_lock lock(m_mutex);
            m_list.push_back({fraction, done, total});
        };
    }
    [[nodiscard]] std::vector<Report> list() const {
        const std::scoped_lock lock(m_mutex);
        return m_list;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Report> m_list;
};

QStringList pull(const QString &remote, const QString &local) {
    return {QStringLiteral("-s"), DemoPhone::serial(), QStringLiteral("pull"), remote, local};
}

QStringList push(const QString &local, const QString &remote) {
    return {QStringLiteral("-s"), DemoPhone::serial(), QStringLiteral("push"), local, remote};
}

QString message(const ADBResult<void> &result) {
    return result ? QStringLiteral("(success)") : result.error().errorDescription();
}

QString shell() {
    return QStringLiteral("/bin/sh");
}

std::atomic<int> terminalFlags{0};

} // namespace

/// Stands before the system's own, to see how a terminal is opened: what happens between that and a later
/// flag cannot be provoked.
extern "C" int posix_openpt(int flags) {
    terminalFlags = flags;
    return ::open("/dev/ptmx", flags);
}

TEST(Tool, isLookedForInTheResourcesThenTheSearchPathThenMissed) {
    const EnvironmentGuard guard({"VANTREL_RESOURCES", "PATH", "HOME"});
    QTemporaryDir folder;
    const QString bundled = folder.filePath(QStringLiteral("resources/platform-tools/adb"));
    const QString onPath = folder.filePath(QStringLiteral("bin/adb"));
    writeExecutable(bundled, "exit 0");
    writeExecutable(onPath, "exit 0");
    qputenv("VANTREL_RESOURCES", QFile::encodeName(folder.filePath(QStringLiteral("resources"))));
    qputenv("PATH", QFile::encodeName(folder.filePath(QStringLiteral("bin"))));
    EXPECT_EQ(ADBClient::bundledADBPath(), bundled);
    EXPECT_EQ(ADBClient::resolveADBPath(), bundled);
    EXPECT_EQ(ADBClient::augmentedEnvironment().value(QStringLiteral("PATH")),
              QFileInfo(bundled).path() + QStringLiteral(":/opt/homebrew/bin:/usr/local/bin:") +
                  QFileInfo(onPath).path());

    QFile::setPermissions(bundled, QFileDevice::ReadOwner);
    EXPECT_EQ(ADBClient::bundledADBPath(), std::nullopt);
    EXPECT_EQ(ADBClient::resolveADBPath(), onPath);

    qunsetenv("PATH");
    EXPECT_EQ(ADBClient::augmentedEnvironment().value(QStringLiteral("PATH")),
              QStringLiteral("/opt/homebrew/bin:/usr/local/bin:"));
    qputenv("PATH", "/nowhere");
    EXPECT_EQ(ADBClient::resolveADBPath(), std::nullopt);
    EXPECT_EQ(ADBClient::listDeviceSerials().error().errorDescription(),
              QStringLiteral("Vantrel’s Android tools are missing. Please reinstall the app."));
    EXPECT_EQ(ADBClient::runTransfer(pull(QStringLiteral("/sdcard/a"), QStringLiteral("/tmp/a")), 0, {}, {})
                  .error(),
              ADBError::adbNotFound());
}

TEST(Tool, isNeverOneThatLiesBelowTheWorkingFolder) {
    const EnvironmentGuard guard({"VANTREL_RESOURCES", "PATH", "HOME"});
    qunsetenv("VANTREL_RESOURCES");
    qputenv("PATH", "/nowhere");
    const QString before = QDir::currentPath();
    QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("build/asan")));
    for (const char *planted :
         {"src/Resources", "Resources", "build/asan/Resources", "build/asan/src/Resources"})
        writeExecutable(folder.filePath(QLatin1String(planted) + QStringLiteral("/platform-tools/adb")),
                        "exit 0");
    ASSERT_TRUE(QDir::setCurrent(folder.filePath(QStringLiteral("build/asan"))));
    EXPECT_EQ(ADBClient::resolveADBPath(), std::nullopt);
    QDir::setCurrent(before);
}

TEST(RunProcess, outcomes) {
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
        const auto result = ADBClient::runProcess(
            shell(), {QStringLiteral("-c"), QString::fromUtf8(c.script)}, ADBClient::augmentedEnvironment());
        if (c.output)
            EXPECT_EQ(result.value_or(QStringLiteral("(failed)")), QString::fromUtf8(c.output)) << c.script;
        else
            EXPECT_EQ(result.error().errorDescription(), QString::fromUtf8(c.error)) << c.script;
    }
    const auto missing =
        ADBClient::runProcess(QStringLiteral("/nowhere/adb"), {}, ADBClient::augmentedEnvironment());
    EXPECT_EQ(missing.error().kind(), ADBError::Kind::executionFailed);
    EXPECT_FALSE(missing.error().errorDescription().isEmpty());
}

TEST(RunProcess, drainsBothStreamsAndBoundsThem) {
    const auto run = [](const char *script) {
        return ADBClient::runProcess(shell(), {QStringLiteral("-c"), QString::fromUtf8(script)},
                                     ADBClient::augmentedEnvironment());
    };
    const auto megabyte =
        run("head -c 1000000 /dev/zero | tr '\\0' e >&2; head -c 1000000 /dev/zero | tr '\\0' o");
    EXPECT_EQ(megabyte->size(), 1'000'000);
    for (const char *tooMuch : {"yes", "head -c 64000001 /dev/zero", "head -c 64000001 /dev/zero >&2"}) {
        const auto answer = run(tooMuch);
        ASSERT_FALSE(answer.has_value()) << tooMuch;
        EXPECT_EQ(answer.error().errorDescription(),
                  QStringLiteral("The phone’s answer was longer than 64 MB and was not read to its end."));
    }
}

TEST(RunProcess, passesArgumentsUnchangedAndExactlyTheEnvironment) {
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("ONLY"), QStringLiteral("this one"));
    const auto result = ADBClient::runProcess(
        shell(),
        {QStringLiteral("-c"), QStringLiteral("printf '%s|' \"$ONLY\" \"$HOME\" \"$@\""),
         QStringLiteral("sh"), QStringLiteral("$(id) 'x' \"y\" ;&"), QString()},
        environment);
    EXPECT_EQ(*result, QStringLiteral("this one||$(id) 'x' \"y\" ;&||"));
}

TEST(RunProcess, stopsWhenToolsAreStopped) {
    QTemporaryDir folder;
    const QString started = folder.filePath(QStringLiteral("started"));
    std::thread stopper([&] {
        while (!QFile::exists(started))
            std::this_thread::yield();
        ADBClient::stopRunningTools();
    });
    const auto result = ADBClient::runProcess(
        shell(), {QStringLiteral("-c"), QStringLiteral("echo $$ > '%1'; exec sleep 600").arg(started)},
        ADBClient::augmentedEnvironment());
    stopper.join();
    EXPECT_EQ(result.error().errorDescription(), QStringLiteral("adb was stopped."));
    // Later operations are not touched.
    EXPECT_TRUE(ADBClient::runProcess(shell(), {QStringLiteral("-c"), QStringLiteral("true")},
                                      ADBClient::augmentedEnvironment())
                    .has_value());
}

#ifdef Q_OS_LINUX
TEST(RunProcess, noToolOutlivesTheProgram) {
    QTemporaryDir folder;
    const QString started = folder.filePath(QStringLiteral("started"));
    int ends[2] = {-1,
                   -1}; // the program and its tool hold the second; the first reads an end when both are gone
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t program = ::fork();
    if (program == 0) {
        (void)ADBClient::runProcess(
            shell(), {QStringLiteral("-c"), QStringLiteral("echo > '%1'; exec sleep 600").arg(started)},
            ADBClient::augmentedEnvironment());
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

TEST(Device, theFirstPhoneThatIsReady) {
    DemoPhone phone;
    phone.set(QStringLiteral("model"), "Pixel 7");
    EXPECT_EQ(ADBClient::fetchPrimaryDevice(), (AndroidDevice{DemoPhone::serial(), QStringLiteral("Pixel 7"),
                                                              true, 20'606'418'944, 118'082'764'800}));
    // A phone that answers one of the two questions is there.
    phone.set(QStringLiteral("getprop.exit"), "1");
    EXPECT_EQ(ADBClient::fetchPrimaryDevice()->name, DemoPhone::serial());
    phone.set(QStringLiteral("df.stdout"), "Filesystem 1K-blocks\n");
    phone.reset(QStringLiteral("getprop.exit"));
    EXPECT_EQ(ADBClient::fetchPrimaryDevice(),
              (AndroidDevice{DemoPhone::serial(), QStringLiteral("Pixel 7"), true, 0, -1}));
    phone.set(QStringLiteral("getprop.exit"), "1");
    EXPECT_EQ(ADBClient::fetchPrimaryDevice().error().errorDescription(),
              QStringLiteral("Could not read device storage (df)."));

    const QString none = ADBError::noDevice().errorDescription();
    EXPECT_EQ(none,
              QStringLiteral("No Android device connected. Plug in your phone and turn on USB debugging."));
    for (const char *state :
         {"none", "offline", "unauthorized", "authorizing", "recovery",
          "no permissions (user in plugdev group; are your udev rules wrong?); see [http://x]"}) {
        phone.set(QStringLiteral("state"), state);
        EXPECT_EQ(ADBClient::fetchPrimaryDevice().error().errorDescription(), none) << state;
    }
    phone.set(QStringLiteral("devices.stdout"),
              "List of devices attached\nA1\toffline\nB2\tdevice\nC3\tdevice\n");
    EXPECT_EQ(*ADBClient::listDeviceSerials(), (QStringList{QStringLiteral("B2"), QStringLiteral("C3")}));
}

TEST(Device, storageOfTheDataPartitionWhereSharedStorageCannotBeRead) {
    const ScriptedADB adb("[ \"$5\" = /data ] && echo '/dev/block 200 100 100 50% /data' || exit 1");
    EXPECT_EQ(*ADBClient::fetchStorageBytes(QStringLiteral("x")),
              (ADBClient::StorageBytes{102'400, 204'800}));
}

TEST(Listing, hostileNamesAreFoundAgain) {
    DemoPhone phone;
    const QString longName = QString(63, QChar(0x00fc)) + QString(129, QLatin1Char('x')); // 255 bytes
    const QStringList names{QStringLiteral("it's"),
                            QStringLiteral("$(touch pwned)"),
                            QStringLiteral("`touch pwned`"),
                            QStringLiteral("a;b|c&d"),
                            QStringLiteral("-rf"),
                            QStringLiteral("\"quoted\""),
                            QStringLiteral("back\\slash"),
                            QStringLiteral("😀 emoji"),
                            QStringLiteral("'; touch pwned; '"),
                            longName};
    for (const QString &name : names) {
        const QString folder = QStringLiteral("hostile/") + name;
        phone.write(folder + QLatin1Char('/') + name, name.toUtf8());
        const auto items = ADBClient::listDirectory(DemoPhone::serial(), QStringLiteral("/sdcard/") + folder);
        ASSERT_TRUE(items.has_value()) << name.toStdString();
        ASSERT_EQ(namesOf(*items), QStringList{name});
        QTemporaryDir target;
        const QString local = target.filePath(QStringLiteral("copy"));
        EXPECT_TRUE(ADBClient::runTransfer(pull(items->first().path, local), 0, local, {}).has_value());
        EXPECT_EQ(contents(local), name.toUtf8());
    }
    EXPECT_EQ(ADBClient::listDirectory(DemoPhone::serial(), QStringLiteral("/sdcard/hostile"))->size(),
              names.size());
    EXPECT_FALSE(phone.exists(QStringLiteral("pwned")));
    EXPECT_FALSE(phone.exists(QStringLiteral("hostile/pwned")));
}

TEST(Search, findsNamesWithTheirFacts) {
    DemoPhone phone;
    const QDateTime noon(QDate(2024, 5, 1), QTime(12, 0));
    phone.write(QStringLiteral("Download/Holiday plan.txt"), "abc", noon);
    phone.write(QStringLiteral("DCIM/holiday's.jpg"), "12345", noon);
    phone.write(QStringLiteral("DCIM/a|holiday|b.jpg"), "1", noon);
    phone.write(QStringLiteral("DCIM/.holiday"), "hidden");
    phone.makeFolder(QStringLiteral("Holidays"));
    const auto hits =
        ADBClient::search(DemoPhone::serial(), QStringLiteral("/sdcard/"), QStringLiteral(" HOLI*day "), 200);
    ASSERT_TRUE(hits.has_value());
    EXPECT_EQ(namesOf(*hits),
              (QStringList{QStringLiteral("Holidays"), QStringLiteral("a|holiday|b.jpg"),
                           QStringLiteral("Holiday plan.txt"), QStringLiteral("holiday's.jpg")}));
    EXPECT_TRUE(hits->first().isDirectory);
    EXPECT_EQ(hits->first().sizeBytes, std::nullopt);
    EXPECT_EQ(hits->at(3).sizeBytes, 5);
    EXPECT_EQ(hits->at(3).modifiedAt->toLocalTime(), noon);
    EXPECT_EQ(hits->at(3).path, QStringLiteral("/sdcard/DCIM/holiday's.jpg"));

    // Text that tries to leave its quotes only loses its special characters.
    EXPECT_TRUE(ADBClient::search(DemoPhone::serial(), QStringLiteral("/sdcard"),
                                  QStringLiteral("x'; touch /sdcard/pwned; '"), 200)
                    ->isEmpty());
    EXPECT_FALSE(phone.exists(QStringLiteral("pwned")));
    const auto before = phone.commandLines().size();
    EXPECT_TRUE(ADBClient::search(DemoPhone::serial(), QStringLiteral("/sdcard"), QStringLiteral(" a "), 200)
                    ->isEmpty());
    EXPECT_EQ(phone.commandLines().size(), before) << "one character is not asked for";
}

TEST(Search, asksForFactsInBatchesAndLivesWithoutThem) {
    DemoPhone phone;
    for (int i = 0; i < 85; ++i)
        phone.write(QStringLiteral("many/hit %1.txt").arg(i, 2, 10, QLatin1Char('0')), "x");
    const auto statRuns = [&] {
        QList<qsizetype> paths;
        for (const QStringList &line : phone.commandLines()) {
            if (line.last().startsWith(QLatin1String("stat ")))
                paths.append(line.last().count(QStringLiteral("/sdcard/")));
        }
        return paths;
    };
    EXPECT_EQ(
        ADBClient::search(DemoPhone::serial(), QStringLiteral("/sdcard"), QStringLiteral("hit"), 200)->size(),
        85);
    EXPECT_EQ(statRuns(), (QList<qsizetype>{40, 40, 5}));

    phone.set(QStringLiteral("stat.exit"), "1");
    const auto bare =
        ADBClient::search(DemoPhone::serial(), QStringLiteral("/sdcard"), QStringLiteral("hit"), 50);
    ASSERT_EQ(bare->size(), 50);
    EXPECT_EQ(bare->first().sizeBytes, std::nullopt);
    EXPECT_EQ(bare->first().modifiedAt, std::nullopt);

    phone.set(QStringLiteral("find.exit"), "1");
    phone.set(QStringLiteral("find.stderr"), "error: device offline\n");
    EXPECT_EQ(ADBClient::search(DemoPhone::serial(), QStringLiteral("/sdcard"), QStringLiteral("hit"), 200)
                  .error()
                  .errorDescription(),
              QStringLiteral("error: device offline"));
}

TEST(Search, existingPathsAreMatchedWhateverTheirNamesHold) {
    DemoPhone phone;
    QStringList taken;
    QStringList asked;
    for (const char16_t *name : {u"it's here",
                                 u"line\nfeed",
                                 u"\n",
                                 u"return\r",
                                 u"next\u0085line",
                                 u"line\u2028separator",
                                 u"blank ",
                                 u" blank",
                                 u"tab\t",
                                 u"wide\u3000",
                                 u"e\u0301",
                                 u"two  blanks",
                                 u"a|directory|1|1",
                                 u"taken",
                                 u"free\nfree",
                                 u"-e",
                                 u"$(touch pwned)",
                                 u"back\\slash",
                                 u"'",
                                 u"* daemon",
                                 u"\\n"}) {
        const QString text = QString::fromUtf16(name);
        phone.write(text, "x");
        taken.append(QStringLiteral("/sdcard/") + text);
        asked += {QStringLiteral("/sdcard/not ") + text, taken.last(), taken.last() + QStringLiteral("  ")};
    }
    phone.link(QStringLiteral("dangling"), QStringLiteral("nowhere"));
    taken.append(QStringLiteral("/sdcard/dangling"));
    asked += {taken.last(), QStringLiteral("/sdcard/blank"), QStringLiteral("/sdcard/line")};
    const auto existing = ADBClient::existingPaths(DemoPhone::serial(), asked);
    ASSERT_TRUE(existing.has_value()) << existing.error().errorDescription().toStdString();
    EXPECT_EQ(*existing, QSet<QString>(taken.begin(), taken.end()));
    EXPECT_FALSE(phone.exists(QStringLiteral("pwned")));
    EXPECT_EQ(phone.commandLines().size(), 2) << "40 paths at a time";
}

TEST(Search, existingPathsAreAskedInQuestionsOfBoundedLength) {
    DemoPhone phone;
    const QString longest = QString(40, QLatin1Char('\'')) + QString(69, QChar(0x65E5)); // 247 bytes
    QStringList paths;
    for (int i = 0; i < 40; ++i)
        paths.append(QStringLiteral("/sdcard") + QString(QLatin1Char('/') + longest).repeated(16) +
                     QString::number(i));
    EXPECT_EQ(*ADBClient::existingPaths(DemoPhone::serial(), paths), QSet<QString>());
    qsizetype asked = 0;
    for (const QStringList &line : phone.commandLines()) {
        EXPECT_LE(line.last().toUtf8().size(), 65'535) << "adb refuses longer ones";
        asked += line.last().count(QStringLiteral("/sdcard"));
    }
    EXPECT_EQ(asked, paths.size());
}

TEST(Search, whatThePhoneDidNotSayIsNotFree) {
    const struct {
        const char *answer;
        bool isKnown;
    } cases[] = {
        {"free\\ntaken\\n", true},
        {"* daemon not running; starting now at tcp:5037\\n* daemon started "
         "successfully\\nfree\\r\\ntaken\\r\\n",
         true},
        {"", false},
        {"free\\n", false},
        {"free\\ntake", false},
        {"free\\ntaken\\nfree\\n", false},
        {"free\\n/sdcard/b\\ntaken\\n", false},
        {"free\\n\\377\\ntaken\\n", false},
        {"/sdcard/b|regular file|1|1\\n/|directory|1|1\\n", false},
    };
    const QString a = QStringLiteral("/sdcard/a");
    const QString b = QStringLiteral("/sdcard/b");
    for (const auto &c : cases) {
        const ScriptedADB adb("printf '" + QByteArray(c.answer) + "'");
        const auto existing = ADBClient::existingPaths(DemoPhone::serial(), {a, b});
        ASSERT_EQ(existing.has_value(), c.isKnown) << c.answer;
        if (existing)
            EXPECT_EQ(*existing, QSet<QString>{b});
        else
            EXPECT_EQ(existing.error().errorDescription(),
                      QStringLiteral("The phone did not say whether this name is free there."));
    }
    const ScriptedADB failing("echo free; exit 1");
    EXPECT_FALSE(ADBClient::existingPaths(DemoPhone::serial(), {b}).has_value());
}

TEST(Search, factsAreMatchedByTheirPlaceInTheAnswer) {
    DemoPhone phone;
    QStringList paths;
    for (const char16_t *name :
         {u"line\u2028separator", u"blank ", u"blank", u"a|directory|1|1", u"line\nfeed", u"e\u0301", u"a"}) {
        phone.write(QString::fromUtf16(name), QByteArray(paths.size() + 1, 'x'));
        paths.append(QStringLiteral("/sdcard/") + QString::fromUtf16(name));
    }
    const QString gone = QStringLiteral("/sdcard/gone ");
    const auto facts = ADBClient::fetchSearchMetadata(DemoPhone::serial(), QStringList{gone} + paths);
    EXPECT_EQ(facts.size(), paths.size());
    for (qsizetype i = 0; i < paths.size(); ++i) {
        EXPECT_EQ(facts.value(paths[i]).sizeBytes, i + 1) << paths[i].toStdString();
        EXPECT_FALSE(facts.value(paths[i]).isDirectory) << paths[i].toStdString();
    }
}

TEST(Transfer, percentagesOfTheErrorStreamAreReportedInOrder) {
    // Each step waits for the test to have seen the one before.
    const ScriptedADB adb(
        "cd \"$(dirname \"$0\")\"\n"
        "printf '[  5%%] /sdcard/a\\n' >&2; until read x < step; do :; done\n"
        "printf '[ 42%%] /sdcard/a\\n' >&2; until read x < step; do :; done\n"
        "printf '[100%%] /sdcard/a\\n[100%%] /sdcard/a\\n' >&2; until read x < step; do :; done\n");
    const QString fifo = adb.filePath("platform-tools/step");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    std::vector<Report> reports;
    const auto result =
        ADBClient::runTransfer(pull(QStringLiteral("/sdcard/a"), QStringLiteral("/nowhere")), 1'000'000, {},
                               [&](double fraction, qint64 done, qint64 total) {
                                   reports.push_back({fraction, done, total});
                                   QFile step(fifo);
                                   ASSERT_TRUE(step.open(QIODevice::WriteOnly));
                                   step.write("\n");
                               });
    EXPECT_EQ(message(result), QStringLiteral("(success)"));
    EXPECT_EQ(reports,
              (std::vector<Report>{
                  {0.05, 50'000, 1'000'000}, {0.42, 420'000, 1'000'000}, {0.99, 1'000'000, 1'000'000}}));
}

TEST(Transfer, outputIsATerminalAndItsPercentagesCount) {
    const ScriptedADB adb("cd \"$(dirname \"$0\")\"; [ -t 1 ] || exit 7; [ \"$TERM\" = xterm ] || exit 8\n"
                          "read x && exit 9\n"
                          "printf '\\r[ 25%%] /sdcard/[99%%].bin\\033[K'; until read x < step; do :; done\n"
                          "printf '\\r[ 50%%] /sdcard/[99%%].bin\\033[K'; until read x < step; do :; done\n");
    const EnvironmentGuard guard({"TERM"});
    qputenv("TERM", "dumb");
    const QString fifo = adb.filePath("platform-tools/step");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    std::vector<Report> reports;
    const auto result = ADBClient::runTransfer(push(QStringLiteral("/a"), QStringLiteral("/sdcard/a")), 0, {},
                                               [&](double fraction, qint64 done, qint64 total) {
                                                   reports.push_back({fraction, done, total});
                                                   QFile step(fifo);
                                                   ASSERT_TRUE(step.open(QIODevice::WriteOnly));
                                                   step.write("\n");
                                               });
    EXPECT_EQ(message(result), QStringLiteral("(success)"));
    EXPECT_EQ(reports, (std::vector<Report>{{0.25, 0, 0}, {0.5, 0, 0}}));
}

TEST(Transfer, theGrowingDestinationIsProgressToo) {
    const ScriptedADB adb(
        "cd \"$(dirname \"$0\")\"; mkdir out; printf 1234567 > out/a; printf 123 > out/.hidden\n"
        "mkdir out/sub; printf 123 > out/sub/b; until read x < step; do :; done");
    const QString fifo = adb.filePath("platform-tools/step");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const QString out = adb.filePath("platform-tools/out");
    Reports reports;
    std::thread release([&] {
        while (reports.list().empty() || reports.list().back().done < 10)
            std::this_thread::yield();
        QFile step(fifo);
        ASSERT_TRUE(step.open(QIODevice::WriteOnly));
        step.write("\n");
    });
    const auto result =
        ADBClient::runTransfer(pull(QStringLiteral("/sdcard/out"), out), 100, out, reports.receiver());
    release.join();
    EXPECT_EQ(message(result), QStringLiteral("(success)"));
    EXPECT_EQ(reports.list().back(), (Report{0.1, 10, 100}));
    EXPECT_EQ(ADBClient::allocatedByteCount(out), 10);
    EXPECT_EQ(ADBClient::allocatedByteCount(out + QStringLiteral("/a")), 7);
    EXPECT_EQ(ADBClient::allocatedByteCount(QStringLiteral("/nowhere")), 0);
}

TEST(Transfer, growthIsNoProgressOfAnUnknownSize) {
    const ScriptedADB adb("exit 0");
    const QString out = adb.filePath("out");
    write(out, "12345");
    Reports reports;
    EXPECT_EQ(
        message(ADBClient::runTransfer(pull(QStringLiteral("/sdcard/out"), out), 0, out, reports.receiver())),
        QStringLiteral("(success)"));
    EXPECT_EQ(reports.list(), std::vector<Report>());
}

TEST(Transfer, aLongSilenceIsNoEnd) {
    // The phone is busy for longer than the reader waits for the terminal at a time.
    const ScriptedADB adb("sleep 0.3; printf '\\r[ 25%%] /sdcard/a\\033[K'");
    Reports reports;
    EXPECT_EQ(message(ADBClient::runTransfer(push(QStringLiteral("/a"), QStringLiteral("/sdcard/a")), 0, {},
                                             reports.receiver())),
              QStringLiteral("(success)"));
    EXPECT_EQ(reports.list(), (std::vector<Report>{{0.25, 0, 0}}));
}

TEST(Transfer, filesAndFoldersArriveWhole) {
    DemoPhone phone;
    QTemporaryDir folder;
    QByteArray content(3'000'000, '\0');
    for (qsizetype i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 7 + i / 251);
    phone.write(QStringLiteral("DCIM/it's.bin"), content);
    const QString local = folder.filePath(QStringLiteral("it's.bin"));
    phone.set(QStringLiteral("bandwidth"), "5");
    Reports reports;
    EXPECT_EQ(message(ADBClient::runTransfer(pull(QStringLiteral("/sdcard/DCIM/it's.bin"), local),
                                             content.size(), local, reports.receiver())),
              QStringLiteral("(success)"));
    EXPECT_EQ(contents(local), content);
    const auto list = reports.list();
    EXPECT_GE(list.size(), 6U);
    for (size_t i = 1; i < list.size(); ++i)
        EXPECT_GT(list[i].fraction, list[i - 1].fraction + 0.001);

    EXPECT_EQ(message(ADBClient::runTransfer(push(local, QStringLiteral("/sdcard/New/it's.bin")), 0, {}, {})),
              QStringLiteral("(success)"));
    EXPECT_EQ(phone.read(QStringLiteral("New/it's.bin")), content);
    const QString tree = folder.filePath(QStringLiteral("tree"));
    EXPECT_EQ(message(ADBClient::runTransfer(pull(QStringLiteral("/sdcard/DCIM"), tree), 0, tree, {})),
              QStringLiteral("(success)"));
    EXPECT_EQ(contents(tree + QStringLiteral("/it's.bin")), content);
}

TEST(Transfer, theReasonIsTheToolsOwnAndNeverItsChatter) {
    const struct {
        const char *script;
        const char *reason;
    } cases[] = {
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
    for (const auto &c : cases) {
        const ScriptedADB adb("[ \"$1\" = devices ] && exit 2\n" + QByteArray(c.script) + "; exit 1");
        EXPECT_EQ(message(ADBClient::runTransfer(pull(QStringLiteral("/sdcard/a"), QStringLiteral("/tmp/a")),
                                                 0, {}, {})),
                  QString::fromUtf8(c.reason))
            << c.script;
    }
}

TEST(Transfer, theReasonIsReadAlsoWhenTheToolHasEndedBefore) {
    const ScriptedADB adb("cd \"$(dirname \"$0\")\"; echo $$ > pid; printf '\\r[ 25%%] /sdcard/a\\033[K'\n"
                          "read x < step; printf '\\r\\nadb: error: the last words\\n'; exit 1");
    const QString fifo = adb.filePath("platform-tools/step");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const auto whenItHasEnded = [&](double, qint64, qint64) { // holds up the thread that reads
        const QByteArray process = contents(adb.filePath("platform-tools/pid")).trimmed();
        write(fifo, "\n");
        while (QFile::exists(QStringLiteral("/proc/") + QString::fromLatin1(process)))
            std::this_thread::yield();
    };
    EXPECT_EQ(message(ADBClient::runTransfer(push(QStringLiteral("/a"), QStringLiteral("/sdcard/a")), 0, {},
                                             whenItHasEnded)),
              QStringLiteral("the last words"));
}

TEST(Transfer, theLargestSizeIsANumberOfBytesToo) {
    const ScriptedADB adb("printf '\\r[100%%] /sdcard/a\\033[K'");
    constexpr qint64 largest = std::numeric_limits<qint64>::max();
    Reports reports;
    EXPECT_EQ(message(ADBClient::runTransfer(push(QStringLiteral("/a"), QStringLiteral("/sdcard/a")), largest,
                                             {}, reports.receiver())),
              QStringLiteral("(success)"));
    EXPECT_EQ(reports.list(), (std::vector<Report>{{0.99, largest, largest}}));
}

TEST(Transfer, noOtherChildInheritsTheTerminal) {
    const ScriptedADB adb("exit 0");
    terminalFlags = 0;
    EXPECT_EQ(message(ADBClient::runTransfer(pull(QStringLiteral("/sdcard/a"), QStringLiteral("/tmp/a")), 0,
                                             {}, {})),
              QStringLiteral("(success)"));
    EXPECT_EQ(terminalFlags, O_RDWR | O_NOCTTY | O_CLOEXEC) << "a flag that is set later comes too late";
}

TEST(Transfer, theToolsOwnChildDoesNotHoldUpTheEnd) {
    const ScriptedADB adb("trap '' HUP; (exec 2>/dev/null; yes) & exit 0");
    EXPECT_EQ(
        message(ADBClient::runTransfer(push(QStringLiteral("/a"), QStringLiteral("/sdcard/a")), 0, {}, {})),
        QStringLiteral("(success)"));
}

TEST(Transfer, endlessOutputIsReadInBoundedMemory) {
    const ScriptedADB adb("[ \"$1\" = devices ] && exit 1\n"
                          "head -c 20000000 /dev/zero | tr '\\0' x >&2; head -c 20000000 /dev/zero; exit 1");
    QElapsedTimer elapsed;
    elapsed.start();
    const auto result =
        ADBClient::runTransfer(pull(QStringLiteral("/sdcard/a"), QStringLiteral("/tmp/a")), 0, {}, {});
    EXPECT_LT(message(result).size(), 1'000'000);
    EXPECT_LT(elapsed.elapsed(), 15'000) << "4 KiB at a time, with a rest after each, take 20 seconds";
}
