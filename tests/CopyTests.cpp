// Copies for real life: the second time, stopped, paused, tried again, of folders with what cannot be copied,
// and with a phone that says anything.

#include "support/ModelTest.h"

#include "Transfers/CopyRun.h"
#include "Transfers/CopyText.h"
#include "Transfers/LocalStaging.h"
#include "Transfers/StagedName.h"
#include "Transfers/TransferRate.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace vantrel;

namespace {

/// What the disk of this computer is formatted with: what FAT does not know, other systems may.
enum class FileSystem { usual, withoutRename, fat };
FileSystem fileSystem = FileSystem::usual;

int refuse(int error) {
    errno = error;
    return -1;
}

} // namespace

/// In place of the system's.
extern "C" int renameat2(int, const char *from, int, const char *to, unsigned int flags) noexcept {
    return fileSystem == FileSystem::usual
               ? int(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, flags))
               : refuse(EINVAL);
}
extern "C" int link(const char *from, const char *to) noexcept {
    return fileSystem == FileSystem::fat ? refuse(EPERM)
                                         : int(::syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

namespace {

const QDateTime oldTime = QDateTime::fromSecsSinceEpoch(1'600'000'001, Qt::UTC);

class CopyTests : public ModelTest {
protected:
    void start() {
        connectPhone();
        browsePhone(u"/sdcard"_s);
        browseHere();
    }
    /// Copies everything that the pane shows, and waits for the end.
    void copyAllFrom(BrowserSide side) {
        state->clearQueue();
        browsePhone(u"/sdcard"_s);
        browseHere();
        state->selectAllVisible(side);
        side == BrowserSide::mac ? state->transferMacToAndroid() : state->transferAndroidToMac();
        waitForQueue();
    }
    [[nodiscard]] QString pathOn(BrowserSide side, const QString &name) const {
        return side == BrowserSide::mac ? here(name) : phone.hostPath(name);
    }
    void writeOn(BrowserSide side, const QString &name, const QByteArray &bytes,
                 const QDateTime &time = oldTime) const {
        write(pathOn(side, name), bytes);
        QFile file(pathOn(side, name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
    }
    [[nodiscard]] static BrowserSide otherThan(BrowserSide side) {
        return side == BrowserSide::mac ? BrowserSide::android : BrowserSide::mac;
    }
    /// What bears the program's mark on either side, without what is in it.
    [[nodiscard]] QStringList staged() const {
        QStringList found;
        for (const QString &root : {mac.path(), phone.root()}) {
            QDirIterator entries(root, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                 QDirIterator::Subdirectories);
            while (entries.hasNext()) {
                entries.next();
                if (StagedName::isStaged(entries.fileName()) &&
                    !StagedName::isStaged(entries.fileInfo().dir().dirName()))
                    found.append(entries.filePath());
            }
        }
        return found;
    }
    [[nodiscard]] int runsOf(const QString &verb) const {
        int runs = 0;
        for (const QStringList &line : phone.commandLines())
            runs += line.value(2) == verb ? 1 : 0;
        return runs;
    }
    [[nodiscard]] qsizetype runsBeginning(const QString &line) const {
        const QList<QStringList> lines = phone.commandLines();
        return std::count_if(lines.begin(), lines.end(),
                             [&](const QStringList &each) { return each.value(3).startsWith(line); });
    }
    static constexpr BrowserSide sides[] = {BrowserSide::android, BrowserSide::mac};
};

} // namespace

TEST_F(CopyTests, theSecondTimeBringsJustWhatIsNew) {
    for (const BrowserSide from : sides) {
        const BrowserSide to = otherThan(from);
        const QString name = from == BrowserSide::mac ? u"mine"_s : u"theirs"_s;
        writeOn(from, name + u"/a.txt"_s, "a");
        writeOn(from, name + u"/sub/b.txt"_s, "b");
        writeOn(from, name + u"/sub/later.txt"_s, "c", QDateTime::currentDateTimeUtc().addSecs(7200));
        writeOn(from, name + u".txt"_s, "single");
        QDir().mkpath(pathOn(from, name + u"/empty/deep"_s));
        ::chmod(QFile::encodeName(pathOn(from, name + u".txt"_s)).constData(), 0700);
        start();
        copyAllFrom(from);
        EXPECT_EQ(QFileInfo(pathOn(to, name + u".txt"_s)).permissions(),
                  QFileInfo(pathOn(from, name + u"/a.txt"_s)).permissions())
            << "those of a new file";
        EXPECT_EQ(statuses().count(u":Done"_s), state->queue().size()) << statuses().toStdString();
        EXPECT_TRUE(QFileInfo(pathOn(to, name + u"/empty/deep"_s)).isDir()) << "empty folders are created";
        for (const QString &file :
             QStringList{name + u"/a.txt"_s, name + u"/sub/b.txt"_s, name + u".txt"_s}) {
            EXPECT_EQ(QFileInfo(pathOn(to, file)).lastModified(), oldTime) << file.toStdString();
            EXPECT_EQ(contents(pathOn(to, file)), contents(pathOn(from, file)));
        }

        writeOn(from, name + u"/sub/new.txt"_s, "new");
        const qsizetype before = copyOrder().size();
        copyAllFrom(from);
        EXPECT_TRUE(statuses().contains(QString(name + u":1 copied, 3 already there"_s)))
            << statuses().toStdString();
        EXPECT_TRUE(statuses().contains(QString(name + u".txt:Already there"_s)));
        EXPECT_EQ(copyOrder().mid(before), u"new.txt"_s);
        QDir(here(QString())).removeRecursively();
        QDir(phone.root()).removeRecursively();
        QDir().mkpath(phone.root());
    }
}

TEST_F(CopyTests, anotherContentWaitsForTheUserWhileTheRestGoesOn) {
    for (const BrowserSide from : sides) {
        const BrowserSide to = otherThan(from);
        for (const char *name : {"a.tar.gz", "b", "c"})
            writeOn(from, QString::fromLatin1(name), "new");
        for (const int seconds : {-3, -2, 2, 3}) { // FAT keeps times in steps of two
            const QString name = u"%1 s"_s.arg(seconds);
            writeOn(from, name, "new");
            writeOn(to, name, "old", oldTime.addSecs(seconds));
        }
        writeOn(to, u"a.tar.gz"_s, "first");
        writeOn(to, u"b"_s, "first");
        writeOn(to, u"b 2"_s, "second");
        start();
        copyAllFrom(from);
        EXPECT_EQ(state->transfers().queue().nameTakenCount(), 4) << statuses().toStdString();
        EXPECT_TRUE(statuses().contains(u"c:Done"_s)) << "no question stops the run";
        EXPECT_EQ(statuses().count(u"2 s:Already there"_s), 2);

        state->transfers().keepAllBoth();
        waitForQueue();
        EXPECT_EQ(state->transfers().queue().completedCount(), state->queue().size())
            << statuses().toStdString();
        const std::pair<const char *, const char *> expected[] = {
            {"a.tar.gz", "first"}, {"a.tar 2.gz", "new"}, {"b", "first"},
            {"b 2", "second"},     {"b 3", "new"},        {"c", "new"}};
        for (const auto &[name, bytes] : expected)
            EXPECT_EQ(contents(pathOn(to, QString::fromLatin1(name))), bytes) << name;
        for (const QString &root : {here(QString()), phone.root()}) {
            QDir(root).removeRecursively();
            QDir().mkpath(root);
        }
    }
}

TEST(CopyNames, countOnAndFitTheFileSystem) {
    EXPECT_EQ(numberedName(u"photo.jpg"_s, 2), u"photo 2.jpg"_s);
    EXPECT_EQ(numberedName(u".profile"_s, 3), u".profile 3"_s);
    EXPECT_EQ(numberedName(u"DCIM"_s, 12), u"DCIM 12"_s);
    const QString longest = QString(100, u'ü') + QString(51, u'x') + u".jpg"_s;
    EXPECT_EQ(longest.toUtf8().size(), 255);
    EXPECT_LE(numberedName(longest, 2).toUtf8().size(), 255);
    EXPECT_TRUE(numberedName(longest, 2).endsWith(u" 2.jpg"_s));
}

TEST(CopyErrors, areSaidInWords) {
    const std::pair<const char *, QString> cases[] = {
        {"cannot create file/directory '/m/.v/a:b': Invalid argument",
         u"This name can’t be used on the other side."_s},
        {"cannot create file/directory '/m/.v/what?': No such file or directory",
         u"This name can’t be used on the other side."_s},
        {"cannot create file/directory '/m:n/.v/a': No such file or directory",
         u"This computer can’t write it: No such file or directory"_s},
        {"cannot write '/m/.v/a:b': File too large", u"This computer can’t write it: File too large"_s},
        {"/system/bin/sh: can't create /sdcard/a: Permission denied",
         u"The phone can’t write it: Permission denied"_s},
        {"W: /system/bin/sh: /sdcard/a: create: No such file or directory",
         u"The phone can’t write it: No such file or directory"_s},
        {"md5sum: /sdcard/a: Permission denied", u"The phone can’t read it: Permission denied"_s}};
    for (const auto &[error, words] : cases)
        EXPECT_EQ(explainedCopyError(QString::fromLatin1(error)), words);
}

TEST_F(CopyTests, stoppingARunningCopyEndsItAtOnceAndLeavesNothing) {
    for (const BrowserSide from : sides) {
        writeOn(from, u"big"_s, QByteArray(33'000'000, 'x')); // what a pause would keep
        phone.set(u"bandwidth"_s, "3");
        start();
        select(from, u"big"_s);
        from == BrowserSide::mac ? state->transferMacToAndroid() : state->transferAndroidToMac();
        ASSERT_TRUE(waitFor([&] {
            return !state->queue().isEmpty() && state->queue().first().status.progress() &&
                   state->queue().first().status.progress()->transferredBytes > 0;
        }));
        ASSERT_FALSE(staged().isEmpty());
        if (from == BrowserSide::android) {
            EXPECT_EQ(QFileInfo(staged().first()).permissions() & 0xff, QFileDevice::Permissions())
                << "for the user alone";
        }
        QElapsedTimer clock;
        clock.start();
        state->removeQueueItem(state->queue().first().id);
        ASSERT_TRUE(waitFor([&] { return staged().isEmpty(); }));
        EXPECT_LT(clock.elapsed(), 500);
        waitForQueue();
        EXPECT_FALSE(QFileInfo::exists(pathOn(otherThan(from), u"big"_s)));
        QFile::remove(pathOn(from, u"big"_s));
        phone.reset(u"bandwidth"_s);
    }
}

TEST_F(CopyTests, aPauseStopsEverythingAndResumingBringsItAll) {
    for (const char *name : {"a", "b", "c", "d", "e"})
        phone.write(QString::fromLatin1(name), QByteArray(200'000, *name));
    phone.set(u"bandwidth"_s, "0.2");
    start();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    ASSERT_TRUE(waitFor([&] { return runsOf(u"pull"_s) == 3; }));
    state->transfers().pause();
    ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
    EXPECT_TRUE(state->transfers().isPaused());
    EXPECT_EQ(state->transfers().queue().pausedCount(), 3) << statuses().toStdString();
    EXPECT_EQ(state->waitingCount(), 2);
    EXPECT_TRUE(staged().isEmpty());
    const qsizetype runs = phone.commandLines().size();
    connectPhone(); // what asks for the phone must not start them
    EXPECT_EQ(runsOf(u"pull"_s), 3);
    EXPECT_GT(phone.commandLines().size(), runs);

    phone.reset(u"bandwidth"_s);
    state->transfers().resume();
    waitForQueue();
    EXPECT_EQ(state->transfers().queue().completedCount(), 5) << statuses().toStdString();
    for (const char *name : {"a", "b", "c", "d", "e"})
        EXPECT_EQ(contents(here(QString::fromLatin1(name))), QByteArray(200'000, *name));
}

TEST_F(CopyTests, anInterruptedLargeCopyGoesOnFromTheByteThatItHadReached) {
    constexpr qsizetype size = 33'000'000;
    enum class Break { unplugged, paused, sourceChanged, partDamaged, partGone };
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = char(i * 31 + i / 4096);
    const QByteArray other = bytes.mid(size / 2) + bytes.left(size / 2);
    for (const BrowserSide from : sides) {
        for (const Break how :
             {Break::unplugged, Break::paused, Break::sourceChanged, Break::partDamaged, Break::partGone}) {
            SCOPED_TRACE(testing::Message() << (from == BrowserSide::mac ? "push" : "pull") << int(how));
            writeOn(from, u"film"_s, bytes);
            phone.resetAll();
            phone.set(u"stderr-progress"_s, "off");
            phone.set(u"bandwidth"_s, "30"); // what adb removes at once cannot be kept
            if (how != Break::paused)
                phone.set(u"unplug-after"_s, QByteArray::number(size / 2));
            start();
            select(from, u"film"_s);
            from == BrowserSide::mac ? state->transferMacToAndroid() : state->transferAndroidToMac();
            if (how == Break::paused) {
                ASSERT_TRUE(waitFor([&] {
                    const auto *progress = state->queue().first().status.progress();
                    return progress && progress->transferredBytes > size / 8;
                }));
                state->transfers().pause();
            }
            ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
            ASSERT_EQ(staged().size(), 1) << statuses().toStdString();
            EXPECT_FALSE(QFileInfo::exists(pathOn(otherThan(from), u"film"_s)));
            const QDir kept(staged().first());
            ASSERT_EQ(kept.entryList(QDir::Files).size(), 1);
            const QString part = kept.filePath(kept.entryList(QDir::Files).first());
            EXPECT_GT(QFileInfo(part).size(), size / 8);
            if (how == Break::sourceChanged)
                writeOn(from, u"film"_s, other, oldTime.addDays(1));
            if (how == Break::partDamaged)
                write(part, QByteArray(QFileInfo(part).size(), '?'));
            if (how == Break::partGone)
                QDir(staged().first()).removeRecursively();

            phone.resetAll();
            phone.set(u"stderr-progress"_s, "off");
            phone.set(u"log"_s, "on");
            const bool goesOn = how == Break::unplugged || how == Break::paused;
            if (goesOn) // whoever begins anew is unplugged
                phone.set(u"unplug-after"_s, QByteArray::number(size - size / 8));
            state->transfers().setVerifies(how == Break::paused); // in the middle of a copy
            qint64 carried = 0;
            const auto watching = QObject::connect(state.get(), &AppState::queueChanged, state.get(), [&] {
                const auto *progress = state->queue().first().status.progress();
                carried = std::max(carried, progress ? progress->carriedBytes : 0);
            });
            connectPhone();
            state->transfers().resume();
            waitForQueue();
            EXPECT_EQ(statuses(), how == Break::paused ? u"film:Verified"_s : u"film:Done"_s);
            EXPECT_EQ(runsBeginning(u"md5sum "_s),
                      (how == Break::sourceChanged || how == Break::partGone) && from == BrowserSide::android
                          ? 0
                          : 1)
                << "no file is read twice";
            QObject::disconnect(watching);
            if (goesOn) {
                EXPECT_LT(carried, size - size / 10) << "what had come before is no speed";
            }
            EXPECT_EQ(contents(pathOn(otherThan(from), u"film"_s)) == other, how == Break::sourceChanged);
            EXPECT_EQ(contents(pathOn(otherThan(from), u"film"_s)) == bytes, how != Break::sourceChanged);
            EXPECT_EQ(QFileInfo(pathOn(otherThan(from), u"film"_s)).lastModified(),
                      QFileInfo(pathOn(from, u"film"_s)).lastModified());
            // The second time a push always begins so that it can go on.
            const bool isWhole = !goesOn && (from == BrowserSide::android || how == Break::partDamaged);
            EXPECT_EQ(runsOf(u"pull"_s) + runsOf(u"push"_s), isWhole ? 1 : 0);
            EXPECT_TRUE(staged().isEmpty());
            state->clearQueue();
            QFile::remove(here(u"film"_s));
            QFile::remove(phone.hostPath(u"film"_s));
        }
    }
}

TEST_F(CopyTests, aSourceThatChangesWhileItsCopyGoesOnIsNotTaken) {
    constexpr qint64 size = 33'000'000;
    for (const BrowserSide from : sides) {
        for (const qint64 changed : {size * 2, size / 4}) {
            SCOPED_TRACE(testing::Message() << (from == BrowserSide::mac ? "push " : "pull ") << changed);
            writeOn(from, u"film"_s, QByteArray(size, 'x'));
            phone.set(u"bandwidth"_s, "30");
            phone.set(u"log"_s, "on");
            phone.set(u"unplug-after"_s, QByteArray::number(size / 2));
            start();
            select(from, u"film"_s);
            from == BrowserSide::mac ? state->transferMacToAndroid() : state->transferAndroidToMac();
            ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
            phone.plug();
            connectPhone();
            const QString stream = from == BrowserSide::mac ? u"cat "_s : u"tail "_s;
            ASSERT_TRUE(waitFor([&] { return runsBeginning(stream) == 1; }));
            ASSERT_TRUE(QFile::resize(pathOn(from, u"film"_s), changed));
            phone.set(u"bandwidth"_s, "0");
            waitForQueue();
            EXPECT_EQ(statuses(), u"film:It was changed while it was copied."_s);
            EXPECT_FALSE(QFileInfo::exists(pathOn(otherThan(from), u"film"_s)));
            EXPECT_TRUE(staged().isEmpty());
            phone.resetAll();
            phone.set(u"stderr-progress"_s, "off");
            state->clearQueue();
            QFile::remove(pathOn(from, u"film"_s));
        }
    }
}

TEST_F(CopyTests, aPhoneThatSendsWithoutEndIsCutShort) {
    constexpr qsizetype size = 33'000'000;
    for (const bool isContinued : {false, true}) {
        SCOPED_TRACE(isContinued);
        writeOn(BrowserSide::android, u"film"_s, QByteArray(size, 'x'));
        phone.set(u"bandwidth"_s, "30");
        if (isContinued)
            phone.set(u"unplug-after"_s, QByteArray::number(size / 2));
        else
            phone.set(u"endless"_s, "on");
        start();
        select(BrowserSide::android, u"film"_s);
        state->transferAndroidToMac();
        if (isContinued) {
            ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
            ASSERT_EQ(staged().size(), 1);
            phone.set(u"endless"_s, "on");
            phone.plug();
        }
        phone.set(u"bandwidth"_s, "0"); // as fast as it can
        connectPhone();
        waitForQueue();
        EXPECT_EQ(statuses(), u"film:It was changed while it was copied."_s);
        EXPECT_TRUE(staged().isEmpty());
        EXPECT_FALSE(QFileInfo::exists(here(u"film"_s)));
        phone.resetAll();
        phone.set(u"stderr-progress"_s, "off");
        state->clearQueue();
    }
}

TEST_F(CopyTests, aPushHasNoSpeedBeforeItHasFilledTheSockets) {
    for (const BrowserSide from : sides) {
        writeOn(from, u"clip"_s, QByteArray(3'000'000, 'x'));
        phone.set(u"bandwidth"_s, "3");
        QStringList speeds;
        const auto seen = QObject::connect(state.get(), &AppState::transferSpeedLabelChanged, state.get(),
                                           [&] { speeds.append(state->transferSpeedLabel()); });
        start();
        copyAllFrom(from);
        QObject::disconnect(seen);
        EXPECT_EQ(statuses(), u"clip:Done"_s);
        EXPECT_EQ(speeds.isEmpty(), from == BrowserSide::mac) << speeds.join(u'|').toStdString();
        QFile::remove(here(u"clip"_s));
        QFile::remove(phone.hostPath(u"clip"_s));
    }
}

TEST_F(CopyTests, whatIsKeptOfACopyGoesWithItsEntry) {
    for (const BrowserSide from : sides) {
        writeOn(from, u"film"_s, QByteArray(33'000'000, 'x'));
        phone.set(u"bandwidth"_s, "20");
        start();
        select(from, u"film"_s);
        from == BrowserSide::mac ? state->transferMacToAndroid() : state->transferAndroidToMac();
        ASSERT_TRUE(waitFor([&] {
            const auto *progress = state->queue().first().status.progress();
            return progress && progress->transferredBytes > 1'000'000;
        }));
        state->transfers().pause();
        ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
        EXPECT_EQ(staged().size(), 1);
        from == BrowserSide::mac ? state->removeQueueItem(state->queue().first().id) : state->clearQueue();
        EXPECT_TRUE(waitFor([&] { return staged().isEmpty(); }));
        state->transfers().resume();
        QFile::remove(pathOn(from, u"film"_s));
    }
}

TEST_F(CopyTests, oneBadFileDoesNotEndAFolderAndIsTriedAgainAlone) {
    for (const BrowserSide from : sides) {
        for (const char *name : {"Trip/a", "Trip/bad's one", "Trip/c/d"})
            writeOn(from, QString::fromLatin1(name), "bytes");
        const QString bad = pathOn(from, u"Trip/bad's one"_s);
        if (from == BrowserSide::android)
            phone.deny(u"Trip/bad's one"_s);
        else
            ::chmod(QFile::encodeName(bad).constData(), 0);
        if (from == BrowserSide::mac && ::access(QFile::encodeName(bad).constData(), R_OK) == 0)
            continue; // this user may read everything
        start();
        copyAllFrom(from);
        EXPECT_TRUE(statuses().contains(u"Trip:1 of 3 could not be copied"_s)) << statuses().toStdString();
        EXPECT_EQ(state->queue().first().problemText(),
                  from == BrowserSide::android
                      ? u"bad's one: The phone can’t read it: Permission denied"_s
                      : u"bad's one: This computer can’t read it: Permission denied"_s);

        phone.reset(u"fail"_s);
        ::chmod(QFile::encodeName(bad).constData(), 0644);
        const qsizetype before = copyOrder().size();
        state->transfers().tryAllAgain();
        waitForQueue();
        EXPECT_TRUE(statuses().contains(u"Trip:1 copied, 2 already there"_s)) << statuses().toStdString();
        EXPECT_EQ(copyOrder().mid(before), u"bad's one"_s);
        QDir(here(u"Trip"_s)).removeRecursively();
        QDir(phone.hostPath(u"Trip"_s)).removeRecursively();
    }
}

TEST_F(CopyTests, whatCannotBeCopiedIsCountedAndNamed) {
    for (const BrowserSide from : sides) {
        writeOn(from, u"Trip/plain"_s, "x");
        const QByteArray folder = QFile::encodeName(pathOn(from, u"Trip"_s));
        const auto in = [&folder](const char *name) { return QByteArray(folder + '/' + name); };
        ASSERT_EQ(::symlink("plain", in("link").constData()), 0);
        ASSERT_EQ(::symlink("nowhere", in("broken").constData()), 0);
        ASSERT_EQ(::mkfifo(in("pipe").constData(), 0644), 0);
        ASSERT_EQ(::mkdir(in("\xff").constData(), 0755), 0);
        // What somebody is copying there at this moment is not even left out.
        writeOn(from, u"Trip/.vantrel-00000000-0123456789abcdef-00000001.part/x"_s, "part");
        start();
        copyAllFrom(from);
        EXPECT_TRUE(statuses().contains(u"Trip:4 left out"_s)) << statuses().toStdString();
        for (const char *name : {"link: ", "broken: ", "pipe: ", "\xef\xbf\xbd: "})
            EXPECT_TRUE(state->queue().first().problemText().contains(QString::fromUtf8(name))) << name;
        EXPECT_EQ(QDir(pathOn(otherThan(from), u"Trip"_s))
                      .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot),
                  QStringList{u"plain"_s});
        ASSERT_EQ(::rmdir(in("\xff").constData()), 0);
        QDir(here(u"Trip"_s)).removeRecursively();
        QDir(phone.hostPath(u"Trip"_s)).removeRecursively();
    }
}

TEST_F(CopyTests, namesAreNamesWhateverTheyHold) {
    const QStringList names{u"it's"_s, u"-rf"_s,     u"two\nlines"_s,    u"$(touch x)"_s,
                            u"a\\b"_s, u"[99%] x"_s, QString(255, u'n'), QString(127, u'ü')};
    for (const BrowserSide from : sides) {
        for (const QString &name : names) {
            writeOn(from, u"Odd/"_s + name, name.toUtf8());
            writeOn(from, u"Odd/sub/"_s + name, name.toUtf8()); // the same names again: no two meet in a run
        }
        start();
        copyAllFrom(from);
        EXPECT_TRUE(statuses().contains(u"Odd:Done"_s))
            << statuses().toStdString() << state->queue().first().problemText().toStdString();
        for (const QString &name : names) {
            for (const QString &folder : {u"Odd/"_s, u"Odd/sub/"_s})
                EXPECT_EQ(contents(pathOn(otherThan(from), folder + name)), name.toUtf8())
                    << name.toStdString();
        }
        QDir(here(u"Odd"_s)).removeRecursively();
        QDir(phone.hostPath(u"Odd"_s)).removeRecursively();
    }
}

TEST_F(CopyTests, manySmallEntriesShareRunsAndEachHasItsOwnEnd) {
    constexpr int count = 90;
    for (const BrowserSide from : sides) {
        for (int i = 0; i < count; ++i)
            writeOn(from, QString::number(i), QByteArray::number(i));
        writeOn(otherThan(from), u"7"_s, "another");
        start();
        const int before = int(phone.commandLines().size());
        const int copies = runsOf(u"pull"_s) + runsOf(u"push"_s);
        copyAllFrom(from);
        EXPECT_EQ(statuses().count(u":Done"_s), count - 1) << statuses().toStdString();
        EXPECT_EQ(state->transfers().queue().nameTakenCount(), 1);
        EXPECT_LE(runsOf(u"pull"_s) + runsOf(u"push"_s) - copies, count / 5);
        EXPECT_LE(int(phone.commandLines().size()) - before, count) << "less than one run for each";
        for (const QString &root : {here(QString()), phone.root()}) {
            QDir(root).removeRecursively();
            QDir().mkpath(root);
        }
    }
}

TEST_F(CopyTests, aFolderOfManySmallFilesIsCopiedByTwoRunsAtATime) {
    for (const BrowserSide from : sides) {
        const QString verb = from == BrowserSide::android ? u"pull"_s : u"push"_s;
        for (int i = 0; i < 600; ++i)
            writeOn(from, u"many/%1/%2"_s.arg(i % 3).arg(i / 3), QByteArray::number(i));
        phone.set(u"log"_s, "on");
        if (from == BrowserSide::android)
            phone.deny(u"many/1/77"_s);
        phone.set(verb + u".hang"_s, "on");
        start();
        state->transfers().setVerifies(from == BrowserSide::mac);
        select(from, u"many"_s);
        from == BrowserSide::mac ? state->transferMacToAndroid() : state->transferAndroidToMac();
        EXPECT_TRUE(waitFor([&] { return runsOf(verb) == 2; }));
        phone.reset(verb + u".hang"_s);
        waitForQueue();
        EXPECT_EQ(statuses(),
                  from == BrowserSide::mac ? u"many:Verified"_s : u"many:1 of 600 could not be copied"_s);
        for (int i = 0; i < 600; ++i) {
            const QString name = u"many/%1/%2"_s.arg(i % 3).arg(i / 3);
            const bool isDenied = from == BrowserSide::android && name == u"many/1/77"_s;
            EXPECT_EQ(contents(pathOn(otherThan(from), name)),
                      isDenied ? "(missing)" : QByteArray::number(i));
        }
        EXPECT_TRUE(staged().isEmpty());
        state->clearQueue();
        for (const BrowserSide side : sides)
            QDir(pathOn(side, u"many"_s)).removeRecursively();
        phone.resetAll();
        phone.set(u"stderr-progress"_s, "off");
    }
}

TEST_F(CopyTests, oneOfManyIsTakenOutOfItsRunAndTheOthersArrive) {
    constexpr int count = 15;
    for (const BrowserSide from : sides) {
        phone.set(u"bandwidth"_s, "0.000001"); // each run stands still after its first file
        for (int i = 0; i < count; ++i)
            writeOn(from, QString::number(i), QByteArray(60'000, 'x'));
        start();
        state->selectAllVisible(from);
        const int before = runsOf(u"pull"_s) + runsOf(u"push"_s);
        from == BrowserSide::mac ? state->transferMacToAndroid() : state->transferAndroidToMac();
        ASSERT_TRUE(waitFor([&] { return runsOf(u"pull"_s) + runsOf(u"push"_s) == before + 3; }));
        ASSERT_TRUE(waitFor([&] { return staged().size() == 3; }));
        const QueueItem running = state->queue().last();
        const QueueItem next = state->queue().at(count - 2);
        state->removeQueueItem(running.id);
        state->removeQueueItem(next.id);
        phone.reset(u"bandwidth"_s);
        waitForQueue();
        EXPECT_EQ(statuses().count(u":Done"_s), count - 2) << statuses().toStdString();
        EXPECT_FALSE(QFileInfo::exists(pathOn(otherThan(from), running.name)));
        EXPECT_FALSE(QFileInfo::exists(pathOn(otherThan(from), next.name)));
        EXPECT_EQ(runsOf(u"pull"_s) + runsOf(u"push"_s), before + 3) << "nobody else begins anew";
        state->clearQueue();
        for (const QString &root : {here(QString()), phone.root()}) {
            QDir(root).removeRecursively();
            QDir().mkpath(root);
        }
    }
}

TEST_F(CopyTests, whatIsVerifiedHasItsOriginalsContentOrNoName) {
    const QString unverified = u"Not verified: this phone has no md5sum"_s;
    const struct {
        const char *what;
        std::function<void(BrowserSide to)> prepare;
        QString file;   ///< how a single file ends
        QString folder; ///< how a folder of two ends
        bool arrives;
    } cases[] = {{"whole", [](BrowserSide) {}, u"Verified"_s, u"Verified"_s, true},
                 {"corrupted on the way", [&](BrowserSide) { phone.set(u"corrupt"_s, "on"); },
                  u"The copy differs from the original. Try again."_s, u"2 of 2 could not be copied"_s,
                  false},
                 {"no tool",
                  [&](BrowserSide) {
                      phone.set(u"md5sum.stdout"_s, "end\n");
                      phone.set(u"md5sum.stderr"_s, "/system/bin/sh: md5sum: inaccessible or not found\n");
                  },
                  unverified, unverified, true},
                 {"no answer", [&](BrowserSide) { phone.set(u"md5sum.crash"_s, "9"); },
                  u"adb exited with 9"_s, u"adb exited with 9"_s, false},
                 {"sums of other files",
                  [&](BrowserSide) {
                      phone.set(u"md5sum.stdout"_s, "d41d8cd98f00b204e9800998ecf8427e  /sdcard/other\nend\n");
                      phone.set(u"md5sum.stderr"_s, "md5sum: /sdcard/x: I/O error\n");
                  },
                  u"The phone can’t read it: I/O error"_s, u"2 of 2 could not be copied"_s, false},
                 {"there already",
                  [&](BrowserSide to) {
                      for (const char *name : {"a", "T/it's b", "T/c\nd"})
                          writeOn(to, QString::fromLatin1(name), name);
                  },
                  u"Already there, verified"_s, u"2 already there, verified"_s, true},
                 {"there already, with another content of the same size and time",
                  [&](BrowserSide to) {
                      for (const char *name : {"a", "T/it's b", "T/c\nd"})
                          writeOn(to, QString::fromLatin1(name), QByteArray(qstrlen(name), '?'));
                  },
                  u"Another “a” is already there."_s, u"2 of 2 differ from what is there"_s, false}};
    state->transfers().setVerifies(true);
    for (const BrowserSide from : sides) {
        for (const auto &[what, prepare, file, folder, arrives] : cases) {
            SCOPED_TRACE(testing::Message() << what << (from == BrowserSide::mac ? " push" : " pull"));
            phone.resetAll();
            phone.set(u"stderr-progress"_s, "off");
            phone.set(u"log"_s, "on");
            for (const QString &root : {here(QString()), phone.root()}) {
                QDir(root).removeRecursively();
                QDir().mkpath(root);
            }
            for (const char *name : {"a", "T/it's b", "T/c\nd"})
                writeOn(from, QString::fromLatin1(name), name);
            prepare(otherThan(from));
            start();
            for (const QString &name : {u"a"_s, u"T"_s})
                select(from, name);
            state->clearQueue();
            from == BrowserSide::mac ? state->transferMacToAndroid() : state->transferAndroidToMac();
            waitForQueue();
            EXPECT_EQ(statuses(), u"T:"_s + folder + u"|a:"_s + file);
            for (const char *name : {"a", "T/it's b", "T/c\nd"}) {
                const QString copy = pathOn(otherThan(from), QString::fromLatin1(name));
                EXPECT_EQ(contents(copy) == name, arrives) << name;
                EXPECT_EQ(QFileInfo::exists(copy), arrives || file.startsWith(u"Another"_s)) << name;
            }
            EXPECT_EQ(runsBeginning(u"md5sum "_s), 2) << "one question for each run of copies";
            EXPECT_TRUE(staged().isEmpty());
            if (file.startsWith(u"Another"_s)) {
                state->transfers().keepAllBoth();
                waitForQueue();
                EXPECT_EQ(statuses(), u"T:Verified|a:Verified"_s);
                EXPECT_EQ(contents(pathOn(otherThan(from), u"T/it's b 2"_s)), "T/it's b");
            }
        }
    }
}

TEST_F(CopyTests, ofAFolderOnlyWhatDiffersGetsNoName) {
    phone.write(u"T/bad"_s, "bad");
    phone.write(u"T/good"_s, "good");
    const QByteArray good = QCryptographicHash::hash("good", QCryptographicHash::Md5).toHex();
    phone.set(u"md5sum.stdout"_s,
              QByteArray(32, '0') + "  /sdcard/T/bad\n" + good + "  /sdcard/T/good\nend\n");
    state->transfers().setVerifies(true);
    start();
    copyAllFrom(BrowserSide::android);
    EXPECT_EQ(statuses(), u"T:1 of 2 could not be copied"_s);
    EXPECT_EQ(QDir(here(u"T"_s)).entryList(QDir::Files | QDir::Hidden), QStringList{u"good"_s});
}

TEST_F(CopyTests, verifyingIsSeenAndStopsAtOnce) {
    state->transfers().setVerifies(true);
    for (const BrowserSide from : sides) {
        writeOn(from, u"film"_s, QByteArray(8'000'000, 'x'));
        start();
        select(from, u"film"_s);
        phone.set(u"md5sum.hang"_s, "on");
        from == BrowserSide::mac ? state->transferMacToAndroid() : state->transferAndroidToMac();
        double before = 0;
        ASSERT_TRUE(waitFor([&] {
            const auto *progress = state->queue().first().status.progress();
            if (progress && !progress->isVerifying)
                before = progress->fraction;
            return progress && progress->isVerifying && progress->fraction > 0.9;
        }));
        EXPECT_EQ(statuses(), u"film:Verifying…"_s);
        EXPECT_LE(before, 0.5) << "comparing is half of the way";
        EXPECT_FALSE(QFileInfo::exists(pathOn(otherThan(from), u"film"_s)));
        QElapsedTimer clock;
        clock.start();
        state->removeQueueItem(state->queue().first().id);
        waitForQueue();
        EXPECT_LT(clock.elapsed(), 500);
        EXPECT_TRUE(staged().isEmpty());
        phone.reset(u"md5sum.hang"_s);
        QFile::remove(pathOn(from, u"film"_s));
    }
}

TEST_F(CopyTests, whatIsUnlikeItsSourceDoesNotGetItsName) {
    enum class Changed { thePart, theSource };
    const std::pair<BrowserSide, Changed> cases[] = {{BrowserSide::android, Changed::thePart},
                                                     {BrowserSide::mac, Changed::thePart},
                                                     {BrowserSide::mac, Changed::theSource}};
    for (const auto &[from, changed] : cases) {
        phone.set(u"bandwidth"_s, "0.000001"); // it stands still after the first block
        writeOn(from, u"notes"_s, QByteArray(60'000, 'x'));
        start();
        select(from, u"notes"_s);
        from == BrowserSide::mac ? state->transferMacToAndroid() : state->transferAndroidToMac();
        const auto part = [&]() -> QString { return staged().value(0) + u"/notes"_s; };
        ASSERT_TRUE(waitFor([&] { return QFileInfo(part()).size() == 60'000; }));
        if (changed == Changed::theSource)
            writeOn(from, u"notes"_s, QByteArray(60'000, 'y'), oldTime.addDays(1));
        else
            write(part(), QByteArray(70'000, 'y'));
        phone.reset(u"bandwidth"_s);
        waitForQueue();
        EXPECT_EQ(statuses(), u"notes:It was changed while it was copied."_s);
        EXPECT_FALSE(QFileInfo::exists(pathOn(otherThan(from), u"notes"_s)));
        state->clearQueue();
        QFile::remove(pathOn(from, u"notes"_s));
    }
}

TEST_F(CopyTests, aPhoneThatAnswersThePlanWithAnythingGetsNothingAnywhere) {
    phone.write(u"Trip/a"_s, "x");
    const QByteArray root("drwxrwx--x 1 1.0 \0", 18);
    const QByteArray file("-rw-rw---- 1 1.0 ");
    const QByteArray zero(1, '\0');
    const QByteArray answers[] = {"",
                                  "garbage",
                                  "end\n",
                                  root,
                                  root + "end",
                                  root + file + "a" + zero + "and more",
                                  "-rw-rw---- -1 1.0 a" + zero + "end\n",
                                  "- x y" + zero + "end\n",
                                  root + "-rw-rw---- 9223372036854775807 1.0 a" + zero +
                                      "-rw-rw---- 9223372036854775807 1.0 b" + zero + "end\n"};
    start();
    for (const QByteArray &answer : answers) {
        phone.set(u"tree.stdout"_s, answer);
        copyAllFrom(BrowserSide::android);
        EXPECT_TRUE(state->queue().first().canTryAgain()) << answer.toStdString() << statuses().toStdString();
        EXPECT_FALSE(QDirIterator(here(QString()), QDir::Files, QDirIterator::Subdirectories).hasNext());
    }
    phone.reset(u"tree.stdout"_s);
    phone.set(u"tree.hang"_s, "on"); // a phone that never answers is waited for as long as the user wants it
    state->clearQueue();
    const qsizetype asked = phone.commandLines().size();
    select(BrowserSide::android, u"Trip"_s);
    state->transferAndroidToMac();
    ASSERT_TRUE(waitFor([&] { return phone.commandLines().size() > asked; }));
    QElapsedTimer clock;
    clock.start();
    state->removeQueueItem(state->queue().first().id);
    waitForQueue();
    EXPECT_LT(clock.elapsed(), 500);
}

TEST(StagedNames, areOnlySweptWhenTheirProgramHasEnded) {
    const QString mine = StagedName::make();
    EXPECT_EQ(mine.toUtf8().size(), 48);
    EXPECT_TRUE(StagedName::isStaged(mine));
    EXPECT_FALSE(StagedName::isLeftOver(mine)) << "this program lives";
    const QString released = StagedName::make();
    StagedName::release(released);
    EXPECT_TRUE(StagedName::isLeftOver(released)) << "a phone that left could keep it";
    const QString dead = StagedName::prefix() + u"0123456789abcdef-00000001.part"_s;
    EXPECT_TRUE(StagedName::isLeftOver(dead));
    // Another program of this user, which works at this moment.
    const QString other = u"fedcba9876543210"_s;
    const QString working = StagedName::prefix() + other + u"-00000001.part"_s;
    {
        QFile lock(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + u"/vantrel-copies/"_s +
                   other);
        ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
        ASSERT_EQ(::flock(lock.handle(), LOCK_EX), 0);
        EXPECT_FALSE(StagedName::isLeftOver(working));
    }
    EXPECT_TRUE(StagedName::isLeftOver(working));
    const QString strange = u".vantrel-00000000-0123456789abcdef-00000001.part"_s;
    EXPECT_TRUE(StagedName::isStaged(strange));
    EXPECT_FALSE(StagedName::isLeftOver(strange)) << "another user's, or another computer's";
    for (const QString &name :
         {u".vantrel-notes.part"_s, QString(dead + u"x"_s), QString(u"x"_s + dead), u".part"_s})
        EXPECT_FALSE(StagedName::isStaged(name)) << name.toStdString();

    const QTemporaryDir folder;
    for (const QString &name : {mine, dead, strange, u"kept.part"_s})
        write(folder.filePath(name + u"/file"_s), "x");
    LocalFiles::sweep(folder.path());
    EXPECT_EQ(
        QDir(folder.path()).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name).size(),
        3);
    EXPECT_FALSE(QFileInfo::exists(folder.filePath(dead)));
}

TEST(LocalStagingTests, takesANameOnlyWhenItIsFree) {
    for (const FileSystem kind : {FileSystem::usual, FileSystem::withoutRename, FileSystem::fat}) {
        const QTemporaryDir folder;
        write(folder.filePath(u"staged"_s), "new");
        write(folder.filePath(u"taken"_s), "first");
        ASSERT_TRUE(QDir(folder.path()).mkdir(u"folder"_s));
        ASSERT_TRUE(QFile::link(u"nowhere"_s, folder.filePath(u"link"_s)));
        fileSystem = kind;
        const auto placing = [&](const QString &name) {
            return LocalFiles::place(folder.filePath(u"staged"_s), folder.filePath(name));
        };
        for (const QString &name : {u"taken"_s, u"folder"_s, u"link"_s})
            EXPECT_EQ(placing(name), LocalFiles::Placing::nameTaken) << int(kind);
        EXPECT_EQ(placing(u"nope/x"_s), LocalFiles::Placing::failed);
        EXPECT_EQ(placing(u"free"_s), LocalFiles::Placing::placed);
        fileSystem = FileSystem::usual;
        EXPECT_EQ(contents(folder.filePath(u"free"_s)), "new");
        EXPECT_EQ(contents(folder.filePath(u"taken"_s)), "first");
        EXPECT_FALSE(QFileInfo::exists(folder.filePath(u"staged"_s)));
    }
}

TEST(TransferRateTests, isThatOfTheLastSeconds) {
    TransferRate rate;
    EXPECT_EQ(rate.bytesPerSecondAt(0), std::nullopt);
    rate.addAt(50'000'000, 0); // what the sockets held
    EXPECT_EQ(rate.bytesPerSecondAt(100), std::nullopt) << "too soon to say";
    for (qint64 time = 100; time <= 10'000; time += 100)
        rate.addAt(100'000, time);
    ASSERT_TRUE(rate.bytesPerSecondAt(10'000));
    EXPECT_NEAR(*rate.bytesPerSecondAt(10'000), 1e6, 5e4);
    EXPECT_EQ(rate.bytesPerSecondAt(20'000), std::nullopt) << "nothing has come for long";
}
