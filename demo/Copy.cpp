#include "Copy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace vantrel::demo {

namespace {

using Clock = std::chrono::steady_clock;

/// What adb sends at once, and after how much it prints its progress.
constexpr std::size_t blockSize = 65536;
/// How soon a throttled copy notices that its settings have changed.
constexpr std::chrono::milliseconds longestSleep(20);

/// The phone has left: adb ends without a word.
struct Unplugged {};

/// The copy ends with this text behind "adb: error: ".
struct CopyError {
    std::string text;
};

std::string quoted(const std::string &path) {
    return "'" + path + "'";
}

class File {
public:
    explicit File(int descriptor) : m_descriptor(descriptor) {}
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    ~File() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    [[nodiscard]] int descriptor() const { return m_descriptor; }
    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }

private:
    int m_descriptor;
};

/// One file or empty folder of a copy.
struct Item {
    std::string source;      ///< as adb names it
    std::string destination; ///< as adb names it
    struct stat status {};   ///< of the source
    Place place;             ///< of a pull's source
};

std::string formatted(const char *format, double first, long long bytes, double seconds) {
    std::array<char, 128> text{};
    std::snprintf(text.data(), text.size(), format, first, bytes, seconds);
    return text.data();
}

/// The lines that adb prints on its way: on a terminal each over the one before.
class Printer {
public:
    explicit Printer(const SettingsSource &settings) : m_settings(settings) {
        const char *terminal = std::getenv("TERM");
        m_onTerminal = ::isatty(STDOUT_FILENO) && terminal && *terminal && std::strcmp(terminal, "dumb") != 0;
    }

    [[nodiscard]] bool onTerminal() const { return m_onTerminal; }

    void beQuiet() { m_isQuiet = true; }

    /// A line that the next one replaces; only a terminal shows it.
    void passing(const std::string &text) const {
        if (m_onTerminal)
            writeAll(STDOUT_FILENO, "\r" + text + "\x1b[K");
    }
    void closing(const std::string &text) const {
        writeAll(STDOUT_FILENO, m_onTerminal ? "\r" + text + "\x1b[K\n" : text + "\n");
    }
    void error(const std::string &text) const {
        writeAll(STDOUT_FILENO, (m_onTerminal ? "\radb: error: " : "adb: error: ") + text + "\n");
    }

    /// `own` of the file's bytes and `overall` of all bytes are through.
    void progress(const std::string &path, std::int64_t own, std::int64_t size, std::int64_t overall,
                  std::int64_t total, bool several) {
        if (m_isQuiet || (!m_onTerminal && !m_settings.current().standardErrorProgress))
            return;
        const auto percent = [](std::int64_t part, std::int64_t whole) {
            return static_cast<int>(std::min<std::int64_t>(100, part * 100 / whole));
        };
        std::string figure = total > 0 ? std::to_string(percent(overall, total)) + "%" : "?";
        figure.insert(0, figure.size() < 4 ? 4 - figure.size() : 0, ' ');
        std::string line = "[" + figure + "] " + path;
        if (size == 0)
            line += ": 0/?";
        else if (several)
            line += ": " + std::to_string(percent(own, size)) + "%";
        passing(line);
        // On standard error only what is new, so that whoever keeps all of it keeps little.
        if (m_settings.current().standardErrorProgress && total > 0 && figure != m_lastFigure) {
            m_lastFigure = figure;
            writeAll(STDERR_FILENO, line + "\n");
        }
    }

private:
    const SettingsSource &m_settings;
    bool m_onTerminal = false;
    bool m_isQuiet = false;
    std::string m_lastFigure;
};

class Copy {
public:
    Copy(CopyDirection direction, KeepTimes keepTimes, const PhoneFiles &files, SettingsSource &settings)
        : m_direction(direction), m_keepTimes(keepTimes), m_files(files), m_settings(settings),
          m_printer(settings) {}

    int run(const std::vector<std::string> &sources, const std::string &destination);
    int stream(const std::string &tool, const std::string &path, const File &from, const File &to, int error);

private:
    [[nodiscard]] bool isFolder(const std::string &destination) const;
    int copyOne(const std::string &source, const std::string &destination);
    void planPull(const std::string &source, std::string destination);
    void addRemote(const std::string &source, const std::string &destination, const Entry &entry,
                   std::vector<std::pair<dev_t, ino_t>> &above);
    void planPush(const std::string &source, std::string destination);
    void addLocal(const std::string &source, const std::string &destination,
                  std::vector<std::pair<dev_t, ino_t>> &above);
    void add(Item item);

    void pull(const Item &item);
    void push(const Item &item);
    void makeRemoteFolder(const std::string &path, const Item &item) const;
    void transfer(const Item &item, const File &from, const File &to);
    void checkPlugged();
    void pace();
    [[nodiscard]] std::string closingLine(const std::string &source, int copied, int skipped,
                                          Clock::duration duration) const;
    [[nodiscard]] std::string sum(Clock::duration duration) const;
    [[nodiscard]] std::string counted(int copied, int skipped, std::int64_t bytes,
                                      Clock::duration duration) const;

    CopyDirection m_direction;
    KeepTimes m_keepTimes;
    const PhoneFiles &m_files;
    SettingsSource &m_settings;
    Printer m_printer;
    std::vector<Item> m_items;
    bool m_intoFolder = false; ///< adb looks once, whatever becomes of the folder
    bool m_several = false;
    std::int64_t m_total = 0;
    std::int64_t m_done = 0;
    std::int64_t m_doneBefore = 0; ///< by the sources before this one
    int m_copied = 0;
    int m_skipped = 0;
    double m_paceBandwidth = 0;
    std::int64_t m_paceFrom = 0;
    Clock::time_point m_paceStart;
};

void Copy::add(Item item) {
    if (S_ISREG(item.status.st_mode))
        m_total += item.status.st_size;
    m_items.push_back(std::move(item));
}

void Copy::addRemote(const std::string &source, const std::string &destination, const Entry &entry,
                     std::vector<std::pair<dev_t, ino_t>> &above) {
    add({source, destination, entry.status, entry.place});
    const std::pair identity{entry.status.st_dev, entry.status.st_ino};
    if (!S_ISDIR(entry.status.st_mode) || std::find(above.begin(), above.end(), identity) != above.end())
        return;
    std::vector<std::string> names;
    if (m_files.list(source, names) != 0)
        return; // a folder that the phone may not read copies as an empty one
    above.push_back(identity);
    for (const std::string &name : names) {
        Entry child;
        const int error = m_files.look(joined(source, name), Links::follow, child);
        if (error == 0 || error == EACCES)
            addRemote(joined(source, name), joined(destination, name), child, above);
    }
    above.pop_back();
}

void Copy::planPull(const std::string &source, std::string destination) {
    Entry entry;
    const int error = m_files.look(source, Links::follow, entry);
    if (entry.place.error != 0)
        throw CopyError{"failed to stat remote object " + quoted(source) + ": " + std::strerror(error)};
    if (m_intoFolder)
        destination = joined(destination, lastComponent(source));
    m_several = S_ISDIR(entry.status.st_mode);
    if (m_several)
        m_printer.passing("pull: building file list...");
    std::vector<std::pair<dev_t, ino_t>> above;
    addRemote(source, destination, entry, above);
}

void Copy::addLocal(const std::string &source, const std::string &destination,
                    std::vector<std::pair<dev_t, ino_t>> &above) {
    Item item{source, destination, {}, {}};
    if (::stat(source.c_str(), &item.status) != 0)
        throw CopyError{"cannot stat " + quoted(source) + ": " + std::strerror(errno)};
    const mode_t type = item.status.st_mode;
    const std::pair identity{item.status.st_dev, item.status.st_ino};
    add(std::move(item));
    if (!S_ISDIR(type) || std::find(above.begin(), above.end(), identity) != above.end())
        return;
    std::vector<std::string> names;
    if (const int error = listHostFolder(source, names))
        throw CopyError{"cannot open " + quoted(source) + ": " + std::strerror(error)};
    above.push_back(identity);
    for (const std::string &name : names)
        addLocal(joined(source, name), joined(destination, name), above);
    above.pop_back();
}

void Copy::planPush(const std::string &source, std::string destination) {
    struct stat status {};
    if (::stat(source.c_str(), &status) != 0)
        throw CopyError{"cannot stat " + quoted(source) + ": " + std::strerror(errno)};
    Entry entry;
    const int error = m_files.look(destination, Links::follow, entry);
    if (error == ENOTDIR || error == ELOOP)
        throw CopyError{"stat failed when trying to push to " + destination + ": " + std::strerror(error)};
    if (m_intoFolder)
        destination = joined(destination, lastComponent(source));
    m_several = S_ISDIR(status.st_mode);
    std::vector<std::pair<dev_t, ino_t>> above;
    addLocal(source, destination, above);
}

void Copy::checkPlugged() {
    m_settings.refresh();
    if (m_settings.current().state != "device")
        throw Unplugged{};
    const std::int64_t limit = m_settings.current().unplugAfter;
    if (limit >= 0 && m_done >= limit) {
        m_settings.recordUnplugged();
        throw Unplugged{};
    }
}

/// Sleeps until the bytes so far are due.
void Copy::pace() {
    for (;;) {
        const double bandwidth = m_settings.current().bandwidth;
        if (bandwidth <= 0)
            return;
        if (bandwidth != m_paceBandwidth) {
            m_paceBandwidth = bandwidth;
            m_paceFrom = std::max<std::int64_t>(0, m_done - static_cast<std::int64_t>(blockSize));
            m_paceStart = Clock::now();
        }
        const std::chrono::duration<double> due(static_cast<double>(m_done - m_paceFrom) / (bandwidth * 1e6));
        const std::chrono::duration<double> left = due - (Clock::now() - m_paceStart);
        if (left.count() <= 0)
            return;
        std::this_thread::sleep_for(std::min<std::chrono::duration<double>>(left, longestSleep));
        checkPlugged();
    }
}

void Copy::transfer(const Item &item, const File &from, const File &to) {
    const std::string &remote = m_direction == CopyDirection::pull ? item.source : item.destination;
    const std::string where = m_direction == CopyDirection::pull
                                  ? "cannot write " + quoted(item.destination)
                                  : "failed to copy " + quoted(item.source) + " to " +
                                        quoted(item.destination) + ": remote write failed";
    std::array<char, blockSize> block{};
    std::int64_t own = 0;
    for (;;) {
        checkPlugged();
        std::size_t wanted = block.size();
        if (const std::int64_t limit = m_settings.current().unplugAfter; limit >= 0)
            wanted = static_cast<std::size_t>(
                std::min<std::int64_t>(static_cast<std::int64_t>(wanted), limit - m_done));
        ssize_t got = ::read(from.descriptor(), block.data(), wanted);
        if (got == 0 && m_direction == CopyDirection::pull && m_settings.current().endless)
            got = static_cast<ssize_t>(block.size()); // what it had sent last
        if (got < 0)
            throw CopyError{"cannot read " + quoted(item.source) + ": " + std::strerror(errno)};
        if (got == 0)
            break;
        if (own == 0 && m_settings.current().corrupt)
            block[0] = static_cast<char>(~block[0]);
        if (!writeAll(to.descriptor(), {block.data(), static_cast<std::size_t>(got)}))
            throw CopyError{where + ": " + std::strerror(errno)};
        if (const std::int64_t room = m_settings.current().fullAfter; room >= 0 && m_done + got > room)
            throw CopyError{where + ": " + std::strerror(ENOSPC)};
        own += got;
        m_done += got;
        m_printer.progress(remote, own, item.status.st_size, m_done - m_doneBefore, m_total, m_several);
        pace();
    }
    if (own == 0)
        m_printer.progress(remote, 0, 0, m_done - m_doneBefore, m_total, m_several);
}

void Copy::pull(const Item &item) {
    const std::string &local = item.destination;
    const auto refuse = [&] {
        throw CopyError{"cannot create file/directory " + quoted(local) + ": " + std::strerror(errno)};
    };
    if (S_ISDIR(item.status.st_mode)) {
        if (::mkdir(local.c_str(), 0777) != 0 && errno != EEXIST)
            refuse();
        return;
    }
    // Before anything is known of the phone's side: what stood here is gone even when the copy fails.
    ::unlink(local.c_str());
    const File to(::open(local.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!to.isOpen())
        refuse();
    try {
        const bool readable = !item.place.denied && isReadable(item.status);
        const File from(readable ? ::open(item.place.hostPath.c_str(), O_RDONLY | O_CLOEXEC) : -1);
        if (!from.isOpen()) {
            throw CopyError{"failed to copy " + quoted(item.source) + " to " + quoted(local) +
                            ": remote open failed: " + std::strerror(readable ? errno : EACCES)};
        }
        transfer(item, from, to);
    } catch (...) {
        ::unlink(local.c_str());
        throw;
    }
    if (m_keepTimes == KeepTimes::yes) {
        const std::array<timespec, 2> times{timespec{item.status.st_mtime, 0},
                                            timespec{item.status.st_mtime, 0}};
        ::futimens(to.descriptor(), times.data());
        ::fchmod(to.descriptor(), item.status.st_mode & 0777U);
    }
}

/// Makes a folder of the phone with what is missing above it.
void Copy::makeRemoteFolder(const std::string &path, const Item &item) const {
    const auto refuse = [&](int error) {
        throw CopyError{"failed to copy " + quoted(item.source) + " to " + quoted(item.destination) +
                        ": remote couldn't create file: " + std::strerror(error)};
    };
    Entry entry;
    const int error = m_files.look(path, Links::follow, entry);
    if (entry.place.denied || entry.place.hostPath.empty())
        refuse(EACCES);
    if (error == 0 && S_ISDIR(entry.status.st_mode))
        return;
    if (error != ENOENT)
        refuse(error == 0 ? ENOTDIR : error);
    const std::string parent = entry.place.phonePath.substr(0, entry.place.phonePath.rfind('/'));
    makeRemoteFolder(parent, item);
    Entry above;
    if (m_files.look(parent, Links::follow, above) != 0 || !isWritable(above.status))
        refuse(EACCES);
    if (::mkdir(entry.place.hostPath.c_str(), 0777) != 0 && errno != EEXIST)
        refuse(errno);
}

void Copy::push(const Item &item) {
    if (S_ISDIR(item.status.st_mode))
        return; // made for the first file in it; one without any is left out
    const File from(::open(item.source.c_str(), O_RDONLY | O_CLOEXEC));
    if (!from.isOpen())
        throw CopyError{"cannot open " + quoted(item.source) + ": " + std::strerror(errno)};
    Place place = m_files.resolve(item.destination, Links::keep);
    const auto refuse = [&](int error) {
        throw CopyError{"failed to copy " + quoted(item.source) + " to " + quoted(item.destination) +
                        ": remote couldn't create file: " + std::strerror(error)};
    };
    if (place.denied || place.hostPath.empty())
        refuse(EACCES);
    const std::string parent = place.phonePath.substr(0, place.phonePath.rfind('/'));
    makeRemoteFolder(parent, item);
    Entry above;
    if (m_files.look(parent, Links::follow, above) != 0 || !isWritable(above.status))
        refuse(EACCES);
    ::unlink(place.hostPath.c_str());
    const File to(::open(place.hostPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!to.isOpen())
        refuse(errno);
    try {
        transfer(item, from, to);
    } catch (const CopyError &) { // the phone takes back what it could not store; not so one that has left
        ::unlink(place.hostPath.c_str());
        throw;
    }
    // The protocol carries whole seconds.
    const std::array<timespec, 2> times{timespec{item.status.st_mtime, 0}, timespec{item.status.st_mtime, 0}};
    ::futimens(to.descriptor(), times.data());
}

std::string Copy::closingLine(const std::string &source, int copied, int skipped,
                              Clock::duration duration) const {
    return source + (m_several && source.back() != '/' ? "/: " : ": ") +
           counted(copied, skipped, m_done - m_doneBefore, duration);
}

std::string Copy::sum(Clock::duration duration) const {
    return counted(m_copied, m_skipped, m_done, duration);
}

std::string Copy::counted(int copied, int skipped, std::int64_t bytes, Clock::duration duration) const {
    std::string line = std::to_string(copied) + (copied == 1 ? " file " : " files ") +
                       (m_direction == CopyDirection::push ? "pushed, " : "pulled, ") +
                       std::to_string(skipped) + " skipped.";
    const double seconds = std::max(0.001, std::chrono::duration<double>(duration).count());
    if (bytes > 0) {
        line +=
            formatted(" %.1f MB/s (%lld bytes in %.3fs)", static_cast<double>(bytes) / seconds / 1048576.0,
                      static_cast<long long>(bytes), seconds);
    }
    return line;
}

bool Copy::isFolder(const std::string &destination) const {
    if (m_direction == CopyDirection::pull) {
        struct stat status {};
        return ::stat(destination.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    }
    Entry entry;
    return m_files.look(destination, Links::follow, entry) == 0 && S_ISDIR(entry.status.st_mode);
}

int Copy::run(const std::vector<std::string> &sources, const std::string &destination) {
    m_intoFolder = isFolder(destination);
    if (sources.size() > 1 && !m_intoFolder) {
        m_printer.error(m_direction == CopyDirection::pull
                            ? "failed to access " + quoted(destination) + ": " + std::strerror(ENOENT)
                            : "target " + quoted(destination) + " is not a directory");
        return 1;
    }
    const Clock::time_point start = Clock::now();
    int status = 0;
    try {
        for (const std::string &source : sources)
            status |= copyOne(source, destination);
    } catch (const Unplugged &) {
        return 1;
    }
    if (sources.size() > 1)
        m_printer.closing(sum(Clock::now() - start));
    return status;
}

/// `error` says, as errno, why one of the files is not open.
int Copy::stream(const std::string &tool, const std::string &path, const File &from, const File &to,
                 int error) {
    if (!from.isOpen() || !to.isOpen()) {
        writeAll(STDERR_FILENO, tool + ": " + path + ": " + std::strerror(error) + "\n");
        return 1;
    }
    m_printer.beQuiet();
    try {
        transfer({path, path, {}, {}}, from, to);
    } catch (const Unplugged &) {
        return 1;
    } catch (const CopyError &failed) {
        writeAll(STDERR_FILENO, tool + ": write" + failed.text.substr(failed.text.rfind(": ")) + "\n");
        return 1;
    }
    return 0;
}

/// One source that fails does not keep the next from being copied.
int Copy::copyOne(const std::string &source, const std::string &destination) {
    const Clock::time_point start = Clock::now();
    int status = 0;
    m_items.clear();
    m_total = 0;
    m_doneBefore = m_done;
    const int copiedBefore = m_copied;
    const int skippedBefore = m_skipped;
    try {
        if (m_direction == CopyDirection::push)
            planPush(source, destination);
        else
            planPull(source, destination);
    } catch (const CopyError &error) {
        m_printer.error(error.text);
        return 1;
    }
    try {
        for (const Item &item : m_items) {
            if (!S_ISREG(item.status.st_mode) && !S_ISDIR(item.status.st_mode)) {
                ++m_skipped; // a pipe or device would never end
                continue;
            }
            m_direction == CopyDirection::push ? push(item) : pull(item);
            m_copied += S_ISREG(item.status.st_mode) ? 1 : 0;
        }
    } catch (const CopyError &error) {
        m_printer.error(error.text);
        status = 1;
        // Without the local side adb does not get as far as a copy that it could sum up.
        if (m_done == m_doneBefore && m_items.size() == 1)
            return status;
    }
    m_printer.closing(
        closingLine(source, m_copied - copiedBefore, m_skipped - skippedBefore, Clock::now() - start));
    return status;
}

} // namespace

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

int runCopy(CopyDirection direction, KeepTimes keepTimes, const std::vector<std::string> &sources,
            const std::string &destination, const PhoneFiles &files, SettingsSource &settings) {
    return Copy(direction, keepTimes, files, settings).run(sources, destination);
}

int runTail(const std::string &path, std::int64_t first, const PhoneFiles &files, SettingsSource &settings) {
    Entry entry;
    int error = files.look(path, Links::follow, entry);
    if (error == 0 && !isReadable(entry.status))
        error = EACCES;
    const File from(error == 0 ? ::open(entry.place.hostPath.c_str(), O_RDONLY | O_CLOEXEC) : -1);
    if (from.isOpen())
        ::lseek(from.descriptor(), std::max<std::int64_t>(first - 1, 0), SEEK_SET);
    else if (error == 0)
        error = errno;
    const File to(::dup(STDOUT_FILENO));
    return Copy(CopyDirection::pull, KeepTimes::no, files, settings).stream("tail", path, from, to, error);
}

int runAppend(const std::string &path, const PhoneFiles &files, SettingsSource &settings) {
    const Place place = files.resolve(path, Links::follow);
    Entry above;
    int error = files.look(place.phonePath.substr(0, place.phonePath.rfind('/')), Links::follow, above);
    if (error == 0 && (place.denied || !isWritable(above.status)))
        error = EACCES;
    const File to(error == 0 ? ::open(place.hostPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666)
                             : -1);
    if (!to.isOpen() && error == 0)
        error = errno;
    const File from(::dup(STDIN_FILENO));
    return Copy(CopyDirection::push, KeepTimes::no, files, settings).stream("cat", path, from, to, error);
}

} // namespace vantrel::demo
