#include "Kit/Symbol.h"

#include <QCache>
#include <QColor>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMap>
#include <QPainter>
#include <QSvgRenderer>

namespace vantrel {

namespace {

/// The symbol's live area is 20 of the grid's 24 units, and a symbol stands a little taller than its text's
/// capitals.
constexpr double gridPerPoint = 1.4;

/// Width of the lines in units of the grid.
const QMap<Weight, double> strokeWidths{
    {Weight::regular, 1.5}, {Weight::medium, 1.75}, {Weight::semibold, 2.0}, {Weight::bold, 2.4}};

QString fileOf(const QString &name) {
    return QStringLiteral(":/symbols/") + name + QStringLiteral(".svg");
}

/// The symbol in black and white: black is ink, white is cut out.
QImage drawn(const QString &name, Weight weight, int side) {
    QFile file(fileOf(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray svg = file.readAll();
    const QByteArray familyWidth = QByteArrayLiteral("stroke-width=\"2\"");
    const QByteArray weightWidth = "stroke-width=\"" + QByteArray::number(strokeWidths[weight]) + '"';
    const qsizetype position = svg.indexOf(familyWidth);
    Q_ASSERT_X(position >= 0, "Symbol", "the drawing does not have the family's stroke width");
    svg.replace(position, familyWidth.size(), weightWidth);

    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer renderer(svg);
    renderer.render(&painter, QRectF(0, 0, side, side));
    return image;
}

void tint(QImage &image, const QColor &color) {
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            // Premultiplied: the whiteness of a pixel is already its share of the alpha.
            const int ink = qAlpha(line[x]) - qRed(line[x]);
            line[x] = qPremultiply(
                qRgba(color.red(), color.green(), color.blue(), (ink * color.alpha() + 127) / 255));
        }
    }
}

struct CacheKey {
    QString name;
    Weight weight;
    int side; ///< device pixels
    QRgb color;

    friend bool operator==(const CacheKey &, const CacheKey &) = default;
};

size_t qHash(const CacheKey &key, size_t seed) {
    return qHashMulti(seed, key.name, int(key.weight), key.side, key.color);
}

/// Images and not pixmaps: they may outlive the application object.
QImage rendered(const CacheKey &key) {
    constexpr qsizetype cacheBytes = 4'194'304;
    static QCache<CacheKey, QImage> cache(cacheBytes);
    if (const QImage *known = cache.object(key))
        return *known;
    QImage image = drawn(key.name, key.weight, key.side);
    tint(image, QColor::fromRgba(key.color));
    cache.insert(key, new QImage(image), qMax<qsizetype>(1, image.sizeInBytes()));
    return image;
}

} // namespace

QString backChevron() {
    return QGuiApplication::isRightToLeft() ? QStringLiteral("chevron.right")
                                            : QStringLiteral("chevron.left");
}

QString forwardChevron() {
    return QGuiApplication::isRightToLeft() ? QStringLiteral("chevron.left")
                                            : QStringLiteral("chevron.right");
}

bool Symbol::exists(const QString &name) {
    return !name.isEmpty() && QFile::exists(fileOf(name));
}

QSizeF Symbol::naturalSize() const {
    const int side = qRound(size * gridPerPoint);
    return {double(side), double(side)};
}

void Symbol::paint(QPainter &painter, const QRectF &rect, const QColor &color) const {
    const QTransform &transform = painter.deviceTransform();
    const double scale = transform.m11();
    const int side = qRound(naturalSize().width() * scale);
    if (side < 1)
        return;
    const QImage image = rendered({name, weight, side, color.rgba()});
    Q_ASSERT_X(!image.isNull(), "Symbol", qPrintable(QStringLiteral("no symbol is named ") + name));
    if (image.isNull())
        return;

    // On whole device pixels, or every line would be smeared over two.
    const QPointF center = transform.map(rect.center());
    const QPointF corner(qRound(center.x() - side / 2.0), qRound(center.y() - side / 2.0));
    painter.save();
    painter.resetTransform();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    const QTransform toDevice = painter.deviceTransform();
    painter.drawImage(QRectF(toDevice.inverted().map(corner), QSizeF(side, side) / toDevice.m11()), image);
    painter.restore();
}

} // namespace vantrel
