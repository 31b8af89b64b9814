#include "Thumbnails/MediaKind.h"

#include <QHash>

namespace vantrel {

MediaKind mediaKindOf(const QString &name) {
    static const QHash<QString, MediaKind> kinds = [] {
        QHash<QString, MediaKind> known;
        const auto add = [&known](MediaKind kind, const char *suffixes) {
            for (const QString &suffix : QString::fromLatin1(suffixes).split(QLatin1Char(' ')))
                known.insert(suffix, kind);
        };
        add(MediaKind::picture, "png webp gif bmp");
        add(MediaKind::photo, "jpg jpeg jpe");
        add(MediaKind::raw, "heic heif avif tif tiff dng cr2 cr3 nef arw orf rw2 raf pef srw");
        add(MediaKind::video, "mp4 m4v mov");
        add(MediaKind::otherVideo, "mkv webm 3gp avi mpg mpeg ts mts");
        add(MediaKind::other, "pdf svg djvu ps epub odt ods odp psd xcf");
        add(MediaKind::audio, "mp3 m4a flac ogg oga opus");
        return known;
    }();
    return kinds.value(name.section(QLatin1Char('.'), -1).toLower(), MediaKind::none);
}

} // namespace vantrel
