#include "Transfers/KeptParts.h"

#include <QMultiHash>

#include <mutex>

namespace vantrel::KeptParts {

namespace {

struct Registry {
    std::mutex guard;
    QMultiHash<QUuid, Part> parts;
};

Registry &registry() {
    static Registry all;
    return all;
}

} // namespace

void keep(const Part &part) {
    const std::scoped_lock lock(registry().guard);
    registry().parts.insert(part.entry, part);
}

QList<Part> take(const QUuid &entry) {
    const std::scoped_lock lock(registry().guard);
    const QList<Part> kept = registry().parts.values(entry);
    registry().parts.remove(entry);
    return kept;
}

bool discard(const QList<QUuid> &entries) {
    bool hasAny = false;
    for (const QUuid &entry : entries) {
        for (const Part &part : take(entry)) {
            part.place.remove(part.name);
            hasAny = true;
        }
    }
    return hasAny;
}

} // namespace vantrel::KeptParts
