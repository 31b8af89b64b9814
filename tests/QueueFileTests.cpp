// What is not finished is there again at the next start, and nothing that the file says leads elsewhere.

#include "support/ModelTest.h"

#include "Transfers/QueueFile.h"

using namespace Qt::StringLiterals;
using namespace vantrel;

class QueueFileTests : public ModelTest {
protected:
    [[nodiscard]] QString folder() const { return mac.filePath(u"state"_s); }
    [[nodiscard]] QString file() const { return folder() + u"/transfers.json"_s; }
    /// Ends the program that runs, if any, and starts another one, on the folders of before.
    void restart() {
        state.reset();
        ADBClient::stopRunningTools();
        state = AppState::designPreview(desktop);
        const auto remembering = state->transfers().remember(folder());
        ASSERT_TRUE(waitFor([&] { return remembering.isReady(); }));
        connectPhone();
        browseHere();
    }
    [[nodiscard]] QByteArray kept() const { return QFile::exists(file()) ? contents(file()) : QByteArray(); }
    /// A file of one entry, where `key` has another value.
    static QByteArray keptWith(const QString &key, const QJsonValue &value) {
        QJsonObject entry{{u"phone"_s, u"demo-phone"_s},
                          {u"way"_s, u"pull"_s},
                          {u"source"_s, u"/sdcard/a"_s},
                          {u"folder"_s, u"/tmp"_s},
                          {u"name"_s, u"a"_s},
                          {u"isFolder"_s, false},
                          {u"bytes"_s, 1},
                          {u"keepBoth"_s, false}};
        if (!key.isEmpty())
            entry[key] = value;
        return QJsonDocument(
                   {{u"program"_s, u"vantrel"_s}, {u"version"_s, 1}, {u"unfinished"_s, QJsonArray{entry}}})
            .toJson();
    }
};

TEST_F(QueueFileTests, whatIsNotFinishedIsThereAgainAndGoesOnAtAClick) {
    for (const char *name : {"a", "b", "c", "d"})
        phone.write(QString::fromLatin1(name), QByteArray(200'000, *name));
    write(here(u"b"_s), "another content");
    phone.set(u"bandwidth"_s, "0.2");
    restart();
    state->selectAllVisible(BrowserSide::android);
    state->transferAndroidToMac();
    ASSERT_TRUE(waitFor([&] { return kept().count("\"name\"") == 4; })) << "a crash would leave this";
    phone.reset(u"bandwidth"_s);
    ASSERT_TRUE(waitFor([&] { return state->transfers().queue().completedCount() > 0; }));
    phone.set(u"bandwidth"_s, "0.05");
    const qsizetype done = state->transfers().queue().completedCount();

    restart();
    EXPECT_EQ(state->queue().size(), 4 - done) << statuses().toStdString();
    EXPECT_EQ(state->transfers().queue().pausedCount(), state->queue().size());
    EXPECT_FALSE(state->isTransferring()) << "nothing goes on by itself";
    EXPECT_EQ(state->transfers().notice(), QString());
    phone.reset(u"bandwidth"_s);
    state->transfers().resume();
    waitForQueue();
    for (const char *name : {"a", "c", "d"})
        EXPECT_EQ(contents(here(QString::fromLatin1(name))), QByteArray(200'000, *name));
    EXPECT_EQ(contents(here(u"b"_s)), "another content");

    // Also what waits for a decision is kept; when all is done, nothing is.
    ASSERT_TRUE(waitFor([&] { return kept().count("\"name\"") == 1; }));
    restart();
    ASSERT_EQ(state->queue().size(), 1);
    state->transfers().resume();
    waitForQueue();
    state->transfers().keepAllBoth();
    waitForQueue();
    EXPECT_EQ(contents(here(u"b 2"_s)), QByteArray(200'000, 'b'));
    EXPECT_TRUE(waitFor([&] { return !QFile::exists(file()); }));
}

TEST_F(QueueFileTests, aFileThatIsNotOneIsPutAsideAndLeadsNowhere) {
    const struct {
        QByteArray bytes;
        const char *problem; ///< of the notice
    } cases[] = {
        {keptWith({}, {}), nullptr},
        {"", "is damaged"},
        {"{\"program\":\"vantrel\",\"version\":1,\"unfin", "is damaged"},
        {QByteArray(100'000, '['), "is damaged"},
        {"{\"program\":\"other\",\"version\":1}", "is damaged"},
        {"{\"program\":\"vantrel\",\"version\":2}", "is of another version"},
        {keptWith(u"name"_s, u"../a"_s), "is damaged in part"},
        {keptWith(u"name"_s, u".."_s), "is damaged in part"},
        {keptWith(u"name"_s, u"sub/a"_s), "is damaged in part"},
        {keptWith(u"name"_s, u""_s), "is damaged in part"},
        {keptWith(u"name"_s, 7), "is damaged in part"},
        {keptWith(u"folder"_s, u"/tmp/../etc"_s), "is damaged in part"},
        {keptWith(u"folder"_s, u"tmp"_s), "is damaged in part"},
        {keptWith(u"folder"_s, u"/tmp//"_s), "is damaged in part"},
        {keptWith(u"source"_s, u"sdcard/a"_s), "is damaged in part"},
        {keptWith(u"source"_s, u"/sdcard/../data/a"_s), "is damaged in part"},
        {keptWith(u"phone"_s, u""_s), "is damaged in part"},
        {keptWith(u"way"_s, u"both"_s), "is damaged in part"},
        {keptWith(u"way"_s, u"here"_s), "is damaged in part"}, // with a phone
    };
    for (const auto &c : cases) {
        QDir(folder()).removeRecursively();
        write(file(), c.bytes);
        QueueFile queue(folder());
        const QueueFile::Contents contentsNow = queue.open();
        EXPECT_EQ(contentsNow.entries.size(), c.problem ? 0 : 1) << c.bytes.left(200).toStdString();
        EXPECT_EQ(contentsNow.problem.isEmpty(), !c.problem) << c.bytes.left(200).toStdString();
        EXPECT_EQ(QFile::exists(file() + u".aside"_s), bool(c.problem));
        if (c.problem) {
            EXPECT_TRUE(contentsNow.problem.contains(QString::fromLatin1(c.problem)))
                << contentsNow.problem.toStdString();
            EXPECT_EQ(contents(file() + u".aside"_s), c.bytes);
        }
    }
    // A folder that cannot be made is said, and nothing else comes of it.
    write(mac.filePath(u"taken"_s), "x");
    QueueFile nowhere(mac.filePath(u"taken/state"_s));
    const QueueFile::Contents nothing = nowhere.open();
    EXPECT_TRUE(nothing.problem.contains(u"will not be remembered"_s));
    EXPECT_FALSE(nothing.mayWrite);
    EXPECT_EQ(nowhere.write(state->queue(), 1), nothing.problem);
}

TEST_F(QueueFileTests, programsAtTheSameTimeHaveAFileEachAndALaterOneTakesUpBoth) {
    const auto entry = [](const QString &name) {
        QueueItem item;
        item.id = QUuid::createUuid();
        item.name = name;
        item.sourcePath = u"/sdcard/"_s + name;
        item.destinationFolder = u"/tmp"_s;
        item.serial = u"demo-phone"_s;
        return item;
    };
    {
        QueueFile first(folder());
        QueueFile second(folder());
        EXPECT_EQ(first.open().entries.size() + second.open().entries.size(), 0);
        EXPECT_EQ(first.write({entry(u"a"_s)}, 2), QString());
        EXPECT_EQ(second.write({entry(u"b"_s), entry(u"c"_s)}, 1), QString());
        EXPECT_EQ(first.write({}, 1), QString()) << "an older list, written late";
    }
    QueueFile third(folder());
    const QList<QueueItem> entries = third.open().entries;
    ASSERT_EQ(entries.size(), 3);
    EXPECT_EQ(third.write(entries, 1), QString());
    EXPECT_EQ(QDir(folder()).entryList({u"*.json"_s}, QDir::Files), QStringList{u"transfers.json"_s});
    EXPECT_EQ(contents(file()).count("\"name\""), 3);
    EXPECT_EQ(QFileInfo(file()).permissions() & (QFile::ReadOther | QFile::ReadGroup), QFile::Permissions());
}
