#include "ADB/ADBClient.h"

#include "ADB/DeviceText.h"
#include "ADB/ToolText.h"

namespace vantrel::ADBClient {

ADBResult<QStringList> listDeviceSerials() {
    return runADB({QStringLiteral("devices")}).map(parseDeviceList);
}

ADBResult<AndroidDevice> fetchPrimaryDevice() {
    const auto serials = listDeviceSerials();
    if (!serials)
        return tl::make_unexpected(serials.error());
    if (serials->isEmpty())
        return tl::make_unexpected(ADBError::noDevice());
    const QString &serial = serials->first();

    const auto model = runADB({QStringLiteral("-s"), serial, QStringLiteral("shell"),
                               QStringLiteral("getprop"), QStringLiteral("ro.product.model")})
                           .map(ToolText::trimmed);
    const auto bytes = fetchStorageBytes(serial);
    if (!model && !bytes) // nothing that is asked of it is answered
        return tl::make_unexpected(bytes.error());
    const QString name = model.value_or(QString());
    const auto [used, total] = bytes.value_or(StorageBytes{0, -1});
    return AndroidDevice{serial, name.isEmpty() ? serial : name, true, used, total};
}

ADBResult<StorageBytes> fetchStorageBytes(const QString &serial) {
    for (const QString &path : {QStringLiteral("/sdcard"), QStringLiteral("/data")}) {
        auto bytes =
            runADB({QStringLiteral("-s"), serial, QStringLiteral("shell"), QStringLiteral("df"), path})
                .and_then(parseDF);
        if (bytes)
            return bytes;
    }
    return tl::make_unexpected(ADBError::parseFailed(QStringLiteral("Could not read device storage (df).")));
}

} // namespace vantrel::ADBClient
