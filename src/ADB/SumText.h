#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>

namespace vantrel::ADBClient {

/// Reads what `md5sum` prints when it is asked for these paths: for each, in its place, the 32 digits of its
/// sum, or nothing where the phone has none. Names are only compared with what was asked for.
[[nodiscard]] QList<QByteArray> parseSums(const QByteArray &answer, const QStringList &paths);

} // namespace vantrel::ADBClient
