#include "Thumbnails/ThumbnailFolder.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <array>
#include <cstdio>

namespace vantrel::ThumbnailFolder {

namespace {

struct Size {
    int edge;
    const char *folder;
};
constexpr std::array sizes{Size{128, "normal"}, Size{256, "large"}, Size{512, "x-large"},
                           Size{1024, "xx-large"}};
constexpr std::size_t largestMade = 2;

const Size &sizeFor(int edge) {
    std::size_t size = 0;
    while (size < largestMade && sizes[size].edge < edge)
        ++size;
    return sizes[size];
}

const QString uriKey = QStringLiteral("Thumb::URI");
const QString modifiedKey = QStringLiteral("Thumb::MTime");

QString root() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/thumbnails/");
}

QString pathIn(const QString &folder, const QByteArray &uri) {
    const QByteArray name = QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex();
    return root() + folder + QLatin1Char('/') + QString::fromLatin1(name) + QStringLiteral(".png");
}

QString failurePath(const QByteArray &uri) {
    return pathIn(QStringLiteral("fail/vantrel"), uri);
}

/// The picture in a file of the cache; null when that was made of another file, or of an earlier state.
QImage read(const QString &path, const QByteArray &uri, qint64 modified) {
    constexpr int longest = 1024;
    QImageReader reader(path, "png");
    const QSize size = reader.size();
    if (size.isEmpty() || size.width() > longest || size.height() > longest)
        return {};
    QImage picture = reader.read();
    // The standard has whole seconds; tumbler writes fractions, too.
    const QString seconds = picture.text(modifiedKey).section(QLatin1Char('.'), 0, 0);
    return picture.text(uriKey).toUtf8() == uri && seconds == QString::number(modified) ? picture : QImage();
}

/// What is made of the path is for the user alone.
bool makeFolder(const QString &path) {
    constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    if (QFileInfo(path).isDir())
        return true;
    return makeFolder(QFileInfo(path).path()) && QDir().mkdir(path) && QFile::setPermissions(path, ownerOnly);
}

void write(const QString &path, QImage picture, const QByteArray &uri, qint64 modified) {
    const QString folder = QFileInfo(path).path();
    if (!makeFolder(folder))
        return;
    picture.setText(uriKey, QString::fromUtf8(uri));
    picture.setText(modifiedKey, QString::number(modified));
    picture.setText(QStringLiteral("Software"), QStringLiteral("Vantrel"));
    // Whoever looks meanwhile sees all of it or nothing. The file is its owner's alone from the beginning.
    QTemporaryFile file(folder + QStringLiteral("/vantrel-XXXXXX"));
    if (!file.open() || !QImageWriter(&file, "png").write(picture) || !file.flush() || file.error())
        return;
    const QByteArray from = QFile::encodeName(file.fileName());
    if (::rename(from.constData(), QFile::encodeName(path).constData()) == 0)
        file.setAutoRemove(false);
}

} // namespace

int edgeFor(int edge) {
    return sizeFor(edge).edge;
}

QString flavorFor(int edge) {
    return QLatin1String(sizeFor(edge).folder);
}

QByteArray uriOf(const QString &path) {
    return "file://" + QFile::encodeName(QDir::cleanPath(path)).toPercentEncoding("/!$&'()*+,:=@");
}

QString pathFor(const QByteArray &uri, int edge) {
    return pathIn(flavorFor(edge), uri);
}

QImage find(const QByteArray &uri, qint64 modified, int edge) {
    for (const Size &size : sizes) {
        if (size.edge < edgeFor(edge))
            continue;
        const QString path = pathIn(QLatin1String(size.folder), uri);
        if (!QFile::exists(path))
            continue;
        if (QImage picture = read(path, uri, modified); !picture.isNull())
            return picture;
    }
    return {};
}

bool hasFailed(const QByteArray &uri, qint64 modified) {
    const QString path = failurePath(uri);
    return QFile::exists(path) && !read(path, uri, modified).isNull();
}

void store(const QByteArray &uri, qint64 modified, int edge, const QImage &picture) {
    write(pathFor(uri, edge), picture, uri, modified);
}

void storeFailure(const QByteArray &uri, qint64 modified) {
    QImage nothing(1, 1, QImage::Format_ARGB32);
    nothing.fill(Qt::transparent);
    write(failurePath(uri), nothing, uri, modified);
}

} // namespace vantrel::ThumbnailFolder
