#include "CopyCommands.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>

namespace vantrel::demo {

namespace {

using Words = std::vector<std::string>;

constexpr std::string_view pathBelow = "%M %s %T@ %P\\0";
constexpr std::string_view wholePath = "%M %s %T@ %p\\0";

std::string parentOf(const std::string &path) {
    return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

/// The place of a path that is about to change; an error as errno when the phone may not change it.
int placeToChange(const std::string &path, const PhoneFiles &files, Place &place) {
    place = files.resolve(path, Links::keep);
    if (place.denied || place.hostPath.empty())
        return EACCES;
    if (place.error != 0 && place.error != ENOENT)
        return place.error;
    Entry above;
    if (const int error = files.look(parentOf(place.phonePath), Links::follow, above))
        return error;
    if (!S_ISDIR(above.status.st_mode))
        return ENOTDIR;
    return isWritable(above.status) ? 0 : EACCES;
}

// -- find … -printf

class EntryPrinter {
public:
    EntryPrinter(const PhoneFiles &files, Answer &answer) : m_files(files), m_answer(answer) {}

    /// `below` is what stands in place of the path, as `%P` or `%p` has it.
    void print(const std::string &path, const std::string &shown, Links links, int depth,
               const std::string &prefix) {
        Entry entry;
        int error = m_files.look(path, links, entry);
        if (error == ENOENT && links == Links::follow)
            error = m_files.look(path, Links::keep, entry);
        if (error != 0 && entry.status.st_mode == 0) {
            m_answer.standardError += "find: '" + path + "': " + std::strerror(error) + "\n";
            return;
        }
        if (prefix.empty() || lastComponent(path).rfind(prefix, 0) == 0) {
            m_answer.standardOutput += modeText(entry.status.st_mode) + " " +
                                       std::to_string(entry.status.st_size) + " " +
                                       std::to_string(entry.status.st_mtime) + ".0 " + shown;
            m_answer.standardOutput += '\0';
        }
        if (!S_ISDIR(entry.status.st_mode) || depth == 0)
            return;
        std::vector<std::string> names;
        if (const int listError = m_files.list(path, names)) {
            m_answer.standardError += "find: " + path + ": " + std::strerror(listError) + "\n";
            return;
        }
        for (const std::string &name : names)
            print(joined(path, name), shown.empty() ? name : joined(shown, name), Links::keep, depth - 1,
                  prefix);
    }

private:
    const PhoneFiles &m_files;
    Answer &m_answer;
};

/// Which of the three questions it is; empty for none.
std::string questionOf(const Words &words) {
    const std::size_t count = words.size();
    if (count < 5 || words[0] != "find" || words[count - 2] != "-printf")
        return {};
    if (words[1] == "-H" && count == 5 && words[4] == pathBelow)
        return "tree";
    if (words[1] == "-H" && count > 6 && words[count - 4] == "-maxdepth" && words[count - 3] == "0" &&
        words[count - 1] == wholePath)
        return "facts";
    if (count == 8 && words[2] == "-maxdepth" && words[3] == "1" && words[4] == "-name" &&
        words[5].size() > 1 && words[5].find_first_of("*?[\\") == words[5].size() - 1 &&
        words[7] == pathBelow)
        return "names";
    return {};
}

void find(const Words &words, const PhoneFiles &files, Answer &answer) {
    constexpr int unlimited = -1;
    EntryPrinter printer(files, answer);
    const std::string question = questionOf(words);
    if (question == "tree") {
        printer.print(words[2], {}, Links::follow, unlimited, {});
    } else if (question == "facts") {
        for (std::size_t i = 2; i + 4 < words.size(); ++i)
            printer.print(words[i], words[i], Links::follow, 0, {});
    } else {
        printer.print(words[1], {}, Links::follow, 1, words[5].substr(0, words[5].size() - 1));
    }
}

// -- mkdir, mv, rm

int makeFolder(const std::string &path, const PhoneFiles &files) {
    Place place;
    if (const int error = placeToChange(path, files, place))
        return error;
    return ::mkdir(place.hostPath.c_str(), 0777) == 0 ? 0 : errno;
}

void makeFolders(const Words &words, const PhoneFiles &files, Answer &answer) {
    const bool withParents = words[1] == "-p";
    for (std::size_t i = withParents ? 2 : 1; i < words.size(); ++i) {
        int error = 0;
        for (std::size_t slash = withParents ? words[i].find('/', 1) : std::string::npos;;
             slash = words[i].find('/', slash + 1)) {
            const std::string path = words[i].substr(0, slash);
            Entry entry;
            const bool isThere = files.look(path, Links::follow, entry) == 0;
            const bool isFine = withParents && isThere && S_ISDIR(entry.status.st_mode);
            error = isFine ? 0 : makeFolder(path, files);
            if (error != 0 || slash == std::string::npos)
                break;
        }
        if (error != 0)
            answer.standardError += "mkdir: '" + words[i] + "': " + std::strerror(error) + "\n";
    }
}

/// `mv -n` of one file: looks, and then renames.
void moveOne(const std::string &from, const std::string &to, const PhoneFiles &files, Answer &answer) {
    Place source;
    Place target;
    int error = placeToChange(from, files, source);
    if (error == 0 && source.error != 0)
        error = source.error;
    if (error == 0)
        error = placeToChange(to, files, target);
    if (error == 0 && target.error == 0)
        return; // something stands there
    if (error == 0 && ::rename(source.hostPath.c_str(), target.hostPath.c_str()) != 0)
        error = errno;
    if (error != 0)
        answer.standardError += "mv: bad '" + from + "': " + std::strerror(error) + "\n";
}

void move(const Words &words, const PhoneFiles &files, Answer &answer) {
    if (words[1] == "-nT") {
        moveOne(words[2], words[3], files, answer);
        return;
    }
    for (std::size_t i = 2; i + 1 < words.size(); ++i)
        moveOne(words[i], words.back() + lastComponent(words[i]), files, answer);
}

void remove(const Words &words, const PhoneFiles &files) {
    for (std::size_t i = 2; i < words.size(); ++i) {
        Place place;
        std::error_code ignored;
        if (placeToChange(words[i], files, place) == 0)
            std::filesystem::remove_all(place.hostPath, ignored);
    }
}

// -- md5sum, touch

/// The sum comes from this computer's own tool.
void sumUp(const std::string &path, const PhoneFiles &files, Answer &answer) {
    Entry entry;
    if (const int error = files.look(path, Links::follow, entry)) {
        answer.standardError += "md5sum: " + path + ": " + std::strerror(error) + "\n";
        return;
    }
    std::string command = "md5sum <'";
    for (const char c : entry.place.hostPath)
        command += c == '\'' ? std::string("'\\''") : std::string(1, c);
    FILE *tool = ::popen((command + "'").c_str(), "r");
    if (!tool)
        return;
    constexpr std::size_t digits = 32;
    std::array<char, digits> sum{};
    if (std::fread(sum.data(), 1, digits, tool) == digits)
        answer.standardOutput += std::string(sum.data(), digits) + "  " + path + "\n";
    ::pclose(tool);
}

void setTime(const std::string &path, long long seconds, const PhoneFiles &files, Answer &answer) {
    Place place;
    int error = placeToChange(path, files, place);
    const std::array<timespec, 2> times{timespec{seconds, 0}, timespec{seconds, 0}};
    if (error == 0 && ::utimensat(AT_FDCWD, place.hostPath.c_str(), times.data(), 0) != 0)
        error = errno;
    if (error != 0)
        answer.standardError += "touch: '" + path + "': " + std::strerror(error) + "\n";
}

bool isKnown(const Words &words) {
    const auto has = [&](std::size_t at, std::string_view word) {
        return words.size() > at && words[at] == word;
    };
    return !questionOf(words).empty() || (has(0, "mkdir") && words.size() > (has(1, "-p") ? 2U : 1U)) ||
           (has(0, "mv") && has(1, "-nT") && words.size() == 4) ||
           (has(0, "mv") && has(1, "-n") && words.size() > 3 && words.back().back() == '/') ||
           (has(0, "rm") && has(1, "-rf") && words.size() > 2) || (has(0, "md5sum") && words.size() > 1) ||
           (has(0, "touch") && has(1, "-d") && words.size() == 4 && words[2].rfind('@', 0) == 0 &&
            isNumber(words[2].substr(1)));
}

} // namespace

std::string nameOfCopyLine(const std::vector<ShellPipeline> &line) {
    if (line.size() < 2 || line.back().front().words != Words{"echo", "end"})
        return {};
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        if (line[i].size() != 1 || line[i][0].appends || !isKnown(line[i][0].words))
            return {};
    }
    const Words &first = line[0][0].words;
    return first[0] == "find" ? questionOf(first) : first[0];
}

Answer runCopyLine(const std::vector<ShellPipeline> &line, const PhoneFiles &files) {
    Answer answer;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const Words &words = line[i][0].words;
        if (words[0] == "find")
            find(words, files, answer);
        else if (words[0] == "mkdir")
            makeFolders(words, files, answer);
        else if (words[0] == "mv")
            move(words, files, answer);
        else if (words[0] == "md5sum")
            for (std::size_t file = 1; file < words.size(); ++file)
                sumUp(words[file], files, answer);
        else if (words[0] == "touch")
            setTime(words[3], std::strtoll(words[2].c_str() + 1, nullptr, 10), files, answer);
        else
            remove(words, files);
    }
    answer.standardOutput += "end\n";
    return answer;
}

} // namespace vantrel::demo
