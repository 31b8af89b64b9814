#include "support/DemoPhone.h"
#include "support/Files.h"

#include <QDirIterator>
#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace vantrel;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr int patience = 30000;

struct Outcome {
    int exitStatus = -1; ///< negative: the signal that ended it
    std::string out;
    std::string err;
};

Outcome outcomeOf(QProcess &process) {
    EXPECT_TRUE(process.waitForFinished(patience)) << qPrintable(process.arguments().join(u' '));
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
    arguments.prepend(u"-s"_s);
    return arguments;
}

Outcome shell(const std::string &line) {
    return adb(onPhone({u"shell"_s, QString::fromStdString(line)}));
}

Outcome copy(const char *verb, const QString &from, const QString &to) {
    return adb(onPhone({QString::fromLatin1(verb), from, to}));
}

/// The last word of each line: of a listing the names, as long as they hold no space.
std::vector<std::string> lastWords(const std::string &text) {
    std::vector<std::string> words;
    for (const QString &line : QString::fromStdString(text).split(u'\n', Qt::SkipEmptyParts))
        words.push_back(line.section(u' ', -1).toStdString());
    return words;
}

} // namespace

// -- Devices and what they say of themselves

TEST(DemoPhoneDevicesTests, statesAreListedAndRefuseInAdbsWords) {
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
        phone.set(u"state"_s, state);
        EXPECT_EQ(adb({u"devices"_s}).out,
                  std::string("List of devices attached\ndemo-phone\t") + state + "\n\n");
        const Outcome shellRun = shell("getprop ro.product.model");
        const Outcome copyRun = copy("pull", u"/sdcard/nothing"_s, phone.root());
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
    EXPECT_EQ(adb({u"devices"_s}).out, "List of devices attached\n\n");
    EXPECT_EQ(shell("df /data").err, "error: device 'demo-phone' not found\n");
}

// -- The shell

TEST(DemoPhoneShellTests, refusesEveryLineThatIsNotOneOfItsOwn) {
    DemoPhone phone;
    phone.write(u"a.txt"_s, "a");
    const char *lines[] = {"",
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
                           "for p in '/sdcard/a.txt'; do rm \"$p\"; done"};
    for (const char *line : lines) {
        const Outcome run = shell(line);
        EXPECT_EQ(run.exitStatus, 1) << line;
        EXPECT_EQ(run.out, "") << line;
        EXPECT_THAT(run.err, StartsWith("demo phone: no such command: -s demo-phone shell")) << line;
    }
    for (const QStringList &arguments :
         {QStringList{}, QStringList{u"version"_s}, onPhone({u"pull"_s, u"x"_s}),
          onPhone({u"push"_s, u"-a"_s, u"b"_s, u"c"_s})})
        EXPECT_EQ(adb(arguments).exitStatus, 1) << qPrintable(arguments.join(u' '));
    EXPECT_EQ(QDir(phone.root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"a.txt"_s});
}

TEST(DemoPhoneShellTests, quotedNamesAreOneWordWhateverTheyHold) {
    DemoPhone phone;
    const QString names[] = {u"it's"_s,          u"'; touch x; '"_s,  u"$(id) `id` $HOME"_s,
                             u"a | b & c > d"_s, u"two  spaces\\n"_s, u"-la"_s,
                             u"link -> here"_s,  u"🎉 *?[x]{y}!#~"_s,  QString(84, QChar(u'\u65e5'))};
    for (const QString &name : names) {
        phone.write(name + u"/inside.txt"_s, "12345");
        QString quoted = u"/sdcard/"_s + name;
        quoted.replace(u'\'', u"'\\''"_s);
        // As adb does, in any number of arguments.
        const Outcome ls = adb(onPhone({u"shell"_s, u"ls"_s, u"-la"_s, u'\'' + quoted + u"/'"_s}));
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

TEST(DemoPhoneListingTests, pathsLeadWhereThePhonesWouldAndNeverOut) {
    DemoPhone phone;
    phone.write(u"in/file.txt"_s, "x");
    phone.link(u"up"_s, u".."_s);
    phone.link(u"host"_s, u"/etc"_s);
    phone.link(u"climb"_s, u"../../../../../../../../etc"_s);
    phone.link(u"in/self"_s, u"self"_s);
    phone.link(u"alias"_s, u"in"_s);
    phone.link(u"absolute"_s, u"/sdcard/alias"_s);
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

TEST(DemoPhoneListingTests, namesAreEscapedAsToyboxDoes) {
    DemoPhone phone;
    // Each name, and how a phone's toybox was seen to print it.
    const std::pair<QByteArray, const char *> cases[] = {
        {" lead", "\\ lead"},
        {"a\x01", "a\\001"},
        {"-> x", "->\\ x"},
        {"\\040", "\\\\040"},
        {"bad\xff\xfe", "bad\\377\\376"},
        {"bell\a", "bell\\a"},
        {"bs\b", "bs\\b"},
        {"c1\u0085x", "c1\\205x"},
        {"del\x7f", "del\\177"},
        {"esc\x1b", "esc\\e"},
        {"ff\f", "ff\\f"},
        {"grüße 😀", "grüße\\ 😀"},
        {"line\nx", "line\\nx"},
        {"ls\u2028", "ls\\342\\200\\250"},
        {"nb\u00a0", "nb\u00a0"},
        {"ov\xc0\xaf", "ov\\300\\257"},
        {"q'\"*?", "q'\"*?"},
        {"\xc2", "\\302"},
    };
    std::vector<std::string> expected{".", ".."};
    for (const auto &[name, printed] : cases) {
        const QByteArray path = QFile::encodeName(phone.root()) + '/' + name;
        ASSERT_EQ(::mkdir(path.constData(), 0700), 0) << printed;
        expected.emplace_back(printed);
    }
    std::vector<std::string> listed;
    for (const QByteArray &line : QByteArray::fromStdString(shell("ls -lab '/sdcard/'").out).split('\n')) {
        if (line.startsWith('d')) // the name stands behind the minute
            listed.push_back(line.mid(line.indexOf(':') + 4).toStdString());
    }
    EXPECT_THAT(listed, testing::UnorderedElementsAreArray(expected));
    phone.set(u"escapes"_s, "off");
    const Outcome old = shell("ls -lab '/sdcard/'");
    EXPECT_EQ(old.err, "ls: Unknown option 'b' (see \"ls --help\")\n");
    EXPECT_EQ(old.exitStatus, 1);
}

// -- The furnished phone

TEST(DemoPhoneFurnishingTests, aFolderThatDoesNotExistIsFilledOnce) {
    DemoPhone phone;
    ASSERT_TRUE(QDir(phone.root()).removeRecursively());
    // Several at once, as the program starts them.
    std::array<QProcess, 3> processes;
    for (QProcess &process : processes)
        process.start(DemoPhone::adb(), {u"devices"_s});
    for (QProcess &process : processes)
        EXPECT_EQ(outcomeOf(process).exitStatus, 0);
    EXPECT_THAT(QDir(QFileInfo(phone.root()).path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                ElementsAre(u"phone"_s));

    qint64 bytes = 0;
    const QDateTime now = QDateTime::currentDateTime();
    QDirIterator files(phone.root(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QFileInfo file(files.next());
        bytes += file.isFile() ? file.size() : 0;
        const qint64 days = file.lastModified().daysTo(now);
        EXPECT_TRUE(days >= 2 && days <= 731) << qPrintable(file.filePath()) << days;
        if (file.suffix() == u"png"_s) {
            const QByteArray png = contents(file.filePath());
            EXPECT_TRUE(png.startsWith("\x89PNG\r\n\x1a\n")) << qPrintable(file.filePath());
            EXPECT_EQ(png.last(12), QByteArray("\0\0\0\0IEND\xae\x42\x60\x82", 12))
                << qPrintable(file.filePath());
        }
    }
    EXPECT_GT(bytes, 20'000'000);
    EXPECT_LT(bytes, 40'000'000);

    ASSERT_TRUE(QFile::remove(phone.hostPath(u"Documents/empty.txt"_s)));
    EXPECT_EQ(adb({u"devices"_s}).exitStatus, 0);
    EXPECT_FALSE(phone.exists(u"Documents/empty.txt"_s));
}
