// The program is killed in the middle of its copies, again and again: what stands under a final name is
// whole, and the next start leaves nothing of the earlier ones behind. VANTREL_KILLS and VANTREL_KILL_SEED
// choose how often and which run; ./test --kills is the long one.

#include "support/DemoPhone.h"
#include "support/FakeDesktop.h"
#include "support/Files.h"
#include "support/Processes.h"
#include "support/WaitFor.h"

#include "ADB/ADBClient.h"
#include "State/AppState.h"
#include "Transfers/StagedName.h"
#include "Worker/Worker.h"

#include <QDirIterator>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

class KillTests : public ::testing::Test {
protected:
    KillTests() {
        for (const QString &name :
             {u"a.bin"_s, u"it's b.bin"_s, u"Album/c.bin"_s, u"Album/sub/d.bin"_s, u"e.bin"_s}) {
            for (const QString &side : {phone.hostPath(u"out"_s), mac.filePath(u"out"_s)})
                write(side + u'/' + name, contentsOf(name));
        }
    }

    static QByteArray contentsOf(const QString &name) {
        QByteArray bytes(400'000, '\0');
        QRandomGenerator generator(quint32(qHash(name, 1)));
        for (char &byte : bytes)
            byte = char(generator.bounded(256));
        return bytes;
    }
    void clear() {
        for (const QString &folder : {phone.hostPath(u"in"_s), mac.filePath(u"in"_s)}) {
            QDir(folder).removeRecursively();
            QDir().mkpath(folder);
        }
    }
    /// Starts the program and kills it so many milliseconds later, or lets it end when that is negative.
    void run(int killAfter, const QString &remembered = {}) {
        QProcess program;
        program.setProcessChannelMode(QProcess::ForwardedChannels);
        program.start(QStringLiteral(VANTREL_COPY_PROGRAM), {mac.path(), remembered});
        ASSERT_TRUE(program.waitForStarted());
        if (killAfter >= 0 && !program.waitForFinished(killAfter))
            program.kill();
        ASSERT_TRUE(program.state() == QProcess::NotRunning || program.waitForFinished(120'000));
        ASSERT_TRUE(killAfter >= 0 || program.exitCode() == 0) << program.exitCode();
    }
    /// Looks at everything that was copied: what has a final name must be whole. Returns how many files do.
    int checkedFiles() {
        int files = 0;
        m_staged = 0;
        for (const QString &root : {phone.hostPath(u"in"_s), mac.filePath(u"in"_s)}) {
            QDirIterator entries(root, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                 QDirIterator::Subdirectories);
            while (entries.hasNext()) {
                const QString path = entries.next().mid(root.size() + 1);
                const QStringList names = path.split(u'/');
                if (std::any_of(names.begin(), names.end(), &StagedName::isStaged)) {
                    ++m_staged;
                } else if (entries.fileInfo().isFile()) {
                    EXPECT_TRUE(processes::contentsOf(entries.filePath()) == contentsOf(path))
                        << path.toStdString() << " is not whole";
                    ++files;
                }
            }
        }
        return files;
    }

    DemoPhone phone;
    QTemporaryDir mac;
    int m_staged = 0;
};

TEST_F(KillTests, aFinalNameIsAWholeFileAndTheNextStartSweeps) {
    const int kills = std::max(qEnvironmentVariableIntValue("VANTREL_KILLS"), 8);
    const quint32 seed = qEnvironmentVariableIsSet("VANTREL_KILL_SEED")
                             ? qEnvironmentVariable("VANTREL_KILL_SEED").toUInt()
                             : QRandomGenerator::global()->generate();
    std::printf("VANTREL_KILL_SEED=%u\n", seed);
    QRandomGenerator random(seed);
    constexpr int all = 10; // files, both ways
    int killedInTheMiddle = 0;
    int sweptAfterwards = 0;
    for (int kill = 0; kill < kills && !HasFailure(); ++kill) {
        clear();
        phone.resetAll();
        phone.set(u"pull.bandwidth"_s, "1.5");
        phone.set(u"push.bandwidth"_s, "1.5");
        run(random.bounded(100, 2200));
        const int files = checkedFiles();
        killedInTheMiddle += files > 0 && files < all ? 1 : 0;
        sweptAfterwards += m_staged > 0 ? 1 : 0;
        phone.reset(u"pull.bandwidth"_s);
        phone.reset(u"push.bandwidth"_s);
        run(-1);
        EXPECT_EQ(checkedFiles(), all);
        EXPECT_EQ(m_staged, 0) << "the next start sweeps";
    }
    std::printf("%d kills: %d with some files there, %d with something to sweep\n", kills, killedInTheMiddle,
                sweptAfterwards);
    EXPECT_GT(killedInTheMiddle, 0) << "no kill struck in the middle: nothing was tested";
    EXPECT_GT(sweptAfterwards, 0);
}

TEST_F(KillTests, whatWasNotFinishedIsThereAgainPausedAndEndsWholeAtAClick) {
    constexpr int kills = 4;
    constexpr int all = 10;    // files, both ways
    constexpr int entries = 8; // of the queue
    const QString folder = mac.filePath(u"state"_s);
    const auto kept = [&] { return processes::contentsOf(folder + u"/transfers.json"_s).count("\"name\""); };
    for (int kill = 0; kill < kills && !HasFailure(); ++kill) {
        clear();
        phone.set(u"bandwidth"_s, "0.3");
        QProcess program;
        program.start(QStringLiteral(VANTREL_COPY_PROGRAM), {mac.path(), folder});
        ASSERT_TRUE(waitFor([&] { return kept() == entries; }));
        program.waitForFinished(kill * 700); // the first time at once
        program.kill();
        ASSERT_TRUE(program.waitForFinished(120'000));
        EXPECT_LT(checkedFiles(), all);
        const auto left = kept();
        EXPECT_GT(left, 0);

        phone.reset(u"bandwidth"_s);
        {
            FakeDesktop desktop;
            AppState state(desktop);
            const auto remembering = state.transfers().remember(folder);
            ASSERT_TRUE(waitFor([&] { return remembering.isReady(); }));
            state.refreshDevice(PhoneWatch::Spinner::shown);
            ASSERT_TRUE(waitFor([&] { return !state.isRefreshingDevice(); }));
            EXPECT_EQ(state.transfers().queue().pausedCount(), left) << "nothing goes on by itself";
            EXPECT_FALSE(state.isTransferring());
        }
        EXPECT_EQ(kept(), left);
        run(-1, folder); // another start, with a click
        EXPECT_EQ(checkedFiles(), all);
        EXPECT_EQ(m_staged, 0);
        EXPECT_EQ(kept(), 0);
    }
    Background::stop(&ADBClient::stopRunningTools);
}

TEST_F(KillTests, twoUsersCopyIntoOneFolder) {
    constexpr uid_t nobody = 65534;
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root may start a program as another user";
    clear();
    const auto open = [](const QString &path) { ::chmod(QFile::encodeName(path).constData(), 0777); };
    for (const QString &root : {QFileInfo(phone.root()).path(), mac.path()}) {
        open(root);
        QDirIterator folders(root, QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (folders.hasNext())
            open(folders.next());
    }
    phone.set(u"pull.bandwidth"_s, "1.5");
    phone.set(u"push.bandwidth"_s, "1.5");
    const QStringList staged{u".vantrel-*"_s};
    constexpr auto hidden = QDir::Dirs | QDir::Hidden;
    QProcess programs[2];
    for (QProcess &program : programs) {
        program.setProcessChannelMode(QProcess::ForwardedChannels);
        program.setChildProcessModifier([isOther = &program == programs] {
            ::umask(0);
            if (isOther && (::setgid(nobody) != 0 || ::setuid(nobody) != 0))
                ::_exit(1);
        });
        program.start(QStringLiteral(VANTREL_COPY_PROGRAM), {mac.path()});
        ASSERT_TRUE(waitFor([&] { return !QDir(mac.filePath(u"in"_s)).entryList(staged, hidden).isEmpty(); }))
            << "the other user's is at work when this one's begins";
    }
    for (QProcess &program : programs) {
        ASSERT_TRUE(program.waitForFinished(120'000));
        EXPECT_EQ(program.exitCode(), 0);
    }
    EXPECT_EQ(checkedFiles(), 10);
    EXPECT_EQ(m_staged, 0) << "each has removed what was its own";
    const auto isTheirs = [](const QFileInfo &info) { return info.ownerId() == nobody; };
    QFileInfoList arrived = QDir(mac.filePath(u"in"_s)).entryInfoList(QDir::Files);
    arrived += QDir(mac.filePath(u"in/Album"_s)).entryInfoList(QDir::Files);
    EXPECT_TRUE(std::any_of(arrived.begin(), arrived.end(), isTheirs)) << "the other user has copied nothing";
}

} // namespace
} // namespace vantrel
