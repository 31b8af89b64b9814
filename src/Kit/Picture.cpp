#include "Kit/Picture.h"

#include "Kit/Shapes.h"

#include <QCache>
#include <QImage>
#include <QPainter>

namespace vantrel {

namespace {

struct CacheKey {
    qint64 picture;
    QRect place; ///< of the shape in the device, but for whole pixels: in hundredths
    int radius;  ///< likewise

    friend bool operator==(const CacheKey &, const CacheKey &) = default;
};

size_t qHash(const CacheKey &key, size_t seed) {
    return qHashMulti(seed, key.picture, key.place.x(), key.place.y(), key.place.width(), key.place.height(),
                      key.radius);
}

/// `shape` lies in an image of that size; all in device pixels.
QImage drawn(const QImage &picture, const QSize &size, const QRectF &shape, double radius, double scale) {
    constexpr int small = 64;
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const bool isSmall = picture.width() < small && picture.height() < small;
    const QImage scaled = isSmall ? picture.scaled(picture.size() * scale, Qt::KeepAspectRatio)
                                  : picture.scaled(shape.toAlignedRect().size(),
                                                   Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    QRectF place(QPointF(), scaled.size());
    place.moveCenter(shape.center());
    place.moveTopLeft(place.topLeft().toPoint());
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QBrush(scaled));
    painter.setBrushOrigin(place.topLeft());
    if (isSmall)
        painter.drawRect(place);
    else
        painter.drawPath(roundedRect(shape, radius));
    return image;
}

} // namespace

void paintPicture(QPainter &painter, const QRectF &rect, double radius, const QImage &picture) {
    constexpr qsizetype cacheBytes = 25'000'000;
    static QCache<CacheKey, QImage> cache(cacheBytes);
    const QTransform &transform = painter.deviceTransform();
    const double scale = transform.m11();
    const QRectF device = transform.mapRect(rect);
    const QRect pixels = device.toAlignedRect();
    if (pixels.isEmpty() || picture.isNull())
        return;
    const QRectF shape = device.translated(-pixels.topLeft());
    const auto hundredths = [](const QRectF &of) {
        return QRectF(of.topLeft() * 100, of.size() * 100).toRect();
    };
    const CacheKey key{picture.cacheKey(), hundredths(shape), qRound(radius * scale * 100)};
    const QImage *known = cache.object(key);
    const QImage image = known ? *known : drawn(picture, pixels.size(), shape, radius * scale, scale);
    if (!known)
        cache.insert(key, new QImage(image), image.sizeInBytes());

    painter.save();
    painter.resetTransform();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    const QTransform toDevice = painter.deviceTransform();
    painter.drawImage(
        QRectF(toDevice.inverted().map(QPointF(pixels.topLeft())), QSizeF(pixels.size()) / toDevice.m11()),
        image);
    painter.restore();
}

} // namespace vantrel
