#include "support/DemoPhone.h"
#include "support/Files.h"

#include <QtTest>
#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using namespace vantrel;
using testing::StartsWith;

namespace {

struct Outcome {
    int exitStatus = -1; ///< negative: the signal that ended it
    std::string out;
    std::string err;
};

Outcome adb(const QStringList &arguments) {
    QProcess process;
    process.start(DemoPhone::adb(), arguments);
    EXPECT_TRUE(process.waitForFinished()) << qPrintable(arguments.join(u' '));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -process.exitCode(),
            process.readAllStandardOutput().toStdString(), process.readAllStandardError().toStdString()};
}

QStringList onPhone(QStringList arguments) {
    arguments.prepend(DemoPhone::serial());
    arguments.prepend(u"-s"_s);
    return arguments;
}

Outcome shell(const std::string &line) {
    return adb(onPhone({u"shell"_s, QString::fromStdString(line)}));
}

/// The last word of each line: of a listing the names, as long as they hold no space.
std::vector<std::string> lastWords(const std::string &text) {
    std::vector<std::string> words;
    for (const QString &line : QString::fromStdString(text).split(u'\n', Qt::SkipEmptyParts))
        words.push_back(line.section(u' ', -1).toStdString());
    return words;
}

} // namespace

TEST(DemoPhoneShellTests, refusesEveryLineThatIsNotOneOfItsOwn) {
    DemoPhone phone;
    phone.write(u"a.txt"_s, "a");
    const QByteArray lines =
        "#id#ls#ls -l '/sdcard/'#ls -la '/sdcard/' '/sdcard/'#ls -la '/sdcard/'; touch /sdcard/x#"
        "ls -la '/sdcard/' && touch x#ls -la '/sdcard/' | sh#ls -la '/sdcard/' > x#ls -la /sdcard/$HOME#"
        "ls -la \"/sdcard/\"#ls -la `id`#ls -la /sdcard/*#ls -la '/sdcard/#ls -la '/sdcard/'\nid#"
        "| ls -la '/sdcard/'#ls -la '/sdcard/' |#; true#getprop#getprop ro.serialno#df /#rm -rf '/sdcard/'#"
        "find -L '/sdcard' -iname '*a*'#"
        "find -L '/sdcard' -iname '*a*' -delete 2>/dev/null | head -n 5; true#"
        "find -L '/sdcard' -iname '*a*' 2>/dev/null | head -n x; true#"
        "find -L '/sdcard' -iname '*a*' 2>/dev/null | head -n 5; false#"
        "stat -c '%n' '/sdcard/a.txt'#stat -c '%n|%F|%s|%Y'#for p in '/sdcard/a.txt'; do rm \"$p\"; done";
    for (const QByteArray &each : lines.split('#')) {
        const std::string line = each.toStdString();
        const Outcome run = shell(line);
        EXPECT_EQ(run.exitStatus, 1) << line;
        EXPECT_EQ(run.out, "") << line;
        EXPECT_THAT(run.err, StartsWith("demo phone: no such command: -s demo-phone shell")) << line;
    }
    for (const QStringList &arguments :
         {QStringList{}, QStringList{u"reboot"_s}, onPhone({u"pull"_s, u"x"_s}),
          onPhone({u"push"_s, u"-a"_s, u"b"_s, u"c"_s})})
        EXPECT_EQ(adb(arguments).exitStatus, 1) << qPrintable(arguments.join(u' '));
    EXPECT_EQ(QDir(phone.root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"a.txt"_s});
}

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
