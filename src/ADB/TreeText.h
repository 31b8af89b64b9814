#pragma once

#include "Records/FileTree.h"

#include <QByteArray>
#include <QHash>

#include <optional>

namespace vantrel::ADBClient {

/// The `find -printf` format that the parsers below read: kind and mode, size, time, path, NUL.
inline constexpr char treeFormat[] = "%M %s %T@ %P\\0";
inline constexpr char factsFormat[] = "%M %s %T@ %p\\0";
/// The same for `stat -c`, where `find` knows no -printf; a line for each.
inline constexpr char lineFormat[] = "%A %s %Y %n";
/// What the phone's shell prints behind an answer, so that one that was cut is not taken for a whole one.
inline constexpr char answerEnd[] = "end\n";

/// Reads the answer to a question for one tree. Names that lead out of their folder are dropped, names that
/// are no UTF-8 are left out with a reason. Nothing when the answer is not whole or makes no sense.
[[nodiscard]] std::optional<FileTree> parseTree(const QByteArray &answer);
/// Reads the answer to a question for single paths: path to facts, none for what does not stand there.
[[nodiscard]] std::optional<QHash<QString, TreeEntry>> parseFacts(const QByteArray &answer);
/// Lines in lineFormat as records that the parsers above read, their paths below `root` unless that is empty.
/// What a line break in a name leaves behind makes that name one that cannot be copied.
[[nodiscard]] QByteArray recordsOfLines(const QByteArray &answer, const QString &root);
/// What `find` complained about, one for each line: a folder that may not be read.
[[nodiscard]] QList<CopyProblem> parseFindComplaints(const QString &errors, const QString &root);

} // namespace vantrel::ADBClient
