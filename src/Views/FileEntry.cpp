#include "Views/FileEntry.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"

namespace vantrel {

QString FileEntry::locationLabel() const {
    const QString path = ADBClient::normalizePath(item.path);
    return AndroidPath::breadcrumb(path.left(path.lastIndexOf(QLatin1Char('/'))));
}

bool FileEntry::shareLook(const FileEntry &a, const FileEntry &b) {
    return a.item.id == b.item.id && a.item.name == b.item.name && a.item.isDirectory == b.item.isDirectory &&
           a.item.sizeBytes == b.item.sizeBytes && a.isSelected == b.isSelected &&
           a.showsLocation == b.showsLocation && a.showsMacContextMenu == b.showsMacContextMenu &&
           a.showsOpenContextMenu == b.showsOpenContextMenu;
}

} // namespace vantrel
