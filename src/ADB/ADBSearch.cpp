#include "ADB/ADBClient.h"

#include "ADB/AndroidPath.h"
#include "ADB/SearchText.h"
#include "Records/FileOrder.h"
#include "Records/Identity.h"
#include "Records/TextLength.h"

namespace vantrel::ADBClient {

namespace {

constexpr qsizetype pathsPerStat = 40;

ADBResult<QString> runShellText(const QString &serial, const QString &command) {
    return runADB({QStringLiteral("-s"), serial, QStringLiteral("shell"), command});
}

ADBResult<QHash<QString, SearchMetadata>> statBatch(const QString &serial, const QStringList &paths) {
    QStringList quoted;
    for (const QString &path : paths)
        quoted.append(AndroidPath::quotedForShell(path));
    return runShellText(serial, QStringLiteral("stat -c '%n|%F|%s|%Y' ") % quoted.join(QLatin1Char(' ')) %
                                    QStringLiteral(" 2>/dev/null; true"))
        .map(parseSearchMetadata);
}

} // namespace

ADBResult<QList<FileItem>> search(const QString &serial, const QString &root, const QString &query,
                                  int limit) {
    const QString sanitized = sanitizeSearchQuery(query);
    if (characterCount(sanitized) < 2)
        return QList<FileItem>();

    const QString folder = normalizePath(root);
    const auto found =
        runShellText(serial, QStringLiteral("find -L '") % folder % QStringLiteral("' -iname '*") %
                                 sanitized % QStringLiteral("*' 2>/dev/null | head -n ") %
                                 QString::number(limit) % QStringLiteral("; true"));
    if (!found)
        return tl::make_unexpected(found.error());

    const QStringList paths = parseFoundPaths(*found, folder, limit);
    const auto metadata = fetchSearchMetadata(serial, paths);
    QList<FileItem> items;
    items.reserve(paths.size());
    for (const QString &path : paths) {
        const SearchMetadata facts = metadata.value(path);
        items.append({newIdentity(), AndroidPath::lastComponent(path), path, facts.isDirectory,
                      facts.isDirectory ? std::nullopt : facts.sizeBytes, std::nullopt, facts.modifiedAt});
    }
    sortInFileOrder(items);
    return items;
}

QHash<QString, SearchMetadata> fetchSearchMetadata(const QString &serial, const QStringList &paths) {
    QHash<QString, SearchMetadata> metadata;
    for (qsizetype first = 0; first < paths.size(); first += pathsPerStat) {
        if (const auto batch = statBatch(serial, paths.mid(first, pathsPerStat)))
            metadata.insert(*batch);
    }
    return metadata;
}

ADBResult<QSet<QString>> existingPaths(const QString &serial, const QStringList &paths) {
    QSet<QString> existing;
    for (qsizetype first = 0; first < paths.size(); first += pathsPerStat) {
        const QStringList batch = paths.mid(first, pathsPerStat);
        // The root is always there. An answer that does not end with it is none, or not the whole one.
        const QString root = QStringLiteral("/");
        const auto facts = statBatch(serial, batch + QStringList{root});
        if (!facts)
            return tl::make_unexpected(facts.error());
        if (!facts->contains(root))
            return tl::make_unexpected(ADBError::parseFailed(
                QStringLiteral("The phone did not say whether this name is free there.")));
        for (const QString &path : batch) {
            if (facts->contains(normalizePath(path)))
                existing.insert(path);
        }
    }
    return existing;
}

} // namespace vantrel::ADBClient
