// A phone that means harm: what it answers must not reach beyond its own row.

#include "support/ModelTest.h"

#include "ADB/ListingText.h"
#include "State/FilePreview.h"

#include <sys/resource.h>
#include <sys/stat.h>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

class HostilePhoneTests : public ModelTest {
protected:
    HostilePhoneTests() {
        write(at(u"victim"_s), "mine");
        phone.write(u"song.bin"_s, "song");
        phone.write(u"folder/inner"_s, "x");
        phone.link(u"disguised"_s, u"/sdcard/folder"_s);
        connectPhone();
        browseHere();
    }

    [[nodiscard]] QString at(const QString &name) const { return mac.filePath(name); }
    /// Names without the folder's other entries, sorted.
    static QString namesIn(const QString &folder) {
        return QDir(folder)
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name)
            .join(u'|');
    }
    void browse() { browsePhone(u"/sdcard"_s); }
    [[nodiscard]] QString shown() const { return namesOf(state->displayedAndroidItems()).join(u'|'); }
    void search(const QString &text) {
        state->setAndroidSearchScope(AndroidSearchScope::everywhere);
        searchFor(text);
        ASSERT_TRUE(waitFor([&] { return !state->isSearchingAndroid(); }));
    }
    void copyAll() {
        state->selectAllVisible(BrowserSide::android);
        state->transferAndroidToMac();
        waitForQueue();
    }
    void pushAll() {
        browseHere();
        state->selectAllVisible(BrowserSide::mac);
        state->transferMacToAndroid();
        waitForQueue();
    }
    /// The error that the user reads, or nothing when the file was opened.
    QString open(const QString &name) {
        desktop.opened.clear();
        state->openAndroidFile({{}, name, u"/sdcard/"_s + name, false, {}, {}, {}});
        EXPECT_TRUE(waitFor([&] { return !state->isOpeningAndroidFile(); }));
        EXPECT_NE(desktop.opened.isEmpty(), !state->androidBrowseError());
        return state->androidBrowseError().value_or(QString());
    }
    static int mode(const QString &path) {
        struct stat facts {};
        EXPECT_EQ(::lstat(QFile::encodeName(path).constData(), &facts), 0) << path.toStdString();
        return int(facts.st_mode);
    }
};

TEST_F(HostilePhoneTests, namesStayInTheirFolder) {
    QByteArray listing;
    for (const QByteArray &name :
         {QByteArray("../victim"), QByteArray("../../victim"), QByteArray("/etc/passwd"), QByteArray(".."),
          QByteArray("."), QByteArray("a/b"), QByteArray("nul\0l", 5), QByteArray("-> /etc/passwd"),
          QByteArray("line\nfeed"), QByteArray("'; touch pwned; '"), QByteArray("-rf"),
          QByteArray("song.bin")})
        listing += "-rw-rw---- 1 root root 4 2024-05-01 10:00 " + name + "\n";
    listing += "-rw-rw---- 1 root root 4 2024-05-01 10:00 " + QByteArray(65'536, 'w') + "\n";
    phone.set(u"ls.stdout"_s, listing);
    browse();
    // The second half of the name that holds a newline has no entry's form.
    EXPECT_EQ(shown().left(47), u"-rf|'; touch pwned; '|line|song.bin|wwwwwwwwwwww"_s.left(47));
    EXPECT_EQ(state->androidItems().size(), 5);
    EXPECT_EQ(state->androidItems().last().name.size(), 65'536);
    copyAll();
    for (const QueueItem &item : state->queue())
        EXPECT_EQ(item.status.is<QueueItemStatus::Completed>(), item.name == u"song.bin"_s)
            << item.progressLabel().left(200).toStdString();
    EXPECT_EQ(namesIn(at(u"here"_s)), u"song.bin"_s);
    EXPECT_EQ(namesIn(mac.path()), u"here|victim"_s);
    EXPECT_FALSE(phone.exists(u"pwned"_s));
}

TEST_F(HostilePhoneTests, hitsStayInTheirFolderAndTheirNumbersInRange) {
    phone.set(u"find.stdout"_s,
              "sdcard/song.bin\n../victim\n/sdcard/..\n/sdcard/a/.\n/sdcard/s" + QByteArray(1, '\0') +
                  "/song.bin\n/sdcard/song.bin\n/sdcard/far\n/sdcard/farther\n/sdcard/extra\n");
    phone.set(u"stat.stdout"_s, "/sdcard/song.bin|regular file|9223372036854775807|9.2e15\n"
                                "/sdcard/far|regular file|9223372036854775807|-9.2e15\n"
                                "/sdcard/farther|regular file|99999999999999999999|1e300\n"
                                "/sdcard/extra|regular file|-9223372036854775808|nan\n");
    search(u"song"_s);
    EXPECT_EQ(shown(), u"extra|far|farther|song.bin"_s);
    for (const FileItem &item : state->androidSearchResults())
        EXPECT_FALSE(item.sizeLabel().isEmpty() || item.modifiedLabel().isEmpty());
    phone.reset(u"stat.stdout"_s);
    copyAll();
    EXPECT_EQ(namesIn(at(u"here"_s)), u"song.bin"_s);

    // As many lines as were asked for are read, whatever comes.
    QByteArray flood;
    for (int i = 0; i < 1000; ++i)
        flood += "/sdcard/hit " + QByteArray::number(i) + '\n';
    phone.set(u"find.stdout"_s, flood);
    search(u"hit"_s);
    EXPECT_EQ(state->androidSearchResults().size(), 200);
}

TEST_F(HostilePhoneTests, whatStandsOnThePhoneIsNeverReplaced) {
    const QStringList names{u"line\nfeed"_s, u"return\rhere"_s, u"next\u0085line"_s, u"sep\u2028arator"_s,
                            u"blank "_s,     u"e\u0301"_s,      u"taken\nfree"_s};
    for (const QString &name : names) {
        phone.write(name, "theirs");
        write(at(u"here/"_s + name), "mine");
    }
    browse();
    pushAll();
    ASSERT_EQ(state->queue().size(), names.size());
    for (const QueueItem &item : state->queue())
        EXPECT_TRUE(item.canKeepBoth()) << item.progressLabel().toStdString();

    // A question that fails is no answer.
    for (const auto &[setting, value] :
         {std::pair(u"facts.exit"_s, "1"), std::pair(u"facts.stdout"_s, "end")}) {
        state->clearQueue();
        phone.set(setting, value);
        pushAll();
        ASSERT_EQ(state->queue().size(), names.size());
        for (const QueueItem &item : state->queue())
            EXPECT_TRUE(item.status.is<QueueItemStatus::Failed>()) << setting.toStdString();
        phone.reset(setting);
    }
    for (const QString &name : names)
        EXPECT_EQ(phone.read(name), "theirs") << name.toStdString();
}

TEST_F(HostilePhoneTests, aListingThatIsTooLongFailsInBoundedMemory) {
    const auto peak = [] {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss; // KB
    };
    const auto before = peak();
    for (const QString &stream : {u"ls.stdout-noise"_s, u"ls.stderr-noise"_s}) {
        phone.set(stream, "endless");
        browse();
        EXPECT_EQ(state->androidBrowseError(),
                  u"The phone’s answer was longer than 64 MB and was not read to its end."_s);
        EXPECT_TRUE(state->androidItems().isEmpty());
        phone.reset(stream);
    }
    phone.set(u"ls.stdout"_s, QByteArray("- 1 2 3 4 5 6 a\n").repeated(ADBClient::largestListing + 1));
    browse();
    EXPECT_EQ(state->androidBrowseError(), u"The phone lists more than a million entries here."_s);
    EXPECT_TRUE(state->androidItems().isEmpty());
    EXPECT_LT(peak() - before, 2'000'000) << "KB, under a sanitizer";
}

TEST(HostileListingTests, linesThatAreNoEntriesCostNothing) {
    constexpr int lines = 10'000'000;
    EXPECT_TRUE(ADBClient::parseLSLA(QString(u"x\n"_s).repeated(lines), u"/sdcard"_s).isEmpty());
}

TEST_F(HostilePhoneTests, linksThatWerePlantedLeadNowhere) {
    const QString cache = at(u"cache"_s);
    const QString local = FilePreview::cacheFolder() + u"/sdcard_song.bin/song.bin"_s;
    QFile::setPermissions(phone.hostPath(u"song.bin"_s), QFileDevice::Permissions(0x7777));
    // At the file and at every folder above it, up to the user's own cache folder.
    for (QString link = local; link != cache; link = QFileInfo(link).path()) {
        SCOPED_TRACE(link.toStdString());
        const bool isFile = link == local;
        QDir(cache).removeRecursively();
        QDir().mkpath(QFileInfo(link).path());
        QDir().mkpath(at(u"elsewhere"_s));
        const QString target = isFile ? at(u"victim"_s) : at(u"elsewhere"_s);
        ASSERT_TRUE(QFile::link(target, link));
        EXPECT_EQ(open(u"song.bin"_s), QString());
        EXPECT_EQ(desktop.opened, QStringList{local});
        EXPECT_EQ(contents(local), "song");
        EXPECT_EQ(mode(local), S_IFREG | 0400) << "for the user's eyes alone, and never a program";
        for (QString folder = QFileInfo(local).path(); folder != cache; folder = QFileInfo(folder).path())
            EXPECT_EQ(mode(folder), S_IFDIR | 0700) << folder.toStdString();
        EXPECT_EQ(namesIn(at(u"elsewhere"_s)), QString());
        EXPECT_EQ(contents(at(u"victim"_s)), "mine");
    }
}

TEST_F(HostilePhoneTests, onlyFilesAreOpenedAndOnlyInTheCache) {
    EXPECT_EQ(open(u"disguised"_s), u"This is a folder. Only files can be opened."_s);
    EXPECT_EQ(open(u"disguised"_s), u"This is a folder. Only files can be opened."_s) << "and again";
    for (const QString &name : {u"../../victim"_s, u".."_s, u"/etc/passwd"_s, QString(u"nul"_s + QChar(0))})
        EXPECT_EQ(open(name), u"This file’s name can’t be used on this computer."_s);
    EXPECT_EQ(namesIn(mac.path()), u"cache|here|victim"_s);
    EXPECT_EQ(contents(at(u"victim"_s)), "mine");
}

} // namespace
} // namespace vantrel
