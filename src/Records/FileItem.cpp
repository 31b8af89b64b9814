#include "Records/FileItem.h"

#include "Records/FileSizeFormat.h"

#include <QHash>
#include <QLocale>

namespace vantrel {

QString FileItem::sizeLabel() const {
    if (isDirectory)
        return itemCount ? QString::number(*itemCount) + QStringLiteral(" items") : unknownLabel();
    return sizeBytes ? formatFileSize(*sizeBytes) : QStringLiteral("0 B");
}

QString FileItem::modifiedLabel() const {
    return modifiedAt ? QLocale().toString(modifiedAt->toLocalTime(), QStringLiteral("MMM d, yyyy"))
                      : unknownLabel();
}

size_t qHash(const FileItem &item, size_t seed) noexcept {
    return qHashMulti(seed, item.id, item.name, item.path, item.isDirectory, item.sizeBytes.value_or(-1),
                      item.itemCount.value_or(-1),
                      item.modifiedAt ? item.modifiedAt->toMSecsSinceEpoch() : -1);
}

} // namespace vantrel
