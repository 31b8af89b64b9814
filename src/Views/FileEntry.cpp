#include "Views/FileEntry.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"

#include <algorithm>

namespace vantrel {

bool FileEntry::nameEndsWith(std::initializer_list<QLatin1String> suffixes) const {
    return std::any_of(suffixes.begin(), suffixes.end(), [this](QLatin1String suffix) {
        return item.name.endsWith(suffix, Qt::CaseInsensitive);
    });
}

QString FileEntry::locationLabel() const {
    const QString path = ADBClient::normalizePath(item.path);
    return AndroidPath::breadcrumb(path.left(path.lastIndexOf(QLatin1Char('/'))));
}

} // namespace vantrel
