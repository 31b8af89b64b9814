#include "Records/QueueItem.h"

#include "Records/FileSizeFormat.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

const QueueItemStatus::Progress *QueueItemStatus::progress() const {
    if (const auto *running = as<Transferring>())
        return running;
    return as<Paused>();
}

QString QueueItem::destinationPath() const {
    const bool isRoot = destinationFolder.endsWith(QLatin1Char('/'));
    return destinationFolder % (isRoot ? QString() : QStringLiteral("/")) % name;
}

QString QueueItem::progressLabel() const {
    if (const auto *progress = status.progress()) {
        if (progress->isVerifying && status.is<QueueItemStatus::Transferring>())
            return QStringLiteral("Verifying…");
        if (progress->isSilent && status.is<QueueItemStatus::Transferring>())
            return QStringLiteral("No data for 30 s");
        if (progress->totalBytes < 1)
            return status.is<QueueItemStatus::Paused>() ? QStringLiteral("Paused")
                                                        : QStringLiteral("Transferring…");
        return formatFileSize(progress->transferredBytes) % QStringLiteral(" / ") %
               formatFileSize(progress->totalBytes);
    }
    if (const auto *failed = status.as<QueueItemStatus::Failed>())
        return failed->message;
    if (const auto *taken = status.as<QueueItemStatus::NameTaken>())
        return taken->message;
    if (const auto *waiting = status.as<QueueItemStatus::Waiting>())
        return waiting->forPhone ? QStringLiteral("Waiting for the phone…") : QStringLiteral("Waiting…");
    const QString note = status.as<QueueItemStatus::Completed>()->note;
    return note.isEmpty() ? QStringLiteral("Done") : note;
}

QString QueueItem::problemText() const {
    constexpr qsizetype mostLines = 20;
    QList<CopyProblem> problems;
    if (const auto *failed = status.as<QueueItemStatus::Failed>())
        problems = failed->problems;
    else if (const auto *taken = status.as<QueueItemStatus::NameTaken>())
        problems = taken->problems;
    else if (const auto *completed = status.as<QueueItemStatus::Completed>())
        problems = completed->leftOut;
    QStringList lines;
    for (const CopyProblem &problem : problems.first(std::min(mostLines, problems.size())))
        lines.append(problem.path % QStringLiteral(": ") % problem.reason);
    if (problems.size() > mostLines)
        lines.append(QStringLiteral("… and %1 more").arg(problems.size() - mostLines));
    return lines.join(QLatin1Char('\n'));
}

QString QueueItem::percentLabel() const {
    if (const auto *progress = status.progress()) {
        const QString percent = QString::number(std::llround(progress->fraction * 100)) % QLatin1Char('%');
        if (progress->fileCount <= 1)
            return percent;
        return QStringLiteral("%1/%2 · ").arg(progress->files).arg(progress->fileCount) + percent;
    }
    if (status.is<QueueItemStatus::Failed>())
        return QStringLiteral("Error");
    return status.is<QueueItemStatus::Completed>() ? QStringLiteral("100%") : unknownLabel();
}

} // namespace vantrel
