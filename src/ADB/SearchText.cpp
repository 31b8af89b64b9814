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

/// The facts behind "PATH|" in the first line at or after the position that has them; the position moves
/// behind that line.
std::optional<SearchMetadata> nextFacts(const QString &text, const QString &path, qsizetype &position) {
    const QString prefix = path + QLatin1Char('|');
    for (qsizetype at = text.indexOf(prefix, position); at >= 0; at = text.indexOf(prefix, at + 1)) {
        if (at > 0 && text[at - 1] != QLatin1Char('\n'))
            continue;
        const QStringView rest = QStringView(text).mid(at + prefix.size());
        const qsizetype feed = rest.indexOf(u'\n');
        const QStringView line = feed < 0 ? rest : rest.left(feed);
        const auto pieces = line.trimmed().split(u'|');
        if (pieces.size() != 3) // a longer path that begins like this one
            continue;
        position = at + prefix.size() + line.size();
        return SearchMetadata{pieces[0].contains(u"directory", Qt::CaseInsensitive),
                              ToolText::wholeNumber(pieces[1]), timeSinceEpoch(pieces[2])};
    }
    return std::nullopt;
}

/// Whether each line ends as the terminal of an old phone ends it.
bool isFromATerminal(const QString &text) {
    return text.count(QLatin1Char('\n')) == text.count(QLatin1String("\r\n"));
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
    const QString below = AndroidPath::join(root, QString());
    const bool endsInReturns = isFromATerminal(text);
    QStringView output = text;
    if (output.endsWith(u'\n'))
        output.chop(1);
    QStringList found;
    for (QStringView line : output.tokenize(u'\n')) {
        if (--limit < 0)
            break;
        if (endsInReturns && line.endsWith(u'\r'))
            line.chop(1);
        if (line.startsWith(below) || line == root)
            found.append(line.toString());
        else if (!found.isEmpty())
            found.last() += QLatin1Char('\n') % line;
    }

    QStringList paths;
    QSet<QString> seen;
    for (const QString &line : std::as_const(found)) {
        const QString path = normalizePath(line);
        // One with a NUL would be another path for the tool, whose arguments end there.
        if (path.contains(QChar(u'\0')) || path == root || seen.contains(path))
            continue;
        seen.insert(path);
        const QString name = AndroidPath::lastComponent(path);
        if (!name.startsWith(QLatin1Char('.')) && AndroidPath::isSafeName(name))
            paths.append(path);
    }
    return paths;
}

QHash<QString, SearchMetadata> parseSearchMetadata(const QString &text, const QStringList &paths) {
    QHash<QString, SearchMetadata> metadata;
    qsizetype position = 0;
    for (const QString &path : paths) {
        if (const auto facts = nextFacts(text, path, position))
            metadata.insert(path, *facts);
    }
    return metadata;
}

} // namespace vantrel::ADBClient
