#include "ADB/ADBClient.h"

#include "ADB/AndroidPath.h"
#include "ADB/SearchText.h"
#include "ADB/ToolText.h"
#include "Records/FileOrder.h"
#include "Records/Identity.h"
#include "Records/TextLength.h"

namespace vantrel::ADBClient {

namespace {

ADBResult<QString> askShellForText(const QString &serial, const QString &command) {
    return askADBForText({QStringLiteral("-s"), serial, QStringLiteral("shell"), command});
}

/// Paths that are asked for with one run of adb.
struct Question {
    QStringList paths;
    QString quoted; ///< for the phone's shell, separated by blanks
};

QList<Question> questionsFor(const QStringList &paths) {
    constexpr qsizetype mostPaths = 40;
    // adb 29 was seen to refuse a line of more than 64 KiB. A path holds 4 KiB, four times that in quotes.
    constexpr qsizetype mostBytes = 48'000;
    QList<Question> questions;
    qsizetype bytes = 0; // of the last question
    for (const QString &path : paths) {
        const QString quoted = AndroidPath::quotedForShell(path);
        const qsizetype length = quoted.toUtf8().size() + 1;
        bytes += length;
        if (questions.isEmpty() || questions.last().paths.size() == mostPaths || bytes > mostBytes) {
            questions.append({{path}, quoted});
            bytes = length;
        } else {
            questions.last().paths.append(path);
            questions.last().quoted += QLatin1Char(' ') % quoted;
        }
    }
    return questions;
}

} // namespace

ADBResult<QList<FileItem>> search(const QString &serial, const QString &root, const QString &query,
                                  int limit) {
    const QString sanitized = sanitizeSearchQuery(query);
    if (characterCount(sanitized) < 2)
        return QList<FileItem>();

    const QString folder = normalizePath(root);
    const auto answer = askADB({QStringLiteral("-s"), serial, QStringLiteral("shell"),
                                QStringLiteral("find -L '") % folder % QStringLiteral("' -iname '*") %
                                    sanitized % QStringLiteral("*' 2>/dev/null | head -n ") %
                                    QString::number(limit) % QStringLiteral("; true")});
    if (!answer)
        return tl::make_unexpected(answer.error());
    if (!answer->succeeded)
        return tl::make_unexpected(answer->error());

    const auto [text, isExact] = ToolText::decodeLeniently(answer->output);
    const QStringList paths = parseFoundPaths(text, folder, limit);
    const auto metadata = fetchSearchMetadata(serial, paths);
    QList<FileItem> items;
    items.reserve(paths.size());
    for (const QString &path : paths) {
        const bool isPathExact = isExact || !path.contains(QChar(QChar::ReplacementCharacter));
        const SearchMetadata facts = isPathExact ? metadata.value(path) : SearchMetadata();
        items.append({newIdentity(), AndroidPath::lastComponent(path), path, facts.isDirectory,
                      facts.isDirectory ? std::nullopt : facts.sizeBytes, std::nullopt, facts.modifiedAt,
                      isPathExact});
    }
    sortInFileOrder(items);
    return items;
}

ADBResult<QList<FileItem>> searchAll(const QString &serial, const QStringList &roots, const QString &query,
                                     int limit) {
    QList<FileItem> all;
    for (const QString &root : roots) {
        auto found = search(serial, root, query, limit - int(all.size()));
        if (!found && root == roots.first())
            return found;
        all += found.value_or(QList<FileItem>());
        if (all.size() >= limit)
            break;
    }
    sortInFileOrder(all);
    return all;
}

QHash<QString, SearchMetadata> fetchSearchMetadata(const QString &serial, const QStringList &paths) {
    QHash<QString, SearchMetadata> metadata;
    for (const Question &question : questionsFor(paths)) {
        const auto answer =
            askShellForText(serial, QStringLiteral("stat -c '%n|%F|%s|%Y' ") % question.quoted %
                                        QStringLiteral(" 2>/dev/null; true"));
        if (answer)
            metadata.insert(parseSearchMetadata(*answer, question.paths));
    }
    return metadata;
}

} // namespace vantrel::ADBClient
