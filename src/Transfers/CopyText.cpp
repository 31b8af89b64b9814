#include "Transfers/CopyText.h"

#include "Transfers/CopyRun.h"

#include <QRegularExpression>

namespace vantrel {

QueueItemStatus statusAfter(const QueueItem &item, const CopyReport &report) {
    if (!report.failure.isEmpty())
        return QueueItemStatus::Failed{report.failure, report.failed};
    const bool isFolder = item.isDirectory;
    if (!report.failed.isEmpty())
        return QueueItemStatus::Failed{isFolder ? QStringLiteral("%1 of %2 could not be copied")
                                                      .arg(report.failed.size())
                                                      .arg(report.fileCount)
                                                : report.failed.first().reason,
                                       report.failed};
    if (!report.taken.isEmpty())
        return QueueItemStatus::NameTaken{
            isFolder && report.fileCount > 1
                ? QStringLiteral("%1 of %2 differ from what is there")
                      .arg(report.taken.size())
                      .arg(report.fileCount)
                : QStringLiteral("Another “%1” is already there.").arg(item.name),
            report.taken};
    QStringList parts;
    if (report.alreadyThere > 0 && report.copied > 0)
        parts.append(QStringLiteral("%1 copied").arg(report.copied));
    if (report.alreadyThere > 0)
        parts.append(report.copied > 0 || report.fileCount > 1 || isFolder
                         ? QStringLiteral("%1 already there").arg(report.alreadyThere)
                         : QStringLiteral("Already there"));
    const bool isFirst = parts.isEmpty();
    if (report.unverified > 0)
        parts.append((isFirst ? QStringLiteral("Not") : QStringLiteral("not")) %
                     QStringLiteral(" verified: this phone has no md5sum"));
    else if (report.verified > 0)
        parts.append(isFirst ? QStringLiteral("Verified") : QStringLiteral("verified"));
    if (!report.leftOut.isEmpty())
        parts.append(QStringLiteral("%1 left out").arg(report.leftOut.size()));
    return QueueItemStatus::Completed{parts.join(QStringLiteral(", ")), report.leftOut, report.totalBytes};
}

QString explainedCopyError(const QString &error) {
    const qsizetype colon = error.lastIndexOf(QLatin1String(": "));
    const QString reason = colon < 0 ? error : error.mid(colon + 2);
    // FAT and exFAT take none of these; their drivers say so in many ways.
    static const QRegularExpression strange(
        QStringLiteral(
            "\\Acannot create [^']*'.*[\"*:<>?\\\\|\\x01-\\x1f][^/]*': (Invalid argument|No such file)"),
        QRegularExpression::DotMatchesEverythingOption);
    if (strange.match(error).hasMatch())
        return QStringLiteral("This name can’t be used on the other side.");
    if (error.contains(QLatin1String("remote open failed")) || error.startsWith(QLatin1String("tail: ")) ||
        error.startsWith(QLatin1String("md5sum: ")))
        return QStringLiteral("The phone can’t read it: ") + reason;
    // It is the shell that opens the file for cat.
    static const QRegularExpression shell(QStringLiteral("\\A(W: )?\\S*sh: .*create"));
    if (error.contains(QLatin1String("remote ")) || error.startsWith(QLatin1String("cat: ")) ||
        shell.match(error).hasMatch())
        return QStringLiteral("The phone can’t write it: ") + reason;
    if (error.startsWith(QLatin1String("cannot create")) || error.startsWith(QLatin1String("cannot write")))
        return QStringLiteral("This computer can’t write it: ") + reason;
    if (error.startsWith(QLatin1String("cannot ")))
        return QStringLiteral("This computer can’t read it: ") + reason;
    return reason;
}

QString numberedName(const QString &name, int number) {
    constexpr qsizetype longest = 255; // bytes
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    const QString ending = QStringLiteral(" %1").arg(number) + (dot > 0 ? name.mid(dot) : QString());
    QString stem = dot > 0 ? name.left(dot) : name;
    while (!stem.isEmpty() && (stem + ending).toUtf8().size() > longest)
        stem.chop(stem.back().isLowSurrogate() ? 2 : 1);
    return stem + ending;
}

} // namespace vantrel
