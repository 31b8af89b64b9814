#include "ADB/DeviceText.h"

#include "ADB/ToolText.h"

namespace vantrel::ADBClient {

QStringList parseDeviceList(const QString &text) {
    QStringList serials;
    for (const QStringView raw : ToolText::lines(text)) {
        const QStringView line = ToolText::blankTrimmed(raw);
        if (line.isEmpty() || line.startsWith(u"List of devices"))
            continue;
        const ToolText::Fields fields = ToolText::fields(line);
        if (fields.size() >= 2 && fields[1] == u"device")
            serials.append(fields[0].toString());
    }
    return serials;
}

ADBResult<StorageBytes> parseDF(const QString &text) {
    QStringView last;
    for (const QStringView raw : ToolText::lines(text)) {
        const QStringView line = ToolText::blankTrimmed(raw);
        if (!line.isEmpty() && !line.startsWith(u"filesystem", Qt::CaseInsensitive))
            last = line;
    }
    if (last.isEmpty())
        return tl::make_unexpected(ADBError::parseFailed(QStringLiteral("Unexpected df output.")));

    QList<qint64> numbers;
    for (const QStringView field : ToolText::fields(last)) {
        if (const auto number = ToolText::wholeNumber(field))
            numbers.append(*number);
    }
    StorageBytes bytes;
    constexpr qint64 blockSize = 1024;
    if (numbers.size() < 2 || __builtin_mul_overflow(numbers[0], blockSize, &bytes.total) ||
        __builtin_mul_overflow(numbers[1], blockSize, &bytes.used))
        return tl::make_unexpected(
            ADBError::parseFailed(QStringLiteral("Could not parse df numbers: ") + last.toString()));
    return bytes;
}

} // namespace vantrel::ADBClient
