#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QIODevice>
#include <QImage>

namespace vantrel {

/// A picture as the bytes of a JPEG.
inline QByteArray jpegOf(const QImage &image, int quality = 85) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpeg", quality);
    return buffer.data();
}

/// A JPEG as the camera "Cam" writes it: with its size, how the camera was held (1 to 8) and a small JPEG of
/// it in front. Of no more than 60 KB, which is what a camera has room for.
inline QByteArray exifPhoto(const QByteArray &jpeg, const QSize &size, const QByteArray &thumbnail,
                            quint16 orientation = 1) {
    constexpr quint16 asShort = 3;
    constexpr quint16 asLong = 4;
    constexpr quint32 firstDirectory = 8;
    constexpr quint32 exifDirectory = firstDirectory + 2 + 3 * 12 + 4;
    constexpr quint32 secondDirectory = exifDirectory + 2 + 2 * 12 + 4;
    constexpr quint32 thumbnailPlace = secondDirectory + 2 + 3 * 12 + 4;
    QByteArray exif("Exif\0\0", 6);
    QDataStream stream(&exif, QIODevice::WriteOnly | QIODevice::Append); // big-endian
    const auto entry = [&stream](quint16 tag, quint16 type, quint32 value) {
        stream << tag << type << quint32(1) << (type == asShort ? value << 16 : value);
    };
    stream << quint16(0x4D4D) << quint16(42) << firstDirectory;
    stream << quint16(3);
    stream << quint16(0x0110) << quint16(2) << quint32(4) << quint32(0x43616D00); // the model, as text
    entry(0x0112, asShort, orientation);
    entry(0x8769, asLong, exifDirectory);
    stream << secondDirectory << quint16(2);
    entry(0xA002, asLong, quint32(size.width()));
    entry(0xA003, asLong, quint32(size.height()));
    stream << quint32(0) << quint16(3);
    entry(0x0103, asShort, 6); // the thumbnail is a JPEG
    entry(0x0201, asLong, thumbnailPlace);
    entry(0x0202, asLong, quint32(thumbnail.size()));
    stream << quint32(0);
    exif += thumbnail;

    QByteArray photo("\xff\xd8\xff\xe1");
    QDataStream length(&photo, QIODevice::WriteOnly | QIODevice::Append);
    length << quint16(exif.size() + 2);
    return photo + exif + jpeg.mid(2);
}

} // namespace vantrel
