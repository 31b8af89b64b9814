// Copies from one folder of this computer into another one: the same promises as between it and a phone, and
// no phone.

#include "support/ModelTest.h"

#include "Records/Identity.h"
#include "Transfers/CopyRun.h"
#include "Transfers/CopyText.h"
#include "Transfers/QueueFile.h"
#include "Transfers/StagedName.h"

#include <QDirIterator>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace vantrel;

namespace {

const QDateTime oldTime = QDateTime::fromSecsSinceEpoch(1'600'000'001, Qt::UTC);
constexpr qint64 large = 40'000'000;

class ComputerCopyTests : public ModelTest {
protected:
    ComputerCopyTests() {
        QDir(mac.path()).mkpath(u"here"_s);
        QDir(mac.path()).mkpath(u"there"_s);
    }
    [[nodiscard]] QString there(const QString &name) const { return mac.filePath(u"there/"_s + name); }
    /// Copies what is called so from "here" to "there" by the queue.
    void drop(const QStringList &names) {
        QStringList paths;
        for (const QString &name : names)
            paths.append(here(name));
        const qsizetype before = state->queue().size();
        state->transferFiles(paths, BrowserSide::mac, there(QString()).chopped(1));
        ASSERT_TRUE(waitFor([&] { return state->queue().size() == before + names.size(); }));
        waitForQueue();
    }
    void writeHere(const QString &name, const QByteArray &bytes) const {
        write(here(name), bytes);
        QFile file(here(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(oldTime, QFileDevice::FileModificationTime));
    }
    [[nodiscard]] QStringList stagedThere() const {
        return QDir(there(QString())).entryList({u".vantrel-*"_s}, QDir::AllEntries | QDir::Hidden);
    }

    // -- Without the queue, so that something can happen at a known byte

    [[nodiscard]] CopyJob jobOf(const QString &name) const {
        CopyJob job;
        job.direction = TransferDirection::withinMac;
        job.folder = there(QString()).chopped(1);
        QueueItem item;
        item.id = newIdentity();
        item.name = name;
        item.isDirectory = QFileInfo(here(name)).isDir();
        item.sourcePath = here(name);
        item.destinationFolder = job.folder;
        item.direction = job.direction;
        job.entries = {item};
        return job;
    }
    /// Runs the job; `strike` is called once, when so many bytes are through.
    QueueItemStatus run(const CopyJob &job, qint64 bytes, const std::function<void()> &strike,
                        const std::stop_token &stop = {}) {
        CopyWatcher watcher;
        QueueItemStatus end;
        bool hasStruck = false;
        watcher.isWanted = [this](const QUuid &) { return isWanted; };
        watcher.onProgress = [&](const QUuid &, const QueueItemStatus::Progress &progress) {
            carried = progress.carriedBytes;
            if (progress.transferredBytes >= bytes && !std::exchange(hasStruck, true))
                strike();
        };
        watcher.onEnd = [&](const QUuid &, const CopyReport &report) {
            end = report.wasStopped ? QueueItemStatus(QueueItemStatus::Paused())
                                    : statusAfter(job.entries.first(), report);
        };
        runCopyJob(job, watcher, stop);
        EXPECT_TRUE(hasStruck);
        return end;
    }
    [[nodiscard]] static QString textOf(const QueueItemStatus &status) {
        QueueItem item;
        item.status = status;
        return item.progressLabel() + u"|"_s + item.problemText();
    }

    bool isWanted = true;
    qint64 carried = 0;
};

TEST_F(ComputerCopyTests, bringWhatIsMissingWithoutAPhoneAndReplaceNothing) {
    phone.unplug();
    phone.set(u"log"_s, "on");
    refresh();
    writeHere(u"trip/a.jpg"_s, "a");
    writeHere(u"trip/sub/b.jpg"_s, QByteArray(3'000'000, 'b'));
    writeHere(u"trip/'; rm -rf *\n.txt"_s, "odd");
    QDir().mkpath(here(u"trip/empty/deep"_s));
    QFile::link(u"a.jpg"_s, here(u"trip/link"_s));
    ::mkfifo(QFile::encodeName(here(u"trip/pipe"_s)).constData(), 0600);
    ::chmod(QFile::encodeName(here(u"trip/a.jpg"_s)).constData(), 0700);
    writeHere(u"note"_s, "mine");
    write(there(u"note"_s), "another");
    browseMac(there(QString()).chopped(1));

    const qsizetype asked = phone.commandLines().size();
    drop({u"trip"_s, u"note"_s});
    EXPECT_EQ(phone.commandLines().size(), asked) << "no phone takes part";
    EXPECT_EQ(statuses(), u"trip:2 left out|note:Another “note” is already there."_s);
    EXPECT_EQ(state->queue().first().problemText().count(u"Neither a file nor a folder"_s), 2);
    for (const QString &name : {u"trip/a.jpg"_s, u"trip/sub/b.jpg"_s, u"trip/'; rm -rf *\n.txt"_s}) {
        EXPECT_EQ(contents(there(name)), contents(here(name)));
        EXPECT_EQ(QFileInfo(there(name)).lastModified(), oldTime);
    }
    EXPECT_FALSE(QFileInfo(there(u"trip/a.jpg"_s)).isExecutable())
        << "the permissions are those of a new file";
    EXPECT_TRUE(QFileInfo(there(u"trip/empty/deep"_s)).isDir());
    EXPECT_TRUE(waitFor([&] { return state->macItems().size() == 2; })) << "the pane shows what came";

    state->transfers().keepAllBoth();
    waitForQueue();
    state->transfers().setVerifies(true);
    state->clearQueue();
    writeHere(u"trip/new"_s, "new");
    drop({u"trip"_s});
    EXPECT_EQ(statuses(), u"trip:1 copied, 3 already there, verified, 2 left out"_s);
    EXPECT_EQ(contents(there(u"note"_s)), "another");
    EXPECT_EQ(contents(there(u"note 2"_s)), "mine");
    EXPECT_TRUE(stagedThere().isEmpty());
}

TEST_F(ComputerCopyTests, neverPutAFolderIntoItself) {
    writeHere(u"outer/inner/file"_s, "x");
    QFile::link(here(u"outer/inner"_s), here(u"way in"_s));
    writeHere(u"outer too/file"_s, "y");
    for (const QString &into : {u"outer"_s, u"outer/inner"_s, u"way in"_s}) {
        state->transferFiles({here(u"outer"_s)}, BrowserSide::mac, here(into));
        ASSERT_TRUE(waitFor([&] { return !state->queue().isEmpty(); }));
        waitForQueue();
        EXPECT_EQ(statuses(), u"outer:“outer” can’t be copied into itself."_s) << into.toStdString();
        state->clearQueue();
    }
    EXPECT_EQ(QDir(here(u"outer"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{u"inner"_s});
    state->transferFiles({here(u"outer"_s)}, BrowserSide::mac, here(u"outer too"_s));
    EXPECT_TRUE(waitFor([&] { return contents(here(u"outer too/outer/inner/file"_s)) == "x"; }));
}

TEST_F(ComputerCopyTests, areStoppedAndGoOn) {
    QByteArray bytes(large, '\0');
    for (qsizetype i = 0; i < large; ++i)
        bytes[i] = char(i * 31 + i / 4096);
    writeHere(u"film"_s, bytes);
    const CopyJob job = jobOf(u"film"_s);
    for (const bool isRemoved : {true, false}) {
        std::stop_source stop;
        run(
            job, large / 4,
            [&] {
                isWanted = !isRemoved;
                stop.request_stop();
            },
            stop.get_token());
        EXPECT_FALSE(QFileInfo::exists(there(u"film"_s)));
        EXPECT_EQ(stagedThere().size(), isRemoved ? 0 : 1);
        isWanted = true;
    }
    EXPECT_EQ(textOf(run(job, large / 2, [] {})), u"Done|"_s);
    EXPECT_LT(carried, large * 4 / 5) << "what had come before the stop is copied again";
    EXPECT_EQ(contents(there(u"film"_s)), bytes);
    EXPECT_EQ(QFileInfo(there(u"film"_s)).lastModified(), oldTime);
    EXPECT_TRUE(stagedThere().isEmpty());
}

TEST_F(ComputerCopyTests, areRemembered) {
    const QList<QueueItem> entries = jobOf(u"film"_s).entries;
    {
        QueueFile file(mac.filePath(u"state"_s));
        ASSERT_TRUE(file.open().mayWrite);
        EXPECT_EQ(file.write(entries, 1), QString());
    }
    QueueFile file(mac.filePath(u"state"_s));
    const QueueFile::Contents kept = file.open();
    ASSERT_EQ(kept.entries.size(), 1) << kept.problem.toStdString();
    EXPECT_EQ(kept.entries.first().direction, TransferDirection::withinMac);
    EXPECT_EQ(kept.entries.first().destinationPath(), there(u"film"_s));
}

TEST_F(ComputerCopyTests, takeNothingThatChangesMeanwhile) {
    const QString changed =
        u"It was changed while it was copied.|film: It was changed while it was copied."_s;
    const std::pair<QString, std::function<void()>> strikes[] = {
        {changed, [&] { QFile::resize(here(u"film"_s), large / 3); }},
        {changed, [&] { QFile::resize(here(u"film"_s), large * 2); }},
        {u"Another “film” is already there.|film: Another content stands under this name"_s,
         [&] { write(there(u"film"_s), "first"); }},
        {u"The folder “there” is not there any more.|"_s,
         [&] { QDir(there(QString())).removeRecursively(); }}};
    for (const auto &[said, strike] : strikes) {
        writeHere(u"film"_s, QByteArray(large, 'x'));
        EXPECT_EQ(textOf(run(jobOf(u"film"_s), large / 4, strike)), said);
        EXPECT_NE(QFileInfo(there(u"film"_s)).size(), large);
        EXPECT_TRUE(stagedThere().isEmpty());
        QFile::remove(there(u"film"_s));
    }
    EXPECT_FALSE(QFileInfo::exists(there(QString()))) << "no folder is made in its place";
}

TEST_F(ComputerCopyTests, goOnPastAFileThatFails) {
    for (const char *name : {"a", "b", "c", "d"})
        writeHere(u"many/"_s + QLatin1String(name), QByteArray(2'000'000, *name));
    QString removed;
    const CopyJob job = jobOf(u"many"_s);
    const QueueItemStatus end = run(job, 1'000'000, [&] { // one that is not under way
        QStringList names{u"a"_s, u"b"_s, u"c"_s, u"d"_s};
        const QDir staging(there(stagedThere().value(0)));
        names.removeIf([&](const QString &name) { return staging.exists(name); });
        removed = names.value(0);
        QFile::remove(here(u"many/"_s + removed));
    });
    EXPECT_EQ(textOf(end), QString(u"1 of 4 could not be copied|"_s + removed +
                                   u": This computer can’t read it: No such file or directory"_s));
    EXPECT_EQ(QDir(there(u"many"_s)).entryList(QDir::Files).size(), 3);
}

} // namespace
