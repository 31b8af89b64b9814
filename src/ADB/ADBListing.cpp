#include "ADB/ADBClient.h"

#include "ADB/AndroidPath.h"
#include "ADB/ListingText.h"
#include "ADB/ToolText.h"

namespace vantrel::ADBClient {

QString normalizePath(const QString &path) {
    QString normalized = path.startsWith(QLatin1Char('/')) ? path : ToolText::trimmed(path);
    if (normalized.isEmpty())
        return QStringLiteral("/sdcard");
    while (normalized.size() >= 2 && normalized.endsWith(QLatin1Char('/')))
        normalized.chop(1);
    return normalized;
}

ADBResult<QList<FileItem>> listDirectory(const QString &serial, const QString &path) {
    const QString folder = normalizePath(path);
    // The trailing slash makes ls list what a symbolic link such as /sdcard points to.
    const QString target = AndroidPath::quotedForShell(AndroidPath::join(folder, QString()));
    auto items = runADB({QStringLiteral("-s"), serial, QStringLiteral("shell"), QStringLiteral("ls"),
                         QStringLiteral("-la"), target})
                     .map([&](const QString &text) { return parseLSLA(text, folder); });
    if (items && items->size() == largestListing)
        return tl::make_unexpected(
            ADBError::parseFailed(QStringLiteral("The phone lists more than a million entries here.")));
    return items;
}

} // namespace vantrel::ADBClient
