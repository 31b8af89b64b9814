#pragma once

#include "Records/QueueItem.h"

#include <QString>

/// What a copy says to the user. Pure functions; any thread.
namespace vantrel {

struct CopyReport;

/// What the queue shows of an entry that has ended like this.
[[nodiscard]] QueueItemStatus statusAfter(const QueueItem &item, const CopyReport &report);

/// What an error line of adb's push or pull, without its "adb: error: ", means to the user.
[[nodiscard]] QString explainedCopyError(const QString &error);

/// The name for a copy that is kept beside another one: "name 2.jpg", number 2 and up; shortened to what file
/// systems take.
[[nodiscard]] QString numberedName(const QString &name, int number);

} // namespace vantrel
