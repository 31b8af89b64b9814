#pragma once

#include <QList>
#include <QString>

namespace vantrel {

/// A card or a stick in the phone.
struct StorageCard {
    QString path; ///< "/storage/1A2B-3C4D"
    qint64 usedBytes = 0;
    qint64 totalBytes = 0; ///< 0 when unknown

    friend bool operator==(const StorageCard &, const StorageCard &) = default;
};

/// The phone the model is working with. The default value is the absent device.
struct AndroidDevice {
    QString id = QStringLiteral("—"); ///< serial as `adb devices` prints it; passed to every bridge operation
    QString name;                     ///< model name
    bool isConnected = false;         ///< while false, every remote operation of the model is refused
    qint64 usedBytes = 0;             ///< bytes in use on the shared storage
    qint64 totalBytes = 0;            ///< bytes of the shared storage; 0 when unknown
    QList<StorageCard> cards = {};    ///< beside the shared storage

    friend bool operator==(const AndroidDevice &, const AndroidDevice &) = default;
};

} // namespace vantrel
