#pragma once

#include <QString>

namespace vantrel {

/// What a file may have a picture of, told from the end of its name.
enum class MediaKind {
    none,
    picture, ///< the file itself, which the toolkit can read
    photo,   ///< likewise, and a smaller one that its camera has embedded
    raw,     ///< what was embedded alone
    other,   ///< a picture that only other programs of the desktop can read
    video,   ///< likewise
    audio,   ///< its cover
};

[[nodiscard]] MediaKind mediaKindOf(const QString &name);

/// Whether this program can find a picture in it.
[[nodiscard]] constexpr bool isReadable(MediaKind kind) {
    return kind != MediaKind::none && kind != MediaKind::other && kind != MediaKind::video;
}

} // namespace vantrel
