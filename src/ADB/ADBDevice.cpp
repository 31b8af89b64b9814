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
                           .map(ToolText::trimmed)
                           .value_or(QString());
    return fetchStorageBytes(serial).map([&](const StorageBytes &bytes) {
        return AndroidDevice{serial, model.isEmpty() ? serial : model, true, bytes.used, bytes.total};
    });
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
