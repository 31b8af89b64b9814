#include "Thumbnails/LocalPicture.h"

#include "Thumbnails/SmallPicture.h"
#include "Thumbnails/ThumbnailFolder.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

namespace vantrel {

QImage localPicture(const QString &path, int edge) {
    // What is larger is told by its beginning alone.
    constexpr qint64 largestRead = 48'000'000;
    constexpr qint64 beginning = 4'000'000;
    const QFileInfo info(path);
    if (!info.isFile())
        return {};
    const MediaKind kind = mediaKindOf(info.fileName());
    const QByteArray uri = ThumbnailFolder::uriOf(path);
    const qint64 modified = info.lastModified().toSecsSinceEpoch();
    if (QImage known = ThumbnailFolder::find(uri, modified, edge); !known.isNull())
        return known;
    if (!isReadable(kind) || ThumbnailFolder::hasFailed(uri, modified))
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const bool isMusicOrFilm = kind == MediaKind::audio || kind == MediaKind::video;
    const bool isWhole = file.size() <= largestRead && !isMusicOrFilm;
    const QByteArray bytes = file.read(isWhole ? largestRead : beginning);
    const QImage picture = smallPicture(bytes, isWhole ? Extent::whole : Extent::beginning, kind,
                                        ThumbnailFolder::edgeFor(edge));
    if (picture.isNull())
        ThumbnailFolder::storeFailure(uri, modified);
    else
        ThumbnailFolder::store(uri, modified, edge, picture);
    return picture;
}

} // namespace vantrel
