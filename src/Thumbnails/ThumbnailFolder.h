#pragma once

#include <QImage>
#include <QString>

namespace vantrel {

/// The desktop's own thumbnails of this computer's files, as the freedesktop.org thumbnail standard keeps
/// them: what another program has made is shown, and what is made here is there for others. Any thread.
namespace ThumbnailFolder {

/// The longest side that is kept for someone who wants this one: 128, 256 or 512 pixels.
[[nodiscard]] int edgeFor(int edge);

/// What the standard calls that size.
[[nodiscard]] QString flavorFor(int edge);

/// What a file is called there. Without dots, and percent-encoded as the desktop's programs do.
[[nodiscard]] QByteArray uriOf(const QString &path);
/// Where the thumbnail of such a size lies, if there is one.
[[nodiscard]] QString pathFor(const QByteArray &uri, int edge);

/// The file's thumbnail of that size or a larger one, null when there is none that was made of the file as it
/// was last changed, in seconds since 1970.
[[nodiscard]] QImage find(const QByteArray &uri, qint64 modified, int edge);
/// Whether this program has tried before, on the file as it is, and got no picture.
[[nodiscard]] bool hasFailed(const QByteArray &uri, qint64 modified);
/// Keeps a picture, for the user's eyes alone. What cannot be written is left.
void store(const QByteArray &uri, qint64 modified, int edge, const QImage &picture);
void storeFailure(const QByteArray &uri, qint64 modified);

} // namespace ThumbnailFolder

} // namespace vantrel
