// Pictures that the desktop's own thumbnailer makes, on a bus of the test's own.

#include "support/Bus.h"
#include "support/ModelTest.h"

#include "Records/Identity.h"
#include "Thumbnails/DesktopThumbnailer.h"
#include "Thumbnails/ThumbnailFolder.h"
#include "Thumbnails/ThumbnailStore.h"

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

/// A thumbnailer that notes what it is asked, and a store that asks it.
class ThumbnailerTests : public ModelTest {
protected:
    const QString service = u"org.freedesktop.thumbnails.Thumbnailer1"_s;
    const QString place = u"/org/freedesktop/thumbnails/Thumbnailer1"_s;

    void serve() {
        ASSERT_TRUE(there.registerVirtualObject(u"/org"_s, &server, QDBusConnection::SubPath));
        ASSERT_TRUE(there.registerService(service));
    }
    bool answer(const QDBusMessage &message) {
        asked.append(message);
        return there.send(
            message.createReply(message.member() == u"Queue"_s ? QVariantList{++handle} : QVariantList{}));
    }
    [[nodiscard]] QStringList methods() const {
        QStringList names;
        for (const QDBusMessage &message : asked)
            names.append(message.member());
        return names;
    }
    [[nodiscard]] QVariant argument(int index) const { return asked.last().arguments().at(index); }

    FileItem file(const QString &name) {
        write(here(name), "not for this program");
        const QFileInfo info(here(name));
        return {newIdentity(), name, info.filePath(), false, info.size(), {}, info.lastModified()};
    }
    static QString uri(const FileItem &item) {
        return QString::fromLatin1(ThumbnailFolder::uriOf(item.path));
    }
    void make(const FileItem &item) {
        QImage image(256, 144, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        ThumbnailFolder::store(ThumbnailFolder::uriOf(item.path), item.modifiedAt->toSecsSinceEpoch(), 200,
                               image);
    }
    void say(const QString &signal, const QVariantList &arguments) {
        QDBusMessage message = QDBusMessage::createSignal(place, service, signal);
        message.setArguments(arguments);
        there.send(message);
    }
    void look(const QList<FileItem> &items) { store.look(&viewer, {}, items, 200); }
    [[nodiscard]] bool isSeen(const FileItem &item) const { return !store.picture({}, item).isNull(); }

    PrivateBus daemon;
    QDBusConnection there = daemon.connection(u"thumbnailer"_s);
    QDBusConnection bus = daemon.connection(u"vantrel"_s);
    Stub server{[this](const QDBusMessage &message, const QDBusConnection &) { return answer(message); }};
    QList<QDBusMessage> asked;
    uint handle = 40;
    QObject viewer;
    ThumbnailStore store;
    DesktopThumbnailer thumbnailer{store, bus};
};

TEST_F(ThumbnailerTests, makesWhatThisProgramCannotRead) {
    serve();
    const FileItem film = file(u"a film.mkv"_s);
    const FileItem paper = file(u"paper.pdf"_s);
    const FileItem photo = file(u"photo.heic"_s);
    // What this program refuses is not handed on, nor what no desktop has pictures of.
    look({film, file(u"hostile.jpg"_s), paper, photo, file(u"notes.txt"_s)});
    ASSERT_TRUE(waitFor([&] { return !asked.isEmpty() && argument(0).toStringList().size() == 3; }));
    EXPECT_EQ(argument(0).toStringList(), (QStringList{uri(film), uri(paper), uri(photo)}));
    EXPECT_EQ(argument(1).toStringList(),
              (QStringList{u"video/x-matroska"_s, u"application/pdf"_s, u"image/heif"_s}));
    EXPECT_EQ(argument(2), u"large"_s);
    const qsizetype times = asked.size();

    make(film);
    say(u"Ready"_s, {handle, QStringList{uri(film)}});
    EXPECT_TRUE(waitFor([&] { return isSeen(film); }));
    make(paper);
    FileItem older = photo;
    older.modifiedAt = photo.modifiedAt->addSecs(-5);
    make(older);
    say(u"Ready"_s, {handle, QStringList{uri(paper), uri(photo), u"file:///somebody/elses"_s}});
    EXPECT_TRUE(waitFor([&] { return isSeen(paper); }));
    QTest::qWait(100);
    EXPECT_FALSE(isSeen(photo)) << "that is of what it was before";
    look({});
    look({film, paper, photo});
    QTest::qWait(100);
    EXPECT_EQ(asked.size(), times) << "what came to nothing is not asked for again";
}

TEST_F(ThumbnailerTests, worksOnNothingThatIsScrolledAway) {
    serve();
    const FileItem first = file(u"first.pdf"_s);
    const FileItem second = file(u"second.pdf"_s);
    look({first});
    ASSERT_TRUE(waitFor([&] { return asked.size() == 1; }));
    look({second});
    ASSERT_TRUE(waitFor([&] { return asked.size() == 2 || (asked.size() == 3 && handle == 42); }));
    ASSERT_TRUE(waitFor([&] { return asked.last().member() == u"Queue"_s && handle == 42; }));
    EXPECT_EQ(argument(0).toStringList(), QStringList{uri(second)});
    // Signals of others, of the request before, and of a stranger mean nothing.
    say(u"Error"_s, {41u, QStringList{uri(second)}, 0, u"gone"_s});
    look({});
    ASSERT_TRUE(waitFor([&] { return asked.last().member() == u"Dequeue"_s; }));
    EXPECT_EQ(argument(0).toUInt(), 42u);
    look({second});
    ASSERT_TRUE(waitFor([&] { return handle == 43; })) << "it was not made, and is wanted again";
    say(u"Error"_s, {43u, QStringList{uri(second)}, 0, u"damaged"_s});
    say(u"Finished"_s, {43u});
    QTest::qWait(100);
    look({});
    look({second});
    QTest::qWait(100);
    EXPECT_EQ(handle, 43u);
}

TEST_F(ThumbnailerTests, isAskedOnceWhereThereIsNone) {
    QObject late;
    look({file(u"first.pdf"_s)});
    QSignalSpy asks(&store, &ThumbnailStore::desktopIsAsked);
    ASSERT_TRUE(waitFor([&] { return asks.count() == 1; }));
    QTest::qWait(300);
    serve();
    look({file(u"second.pdf"_s)});
    ASSERT_TRUE(waitFor([&] { return asks.count() >= 2; }));
    QTest::qWait(200);
    EXPECT_TRUE(asked.isEmpty());
}

} // namespace
} // namespace vantrel
