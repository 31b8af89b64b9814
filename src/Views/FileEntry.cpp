#include "Views/FileEntry.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"

namespace vantrel {

QString FileEntry::locationLabel() const {
    const QString path = ADBClient::normalizePath(item.path);
    return AndroidPath::breadcrumb(path.left(path.lastIndexOf(QLatin1Char('/'))));
}

} // namespace vantrel
