#include "ShellCommands.h"

#include "CopyCommands.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <fstream>
#include <string_view>
#include <utility>

namespace vantrel::demo {

namespace {

using Words = std::vector<std::string>;

std::string complaint(std::string_view command, const std::string &path, int error) {
    return std::string(command) + ": " + path + ": " + std::strerror(error) + "\n";
}

// -- ls -la, ls -lab

struct Row {
    std::array<std::string, 6> columns; ///< mode, links, owner, group, size, time
    std::string name;
};

std::string timeText(time_t time) {
    std::tm local{};
    ::localtime_r(&time, &local);
    std::array<char, 32> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local);
    return {text.data(), length};
}

/// One character that starts a text, and its length; the byte itself, with length 0, where none does.
std::pair<wchar_t, std::size_t> character(std::string_view text) {
    wchar_t found = 0;
    std::mbstate_t state{};
    const std::size_t length = std::mbrtowc(&found, text.data(), text.size(), &state);
    if (length == 0 || length > text.size())
        return {static_cast<unsigned char>(text[0]), 0};
    return {found, length};
}

void useUtf8() {
    if (!std::setlocale(LC_CTYPE, "C.UTF-8"))
        std::setlocale(LC_CTYPE, "en_US.UTF-8");
}

/// A name as toybox writes it: every byte of a character that does not print with a backslash, but only the
/// number of one below 256.
std::string escaped(std::string_view name) {
    useUtf8();
    std::string text;
    while (!name.empty()) {
        const auto [found, length] = character(name);
        const std::size_t taken = std::max<std::size_t>(length, 1);
        if (length > 0 && ::wcwidth(found) >= 0 && found != L' ' && found != L'\\') {
            text += name.substr(0, taken);
        } else {
            const std::string bytes(found < 256 ? std::string(1, static_cast<char>(found))
                                                : std::string(name.substr(0, taken)));
            static constexpr std::string_view named = "\a\b\x1b\f\n\r\t\v\\ ";
            for (const char byte : bytes) {
                if (const std::size_t at = named.find(byte); at != std::string_view::npos) {
                    text += {'\\', "abefnrtv\\ "[at]};
                } else {
                    std::array<char, 8> octal{};
                    std::snprintf(octal.data(), octal.size(), "\\%03o", static_cast<unsigned char>(byte));
                    text += octal.data();
                }
            }
        }
        name.remove_prefix(taken);
    }
    return text;
}

Row rowOf(const Entry &entry, const std::string &name, int error) {
    Row row;
    row.name = name;
    std::string mode = modeText(entry.status.st_mode);
    if (error != 0) {
        // The folder gives the name and the type away; the rest is not for this user to know.
        row.columns = {mode.substr(0, 1) + "?????????", "?", "?", "?", "?", "?"};
        return row;
    }
    std::string size = std::to_string(entry.status.st_size);
    if (S_ISCHR(entry.status.st_mode) || S_ISBLK(entry.status.st_mode))
        size = "1,   3";
    row.columns = {std::move(mode), std::to_string(entry.status.st_nlink), "u0_a1", "media_rw",
                   std::move(size), timeText(entry.status.st_mtime)};
    if (S_ISLNK(entry.status.st_mode))
        row.name += " -> " + entry.linkTarget;
    return row;
}

std::string tableOf(const std::vector<Row> &rows) {
    std::array<std::size_t, 6> widths{};
    for (const Row &row : rows) {
        for (std::size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], row.columns[i].size());
    }
    std::string text;
    for (const Row &row : rows) {
        for (std::size_t i = 0; i < widths.size(); ++i) {
            const bool isName = i == 2 || i == 3;
            const std::string padding(widths[i] - row.columns[i].size(), ' ');
            text += isName ? row.columns[i] + padding : padding + row.columns[i];
            text += ' ';
        }
        text += row.name + '\n';
    }
    return text;
}

Answer ls(const Words &words, const PhoneFiles &files, const Settings &settings) {
    const bool escapes = words[1] == "-lab";
    const std::string &path = words[2];
    Answer answer;
    if (escapes && !settings.escapes) {
        answer.standardError = "ls: Unknown option 'b' (see \"ls --help\")\n";
        answer.exitStatus = 1;
        return answer;
    }
    const auto shown = [&](const std::string &name) { return escapes ? escaped(name) : name; };
    Entry target;
    int error = files.look(path, Links::keep, target);
    std::vector<std::string> names;
    const bool isFolder = error == 0 && S_ISDIR(target.status.st_mode);
    if (isFolder)
        error = files.list(path, names);
    if (error != 0) {
        answer.standardError = complaint("ls", path, error);
        answer.exitStatus = 1;
        return answer;
    }
    if (!isFolder) {
        answer.standardOutput = tableOf({rowOf(target, shown(path), 0)});
        return answer;
    }
    names.insert(names.end(), {".", ".."});
    std::sort(names.begin(), names.end());
    std::vector<Row> rows;
    long long blocks = 0;
    for (const std::string &name : names) {
        Entry entry;
        const int entryError = files.look(joined(path, name), Links::keep, entry);
        if (entryError == ENOENT)
            continue; // deleted meanwhile
        if (entryError != 0) {
            answer.standardError += complaint("ls", joined(path, name), entryError);
            answer.exitStatus = 1;
        }
        blocks += entry.status.st_blocks;
        rows.push_back(rowOf(entry, shown(name), entryError));
    }
    answer.standardOutput = "total " + std::to_string(blocks / 2) + "\n" + tableOf(rows);
    return answer;
}

// -- find -L ROOT -iname '*TEXT*'

/// The text in lower case, one element per character; bytes that are no UTF-8 stay what they are.
std::wstring lowered(std::string_view text) {
    std::wstring result;
    while (!text.empty()) {
        const auto [found, length] = character(text);
        result += length == 0 ? static_cast<wchar_t>(0xDC00 + found)
                              : static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(found)));
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

class Finder {
public:
    Finder(const PhoneFiles &files, std::string_view text, std::size_t limit)
        : m_files(files), m_text(lowered(text)), m_linesLeft(limit) {}

    /// Adds what matches at or below a path; `above` holds the folders that lead there.
    void walk(const std::string &path, std::vector<std::pair<dev_t, ino_t>> &above, Answer &answer) {
        Entry entry;
        int error = m_files.look(path, Links::follow, entry);
        if (error == ENOENT)
            error = m_files.look(path, Links::keep, entry); // a link that leads nowhere is still a name
        if (error != 0) {
            answer.standardError += complaint("find", path, error);
            answer.exitStatus = 1;
            return;
        }
        const std::pair identity{entry.status.st_dev, entry.status.st_ino};
        const bool isFolder = S_ISDIR(entry.status.st_mode);
        if (isFolder && entry.status.st_ino != 0 &&
            std::find(above.begin(), above.end(), identity) != above.end()) {
            answer.standardError += "find: '" + path + "': loop detected\n";
            answer.exitStatus = 1;
            return;
        }
        if (lowered(lastComponent(path)).find(m_text) != std::wstring::npos)
            print(path, answer.standardOutput);
        if (!isFolder)
            return;
        std::vector<std::string> names;
        if (const int listError = m_files.list(path, names)) {
            answer.standardError += complaint("find", path, listError);
            answer.exitStatus = 1;
        }
        above.push_back(identity);
        for (const std::string &name : names) {
            if (m_linesLeft == 0)
                break;
            walk(joined(path, name), above, answer);
        }
        above.pop_back();
    }

private:
    void print(const std::string &path, std::string &output) {
        for (const char c : path + "\n") {
            if (m_linesLeft == 0)
                return;
            output += c;
            m_linesLeft -= c == '\n' ? 1 : 0;
        }
    }

    const PhoneFiles &m_files;
    std::wstring m_text;
    std::size_t m_linesLeft; ///< of what `head` lets through
};

Answer find(const Words &words, const Words &head, const PhoneFiles &files) {
    useUtf8();
    const std::string &pattern = words[4];
    std::size_t limit = 0;
    std::from_chars(head[2].data(), head[2].data() + head[2].size(), limit);
    Answer answer;
    std::vector<std::pair<dev_t, ino_t>> above;
    Finder(files, std::string_view(pattern).substr(1, pattern.size() - 2), limit)
        .walk(words[2], above, answer);
    return answer;
}

// -- stat -c '%n|%F|%s|%Y' PATH…

std::string_view typeText(const struct stat &status) {
    switch (status.st_mode & S_IFMT) {
    case S_IFDIR:
        return "directory";
    case S_IFLNK:
        return "symbolic link";
    case S_IFCHR:
        return "character device";
    case S_IFBLK:
        return "block device";
    case S_IFIFO:
        return "FIFO (named pipe)";
    case S_IFSOCK:
        return "socket";
    default:
        return status.st_size == 0 ? "regular empty file" : "regular file";
    }
}

Answer stat(const Words &words, const PhoneFiles &files) {
    Answer answer;
    for (std::size_t i = 3; i < words.size(); ++i) {
        Entry entry;
        if (const int error = files.look(words[i], Links::keep, entry)) {
            answer.standardError += complaint("stat", "'" + words[i] + "'", error);
            answer.exitStatus = 1;
            continue;
        }
        answer.standardOutput += words[i] + "|" + std::string(typeText(entry.status)) + "|" +
                                 std::to_string(entry.status.st_size) + "|" +
                                 std::to_string(entry.status.st_mtime) + "\n";
    }
    return answer;
}

// -- df, getprop

std::string dfOf(const std::string &device, const std::string &mount, const Settings &settings) {
    const std::int64_t total = settings.storageTotal / 1024;
    const std::int64_t used = settings.storageUsed / 1024;
    const std::int64_t percent = total > 0 ? (used * 100 + total - 1) / total : 0;
    return "Filesystem     1K-blocks     Used Available Use% Mounted on\n" + device + " " +
           std::to_string(total) + " " + std::to_string(used) + "  " + std::to_string(total - used) + "  " +
           std::to_string(percent) + "% " + mount + "\n";
}

/// The shared storage, and the cards behind it, which are as large; or the data partition.
Answer df(const std::string &path, bool withCards, const Settings &settings) {
    Answer answer;
    answer.standardOutput = path == "/data" ? dfOf("/dev/block/dm-8", path, settings)
                                            : dfOf("/dev/fuse     ", "/storage/emulated", settings);
    if (!withCards)
        return answer;
    for (const std::string &card : cardsOf(settings)) {
        const std::string mount = "/storage/" + card;
        answer.standardOutput += mount + "\n" + dfOf("/dev/fuse     ", mount, settings);
    }
    return answer;
}

// -- head -q -c N PATH…; … and cat PATH /dev/zero | head -c N; …

std::size_t numberIn(const std::string &text) {
    std::size_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// As many of the first bytes of a file as there are; none of one that cannot be read.
std::string beginningOf(const std::string &path, std::size_t length, const PhoneFiles &files) {
    Entry entry;
    if (files.look(path, Links::follow, entry) != 0 || !S_ISREG(entry.status.st_mode) ||
        !isReadable(entry.status))
        return {};
    std::string bytes(length, '\0');
    std::ifstream file(entry.place.hostPath, std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(length));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

std::string beginningsOf(const ShellPipeline &pipeline, const PhoneFiles &files) {
    const Words &words = pipeline[0].words;
    std::string bytes;
    if (words[0] == "cat") {
        const std::size_t length = numberIn(pipeline[1].words[2]);
        bytes = beginningOf(words[1], length, files);
        bytes.resize(length, '\0');
    }
    for (std::size_t i = 4; words[0] == "head" && i < words.size(); ++i)
        bytes += beginningOf(words[i], numberIn(words[3]), files);
    return bytes;
}

bool readsBeginnings(const ShellPipeline &pipeline) {
    const Words &words = pipeline[0].words;
    if (pipeline[0].appends)
        return false;
    if (pipeline.size() == 1)
        return words.size() > 4 && words[0] == "head" && words[1] == "-q" && words[2] == "-c" &&
               isNumber(words[3]);
    const Words &head = pipeline[1].words;
    return pipeline.size() == 2 && words.size() == 3 && words[0] == "cat" && words[2] == "/dev/zero" &&
           head.size() == 3 && head[0] == "head" && head[1] == "-c" && isNumber(head[2]);
}

bool isSubstringPattern(const std::string &text) {
    return text.size() > 2 && text.front() == '*' && text.back() == '*' &&
           text.find_first_of("*?[]\\", 1) == text.size() - 1;
}

} // namespace

std::string modeText(mode_t mode) {
    static constexpr std::array<std::pair<mode_t, char>, 7> types{{{S_IFDIR, 'd'},
                                                                   {S_IFLNK, 'l'},
                                                                   {S_IFCHR, 'c'},
                                                                   {S_IFBLK, 'b'},
                                                                   {S_IFIFO, 'p'},
                                                                   {S_IFSOCK, 's'},
                                                                   {S_IFREG, '-'}}};
    std::string text;
    for (const auto &[type, letter] : types) {
        if ((mode & S_IFMT) == type)
            text += letter;
    }
    for (unsigned bit = 9; bit-- > 0;)
        text += (mode >> bit) & 1U ? "xwr"[bit % 3] : '-';
    const auto special = [&](mode_t bit, std::size_t position, char letter) {
        if (mode & bit)
            text[position] = text[position] == 'x' ? letter : static_cast<char>(letter - 'a' + 'A');
    };
    special(S_ISUID, 3, 's');
    special(S_ISGID, 6, 's');
    special(S_ISVTX, 9, 't');
    return text;
}

std::string nameOfShellCommand(const std::vector<ShellPipeline> &line) {
    // A line is one pipeline, which may be followed by a lone `true`.
    static const std::string unknown = "unknown";
    if (const std::string name = nameOfCopyLine(line); !name.empty())
        return name;
    if (!line.empty() && std::all_of(line.begin(), line.end(), readsBeginnings))
        return "beginnings";
    const bool endsInTrue = line.size() == 2 && line[1].size() == 1 && line[1][0].words == Words{"true"};
    if (line.size() == 3 && line[0].size() == 1 && line[0][0].words == Words{"df", "/sdcard"} &&
        line[1][0].words == Words{"cards"} && line[2][0].words == Words{"true"})
        return "df";
    if (line.empty() || (line.size() > 1 && !endsInTrue))
        return unknown;
    const ShellPipeline &pipeline = line[0];
    const Words &words = pipeline[0].words;
    if (words.empty())
        return unknown;
    const std::string &name = words[0];
    const auto has = [&](std::size_t at, std::string_view word) {
        return words.size() > at && words[at] == word;
    };
    bool known = false;
    if (name == "find") {
        known = words.size() == 5 && has(1, "-L") && has(3, "-iname") && isSubstringPattern(words[4]) &&
                pipeline.size() == 2 && pipeline[1].words.size() == 3 && pipeline[1].words[0] == "head" &&
                pipeline[1].words[1] == "-n" && isNumber(pipeline[1].words[2]);
    } else if (pipeline.size() == 1) {
        known = (name == "getprop" && words == Words{"getprop", "ro.product.model"}) ||
                (name == "df" && words.size() == 2 && (has(1, "/sdcard") || has(1, "/data"))) ||
                (name == "ls" && words.size() == 3 && (has(1, "-la") || has(1, "-lab"))) ||
                (name == "tail" && words.size() == 4 && has(1, "-c") && words[2].rfind('+', 0) == 0 &&
                 isNumber(words[2].substr(1))) ||
                (name == "cat" && words.size() == 2 && pipeline[0].appends) ||
                (name == "stat" && words.size() > 3 && has(1, "-c") && has(2, "%n|%F|%s|%Y"));
    }
    return known && pipeline[0].appends == (name == "cat") ? name : unknown;
}

Answer runShellCommand(const std::vector<ShellPipeline> &line, const PhoneFiles &files,
                       const Settings &settings) {
    if (!nameOfCopyLine(line).empty())
        return runCopyLine(line, files);
    Answer answer;
    if (readsBeginnings(line[0])) {
        for (const ShellPipeline &reading : line)
            answer.standardOutput += beginningsOf(reading, files);
        return answer;
    }
    const ShellPipeline &pipeline = line[0];
    const Words &words = pipeline[0].words;
    if (words[0] == "getprop")
        answer.standardOutput = settings.model + "\n";
    else if (words[0] == "df")
        answer = df(words[1], line.size() == 3, settings);
    else if (words[0] == "ls")
        answer = ls(words, files, settings);
    else if (words[0] == "find")
        answer = find(words, pipeline[1].words, files);
    else
        answer = stat(words, files);
    if (pipeline[0].discardsErrors)
        answer.standardError.clear();
    // The last command of a line decides: `head` and `true` succeed.
    if (pipeline.size() > 1 || line.size() > 1)
        answer.exitStatus = 0;
    return answer;
}

} // namespace vantrel::demo
