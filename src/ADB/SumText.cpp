#include "ADB/SumText.h"

#include <algorithm>

namespace vantrel::ADBClient {

namespace {

constexpr qsizetype sumDigits = 32;

bool isSum(QByteArrayView text) {
    return text.size() == sumDigits && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

/// What stands behind the sum: toybox writes the name as it is; others put a backslash before the sum and
/// write line breaks and backslashes as in C.
QByteArray nameIn(const QString &path, bool isEscaped) {
    QByteArray name = path.toUtf8();
    if (isEscaped)
        name.replace('\\', "\\\\").replace('\n', "\\n").replace('\r', "\\r");
    return "  " + name + '\n';
}

} // namespace

QList<QByteArray> parseSums(const QByteArray &answer, const QStringList &paths) {
    QList<QByteArray> sums;
    QByteArrayView rest = answer;
    for (const QString &path : paths) {
        const bool isEscaped = rest.startsWith('\\');
        const QByteArrayView line = rest.sliced(isEscaped ? 1 : 0);
        const QByteArray name = nameIn(path, isEscaped);
        const bool isOfPath =
            isSum(line.first(std::min(sumDigits, line.size()))) && line.sliced(sumDigits).startsWith(name);
        sums.append(isOfPath ? line.first(sumDigits).toByteArray() : QByteArray());
        if (isOfPath)
            rest = line.sliced(sumDigits + name.size());
    }
    return sums;
}

} // namespace vantrel::ADBClient
