#pragma once

#include <QString>

namespace vantrel {

/// What a file may have a picture of, told from the end of its name.
enum class MediaKind {
    none,
    picture,    ///< the file itself, which the toolkit can read
    photo,      ///< likewise, and a smaller one that its camera has embedded
    raw,        ///< what was embedded alone
    other,      ///< what only other programs of the desktop can read
    video,      ///< its cover
    audio,      ///< likewise
    otherVideo, ///< as other
};

[[nodiscard]] MediaKind mediaKindOf(const QString &name);

/// Whether this program can find a picture in it.
[[nodiscard]] constexpr bool isReadable(MediaKind kind) {
    return kind != MediaKind::none && kind != MediaKind::other && kind != MediaKind::otherVideo;
}
/// Whether another program may find one where this one finds none. What the toolkit can read and this program
/// will not bear is left alone by both.
[[nodiscard]] constexpr bool mayBeReadElsewhere(MediaKind kind) {
    return kind != MediaKind::none && kind != MediaKind::picture && kind != MediaKind::photo;
}
[[nodiscard]] constexpr bool isVideo(MediaKind kind) {
    return kind == MediaKind::video || kind == MediaKind::otherVideo;
}

} // namespace vantrel
