#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>

#include <optional>

namespace vantrel {

using SignalParameters = QMap<QString, QString>;

/// One signal as it is kept, written to disk and sent.
struct SignalPostBody {
    QDateTime receivedAt;             ///< UTC, to the millisecond: when the signal was recorded
    QString appID;                    ///< the application's identifier at the service
    QString clientUser;               ///< the hashed user identifier
    QString sessionID;                ///< upper-case UUID
    QString type;                     ///< the signal's name
    std::optional<double> floatValue; ///< left out of the JSON when absent
    SignalParameters payload;
    QString isTestMode; ///< "true" or "false"

    friend bool operator==(const SignalPostBody &, const SignalPostBody &) = default;
};

} // namespace vantrel
