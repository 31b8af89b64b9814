#pragma once

#include <QString>

namespace vantrel {

/// What a file may have a picture of, told from the end of its name.
enum class MediaKind {
    none,
    picture, ///< the file itself, which the toolkit can read
    photo,   ///< likewise, and a smaller one that its camera has embedded
    raw,     ///< what was embedded alone
    video,
    audio, ///< its cover
};

[[nodiscard]] MediaKind mediaKindOf(const QString &name);

} // namespace vantrel
