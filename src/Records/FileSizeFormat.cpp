#include "Records/FileSizeFormat.h"

#include <QLocale>

#include <array>

namespace vantrel {

namespace {

struct Unit {
    quint64 bytes;
    int fractionDigits;
    QLatin1String name;
};

constexpr std::array<Unit, 6> units{{
    {1'000ULL, 0, QLatin1String("KB")},
    {1'000'000ULL, 1, QLatin1String("MB")},
    {1'000'000'000ULL, 2, QLatin1String("GB")},
    {1'000'000'000'000ULL, 2, QLatin1String("TB")},
    {1'000'000'000'000'000ULL, 2, QLatin1String("PB")},
    {1'000'000'000'000'000'000ULL, 2, QLatin1String("EB")},
}};

constexpr quint64 powerOfTen(int digits) {
    quint64 power = 1;
    for (int i = 0; i < digits; ++i)
        power *= 10;
    return power;
}

/// The magnitude in the unit, in steps of its last fraction digit, rounded to nearest, halves up. Integer
/// arithmetic: a double would lose the last digits of large counts.
constexpr quint64 roundedSteps(quint64 magnitude, const Unit &unit) {
    const quint64 step = unit.bytes / powerOfTen(unit.fractionDigits);
    return magnitude / step + (magnitude % step >= step - step / 2 ? 1 : 0);
}

QString decimalText(quint64 steps, int fractionDigits) {
    const quint64 scale = powerOfTen(fractionDigits);
    const QString whole = QString::number(steps / scale);
    QString fraction = QString::number(steps % scale).rightJustified(fractionDigits, QLatin1Char('0'));
    while (fraction.endsWith(QLatin1Char('0')))
        fraction.chop(1);
    return fraction.isEmpty() || fractionDigits == 0 ? whole
                                                     : QString(whole % QLocale().decimalPoint() % fraction);
}

} // namespace

QString unknownLabel() {
    return QStringLiteral("—");
}

QString formatFileSize(qint64 bytes) {
    if (bytes == 0)
        return QStringLiteral("Zero KB");

    const quint64 magnitude = bytes < 0 ? 0 - static_cast<quint64>(bytes) : static_cast<quint64>(bytes);
    const QString sign = bytes < 0 ? QStringLiteral("-") : QString();
    if (magnitude < units.front().bytes)
        return sign % QString::number(magnitude) %
               (magnitude == 1 ? QLatin1String(" byte") : QLatin1String(" bytes"));

    size_t index = 0;
    while (index + 1 < units.size() &&
           roundedSteps(magnitude, units[index]) >= 1000 * powerOfTen(units[index].fractionDigits))
        ++index;
    const Unit &unit = units[index];
    return sign % decimalText(roundedSteps(magnitude, unit), unit.fractionDigits) % QLatin1Char(' ') %
           unit.name;
}

QString formatFileSizes(qint64 done, qint64 total) {
    const QString whole = formatFileSize(total);
    QString part = done == 0 ? QStringLiteral("0") : formatFileSize(done);
    const QString unit = whole.mid(whole.lastIndexOf(QLatin1Char(' ')));
    if (part.endsWith(unit))
        part.chop(unit.size());
    return part % QStringLiteral(" of ") % whole;
}

} // namespace vantrel
