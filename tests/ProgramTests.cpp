// The program as users start it, looked at from outside: on machines that make it hard, and left alone.

#include "support/Files.h"
#include "support/WaitFor.h"

#include <QTcpServer>
#include <QtTest>
#include <gmock/gmock.h>

#include <unistd.h>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// One start with a home of its own. The adb it finds notes that it was asked: the last thing of a start.
class Program {
public:
    Program() {
        write(path(u"resources/platform-tools/adb"_s), "#!/bin/sh\necho asked >> \"$ASKED\"\n");
        QFile::setPermissions(path(u"resources/platform-tools/adb"_s), QFile::ReadOwner | QFile::ExeOwner);
        for (const QString &folder : {u"run"_s, u"home/.config/vantrel"_s})
            QDir().mkpath(path(folder));
        QFile::setPermissions(path(u"run"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME",
                                 "DISPLAY", "WAYLAND_DISPLAY", "DO_NOT_TRACK"})
            variables.remove(QLatin1String(name));
        variables.insert(u"HOME"_s, path(u"home"_s));
        variables.insert(u"XDG_RUNTIME_DIR"_s, path(u"run"_s));
        variables.insert(u"VANTREL_RESOURCES"_s, path(u"resources"_s));
        variables.insert(u"ASKED"_s, path(u"asked"_s));
    }
    ~Program() {
        QFile::setPermissions(path(u"home/.config/vantrel"_s),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    [[nodiscard]] QString path(const QString &below) const { return directory.filePath(below); }
    [[nodiscard]] QString settings() const { return path(u"home/.config/vantrel/settings.ini"_s); }

    /// Starts it behind this shell command, and waits until it has looked for a phone.
    void start(QProcess &process, const QString &prefix = {}) {
        QFile::remove(path(u"asked"_s));
        process.setProcessEnvironment(variables);
        process.start(u"sh"_s,
                      {u"-c"_s, prefix + u" exec "_s + launcher() + u" \"$0\""_s, u"" VANTREL_PROGRAM ""_s});
        ASSERT_TRUE(process.waitForStarted());
        EXPECT_TRUE(waitFor(
            [&] { return QFile::exists(path(u"asked"_s)) || process.state() == QProcess::NotRunning; }));
        EXPECT_EQ(process.state(), QProcess::Running);
    }
    /// Closes it as a log-out does; what it has said on standard error, but for the toolkit's own remarks.
    static std::string end(QProcess &process) {
        process.terminate();
        EXPECT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitCode(), 0);
        return own(process.readAllStandardError());
    }
    static std::string own(const QByteArray &said) {
        QByteArrayList lines = said.split('\n');
        lines.removeIf([](const QByteArray &line) {
            return line.startsWith("This plugin does not support") || line.startsWith("QStandardPaths: ");
        });
        return lines.join('\n').trimmed().toStdString();
    }

    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    QTemporaryDir directory{QDir::tempPath() + u"/v-XXXXXX"_s}; // sockets have short names

private:
    /// File permissions do not bind the superuser, unless it gives that up.
    static QString launcher() {
        return geteuid() == 0 ? u"setpriv --bounding-set=-dac_override,-dac_read_search"_s : QString();
    }
};

/// What one running process holds that analytics would need.
QStringList tracesOf(qint64 pid) {
    QStringList traces;
    const QString process = u"/proc/%1/"_s.arg(pid);
    for (const QString &task : QDir(process + u"task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString name =
            QString::fromLocal8Bit(contents(process + u"task/"_s + task + u"/comm"_s)).trimmed();
        // The toolkit's own: the main thread, its workers, its connection to the desktop.
        if (!QStringList{u"vantrel"_s, u"Thread (pooled)"_s, u"QDBusConnection"_s}.contains(name) &&
            name != u"(missing)"_s)
            traces.append(u"thread "_s + name);
    }
    QByteArray network;
    for (const char *table : {"tcp", "tcp6", "udp", "udp6"})
        network += contents(process + u"net/"_s + QLatin1String(table));
    for (const QString &descriptor : QDir(process + u"fd"_s).entryList(QDir::AllEntries | QDir::System)) {
        const QString target = QFile::symLinkTarget(process + u"fd/"_s + descriptor).section(u'/', -1);
        if (target.startsWith(u"socket:["_s) &&
            network.contains(QByteArray(' ' + target.mid(8).chopped(1).toLatin1() + ' ')))
            traces.append(u"a connection"_s);
    }
    return traces;
}

TEST(ProgramTests, withoutADestinationItDoesNothing) {
    QTcpServer listening;
    ASSERT_TRUE(listening.listen(QHostAddress::LocalHost));
    EXPECT_TRUE(tracesOf(getpid()).contains(u"a connection"_s)) << "one would be seen";
    Program program;
    QProcess process;
    program.start(process);
    QStringList traces;
    // Nothing of the kind appears in all that time; most would within a second, a first attempt to send in
    // ten.
    EXPECT_FALSE(QTest::qWaitFor(
        [&] {
            traces = tracesOf(process.processId());
            return !traces.isEmpty();
        },
        20'000))
        << traces.join(u", "_s).toStdString();
    EXPECT_THAT(Program::end(process), IsEmpty());
    QStringList files;
    for (QDirIterator each(program.path(u"home"_s), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         each.hasNext();)
        files.append(QDir(program.path(u"home"_s)).relativeFilePath(each.next()));
    files.removeIf([](const QString &file) { return file.startsWith(u".cache/fontconfig/"_s); });
    EXPECT_EQ(files, QStringList(u".config/vantrel/settings.ini"_s));
}

TEST(ProgramTests, anAdverseMachineKeepsItNeitherFromStartingNorFromWhatItHad) {
    const QByteArray mine = "# mine\nappearancePreference=dark\n";
    const QByteArray stored = mine + "NSInitialToolTipDelay=250\n";
    const QByteArray damaged = "NSInitialToolTipDelay=250\nanalyticsDisabled=true\n";
    // What a shell does to the machine before the start, and the settings at the end.
    for (const auto &[adversity, after] :
         {std::pair(u""_s, stored),
          {u"chmod a-w ~ ~/.config ~/.config/vantrel;"_s, mine},
          {u"trap '' XFSZ; ulimit -f 0;"_s, mine}, // a full disk
          {u"export HOME=/dev/null; export XDG_CONFIG_HOME=$HOME XDG_CACHE_HOME=$HOME XDG_DATA_HOME=$HOME;"_s,
           mine},
          {u"export XDG_RUNTIME_DIR=/dev/null/run;"_s, stored},
          {u"export DBUS_SESSION_BUS_ADDRESS=unix:path=/dev/null/bus;"_s, stored},
          {u"export TZDIR=/dev/null TZ=Europe/Vienna;"_s, stored},
          {u"unset LANG LC_ALL LANGUAGE;"_s, stored},
          {u"echo dark, please >~/.config/vantrel/settings.ini;"_s, damaged},
          {u"cd ~/.config/vantrel; rm settings.ini; mkfifo settings.ini;"_s, QByteArray()}}) {
        SCOPED_TRACE(adversity.toStdString());
        Program program;
        write(program.settings(), mine);
        QProcess process;
        program.start(process, adversity);
        const std::string said = Program::end(process);
        if (after == stored || after == damaged)
            EXPECT_THAT(said, IsEmpty());
        else
            EXPECT_THAT(said, HasSubstr("vantrel: The settings could not be stored: "));
        if (QFileInfo(program.settings()).isFile()) {
            EXPECT_EQ(contents(program.settings()), after);
        }
    }
}

TEST(ProgramTests, twoSessionsOfOneUserHaveAWindowEach) {
    Program program;
    write(program.settings(), "appearancePreference=dark\n");
    QProcess first;
    QProcess again;
    QProcess second;
    program.start(first);
    program.variables.insert(u"DISPLAY"_s, u":7"_s);
    program.start(second);
    again.setProcessEnvironment(program.variables);
    again.start(u"" VANTREL_PROGRAM ""_s, {});
    EXPECT_TRUE(waitFor([&] { return again.state() == QProcess::NotRunning; })) << "one window in a session";
    EXPECT_EQ(again.exitCode(), 0);
    EXPECT_THAT(Program::end(second), IsEmpty());
    EXPECT_EQ(first.state(), QProcess::Running);
    EXPECT_THAT(Program::end(first), IsEmpty());
    EXPECT_EQ(contents(program.settings()), "appearancePreference=dark\nNSInitialToolTipDelay=250\n");
}

} // namespace
} // namespace vantrel
