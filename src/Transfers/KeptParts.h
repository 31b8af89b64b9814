#pragma once

#include "Transfers/StagingPlace.h"

#include <QList>
#include <QUuid>

namespace vantrel {

/// Staging folders that hold the beginning of a large file until its entry goes on: it was paused, or its
/// phone left. Their names stay in use meanwhile, so that nothing sweeps them. Any thread.
namespace KeptParts {

struct Part {
    QUuid entry;
    StagingPlace place;
    QString name; ///< of the staging folder
};

void keep(const Part &part);
/// What is kept for the entry; it is the caller's from then on.
[[nodiscard]] QList<Part> take(const QUuid &entry);
/// Removes what is kept for entries that will not go on. Blocking. Whether there was any.
bool discard(const QList<QUuid> &entries);

} // namespace KeptParts

} // namespace vantrel
