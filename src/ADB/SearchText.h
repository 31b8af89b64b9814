#pragma once

#include "ADB/ADBClient.h"

#include <QHash>
#include <QString>
#include <QStringList>

namespace vantrel::ADBClient {

/// The query without what the phone's shell or find's patterns could read as more than text, trimmed.
[[nodiscard]] QString sanitizeSearchQuery(const QString &query);

/// The paths of find's output, in its order: each once, without the root itself and without hidden names.
/// Blanks belong to the names, and so do line breaks: a line that does not begin with the root goes on with
/// the one before. Reads at most `limit` lines; a phone may print more than it was asked for.
[[nodiscard]] QStringList parseFoundPaths(const QString &text, const QString &root, int limit);

/// The facts in the output of `stat -c '%n|%F|%s|%Y'` for these paths, which answers in their order and
/// leaves out what is not there. Each path's answer is looked for behind the one before, so that a name may
/// hold "|" and line breaks.
[[nodiscard]] QHash<QString, SearchMetadata> parseSearchMetadata(const QString &text,
                                                                 const QStringList &paths);

} // namespace vantrel::ADBClient
