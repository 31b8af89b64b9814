#pragma once

#include "PhoneFiles.h"
#include "ShellCommands.h"
#include "ShellLine.h"

#include <string>
#include <vector>

namespace vantrel::demo {

/// The name of a line that a copy sends: commands on files, and `echo end` behind them. "tree", "facts" and
/// "names" are the three questions that `find -printf` answers; otherwise the first command's name. Empty for
/// any other line.
[[nodiscard]] std::string nameOfCopyLine(const std::vector<ShellPipeline> &line);

/// Runs a line that nameOfCopyLine knows.
[[nodiscard]] Answer runCopyLine(const std::vector<ShellPipeline> &line, const PhoneFiles &files);

} // namespace vantrel::demo
