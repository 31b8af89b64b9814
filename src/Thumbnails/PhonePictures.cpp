#include "Thumbnails/PhonePictures.h"

#include "ADB/ADBClient.h"

namespace vantrel {

PhonePictures phonePictures(const QString &serial, const QList<PhoneReading> &readings, int edge,
                            const std::stop_token &stop) {
    QList<ADBClient::FileBeginning> files;
    for (const PhoneReading &reading : readings)
        files.append({reading.path, reading.length});
    const auto beginnings = ADBClient::readBeginnings(serial, files, stop);
    PhonePictures answer;
    if (!beginnings)
        return answer;
    for (qsizetype i = 0; i < readings.size(); ++i) {
        if (stop.stop_requested())
            return {};
        const PhoneReading &reading = readings.at(i);
        answer.pictures.append(
            smallPicture(beginnings->at(i), reading.extent, mediaKindOf(reading.path), edge));
    }
    answer.isAnswered = true;
    return answer;
}

} // namespace vantrel
