#include "Records/QueueItem.h"

#include "Records/FileSizeFormat.h"

#include <cmath>

namespace vantrel {

const QueueItemStatus::Progress *QueueItemStatus::progress() const {
    if (const auto *running = as<Transferring>())
        return running;
    return as<Paused>();
}

QString QueueItem::progressLabel() const {
    if (const auto *progress = status.progress()) {
        if (progress->totalBytes < 1)
            return QStringLiteral("Transferring…");
        return formatFileSize(progress->transferredBytes) % QStringLiteral(" / ") %
               formatFileSize(progress->totalBytes);
    }
    if (const auto *failed = status.as<QueueItemStatus::Failed>())
        return failed->message;
    return status.is<QueueItemStatus::Waiting>() ? QStringLiteral("Waiting…") : QStringLiteral("Done");
}

QString QueueItem::percentLabel() const {
    if (const auto *progress = status.progress())
        return QString::number(std::llround(progress->fraction * 100)) % QLatin1Char('%');
    if (status.is<QueueItemStatus::Failed>())
        return QStringLiteral("Error");
    return status.is<QueueItemStatus::Waiting>() ? unknownLabel() : QStringLiteral("100%");
}

} // namespace vantrel
