#pragma once

#include <QString>

namespace vantrel {

/// The phone the model is working with. The default value is the absent device.
struct AndroidDevice {
    QString id = QStringLiteral("—"); ///< serial as `adb devices` prints it; passed to every bridge operation
    QString name;                     ///< model name
    bool isConnected = false;         ///< while false, every remote operation of the model is refused
    qint64 usedBytes = 0;             ///< bytes in use on the shared storage
    qint64 totalBytes = 0;            ///< bytes of the shared storage; 0 when unknown

    friend bool operator==(const AndroidDevice &, const AndroidDevice &) = default;
};

} // namespace vantrel
