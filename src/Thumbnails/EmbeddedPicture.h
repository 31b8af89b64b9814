#pragma once

#include "Thumbnails/MediaKind.h"

#include <QByteArray>
#include <QSize>
#include <QString>

namespace vantrel {

/// A picture inside a file, as it is stored there.
struct EmbeddedPicture {
    QByteArray bytes;    ///< a file of its own, mostly a JPEG; empty: there is none
    int orientation = 1; ///< 1 to 8, as Exif counts; the picture lies as its photo does
    QSize photo;         ///< pixels of the photo that it shows, where known
    QString camera;      ///< that has taken it, where known
};

/// Finds the picture that a camera or a tagger has put into a file, of which these are the bytes, or only the
/// first of them. Any bytes are borne. Blocks for milliseconds; any thread.
///
/// What it needs comes from libraries that take longer to load than the window takes to be seen. They are
/// linked to a module of its own, which is loaded at the first call; without the module there are no such
/// pictures.
[[nodiscard]] EmbeddedPicture embeddedPicture(const QByteArray &bytes, MediaKind kind);

/// What the module is asked for: fills in what there is, throws nothing.
using FindEmbeddedPicture = void (*)(const QByteArray &bytes, MediaKind kind, EmbeddedPicture &found);
inline constexpr char findEmbeddedPictureName[] = "vantrelFindEmbeddedPicture";

} // namespace vantrel
