#include "Copy.h"
#include "Furnish.h"
#include "PhoneFiles.h"
#include "Settings.h"
#include "ShellCommands.h"
#include "ShellLine.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vantrel::demo {

namespace {

/// A command line, understood.
struct Request {
    std::string name = "unknown"; ///< adb's command, a shell command's name, or "unknown"
    std::string serial;           ///< empty where no phone is named
    std::vector<ShellPipeline> shellLine;
    std::vector<std::string> sources;
    std::string destination;
    KeepTimes keepTimes = KeepTimes::no;
};

Request understood(const std::vector<std::string> &arguments) {
    Request request;
    if (arguments == std::vector<std::string>{"devices"} ||
        arguments == std::vector<std::string>{"track-devices"}) {
        request.name = arguments[0];
        return request;
    }
    const std::string &first = arguments.empty() ? request.name : arguments[0];
    if ((first == "version" && arguments.size() == 1) || (first == "pair" && arguments.size() == 3) ||
        ((first == "connect" || first == "disconnect") && arguments.size() == 2)) {
        request.name = first;
        if (arguments.size() > 1)
            request.destination = arguments[1];
        return request;
    }
    if (arguments.size() < 4 || arguments[0] != "-s")
        return request;
    request.serial = arguments[1];
    const std::string &verb = arguments[2];
    if (verb == "shell" || verb == "exec-out") {
        std::string line = arguments[3];
        for (std::size_t i = 4; i < arguments.size(); ++i)
            line += " " + arguments[i];
        request.shellLine = parseShellLine(line);
        request.name = nameOfShellCommand(request.shellLine);
    } else if (verb == "push" || verb == "pull") {
        const bool keepsTimes = verb == "pull" && arguments[3] == "-a";
        request.keepTimes = keepsTimes ? KeepTimes::yes : KeepTimes::no;
        request.sources.assign(arguments.begin() + (keepsTimes ? 4 : 3), arguments.end() - 1);
        request.destination = arguments.back();
        const bool isMeant = std::none_of(request.sources.begin(), request.sources.end(),
                                          [](const std::string &source) { return source.empty(); });
        if (!request.sources.empty() && isMeant)
            request.name = verb;
    }
    return request;
}

/// Appends the arguments as one line, separated by tabs, to the file that a test reads.
void writeLog(const std::string &root, const std::vector<std::string> &arguments) {
    std::string line;
    for (const std::string &argument : arguments) {
        line += line.empty() ? "" : "\t";
        for (const char c : argument) {
            if (c == '\\')
                line += "\\\\";
            else if (c == '\n')
                line += "\\n";
            else if (c == '\t')
                line += "\\t";
            else
                line += c;
        }
    }
    const int file = ::open((root + ".log").c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (file >= 0) {
        writeAll(file, line + "\n");
        ::close(file);
    }
}

void writeNoise(int descriptor, std::int64_t bytes) {
    static constexpr std::string_view line =
        "noise noise noise noise noise noise noise noise noise noise noise noise\n";
    constexpr std::size_t blockSize = 65536;
    std::string block;
    while (block.size() < blockSize)
        block += line;
    while (bytes > 0) {
        const auto length = std::min<std::int64_t>(bytes, static_cast<std::int64_t>(block.size()));
        if (!writeAll(descriptor, std::string_view(block).substr(0, static_cast<std::size_t>(length))))
            return;
        bytes -= length;
    }
}

/// Waits until the setting is taken back, or until nobody is left who could be waiting for an answer.
void hang(SettingsSource &settings) {
    const pid_t parent = ::getppid();
    while (settings.current().hang && ::getppid() == parent) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        settings.refresh();
    }
}

void crash(int signal) {
    const rlimit noCore{};
    ::setrlimit(RLIMIT_CORE, &noCore);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// What goes wrong before a command gets to its work.
void applyFaults(SettingsSource &settings) {
    const Settings &now = settings.current();
    if (now.chatter != "off") {
        writeAll(now.chatter == "stdout" ? STDOUT_FILENO : STDERR_FILENO,
                 "* daemon not running; starting now at tcp:5037\n* daemon started successfully\n");
    }
    if (now.delay > 0)
        std::this_thread::sleep_for(std::chrono::duration<double>(now.delay));
    hang(settings);
    if (settings.current().crash != 0)
        crash(static_cast<int>(settings.current().crash));
    writeNoise(STDERR_FILENO, settings.current().standardErrorNoise);
    writeNoise(STDOUT_FILENO, settings.current().standardOutputNoise);
}

/// Why a phone in this state answers nothing; empty when it does.
std::string deviceError(const Settings &settings, const std::string &serial) {
    const std::string &state = settings.state;
    if (serial != settings.serial || state == "none")
        return "device '" + serial + "' not found";
    if (state == "device")
        return {};
    if (state == "unauthorized") {
        return "device unauthorized.\nThis adb server's $ADB_VENDOR_KEYS is not set\n"
               "Try 'adb kill-server' if that seems wrong.\n"
               "Otherwise check for a confirmation dialog on your device.";
    }
    if (state.rfind("no permissions", 0) == 0)
        return "insufficient permissions for device";
    if (state == "authorizing" || state == "connecting")
        return "device still " + state;
    return "device " + state;
}

/// The list of phones without its title. The others come first: which one adb lists first is anybody's guess.
std::string deviceList(const Settings &settings) {
    std::string list;
    for (const OtherPhone &phone : otherPhones(settings))
        list += phone.serial + "\t" + phone.state + "\n";
    if (settings.state != "none")
        list += settings.serial + "\t" + settings.state + "\n";
    return list;
}

/// Prints the list of phones now and whenever it changes, until nobody is left who reads it or an exit status
/// is set. A text that is set takes the list's place.
Answer trackDevices(SettingsSource &settings) {
    const pid_t parent = ::getppid();
    std::optional<std::string> last;
    while (settings.current().exitStatus < 0 && ::getppid() == parent) {
        std::string text = settings.current().standardOutput;
        if (!settings.current().hasStandardOutput) {
            const std::string list = deviceList(settings.current());
            std::array<char, 8> length{};
            std::snprintf(length.data(), length.size(), "%04zx", list.size());
            text = length.data() + list;
        }
        if (text != last && !writeAll(STDOUT_FILENO, text))
            break;
        last = text;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        settings.refresh();
    }
    return {};
}

/// `connect`, `disconnect`, `pair` and `version`.
Answer answerOfServer(const Request &request, SettingsSource &settings) {
    const std::string &address = request.destination;
    const auto &there = settings.current().wireless;
    const bool answers = std::find(there.begin(), there.end(), address) != there.end();
    if (request.name == "version")
        return {"Android Debug Bridge version 1.0.41\nVersion " + settings.current().version + "\n", {}, 0};
    if (request.name == "pair" && settings.current().version < "30")
        return {{}, "adb: unknown command pair\n", 1};
    if (request.name == "pair")
        return {
            answers ? "Successfully paired to " + address + " [guid=x]\n" : "Failed: Wrong code\n", {}, 0};
    if (request.name == "connect" && !answers)
        return {"failed to connect to '" + address + "': Connection refused\n", {}, 0};
    const bool connects = request.name == "connect";
    settings.record("phone=" + address + (connects ? " device Wireless Phone" : " none"));
    return {(connects ? "connected to " : "disconnected ") + address + "\n", {}, 0};
}

Answer answerTo(const Request &request, SettingsSource &settings) {
    const bool isCopy = request.name == "push" || request.name == "pull";
    Answer answer;
    if (request.name == "track-devices")
        return trackDevices(settings);
    if (settings.current().hasStandardOutput) {
        answer.standardOutput = settings.current().standardOutput;
        return answer;
    }
    if (request.name == "version" || request.name == "pair" ||
        request.name.find("connect") != std::string::npos)
        return answerOfServer(request, settings);
    if (request.name == "devices")
        return {"List of devices attached\n" + deviceList(settings.current()) + "\n", {}, 0};
    if (const std::string error = deviceError(settings.current(), request.serial); !error.empty()) {
        answer.exitStatus = 1;
        if (isCopy)
            answer.standardOutput = "adb: error: failed to get feature set: " + error + "\n";
        else
            answer.standardError = "error: " + error + "\n";
        return answer;
    }
    const PhoneFiles files(settings);
    if (request.name == "tail" || request.name == "cat") {
        const std::vector<std::string> &words = request.shellLine[0][0].words;
        answer.exitStatus =
            request.name == "cat"
                ? runAppend(words[1], files, settings)
                : runTail(words[3], std::strtoll(words[2].c_str() + 1, nullptr, 10), files, settings);
        return answer;
    }
    if (!isCopy)
        return runShellCommand(request.shellLine, files, settings.current());
    answer.exitStatus = runCopy(request.name == "push" ? CopyDirection::push : CopyDirection::pull,
                                request.keepTimes, request.sources, request.destination, files, settings);
    return answer;
}

int run(const std::vector<std::string> &arguments) {
    const std::string root = servedFolder();
    furnish(root);
    Request request;
    std::string reason;
    try {
        request = understood(arguments);
    } catch (const std::invalid_argument &error) {
        reason = error.what();
    }
    SettingsSource settings(root, request.name, request.serial);
    if (settings.current().log)
        writeLog(root, arguments);
    if (request.name == "unknown") {
        std::string line;
        for (const std::string &argument : arguments)
            line += " " + argument;
        throw std::runtime_error("no such command:" + line + (reason.empty() ? "" : " (" + reason + ")"));
    }
    applyFaults(settings);
    const Answer answer = answerTo(request, settings);
    writeAll(STDOUT_FILENO, answer.standardOutput);
    writeAll(STDERR_FILENO, answer.standardError + settings.current().standardError);
    const std::int64_t status = settings.current().exitStatus;
    return status >= 0 ? static_cast<int>(status) : answer.exitStatus;
}

} // namespace

} // namespace vantrel::demo

int main(int argc, char **argv) {
    int status = 1;
    try {
        status = vantrel::demo::run({argv + 1, argv + argc});
    } catch (const std::exception &error) {
        vantrel::demo::writeAll(STDERR_FILENO, std::string("demo phone: ") + error.what() + "\n");
    }
    // Nothing is buffered, so there is nothing to take down; under a sanitizer the search for leaks would
    // double the cost of every start.
    ::_exit(status);
}
