#include "Thumbnails/PhotoFactsReader.h"

#include "Thumbnails/EmbeddedPicture.h"

#include <QBuffer>
#include <QImageReader>

namespace vantrel {

PhotoFacts photoFactsOf(const QByteArray &beginning, const QString &name) {
    const MediaKind kind = mediaKindOf(name);
    if (kind != MediaKind::picture && kind != MediaKind::photo && kind != MediaKind::raw)
        return {};
    const EmbeddedPicture found = embeddedPicture(beginning, kind);
    QByteArray bytes = beginning;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    // In formats alone whose size stands at their beginning, whatever the toolkit could read besides.
    static const QByteArrayList formats{"jpeg", "png", "gif", "bmp", "webp"};
    const QByteArray format = QImageReader::imageFormat(&buffer);
    const bool isKnown = kind != MediaKind::raw && formats.contains(format);
    // What the file says of itself goes before what a camera has noted, which an editor may have left.
    QSize size = isKnown ? QImageReader(&buffer, format).size() : QSize();
    size = size.isEmpty() ? found.photo : size;
    constexpr int firstTurned = 5; // of the ways in which Exif says that a photo lies
    return {size.isEmpty()                     ? QSize()
            : found.orientation >= firstTurned ? size.transposed()
                                               : size,
            found.camera};
}

} // namespace vantrel
