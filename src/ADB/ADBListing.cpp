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
ADBResult<ToolAnswer> ls(const QString &serial, const QString &options, const QString &folder,
                         ListingReader &reader) {
    return askADB({QStringLiteral("-s"), serial, QStringLiteral("shell"), QStringLiteral("ls"), options,
                   AndroidPath::quotedForShell(AndroidPath::join(folder, QString()))},
                  [&](const QByteArray &bytes) { reader.read(bytes); });
}

/// Whether ls is too old for one of its options.
bool refusesOption(const ToolAnswer &answer) {
    return !answer.succeeded &&
           (answer.errors.contains("nknown option") || answer.errors.contains("nvalid option"));
}

} // namespace

ADBResult<Listing> listDirectory(const QString &serial, const QString &path) {
    const QString folder = normalizePath(path);
    ListingReader escaped(folder, ListingReader::Form::escaped);
    ListingReader plain(folder, ListingReader::Form::plain);
    auto answer = ls(serial, QStringLiteral("-lab"), folder, escaped);
    const bool knowsEscapes = !answer || !escaped.isEmpty() || !refusesOption(*answer);
    if (!knowsEscapes)
        answer = ls(serial, QStringLiteral("-la"), folder, plain);
    if (!answer)
        return tl::make_unexpected(answer.error());
    ListingReader &reader = knowsEscapes ? escaped : plain;
    Listing listing;
    if (!answer->succeeded) {
        // An entry that cannot be read makes ls fail at the end of a good listing.
        listing.unreadableCount = reader.isEmpty() ? 0 : countComplaints(answer->errors);
        if (listing.unreadableCount == 0)
            return tl::make_unexpected(answer->error());
    }
    static_cast<QList<FileItem> &>(listing) = reader.take();
    if (listing.size() == largestListing)
        return tl::make_unexpected(
            ADBError::parseFailed(QStringLiteral("The phone lists more than a million entries here.")));
    return listing;
}

ADBResult<void> createFolder(const QString &serial, const QString &parent, const QString &name) {
    if (!AndroidPath::isSafeName(name))
        return tl::make_unexpected(ADBError::executionFailed(
            name.contains(QLatin1Char('/'))
                ? QStringLiteral("A folder’s name can’t contain “/”.")
                : QStringLiteral("This can’t be a folder’s name. Choose another one.")));
    const QString command = QStringLiteral("mkdir ") %
                            AndroidPath::quotedForShell(AndroidPath::join(normalizePath(parent), name));
    const auto answer = askADB(
        {QStringLiteral("-s"), serial, QStringLiteral("shell"), command % QStringLiteral("; echo end")});
    if (!answer)
        return tl::make_unexpected(answer.error());
    // The words of an old phone come with its answer, and no exit status.
    const QByteArray complaint =
        answer->errors + answer->output.chopped(answer->output.endsWith("end\n") ? 4 : 0);
    if (answer->succeeded && answer->output.endsWith("end\n") && complaint.isEmpty())
        return {};
    const QString reason = ToolText::reason(QString::fromUtf8(complaint)).text;
    if (reason.endsWith(QLatin1String("File exists")))
        return tl::make_unexpected(ADBError::executionFailed(
            QStringLiteral("“") % name % QStringLiteral("” is there already. Choose another name.")));
    return tl::make_unexpected(ADBError::executionFailed(
        reason.isEmpty() ? QStringLiteral("The phone did not make the folder.") : reason));
}

} // namespace vantrel::ADBClient
