#pragma once

#include "Records/QueueItem.h"

#include <QList>
#include <QUuid>

namespace vantrel {

/// Staging folders that hold the beginning of a large file until its entry goes on: it was paused, or its
/// phone left. Their names stay in use meanwhile, so that nothing sweeps them. Any thread.
namespace KeptParts {

struct Part {
    QUuid entry;
    TransferDirection direction = TransferDirection::androidToMac;
    QString serial; ///< of the entry's phone
    QString folder; ///< that is written into
    QString name;   ///< of the staging folder in it
};

void keep(const Part &part);
/// What is kept for the entry; it is the caller's from then on.
[[nodiscard]] QList<Part> take(const QUuid &entry);

} // namespace KeptParts

} // namespace vantrel
