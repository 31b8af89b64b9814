#include "Thumbnails/SmallPicture.h"

#include "Thumbnails/EmbeddedPicture.h"

#include <QBuffer>
#include <QImageReader>
#include <QTransform>

namespace vantrel {

namespace {

/// Told from the first bytes, and only what photos are in: the toolkit would take any file that looks like a
/// drawing for one, and a drawing can ask for any amount of work.
QByteArray formatOf(const QByteArray &bytes) {
    if (bytes.startsWith("\xff\xd8\xff"))
        return "jpeg";
    if (bytes.startsWith("\x89PNG\r\n\x1a\n"))
        return "png";
    if (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP")
        return "webp";
    if (bytes.startsWith("GIF8"))
        return "gif";
    return bytes.startsWith("BM") ? "bmp" : QByteArray();
}

/// Whether so many pixels are worth the work. A JPEG is made small while it is read; all others are read
/// whole first.
bool isBearable(const QSize &size, const QByteArray &format) {
    constexpr qint64 mostOfJpeg = 50'000'000;
    constexpr qint64 most = 24'000'000;
    return !size.isEmpty() && qint64(size.width()) * size.height() <= (format == "jpeg" ? mostOfJpeg : most);
}

/// A photo has a dozen scans. A hundred over one picture cost a hundred times the work.
bool hasTooManyScans(const QByteArray &bytes, const QByteArray &format) {
    constexpr qsizetype most = 64;
    return format == "jpeg" && bytes.count("\xff\xda") > most;
}

enum class Turn { asItSays, asStored };

QImage decoded(const QByteArray &bytes, int edge, Turn turn) {
    const QByteArray format = formatOf(bytes);
    if (format.isEmpty() || hasTooManyScans(bytes, format))
        return {};
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(turn == Turn::asItSays);
    const QSize size = reader.size();
    if (!isBearable(size, format))
        return {};
    if (size.width() > edge || size.height() > edge)
        reader.setScaledSize(size.scaled(edge, edge, Qt::KeepAspectRatio).expandedTo({1, 1}));
    const QImage image = reader.read();
    // A damaged GIF says one size and has another.
    return image.width() <= edge && image.height() <= edge ? image : QImage();
}

/// Turned upright, from how its camera was held.
QImage upright(const QImage &image, int orientation) {
    static constexpr struct {
        bool isMirrored;
        int turn; ///< degrees, clockwise; after mirroring
    } turns[] = {{false, 0},  {true, 0},   {false, 180}, {true, 180},
                 {true, 270}, {false, 90}, {true, 90},   {false, 270}};
    const auto &[isMirrored, turn] = turns[qBound(1, orientation, 8) - 1];
    const QImage seen = isMirrored ? image.mirrored(true, false) : image;
    return turn ? seen.transformed(QTransform().rotate(turn)) : seen;
}

/// Without the black bars that make it four by three, whatever the photo is.
QImage withoutBars(const QImage &image, const QSize &photo) {
    if (image.isNull() || photo.isEmpty())
        return image;
    QRect shown(QPoint(), photo.scaled(image.size(), Qt::KeepAspectRatio));
    shown.moveCenter(image.rect().center());
    // The least is a film's sixteen by nine. What would cut more off tells of the photo lying on its side.
    constexpr double least = 0.7;
    const auto area = [](const QSize &size) { return double(size.width()) * size.height(); };
    return area(shown.size()) < least * area(image.size()) ? image : image.copy(shown);
}

QImage embedded(const QByteArray &bytes, MediaKind kind, int edge) {
    const EmbeddedPicture found = embeddedPicture(bytes, kind);
    return upright(withoutBars(decoded(found.bytes, edge, Turn::asStored), found.photo), found.orientation);
}

} // namespace

QImage smallPicture(const QByteArray &bytes, Extent extent, MediaKind kind, int edge) {
    QImage picture;
    if (extent == Extent::whole && (kind == MediaKind::picture || kind == MediaKind::photo))
        picture = decoded(bytes, edge, Turn::asItSays);
    if (picture.isNull() && isReadable(kind) && kind != MediaKind::picture)
        picture = embedded(bytes, kind, edge);
    if (picture.isNull())
        return {};
    return picture.convertToFormat(picture.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                             : QImage::Format_RGB32);
}

} // namespace vantrel
