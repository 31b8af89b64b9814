#pragma once

#include "ADB/ADBClient.h"

#include <QString>
#include <QStringList>

namespace vantrel::ADBClient {

/// The serials that `adb devices` prints in the state "device", in its order. Phones in any other state
/// ("offline", "unauthorized", "no permissions (user in plugdev group; …)") and daemon start notices are
/// passed over.
[[nodiscard]] QStringList parseDeviceList(const QString &text);

/// Used and total bytes from the last line of `df`, whose first two whole numbers are total and used in units
/// of 1024 bytes. A figure that does not fit 64 bits when multiplied counts as unreadable.
[[nodiscard]] ADBResult<StorageBytes> parseDF(const QString &text);

} // namespace vantrel::ADBClient
