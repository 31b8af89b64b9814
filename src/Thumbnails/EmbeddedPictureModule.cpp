// The module that embeddedPicture() loads; nothing links it.

#include "Thumbnails/EmbeddedPicture.h"

#include <exiv2/exiv2.hpp>
#include <taglib/flacfile.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/opusfile.h>
#include <taglib/tbytevectorstream.h>
#include <taglib/tpropertymap.h>
#include <taglib/vorbisfile.h>

#include <taglib/attachedpictureframe.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4coverart.h>
#include <taglib/mp4tag.h>
#include <taglib/xiphcomment.h>

#include <algorithm>
#include <exception>
#include <mutex>

namespace vantrel {

namespace {

// -- Photos

int number(const Exiv2::ExifData &exif, std::initializer_list<const char *> keys) {
    for (const char *key : keys) {
        const auto entry = exif.findKey(Exiv2::ExifKey(key));
        if (entry != exif.end() && entry->count() > 0)
            return int(entry->toLong());
    }
    return 0;
}

/// Of one of the file's own texts, within reason.
QString text(const Exiv2::ExifData &exif, const char *key) {
    constexpr std::size_t longest = 80;
    const auto entry = exif.findKey(Exiv2::ExifKey(key));
    return entry == exif.end()
               ? QString()
               : QString::fromUtf8(QByteArray::fromStdString(entry->toString().substr(0, longest)))
                     .simplified();
}

/// Most makers begin the model with their own name.
QString cameraOf(const Exiv2::ExifData &exif) {
    const QString maker = text(exif, "Exif.Image.Make");
    const QString model = text(exif, "Exif.Image.Model");
    return model.startsWith(maker, Qt::CaseInsensitive) ? model
                                                        : QString(maker + QLatin1Char(' ') + model).trimmed();
}

/// The smallest preview that is at least as large as a tile; of a raw photo, whose thumbnail is a few pixels.
QByteArray preview(const Exiv2::Image &image) {
    constexpr std::uint32_t enough = 256;
    const Exiv2::PreviewManager previews(image);
    for (const Exiv2::PreviewProperties &each : previews.getPreviewProperties()) { // the smallest first
        const bool isLarge = each.width_ >= enough || each.height_ >= enough;
        if (!isLarge || (each.extension_ != ".jpg" && each.extension_ != ".tif"))
            continue;
        const Exiv2::PreviewImage found = previews.getPreviewImage(each);
        return {reinterpret_cast<const char *>(found.pData()), qsizetype(found.size())};
    }
    return {};
}

/// Of the box that an ISO media file begins with: which kind of still picture it holds.
bool isStill(const QByteArray &bytes) {
    static const QByteArray brands[] = {"heic", "heix", "mif1", "avif", "crx "};
    return bytes.mid(4, 4) == "ftyp" &&
           std::find(std::begin(brands), std::end(brands), bytes.mid(8, 4)) != std::end(brands);
}

/// A JPEG, a still picture in a film's clothes, or one of the raw formats. The library reads many others,
/// films among them, by what a file begins with and whatever its name is; some damaged ones it reads for
/// ever.
bool isPhoto(const QByteArray &bytes) {
    static const QByteArray beginnings[] = {"\xff\xd8\xff",
                                            QByteArray("II*\0", 4),
                                            QByteArray("MM\0*", 4),
                                            "IIRO",
                                            "IIRS",
                                            "MMOR",
                                            QByteArray("IIU\0", 4),
                                            "FUJIFILM"};
    return isStill(bytes) ||
           std::any_of(std::begin(beginnings), std::end(beginnings),
                       [&](const QByteArray &beginning) { return bytes.startsWith(beginning); });
}

void findInPhoto(const QByteArray &bytes, EmbeddedPicture &found) {
    if (!isPhoto(bytes))
        return;
    // The library's reader of XMP is not made for several threads.
    static std::mutex mutex;
    const std::scoped_lock lock(mutex);
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
#ifdef EXV_ENABLE_BMFF
    Exiv2::enableBMFF();
#endif
    const auto image = Exiv2::ImageFactory::open(reinterpret_cast<const Exiv2::byte *>(bytes.constData()),
                                                 long(bytes.size()));
    try {
        image->readMetadata();
    } catch (const std::exception &) {
        // Of a file's beginning the rest is missing; what came before that has been read.
    }
    const Exiv2::ExifData &exif = image->exifData();
    if (const int orientation = number(exif, {"Exif.Image.Orientation"});
        orientation >= 1 && orientation <= 8)
        found.orientation = orientation;
    found.photo = QSize(number(exif, {"Exif.Photo.PixelXDimension", "Exif.Image.ImageWidth"}),
                        number(exif, {"Exif.Photo.PixelYDimension", "Exif.Image.ImageLength"}));
    found.camera = cameraOf(exif);
    const Exiv2::DataBuf thumbnail = Exiv2::ExifThumbC(exif).copy();
    found.bytes = QByteArray(reinterpret_cast<const char *>(thumbnail.pData_), qsizetype(thumbnail.size_));
    const bool isJpeg = image->imageType() == Exiv2::ImageType::jpeg;
    if (const QByteArray larger = isJpeg ? QByteArray() : preview(*image); !larger.isEmpty())
        found.bytes = larger;
}

// -- Audio and films

QByteArray fromPictures(const TagLib::List<TagLib::FLAC::Picture *> &pictures) {
    const auto cover = std::find_if(pictures.begin(), pictures.end(), [](const auto *picture) {
        return picture->type() == TagLib::FLAC::Picture::FrontCover;
    });
    if (pictures.isEmpty())
        return {};
    const TagLib::ByteVector data = (cover != pictures.end() ? *cover : pictures.front())->data();
    return {data.data(), qsizetype(data.size())};
}

QByteArray coverOfMpeg(TagLib::IOStream &stream) {
    TagLib::MPEG::File file(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
    if (!file.hasID3v2Tag())
        return {};
    const TagLib::ID3v2::FrameList frames = file.ID3v2Tag()->frameList("APIC");
    const TagLib::ID3v2::AttachedPictureFrame *found = nullptr;
    for (const TagLib::ID3v2::Frame *frame : frames) {
        const auto *picture = dynamic_cast<const TagLib::ID3v2::AttachedPictureFrame *>(frame);
        if (picture && (!found || picture->type() == TagLib::ID3v2::AttachedPictureFrame::FrontCover))
            found = picture;
    }
    if (!found)
        return {};
    const TagLib::ByteVector data = found->picture();
    return {data.data(), qsizetype(data.size())};
}

QByteArray coverOfMP4(TagLib::IOStream &stream) {
    TagLib::MP4::File file(&stream, false);
    if (!file.isValid() || !file.tag() || !file.tag()->contains("covr"))
        return {};
    const TagLib::MP4::CoverArtList covers = file.tag()->item("covr").toCoverArtList();
    if (covers.isEmpty())
        return {};
    const TagLib::ByteVector data = covers.front().data();
    return {data.data(), qsizetype(data.size())};
}

QByteArray coverIn(const QByteArray &bytes) {
    TagLib::ByteVectorStream stream(TagLib::ByteVector(bytes.constData(), unsigned(bytes.size())));
    if (bytes.startsWith("fLaC")) {
        TagLib::FLAC::File file(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
        return fromPictures(file.pictureList());
    }
    if (bytes.startsWith("OggS")) {
        if (bytes.left(64).contains("OpusHead")) {
            TagLib::Ogg::Opus::File file(&stream, false);
            return file.tag() ? fromPictures(file.tag()->pictureList()) : QByteArray();
        }
        TagLib::Ogg::Vorbis::File file(&stream, false);
        return file.tag() ? fromPictures(file.tag()->pictureList()) : QByteArray();
    }
    if (bytes.mid(4, 4) == "ftyp")
        return coverOfMP4(stream);
    return bytes.startsWith("ID3") ? coverOfMpeg(stream) : QByteArray();
}

} // namespace

} // namespace vantrel

extern "C" Q_DECL_EXPORT void vantrelFindEmbeddedPicture(const QByteArray &bytes, vantrel::MediaKind kind,
                                                         vantrel::EmbeddedPicture &found) {
    try {
        if (kind == vantrel::MediaKind::audio || kind == vantrel::MediaKind::video)
            found.bytes = vantrel::coverIn(bytes);
        else
            vantrel::findInPhoto(bytes, found);
    } catch (const std::exception &) {
        // No picture: these bytes are not what their name says, or not enough of it.
    }
}
