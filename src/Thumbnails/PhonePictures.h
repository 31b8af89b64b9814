#pragma once

#include "Thumbnails/SmallPicture.h"

#include <QList>
#include <QString>

#include <stop_token>

namespace vantrel {

/// What is to be read of a file of the phone.
struct PhoneReading {
    QString path;
    qint64 length = 0; ///< bytes, from the beginning
    Extent extent = Extent::beginning;
};

/// What was found.
struct PhonePictures {
    QList<QImage> pictures; ///< for each reading, null where its bytes hold none; empty unless `isAnswered`
    bool isAnswered = false;
};

/// Reads the files with one run of adb and finds their pictures, none of them copied. No longer than `edge`
/// pixels. Blocks until the phone has answered or the stop is requested; not on the main thread.
[[nodiscard]] PhonePictures phonePictures(const QString &serial, const QList<PhoneReading> &readings,
                                          int edge, const std::stop_token &stop);

} // namespace vantrel
