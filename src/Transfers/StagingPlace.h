#pragma once

#include "Transfers/CopySide.h"

#include <QString>
#include <QStringList>

#include <stop_token>

namespace vantrel {

/// Where staging folders of the program lie, and the way in which they go. Any thread.
struct StagingPlace {
    TransferDirection direction = TransferDirection::androidToMac;
    QString serial; ///< of the phone, if one takes part
    QString folder; ///< that is written into

    /// What programs that died have left there. Once per run of the program is enough: afterwards there is
    /// none.
    [[nodiscard]] QStringList leftOver(const CopySide &side, const std::stop_token &stop) const;
    /// Removes a staging folder. What is on a phone that has left is swept before the next copy.
    void remove(const QString &name) const;

private:
    [[nodiscard]] QString key() const;
};

} // namespace vantrel
