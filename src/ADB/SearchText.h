#pragma once

#include "ADB/ADBClient.h"

#include <QHash>
#include <QString>
#include <QStringList>

namespace vantrel::ADBClient {

/// The query without what the phone's shell or find's patterns could read as more than text, trimmed.
[[nodiscard]] QString sanitizeSearchQuery(const QString &query);

/// The paths of find's output, in its order: each once, without the root itself and without hidden names.
/// Reads at most `limit` lines; a phone may print more than it was asked for.
[[nodiscard]] QStringList parseFoundPaths(const QString &text, const QString &root, int limit);

/// The facts in the output of `stat -c '%n|%F|%s|%Y'`, by normalized path. A path may itself contain "|".
[[nodiscard]] QHash<QString, SearchMetadata> parseSearchMetadata(const QString &text);

} // namespace vantrel::ADBClient
