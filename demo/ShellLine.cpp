#include "ShellLine.h"

#include <stdexcept>
#include <string_view>

namespace vantrel::demo {

namespace {

constexpr std::string_view discardErrors = "2>/dev/null";

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

/// Reads one word at `at` and moves `at` behind it.
std::string readWord(const std::string &line, std::size_t &at) {
    std::string word;
    for (; at < line.size(); ++at) {
        const char c = line[at];
        if (isBlank(c) || c == ';' || c == '|')
            break;
        if (c == '\'') {
            const std::size_t close = line.find('\'', at + 1);
            if (close == std::string::npos)
                throw std::invalid_argument("no closing quote");
            word.append(line, at + 1, close - at - 1);
            at = close;
        } else if (c == '\\' && at + 1 < line.size()) {
            word += line[++at];
        } else if (std::string_view("\\\"$`&<>()*?[]{}~#!\r\n").find(c) != std::string_view::npos) {
            throw std::invalid_argument(std::string("unexpected ") + c);
        } else {
            word += c;
        }
    }
    return word;
}

} // namespace

std::vector<ShellPipeline> parseShellLine(const std::string &line) {
    std::vector<ShellPipeline> list;
    bool pipelineOpen = false;
    bool commandOpen = false;
    const auto close = [&] {
        if (!commandOpen)
            throw std::invalid_argument("a command is missing");
        commandOpen = false;
    };
    for (std::size_t at = 0; at < line.size();) {
        if (isBlank(line[at])) {
            ++at;
            continue;
        }
        if (line[at] == ';' || line[at] == '|') {
            close();
            pipelineOpen = line[at] == '|';
            ++at;
            continue;
        }
        if (!commandOpen && line.compare(at, cardsLoop.size(), cardsLoop) == 0) {
            list.push_back({ShellCommand{.words = {"cards"}}});
            pipelineOpen = commandOpen = true;
            at += cardsLoop.size();
            continue;
        }
        if (!commandOpen) {
            if (!pipelineOpen)
                list.emplace_back();
            list.back().emplace_back();
            pipelineOpen = commandOpen = true;
        }
        ShellCommand &command = list.back().back();
        const std::size_t end = at + discardErrors.size();
        if (line.compare(at, discardErrors.size(), discardErrors) == 0 &&
            (end == line.size() || isBlank(line[end]) || line[end] == ';' || line[end] == '|')) {
            command.discardsErrors = true;
            at = end;
        } else if (line.compare(at, 2, ">>") == 0 && !command.appends) {
            command.appends = true;
            at += 2;
        } else {
            command.words.push_back(readWord(line, at));
        }
    }
    if (!commandOpen && pipelineOpen)
        throw std::invalid_argument("a command is missing");
    return list;
}

bool isNumber(std::string_view word) {
    return !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
}

} // namespace vantrel::demo
