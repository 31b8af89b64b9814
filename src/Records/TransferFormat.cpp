#include "Records/TransferFormat.h"

#include "Records/FileSizeFormat.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vantrel {

qint64 wholeBytes(double bytes) {
    constexpr double end = 0x1p63; // the first number that does not fit; the last that does has no double
    if (std::isnan(bytes))
        return 0;
    if (bytes >= end)
        return std::numeric_limits<qint64>::max();
    return bytes < -end ? std::numeric_limits<qint64>::min() : static_cast<qint64>(bytes);
}

QString formatCount(qint64 count) {
    QLocale locale;
    locale.setNumberOptions(QLocale::DefaultNumberOptions);
    return locale.toString(count);
}

QString formatTransferRate(double bytesPerSecond) {
    if (!std::isfinite(bytesPerSecond) || bytesPerSecond < 0)
        return unknownLabel();
    return formatFileSize(wholeBytes(bytesPerSecond)) + QStringLiteral("/s");
}

QString formatDuration(double seconds) {
    constexpr double longest = 3'600'000;
    const double rounded = std::round(seconds);
    if (!(rounded < longest)) // nor when it is no number
        return unknownLabel();
    const auto whole = static_cast<qint64>(std::max(rounded, 0.0));
    const auto twoDigits = [](qint64 number) {
        return QString::number(number).rightJustified(2, QLatin1Char('0'));
    };
    return twoDigits(whole / 3600) % QLatin1Char(':') % twoDigits(whole % 3600 / 60) % QLatin1Char(':') %
           twoDigits(whole % 60);
}

} // namespace vantrel
