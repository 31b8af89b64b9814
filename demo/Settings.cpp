#include "Settings.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>
#include <string_view>
#include <variant>

namespace vantrel::demo {

namespace {

using Member = std::variant<std::string Settings::*, double Settings::*, std::int64_t Settings::*,
                            bool Settings::*, std::vector<std::string> Settings::*>;

struct Key {
    std::string_view name;
    Member member;
};

const std::array<Key, 27> &keys() {
    static const std::array<Key, 27> table{{
        {"serial", &Settings::serial},
        {"model", &Settings::model},
        {"version", &Settings::version},
        {"wireless", &Settings::wireless},
        {"state", &Settings::state},
        {"card", &Settings::cards},
        {"phone", &Settings::phones},
        {"storage-total", &Settings::storageTotal},
        {"storage-used", &Settings::storageUsed},
        {"bandwidth", &Settings::bandwidth},
        {"delay", &Settings::delay},
        {"fail", &Settings::fail},
        {"unplug-after", &Settings::unplugAfter},
        {"full-after", &Settings::fullAfter},
        {"corrupt", &Settings::corrupt},
        {"endless", &Settings::endless},
        {"hang", &Settings::hang},
        {"crash", &Settings::crash},
        {"chatter", &Settings::chatter},
        {"escapes", &Settings::escapes},
        {"stdout", &Settings::standardOutput},
        {"stderr", &Settings::standardError},
        {"exit", &Settings::exitStatus},
        {"stdout-noise", &Settings::standardOutputNoise},
        {"stderr-noise", &Settings::standardErrorNoise},
        {"stderr-progress", &Settings::standardErrorProgress},
        {"log", &Settings::log},
    }};
    return table;
}

/// \n, \r, \t, \\, \xHH as in C, and \c, which stands for nothing: a text that is there but empty.
std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        const char next = text[++i];
        if (next == 'n') {
            result += '\n';
        } else if (next == 'r') {
            result += '\r';
        } else if (next == 't') {
            result += '\t';
        } else if (next == 'x' && i + 2 < text.size()) {
            unsigned value = 0;
            std::from_chars(text.data() + i + 1, text.data() + i + 3, value, 16);
            result += static_cast<char>(value);
            i += 2;
        } else if (next != 'c') {
            result += next;
        }
    }
    return result;
}

bool read(const std::string &value, std::string &field) {
    field = unescaped(value);
    return true;
}

bool read(const std::string &value, std::vector<std::string> &field) {
    field.push_back(unescaped(value));
    return true;
}

bool read(const std::string &value, bool &field) {
    field = value == "on";
    return value == "on" || value == "off";
}

bool read(const std::string &value, std::int64_t &field) {
    if (value == "endless") {
        field = std::numeric_limits<std::int64_t>::max();
        return true;
    }
    const char *end = value.data() + value.size();
    const auto [stop, error] = std::from_chars(value.data(), end, field);
    return error == std::errc() && stop == end;
}

bool read(const std::string &value, double &field) {
    char *stop = nullptr;
    field = std::strtod(value.c_str(), &stop);
    return stop == value.c_str() + value.size() && field >= 0;
}

void assign(Settings &settings, const Key &key, const std::string &value) {
    // An empty value goes back to the default, whatever the environment says.
    const bool reset = value.empty();
    const auto set = [&](auto member) {
        if (reset) {
            settings.*member = Settings{}.*member;
        } else if (!read(value, settings.*member)) {
            std::string text = "'";
            text.append(value).append("' is no value for the setting '").append(key.name).append("'");
            throw SettingsError(text);
        }
    };
    std::visit(set, key.member);
    if (key.name == "stdout")
        settings.hasStandardOutput = !reset;
}

const Key *find(std::string_view name) {
    for (const Key &key : keys()) {
        if (key.name == name)
            return &key;
    }
    return nullptr;
}

std::string environmentName(std::string_view setting) {
    std::string name = "DEMO_PHONE_";
    for (const char c : setting)
        name += c == '-' || c == '.' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return name;
}

struct Line {
    std::string command; ///< empty for all commands
    const Key *key;
    std::string value;
};

std::vector<Line> linesOf(const std::string &path) {
    std::vector<Line> lines;
    std::ifstream file(path, std::ios::binary);
    for (std::string text; std::getline(file, text);) {
        if (text.empty() || text[0] == '#')
            continue;
        const std::size_t equals = text.find('=');
        std::string name = text.substr(0, equals);
        Line line;
        if (const std::size_t dot = name.find('.'); dot != std::string::npos) {
            line.command = name.substr(0, dot);
            name.erase(0, dot + 1);
        }
        line.key = find(name);
        if (!line.key || equals == std::string::npos)
            throw SettingsError(std::string("no such setting in ").append(path).append(": ").append(text));
        line.value = text.substr(equals + 1);
        lines.push_back(std::move(line));
    }
    return lines;
}

} // namespace

std::vector<OtherPhone> otherPhones(const Settings &settings) {
    std::vector<OtherPhone> phones;
    for (const std::string &line : settings.phones) {
        OtherPhone phone;
        std::istringstream words(line);
        words >> phone.serial >> phone.state;
        std::getline(words >> std::ws, phone.model);
        const auto known = std::find_if(phones.begin(), phones.end(), [&](const OtherPhone &other) {
            return other.serial == phone.serial;
        });
        known == phones.end() ? static_cast<void>(phones.push_back(phone))
                              : static_cast<void>(*known = phone);
    }
    std::erase_if(phones,
                  [](const OtherPhone &phone) { return phone.state.empty() || phone.state == "none"; });
    return phones;
}

SettingsSource::SettingsSource(std::string root, std::string command, std::string serial)
    : m_root(std::move(root)), m_command(std::move(command)), m_serial(std::move(serial)),
      m_servedRoot(m_root) {
    refresh();
}

void SettingsSource::refresh() {
    struct stat status {};
    const bool exists = ::stat((m_root + ".conf").c_str(), &status) == 0;
    const std::int64_t size = exists ? status.st_size : -1;
#ifdef __APPLE__
    const timespec modified = status.st_mtimespec;
#else
    const timespec modified = status.st_mtim;
#endif
    if (size == m_size && modified.tv_sec == m_modified.tv_sec && modified.tv_nsec == m_modified.tv_nsec)
        return;
    m_size = size;
    m_modified = modified;
    load();
}

void SettingsSource::load() {
    Settings settings;
    for (const std::string &prefix : {std::string(), m_command + "."}) {
        for (const Key &key : keys()) {
            if (const char *value = std::getenv(environmentName(prefix + std::string(key.name)).c_str()))
                assign(settings, key, value);
        }
    }
    // Later lines win over earlier ones, and those for this command over those for all.
    const std::vector<Line> lines = linesOf(m_root + ".conf");
    for (const std::string &command : {std::string(), m_command}) {
        for (const Line &line : lines) {
            if (line.command == command)
                assign(settings, *line.key, line.value);
        }
    }
    for (const OtherPhone &phone : otherPhones(settings)) {
        if (phone.serial != m_serial)
            continue;
        settings.serial = phone.serial;
        settings.state = phone.state;
        settings.model = phone.model;
        m_servedRoot = m_root + "-" + phone.serial;
        std::filesystem::create_directory(m_servedRoot);
    }
    m_current = std::move(settings);
}

void SettingsSource::recordUnplugged() {
    // Appended in one write, so that copies that end together and whoever else writes lose nothing.
    record("state=none\nunplug-after=\n" + m_command + ".unplug-after=");
}

void SettingsSource::record(const std::string &line) {
    const std::string lines = line + "\n";
    const int file = ::open((m_root + ".conf").c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0 || ::write(file, lines.data(), lines.size()) != static_cast<ssize_t>(lines.size()))
        throw SettingsError("cannot write " + m_root + ".conf");
    ::close(file);
}

std::vector<std::string> cardsOf(const Settings &settings) {
    std::vector<std::string> cards;
    for (const std::string &line : settings.cards) {
        const std::string name = line.substr(0, line.find(' '));
        std::erase(cards, name);
        if (name == line)
            cards.push_back(name);
    }
    return cards;
}

std::string servedFolder() {
    std::string root;
    if (const char *chosen = std::getenv("DEMO_PHONE_ROOT"); chosen && *chosen) {
        root = chosen;
    } else if (const char *data = std::getenv("XDG_DATA_HOME"); data && *data) {
        root = std::string(data) + "/vantrel-demo-phone";
    } else {
        const char *home = std::getenv("HOME");
        root = std::string(home ? home : "") + "/.local/share/vantrel-demo-phone";
    }
    root = std::filesystem::absolute(root).lexically_normal().string();
    while (root.size() > 1 && root.back() == '/')
        root.pop_back();
    return root;
}

} // namespace vantrel::demo
