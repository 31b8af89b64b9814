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

namespace {

/// Asks for a folder's entries; the path's trailing slash makes ls list what a link such as /sdcard leads to.
ADBResult<ToolAnswer> ls(const QString &serial, const QString &options, const QString &folder) {
    return askADB({QStringLiteral("-s"), serial, QStringLiteral("shell"), QStringLiteral("ls"), options,
                   AndroidPath::quotedForShell(AndroidPath::join(folder, QString()))});
}

/// Whether ls is too old for one of its options.
bool refusesOption(const ToolAnswer &answer) {
    return !answer.succeeded && answer.output.isEmpty() &&
           (answer.errors.contains("nknown option") || answer.errors.contains("nvalid option"));
}

} // namespace

ADBResult<Listing> listDirectory(const QString &serial, const QString &path) {
    const QString folder = normalizePath(path);
    auto answer = ls(serial, QStringLiteral("-lab"), folder);
    const bool hasExactNames = !answer || !refusesOption(*answer);
    if (!hasExactNames)
        answer = ls(serial, QStringLiteral("-la"), folder);
    if (!answer)
        return tl::make_unexpected(answer.error());
    Listing listing;
    if (!answer->succeeded) {
        // An entry that cannot be read makes ls fail at the end of a good listing.
        listing.unreadableCount = answer->output.isEmpty() ? 0 : countComplaints(answer->errors);
        if (listing.unreadableCount == 0)
            return tl::make_unexpected(answer->error());
    }
    const auto [text, isExact] = ToolText::decodeLeniently(answer->output);
    static_cast<QList<FileItem> &>(listing) =
        hasExactNames ? parseLSLAB(text, folder, isExact) : parseLSLA(text, folder, isExact);
    if (listing.size() == largestListing)
        return tl::make_unexpected(
            ADBError::parseFailed(QStringLiteral("The phone lists more than a million entries here.")));
    return listing;
}

} // namespace vantrel::ADBClient
