#include "Transfers/StagingPlace.h"

#include "ADB/AndroidPath.h"
#include "Transfers/StagedName.h"

#include <QSet>

#include <mutex>

namespace vantrel {

namespace {

/// The places that were swept.
class SweptPlaces {
public:
    /// Whether the place has not been visited before.
    [[nodiscard]] bool visit(const QString &place) {
        const std::scoped_lock lock(m_guard);
        const bool isFirst = !m_places.contains(place);
        m_places.insert(place);
        return isFirst;
    }
    /// Something had to be left there.
    void forget(const QString &place) {
        const std::scoped_lock lock(m_guard);
        m_places.remove(place);
    }

private:
    std::mutex m_guard;
    QSet<QString> m_places;
};

SweptPlaces &sweptPlaces() {
    static SweptPlaces places;
    return places;
}

} // namespace

QString StagingPlace::key() const {
    return direction == TransferDirection::macToAndroid ? QString(serial % QLatin1Char(':') % folder)
                                                        : folder;
}

QStringList StagingPlace::leftOver(const CopySide &side, const std::stop_token &stop) const {
    return sweptPlaces().visit(key()) ? side.leftOver(folder, stop) : QStringList();
}

void StagingPlace::remove(const QString &name) const {
    if (!destinationSide(direction, serial)->remove({AndroidPath::join(folder, name)}))
        sweptPlaces().forget(key());
    StagedName::release(name);
}

} // namespace vantrel
