// The program as users start it, looked at from outside: on machines that make it hard, and left alone.

#include "support/Files.h"
#include "support/WaitFor.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTcpServer>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <sys/stat.h>
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
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "DISPLAY",
                                 "WAYLAND_DISPLAY", "DO_NOT_TRACK"})
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
    using Preparation = std::function<void(Program &)>;
    const auto set = [](const char *name, const QString &value) {
        return [=](Program &program) { program.variables.insert(QLatin1String(name), value); };
    };
    const QByteArray mine = "# mine\nappearancePreference=dark\n";
    const QByteArray stored = mine + "NSInitialToolTipDelay=250\n";
    struct Case {
        const char *name;
        Preparation prepare;
        QByteArray after; ///< the settings at the end
        const char *says = "";
        QString prefix = {};
    };
    const Preparation nothing = [](Program &) {};
    const char *notStored = "vantrel: The settings could not be stored: ";
    for (const auto &[name, prepare, after, says, prefix] : {
             Case{"nothing special", nothing, stored},
             Case{"a read-only home",
                  [](Program &program) {
                      for (const QString &folder : {u"home/.config/vantrel"_s, u"home/.config"_s, u"home"_s})
                          QFile::setPermissions(program.path(folder), QFile::ReadOwner | QFile::ExeOwner);
                  },
                  mine, notStored},
             Case{"a full disk", nothing, mine, notStored, u"trap '' XFSZ; ulimit -f 0;"_s},
             Case{"a home that is nowhere",
                  [](Program &program) {
                      for (const char *place : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
                          program.variables.insert(QLatin1String(place), u"/dev/null"_s);
                  },
                  mine, notStored},
             Case{"no runtime directory", set("XDG_RUNTIME_DIR", u"/dev/null/run"_s), stored},
             Case{"no D-Bus", set("DBUS_SESSION_BUS_ADDRESS", u"unix:path=/dev/null/bus"_s), stored},
             Case{"no time zones",
                  [](Program &program) {
                      program.variables.insert(u"TZDIR"_s, u"/dev/null"_s);
                      program.variables.insert(u"TZ"_s, u"Europe/Vienna"_s);
                  },
                  stored},
             Case{"no language",
                  [](Program &program) {
                      for (const char *variable : {"LANG", "LC_ALL", "LANGUAGE"})
                          program.variables.remove(QLatin1String(variable));
                  },
                  stored},
             Case{"damaged settings", [](Program &program) { write(program.settings(), "dark, please\n"); },
                  "NSInitialToolTipDelay=250\nanalyticsDisabled=true\n"},
             Case{"a pipe in place of the settings",
                  [](Program &program) {
                      QFile::remove(program.settings());
                      ASSERT_EQ(mkfifo(QFile::encodeName(program.settings()).constData(), 0600), 0);
                  },
                  "", notStored},
         }) {
        SCOPED_TRACE(name);
        Program program;
        write(program.settings(), mine);
        prepare(program);
        QProcess process;
        program.start(process, prefix);
        const std::string said = Program::end(process);
        EXPECT_EQ(said.empty(), *says == 0) << said;
        EXPECT_THAT(said, HasSubstr(says));
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
    EXPECT_THAT(Program::end(second), IsEmpty());
    EXPECT_EQ(first.state(), QProcess::Running);
    EXPECT_THAT(Program::end(first), IsEmpty());
    EXPECT_EQ(contents(program.settings()), "appearancePreference=dark\nNSInitialToolTipDelay=250\n");
}

} // namespace
} // namespace vantrel
