#pragma once

#include "Records/FileTree.h"

#include <QByteArray>
#include <QHash>

#include <optional>

namespace vantrel::ADBClient {

/// The `find -printf` format that the parsers below read: kind and mode, size, time, path, NUL.
inline constexpr char treeFormat[] = "%M %s %T@ %P\\0";
inline constexpr char factsFormat[] = "%M %s %T@ %p\\0";
/// What the phone's shell prints behind an answer, so that one that was cut is not taken for a whole one.
inline constexpr char answerEnd[] = "end\n";

/// Reads the answer to a question for one tree. Names that lead out of their folder are dropped, names that
/// are no UTF-8 are left out with a reason. Nothing when the answer is not whole or makes no sense.
[[nodiscard]] std::optional<FileTree> parseTree(const QByteArray &answer);
/// Reads the answer to a question for single paths: path to facts, none for what does not stand there.
[[nodiscard]] std::optional<QHash<QString, TreeEntry>> parseFacts(const QByteArray &answer);
/// What `find` complained about, one for each line: a folder that may not be read.
[[nodiscard]] QList<CopyProblem> parseFindComplaints(const QString &errors, const QString &root);

} // namespace vantrel::ADBClient
