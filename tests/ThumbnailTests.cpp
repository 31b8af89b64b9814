#include "support/ExifPhoto.h"
#include "support/ModelTest.h"
#include "support/Processes.h"

#include "Records/Identity.h"
#include "Thumbnails/LocalPicture.h"
#include "Thumbnails/SmallPicture.h"
#include "Thumbnails/ThumbnailFolder.h"
#include "Thumbnails/ThumbnailStore.h"

#include <sys/stat.h>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A picture whose quarters have these colours: red, green, blue or yellow, by their first letters.
QImage quarters(const QByteArray &colors, QSize size = {320, 240}) {
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    for (int i = 0; i < 4; ++i) {
        const QColor color = QColor::fromHsv(int(QByteArray("rygb").indexOf(colors[i])) * 90, 255, 200);
        painter.fillRect(
            QRect(i % 2 * size.width() / 2, i / 2 * size.height() / 2, size.width() / 2, size.height() / 2),
            color);
    }
    return image;
}

QByteArray quartersOf(const QImage &image) {
    QByteArray colors;
    for (int i = 0; i < 4 && !image.isNull(); ++i) {
        const QColor color =
            image.pixelColor(image.width() * (1 + i % 2 * 2) / 4, image.height() * (1 + i / 2 * 2) / 4);
        colors += "rygb"[qRound(color.hsvHueF() * 4) % 4];
    }
    return colors;
}

/// A photo of so many bytes, whose small picture shows `colors`; it shows something else itself.
QByteArray photo(const QByteArray &colors, qsizetype bytes = 0, quint16 orientation = 1) {
    const QByteArray whole = jpegOf(quarters("rrrr"));
    const QByteArray file = exifPhoto(whole, {320, 240}, jpegOf(quarters(colors, {160, 120})), orientation);
    return file + QByteArray(std::max<qsizetype>(0, bytes - file.size()), '\x55');
}

QByteArray png(const QImage &image) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "png");
    return buffer.data();
}

FileItem itemAt(const QString &path, qint64 size, qint64 seconds = 1'700'000'000) {
    return {
        newIdentity(), path.section(u'/', -1), path, false, size, {}, QDateTime::fromSecsSinceEpoch(seconds)};
}

// -- From bytes to a picture

TEST(SmallPictureTests, everyOrientationOfTheCameraStandsUpright) {
    // What lies where in the file for an upright picture of red, green, blue and yellow, by Exif's numbers.
    const QByteArray stored[] = {"rgby", "gryb", "ybgr", "byrg", "rbgy", "gyrb", "ygbr", "bryg"};
    for (quint16 orientation = 1; orientation <= 8; ++orientation) {
        SCOPED_TRACE(orientation);
        const QByteArray colors = stored[orientation - 1];
        const QImage embedded =
            smallPicture(photo(colors, 0, orientation), Extent::beginning, MediaKind::photo, 256);
        EXPECT_EQ(quartersOf(embedded), "rgby");
        EXPECT_EQ(embedded.size(), orientation < 5 ? QSize(160, 120) : QSize(120, 160));
        const QByteArray whole = exifPhoto(jpegOf(quarters(colors)), {320, 240}, {}, orientation);
        EXPECT_EQ(quartersOf(smallPicture(whole, Extent::whole, MediaKind::photo, 64)), "rgby");
    }
    // A photo of three by two has black bars in its small picture of four by three.
    const QByteArray wide = exifPhoto({}, {300, 200}, jpegOf(quarters("rgby", {160, 120})));
    EXPECT_EQ(smallPicture(wide, Extent::beginning, MediaKind::photo, 256).size(), QSize(160, 106));
}

QByteArray number(quint32 value) {
    const char bytes[] = {char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
    return QByteArray(bytes, sizeof bytes);
}

QByteArray box(const QByteArray &name, const QByteArray &content) {
    return number(quint32(content.size() + 8)) + name + content;
}

/// A still picture in a film's clothes, of which nothing can be read but what its camera says of it.
QByteArray heic(const QByteArray &brand, const QByteArray &photo) {
    const QByteArray exif = photo.mid(6, qFromBigEndian<quint16>(photo.constData() + 4) - 2);
    const QByteArray item = number(0) + exif;
    const auto boxes = [&](quint32 place) -> QByteArray {
        const QByteArray entry = box("infe", QByteArray("\2\0\0\0\0\1\0\0Exif\0", 13));
        const QByteArray location =
            QByteArray("\0\0\0\0\x44\0\0\1\0\1\0\0\0\1", 14) + number(place) + number(quint32(item.size()));
        return box("ftyp", brand + number(0) + "mif1" + brand) +
               box("meta", number(0) + box("hdlr", number(0) + number(0) + "pict" + QByteArray(13, '\0')) +
                               box("pitm", QByteArray("\0\0\0\0\0\2", 6)) +
                               box("iinf", QByteArray("\0\0\0\0\0\1", 6) + entry) + box("iloc", location));
    };
    return boxes(quint32(boxes(0).size() + 8)) + box("mdat", item + QByteArray(2'000'000, 'x'));
}

TEST(SmallPictureTests, whatTheCameraHasPutIntoAHeicIsFound) {
    for (const char *brand : {"heic", "mif1", "avif"}) {
        const QByteArray file = heic(brand, photo("gryb", 0, 2));
        for (const QByteArray &bytes : {file, file.left(256'000)})
            EXPECT_EQ(quartersOf(smallPicture(bytes, Extent::beginning, mediaKindOf(u"IMG_1.HEIC"_s), 256)),
                      "rgby");
        EXPECT_TRUE(smallPicture(file.left(1000), Extent::beginning, MediaKind::raw, 256).isNull());
    }
}

TEST(SmallPictureTests, coversOfAudioAndFilmsAreFound) {
    const QByteArray cover = jpegOf(quarters("rgby"));
    const QByteArray frame = QByteArray("\0image/jpeg\0\3\0", 14) + cover;
    const quint32 size = quint32(frame.size() + 10);
    const quint32 sevenBits = (size & 0x7f) | (size & 0x3f80) << 1 | (size & 0x1fc000) << 2;
    const QByteArray mp3 = QByteArray("ID3\3\0\0", 6) + number(sevenBits) + "APIC" +
                           number(quint32(frame.size())) + QByteArray(2, '\0') + frame;
    const QByteArray m4a =
        box("ftyp", QByteArray("M4A \0\0\0\0", 8)) +
        box("moov",
            box("udta",
                box("meta", QByteArray(4, '\0') + box("hdlr", QByteArray(25, '\0')) +
                                box("ilst", box("covr", box("data", number(13) + number(0) + cover))))));
    for (const QByteArray &file : {mp3, m4a})
        EXPECT_EQ(
            quartersOf(smallPicture(file + QByteArray(5000, 'x'), Extent::beginning, MediaKind::audio, 64)),
            "rgby");
    EXPECT_EQ(quartersOf(smallPicture(m4a, Extent::beginning, mediaKindOf(u"film.m4v"_s), 64)), "rgby");
}

TEST(SmallPictureTests, whatIsHostileCostsNothingButItsPicture) {
    const QByteArray jpeg = jpegOf(quarters("rgby"));
    // The first chunk of a PNG: its length, name, size, depth, kind and sum.
    QByteArray vast = png(quarters("rgby"));
    vast.replace(8, 25, QByteArray::fromHex("0000000d49484452000186a0000186a0080200000027309c9f"));
    QImage large(6000, 5000, QImage::Format_Grayscale8);
    large.fill(Qt::gray);
    const QImage larger = large.scaled(8000, 6500);
    // The last of a progressive JPEG's scans over and over: all of the picture is worked on for each.
    QBuffer progressive;
    progressive.open(QIODevice::WriteOnly);
    QImageWriter writer(&progressive, "jpeg");
    writer.setProgressiveScanWrite(true);
    ASSERT_TRUE(writer.write(quarters("rgby")));
    QByteArray scans = progressive.data().chopped(2);
    ASSERT_FALSE(smallPicture(scans, Extent::whole, MediaKind::photo, 256).isNull());
    scans += scans.mid(scans.lastIndexOf("\xff\xda")).repeated(100);
    const std::pair<const char *, QByteArray> cases[] = {
        {"a PNG of 100,000 by 100,000", vast},
        {"a PNG of more pixels than a screenshot has", png(large)},
        {"a JPEG of more pixels than a photo has", jpegOf(larger)},
        {"a JPEG of a hundred scans", scans},
        {"a drawing", "<svg xmlns='http://www.w3.org/2000/svg'><rect width='10' height='10'/></svg>"},
        {"the first bytes of a JPEG", jpeg.left(20)},
        {"zeros", QByteArray(80'000, '\0')},
        {"nothing", {}},
        {"a small picture that is none", exifPhoto(jpeg.left(100), {320, 240}, "no picture")},
        {"a small picture of 100,000 by 100,000", exifPhoto(jpeg.left(100), {320, 240}, vast.left(2000))},
        {"a small picture that begins beyond the end", photo("rgby").left(150)},
    };
    for (const auto &[what, bytes] : cases) {
        SCOPED_TRACE(what);
        for (const MediaKind kind :
             {MediaKind::picture, MediaKind::photo, MediaKind::raw, MediaKind::video, MediaKind::audio}) {
            for (const Extent extent : {Extent::whole, Extent::beginning})
                EXPECT_TRUE(smallPicture(bytes, extent, kind, 256).isNull());
        }
    }
}

// -- This computer

class LocalPictureTests : public ModelTest {
protected:
    /// Writes a file that was last changed at that time.
    QString fileOf(const QByteArray &bytes, const QString &name, qint64 seconds = 1'700'000'000) {
        write(here(name), bytes);
        QFile file(here(name));
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        file.setFileTime(QDateTime::fromSecsSinceEpoch(seconds), QFileDevice::FileModificationTime);
        return here(name);
    }
    static int modeOf(const QString &path) {
        struct stat status {};
        ::stat(QFile::encodeName(path).constData(), &status);
        return int(status.st_mode & 0777);
    }
};

TEST_F(LocalPictureTests, theDesktopsThumbnailsAreReadAndWrittenByItsStandard) {
    // The standard's own example, and how the desktop's library writes a path.
    EXPECT_TRUE(ThumbnailFolder::pathFor(ThumbnailFolder::uriOf(u"/home/jens/photos/me.png"_s), 200)
                    .endsWith(u"/cache/thumbnails/large/c6ee772d9e49320e97ec29a7eb5b1697.png"));
    EXPECT_EQ(ThumbnailFolder::uriOf(u"/a b/%;[é]~#?'(1)&=+,@:!$*.jpg"_s),
              "file:///a%20b/%25%3B%5B%C3%A9%5D~%23%3F'(1)&=+,@:!$*.jpg");

    const QString path = fileOf(photo("rgby"), u"photo.jpg"_s);
    const QByteArray uri = ThumbnailFolder::uriOf(path);
    EXPECT_EQ(quartersOf(localPicture(path, 200)), "rrrr") << "the photo itself";
    const QString kept = ThumbnailFolder::pathFor(uri, 200);
    EXPECT_EQ(modeOf(kept), 0600);
    EXPECT_EQ(modeOf(QFileInfo(kept).path()), 0700);
    EXPECT_EQ(QDir(QFileInfo(kept).path()).entryList(QDir::Files).size(), 1);
    const QImage written(kept);
    EXPECT_EQ(written.text(u"Thumb::URI"_s), QString::fromLatin1(uri));
    EXPECT_EQ(written.text(u"Thumb::MTime"_s), u"1700000000");

    // What another program has made is shown, of a film too, unless it was made of something else.
    ThumbnailFolder::store(uri, 1'700'000'000, 200, quarters("bbbb", {256, 192}));
    EXPECT_EQ(quartersOf(localPicture(path, 200)), "bbbb");
    fileOf(photo("rgby"), u"photo.jpg"_s, 1'700'000'001);
    EXPECT_EQ(quartersOf(localPicture(path, 200)), "rrrr") << "the photo is newer";
    const QString film = fileOf("film", u"film.mp4"_s);
    EXPECT_TRUE(localPicture(film, 200).isNull());
    ThumbnailFolder::store(uri, 1'700'000'000, 200, quarters("bbbb", {256, 192}));
    QFile::copy(kept, ThumbnailFolder::pathFor(ThumbnailFolder::uriOf(film), 200));
    EXPECT_TRUE(localPicture(film, 200).isNull()) << "it is of another file";
    ThumbnailFolder::store(ThumbnailFolder::uriOf(film), 1'700'000'000, 500, quarters("yyyy", {512, 300}));
    EXPECT_EQ(quartersOf(localPicture(film, 200)), "yyyy") << "a larger one serves, too";

    const QString larger = ThumbnailFolder::pathFor(ThumbnailFolder::uriOf(film), 500);
    QImage made(larger);
    made.setText(u"Thumb::MTime"_s, u"1700000000.664512"_s);
    ASSERT_TRUE(made.save(larger));
    EXPECT_EQ(quartersOf(localPicture(film, 200)), "yyyy") << "as tumbler writes the time";
}

TEST_F(LocalPictureTests, whatHasFailedIsNotTriedAgainUntilItChanges) {
    const QString path = fileOf(QByteArray(1000, 'x'), u"damaged.jpg"_s);
    EXPECT_TRUE(localPicture(path, 200).isNull());
    fileOf(photo("rgby"), u"damaged.jpg"_s); // at the same time
    EXPECT_TRUE(localPicture(path, 200).isNull());
    fileOf(photo("rgby"), u"damaged.jpg"_s, 1'700'000'001);
    EXPECT_FALSE(localPicture(path, 200).isNull());
}

// -- The store

class ThumbnailStoreTests : public ModelTest {
protected:
    ThumbnailStoreTests() {
        QObject::connect(&store, &ThumbnailStore::arrived, &store,
                         [this](const FilePlace &, const QSet<QString> &paths) { arrived += paths; });
    }
    ~ThumbnailStoreTests() override { ADBClient::setPatience(15s); }

    /// A file of the phone; larger than what is read whole at once, unless said.
    FileItem onPhone(const QString &name, const QByteArray &bytes) {
        phone.write(u"DCIM/"_s + name, bytes);
        return itemAt(u"/sdcard/DCIM/"_s + name, bytes.size());
    }
    QList<FileItem> photosOnPhone(int count, const QString &name = u"photo"_s) {
        QList<FileItem> items;
        for (int i = 0; i < count; ++i)
            items.append(onPhone(name + QString::number(i) + u".jpg"_s, photo("rgby", 300'000)));
        return items;
    }
    void look(const QList<FileItem> &items) { store.look(&viewer, place, items, 200); }
    [[nodiscard]] bool hasAll(const QList<FileItem> &items) const {
        return std::all_of(items.begin(), items.end(), [this](const FileItem &item) {
            return quartersOf(store.picture(place, item)) == "rgby";
        });
    }
    [[nodiscard]] QStringList readings() const {
        QStringList lines;
        for (const QStringList &line : phone.commandLines())
            lines.append(line.last());
        return lines;
    }
    static qsizetype running() { return processes::childrenCalled("exec-out"); }
    /// Lets everything come that is still to come.
    void rest() {
        QTest::qWait(100);
        ASSERT_TRUE(waitFor([] { return running() == 0; }));
        QTest::qWait(100);
    }

    const FilePlace place{BrowserSide::android, DemoPhone::serial()};
    QObject viewer;
    ThumbnailStore store;
    QSet<QString> arrived;
};

TEST_F(ThumbnailStoreTests, thePhonesPicturesComeInTheirOrderWithoutTheirFiles) {
    QList<FileItem> items = photosOnPhone(40);
    std::reverse(items.begin(), items.end());
    look(items);
    ASSERT_TRUE(waitFor([&] { return hasAll(items); }));
    EXPECT_EQ(arrived.size(), 40);
    const QStringList lines = readings();
    EXPECT_EQ(lines.size(), 3);
    // Two runs begin at once, and either may be the first to be heard of.
    EXPECT_EQ(lines.mid(0, 2).filter(u"head -q -c 80000 '/sdcard/DCIM/photo39.jpg' "_s).size(), 1);
    EXPECT_TRUE(lines.last().contains(u"photo0.jpg"_s)) << "what was asked for last";

    look({});
    look(items);
    rest();
    EXPECT_EQ(readings().size(), 3) << "they are known";
    items.first().modifiedAt = items.first().modifiedAt->addSecs(1);
    EXPECT_TRUE(store.picture(place, items.first()).isNull()) << "another photo by now";
    look(items);
    ASSERT_TRUE(waitFor([&] { return hasAll(items); }));
    EXPECT_EQ(readings().size(), 4);
}

TEST_F(ThumbnailStoreTests, whatHasNoSmallPictureIsReadWholeWhereItMayBe) {
    const QByteArray plain = jpegOf(quarters("rgby")) + QByteArray(300'000, 'x');
    const QList<FileItem> items{onPhone(u"small.png"_s, png(quarters("rgby"))),
                                onPhone(u"plain.jpg"_s, plain),
                                onPhone(u"large.png"_s, png(quarters("rgby")) + QByteArray(300'000, 'x'))};
    const QList<FileItem> none{onPhone(u"vast.png"_s, png(quarters("rgby")) + QByteArray(5'000'000, 'x')),
                               onPhone(u"film.mp4"_s, "film"), onPhone(u"notes.txt"_s, "notes"),
                               onPhone(u"noise.jpg"_s, QByteArray(300'000, 'x'))};
    store.setCopying(true);
    look(items + none);
    ASSERT_TRUE(waitFor([&] { return hasAll({items.first()}); }));
    rest();
    EXPECT_FALSE(hasAll({items.at(1)})) << "not beside copies";
    store.setCopying(false);
    ASSERT_TRUE(waitFor([&] { return hasAll(items); }));
    rest();
    const qsizetype read = readings().size();
    look({});
    look(items + none);
    rest();
    EXPECT_EQ(readings().size(), read) << "what has no picture is not asked twice";
    for (const FileItem &item : none)
        EXPECT_TRUE(store.picture(place, item).isNull()) << qPrintable(item.name);
    EXPECT_FALSE(readings().join(u' ').contains(u"vast"_s));
}

TEST_F(ThumbnailStoreTests, whatIsScrolledAwayIsStoppedAndWhatIsSeenComesFirst) {
    const QList<FileItem> first = photosOnPhone(60);
    const QList<FileItem> second = photosOnPhone(10, u"second"_s);
    phone.set(u"beginnings.hang"_s, "on");
    look(first);
    ASSERT_TRUE(waitFor([] { return running() == 2; }));
    QTest::qWait(100);
    EXPECT_EQ(running(), 2) << "no more at once";
    look(second);
    ASSERT_TRUE(waitFor([&] { return readings().last().contains(u"second"_s); }));
    ASSERT_TRUE(waitFor([] { return running() == 1; })) << "those of the first are stopped";
    phone.reset(u"beginnings.hang"_s);
    ASSERT_TRUE(waitFor([&] { return hasAll(second); }));
    rest();
    EXPECT_EQ(arrived.size(), second.size());
}

TEST_F(ThumbnailStoreTests, besideCopiesThereIsOneRunAtATime) {
    phone.set(u"beginnings.hang"_s, "on");
    store.setCopying(true);
    look(photosOnPhone(60));
    ASSERT_TRUE(waitFor([] { return running() > 0; }));
    QTest::qWait(300);
    EXPECT_EQ(running(), 1);
}

TEST_F(ThumbnailStoreTests, aSilentPhoneIsGivenUpUntilItIsHeardOf) {
    ADBClient::setPatience(200ms);
    const QList<FileItem> items = photosOnPhone(10);
    phone.set(u"beginnings.hang"_s, "on");
    look(items);
    ASSERT_TRUE(waitFor([] { return running() == 1; }));
    ASSERT_TRUE(waitFor([] { return running() == 0; }));
    rest();
    look(photosOnPhone(10, u"others"_s));
    rest();
    EXPECT_EQ(readings().size(), 1);
    phone.reset(u"beginnings.hang"_s);
    ADBClient::setPatience(15s);
    look(items);
    store.hear(place);
    EXPECT_TRUE(waitFor([&] { return hasAll(items); }));
}

} // namespace
} // namespace vantrel
