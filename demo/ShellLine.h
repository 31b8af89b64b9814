#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vantrel::demo {

/// One command of a shell line: its words, quotes taken off, and whether its errors go to /dev/null.
struct ShellCommand {
    std::vector<std::string> words;
    bool discardsErrors = false;
    bool appends = false; ///< its output goes behind what the file holds that its last word names
};

/// Commands joined by "|".
using ShellPipeline = std::vector<ShellCommand>;

/// The one loop that the phone knows, behind other commands: what `df` says of every card. It stands as the
/// command "cards".
inline constexpr std::string_view cardsLoop = "for c in /storage/*-*; do echo \"$c\"; df \"$c\"; done";

/// Splits a line as the phone's shell does: single quotes, backslash outside them, ";", "|", "2>/dev/null"
/// and ">>". Whatever else means something to a shell and stands outside quotes ("$", "`", "&", "*"…) is
/// refused, so that a name which leaves its quotes shows as a failure and never as a command. Nothing is run.
/// Throws std::invalid_argument.
[[nodiscard]] std::vector<ShellPipeline> parseShellLine(const std::string &line);

/// Whether a word is decimal digits and nothing else.
[[nodiscard]] bool isNumber(std::string_view word);

} // namespace vantrel::demo
