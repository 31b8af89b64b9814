#include "Records/StorageShortcut.h"

#include "Records/Identity.h"

namespace vantrel::MockData {

const QList<StorageShortcut> &shortcuts() {
    static const QList<StorageShortcut> list = [] {
        const auto entry = [](const char *title, const char *path, const char *image) {
            return StorageShortcut{newIdentity(), QString::fromLatin1(title), QString::fromLatin1(path),
                                   QString::fromLatin1(image)};
        };
        return QList<StorageShortcut>{
            entry("Internal Storage", "/sdcard", "internaldrive"),
            entry("Download", "/sdcard/Download", "arrow.down.circle"),
            entry("DCIM", "/sdcard/DCIM", "camera"),
            entry("Movies", "/sdcard/Movies", "film"),
            entry("Pictures", "/sdcard/Pictures", "photo"),
            entry("Music", "/sdcard/Music", "music.note"),
            entry("Documents", "/sdcard/Documents", "doc"),
            entry("WhatsApp", "/sdcard/WhatsApp", "message"),
            entry("Recordings", "/sdcard/Recordings", "waveform"),
        };
    }();
    return list;
}

} // namespace vantrel::MockData
