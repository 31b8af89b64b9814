#include "ADB/SearchText.h"

#include "ADB/AndroidPath.h"
#include "ADB/ToolText.h"

#include <cmath>

namespace vantrel::ADBClient {

namespace {

std::optional<QDateTime> timeSinceEpoch(QStringView text) {
    bool ok = false;
    const double seconds = text.toDouble(&ok);
    // Beyond ±292 million years the milliseconds no longer fit; a phone may print anything.
    constexpr double largest = 9.2e15;
    if (!ok || !std::isfinite(seconds) || std::abs(seconds) > largest)
        return std::nullopt;
    return QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000), Qt::UTC);
}

} // namespace

QString sanitizeSearchQuery(const QString &query) {
    static const QString removed = QStringLiteral("'\"\\*?[]{};|&$`<>!()\n\r\t");
    QString kept;
    for (const QChar c : ToolText::trimmed(query)) {
        if (!removed.contains(c))
            kept += c;
    }
    return ToolText::trimmed(kept);
}

QStringList parseFoundPaths(const QString &text, const QString &root, int limit) {
    QStringList paths;
    QSet<QString> seen;
    for (const QStringView raw : ToolText::lines(text)) {
        if (--limit < 0)
            break;
        const QString line = ToolText::trimmed(raw.toString());
        if (line.isEmpty())
            continue;
        const QString path = normalizePath(line);
        // A name that holds a newline comes as two lines; the second is no path. One with a NUL would be
        // another path for the tool, whose arguments end there.
        if (!path.startsWith(QLatin1Char('/')) || path.contains(QChar(u'\0')) || path == root ||
            seen.contains(path))
            continue;
        seen.insert(path);
        const QString name = AndroidPath::lastComponent(path);
        if (!name.startsWith(QLatin1Char('.')) && AndroidPath::isSafeName(name))
            paths.append(path);
    }
    return paths;
}

QHash<QString, SearchMetadata> parseSearchMetadata(const QString &text) {
    QHash<QString, SearchMetadata> metadata;
    for (const QStringView raw : ToolText::lines(text)) {
        const QString line = ToolText::trimmed(raw.toString());
        const qsizetype time = line.lastIndexOf(QLatin1Char('|'));
        const qsizetype size = time > 0 ? line.lastIndexOf(QLatin1Char('|'), time - 1) : -1;
        const qsizetype type = size > 0 ? line.lastIndexOf(QLatin1Char('|'), size - 1) : -1;
        if (type < 0)
            continue;
        SearchMetadata facts;
        facts.isDirectory =
            QStringView(line).mid(type + 1, size - type - 1).contains(u"directory", Qt::CaseInsensitive);
        facts.sizeBytes = ToolText::wholeNumber(QStringView(line).mid(size + 1, time - size - 1));
        facts.modifiedAt = timeSinceEpoch(QStringView(line).mid(time + 1));
        metadata.insert(normalizePath(line.left(type)), facts);
    }
    return metadata;
}

} // namespace vantrel::ADBClient
