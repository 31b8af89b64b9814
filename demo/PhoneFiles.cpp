#include "PhoneFiles.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <deque>
#include <optional>
#include <string_view>

namespace vantrel::demo {

namespace {

constexpr std::string_view sharedStorage = "/storage/emulated/0";
constexpr std::string_view sharedStorageLink = "/sdcard";
/// As many links as Linux follows before it gives up.
constexpr int maximumLinks = 40;

enum class Listing { allowed, denied };

/// A folder outside shared storage. The phone shows what its user may see of them.
struct SystemFolder {
    std::string_view path;
    mode_t mode;
    Listing listing;
    std::vector<std::string> names;
};

const SystemFolder *systemFolder(std::string_view path) {
    static const std::array<SystemFolder, 6> folders{{
        {"/", 0755, Listing::allowed, {"data", "metadata", "sdcard", "storage", "system"}},
        {"/data", 0771, Listing::denied, {}},
        {"/metadata", 0700, Listing::denied, {}},
        {"/storage", 0755, Listing::allowed, {"emulated"}},
        {"/storage/emulated", 0755, Listing::allowed, {"0"}},
        {"/system", 0755, Listing::denied, {}},
    }};
    const auto found = std::find_if(folders.begin(), folders.end(),
                                    [&](const SystemFolder &folder) { return folder.path == path; });
    return found == folders.end() ? nullptr : &*found;
}

bool isAtOrBelow(std::string_view path, std::string_view folder) {
    return path.substr(0, folder.size()) == folder &&
           (path.size() == folder.size() || folder == "/" || path[folder.size()] == '/');
}

std::deque<std::string> componentsOf(std::string_view path) {
    std::deque<std::string> components;
    while (!path.empty()) {
        const std::size_t slash = std::min(path.find('/'), path.size());
        if (slash > 0 && path.substr(0, slash) != ".")
            components.emplace_back(path.substr(0, slash));
        path.remove_prefix(std::min(slash + 1, path.size()));
    }
    return components;
}

std::string pathOf(const std::vector<std::string> &components) {
    std::string path;
    for (const std::string &component : components)
        path += "/" + component;
    return path.empty() ? "/" : path;
}

std::string readLink(const std::string &hostPath) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink(hostPath.c_str(), target.data(), target.size());
    return length < 0 ? std::string() : std::string(target.data(), static_cast<std::size_t>(length));
}

} // namespace

bool isReadable(const struct stat &status) {
    return (status.st_mode & S_IRUSR) != 0;
}
bool isWritable(const struct stat &status) {
    return (status.st_mode & S_IWUSR) != 0;
}

int listHostFolder(const std::string &path, std::vector<std::string> &names) {
    DIR *stream = ::opendir(path.c_str());
    if (!stream)
        return errno;
    while (const dirent *entry = ::readdir(stream)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            names.emplace_back(name);
    }
    ::closedir(stream);
    std::sort(names.begin(), names.end());
    return 0;
}

std::string joined(const std::string &folder, const std::string &name) {
    return !folder.empty() && folder.back() == '/' ? folder + name : folder + "/" + name;
}

std::string lastComponent(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path.substr(path.rfind('/') + 1);
}

std::string PhoneFiles::hostPathOf(const std::string &phonePath) const {
    for (const std::string &card : cardsOf(m_settings.current())) {
        const std::string folder = "/storage/" + card;
        if (isAtOrBelow(phonePath, folder))
            return m_settings.root() + "-card-" + card + phonePath.substr(folder.size());
    }
    if (!isAtOrBelow(phonePath, sharedStorage))
        return {};
    return m_settings.root() + phonePath.substr(sharedStorage.size());
}

bool PhoneFiles::isDenied(const std::string &phonePath) const {
    if (phonePath == "/metadata")
        return true;
    const auto &denied = m_settings.current().fail;
    return std::any_of(denied.begin(), denied.end(), [&](std::string path) {
        while (path.size() > 1 && path.back() == '/')
            path.pop_back();
        if (isAtOrBelow(path, sharedStorageLink))
            path.replace(0, sharedStorageLink.size(), sharedStorage);
        return isAtOrBelow(phonePath, path);
    });
}

Place PhoneFiles::resolve(const std::string &path, Links links) const {
    const std::size_t slash = path.rfind('/');
    const std::string name = path.substr(slash + 1);
    if (slash == std::string::npos || slash == 0 || name.empty() || name == "." || name == "..")
        return resolveEachComponent(path, links);
    if (const std::string folder = path.substr(0, slash); folder != m_folder) {
        m_folderPlace = resolveEachComponent(folder, Links::follow);
        m_folder = folder;
    }
    Place place = m_folderPlace;
    place.phonePath = joined(place.phonePath, name);
    place.hostPath = hostPathOf(place.phonePath);
    struct stat folderStatus {};
    struct stat status {};
    if (place.error != 0 || m_folderPlace.hostPath.empty() ||
        ::lstat(m_folderPlace.hostPath.c_str(), &folderStatus) != 0 || !S_ISDIR(folderStatus.st_mode))
        return resolveEachComponent(path, links);
    if (::lstat(place.hostPath.c_str(), &status) != 0)
        place.error = errno;
    else if (S_ISLNK(status.st_mode) && links == Links::follow)
        return resolveEachComponent(path, links);
    place.denied = place.denied || isDenied(place.phonePath);
    return place;
}

Place PhoneFiles::resolveEachComponent(const std::string &path, Links links) const {
    Place place;
    std::vector<std::string> done;
    std::deque<std::string> pending = componentsOf(path);
    // "link/" and "link/." ask for the folder behind the link.
    const auto endsIn = [&](std::string_view end) {
        return path.size() >= end.size() && path.compare(path.size() - end.size(), end.size(), end) == 0;
    };
    const bool asksForFolder = endsIn("/") || endsIn("/.");
    for (int linksLeft = maximumLinks; !pending.empty();) {
        const std::string component = pending.front();
        pending.pop_front();
        if (component == "..") {
            if (!done.empty())
                done.pop_back();
            continue;
        }
        done.push_back(component);
        const std::string phonePath = pathOf(done);
        const std::string hostPath = hostPathOf(phonePath);
        const bool isLast = pending.empty();
        place.denied = place.denied || isDenied(phonePath);

        std::optional<std::string> target;
        bool isFolder = true;
        struct stat status {};
        if (phonePath == sharedStorageLink) {
            target = sharedStorage;
        } else if (hostPath.empty()) {
            if (!systemFolder(phonePath) && place.error == 0)
                place.error = ENOENT;
        } else if (::lstat(hostPath.c_str(), &status) != 0) {
            // What is missing has nothing below it, but a copy may make it.
            if (place.error == 0)
                place.error = errno;
        } else {
            isFolder = S_ISDIR(status.st_mode);
            if (S_ISLNK(status.st_mode))
                target = readLink(hostPath);
        }

        if (target && (!isLast || links == Links::follow || asksForFolder)) {
            if (--linksLeft == 0) {
                place.error = ELOOP;
                break;
            }
            done.pop_back();
            if (target->rfind('/', 0) == 0)
                done.clear();
            const std::deque<std::string> components = componentsOf(*target);
            pending.insert(pending.begin(), components.begin(), components.end());
        } else if (!isFolder && (!isLast || asksForFolder)) {
            if (place.error == 0)
                place.error = ENOTDIR;
        }
    }
    place.phonePath = pathOf(done);
    place.hostPath = hostPathOf(place.phonePath);
    return place;
}

int PhoneFiles::look(const std::string &path, Links links, Entry &entry) const {
    entry = Entry{};
    entry.place = resolve(path, links);
    const Place &place = entry.place;
    if (place.error != 0)
        return place.denied ? EACCES : place.error;
    if (place.phonePath == sharedStorageLink) {
        entry.linkTarget = sharedStorage;
        entry.status.st_mode = S_IFLNK | 0777;
        entry.status.st_nlink = 1;
        entry.status.st_size = static_cast<off_t>(sharedStorage.size());
    } else if (place.hostPath.empty()) {
        const SystemFolder *folder = systemFolder(place.phonePath);
        entry.status.st_mode = S_IFDIR | (folder ? folder->mode : 0);
        entry.status.st_nlink = 2;
        entry.status.st_size = 4096;
    } else if (::lstat(place.hostPath.c_str(), &entry.status) != 0) {
        return errno;
    } else if (S_ISLNK(entry.status.st_mode)) {
        entry.linkTarget = readLink(place.hostPath);
    }
    return place.denied ? EACCES : 0;
}

int PhoneFiles::list(const std::string &path, std::vector<std::string> &names) const {
    names.clear();
    Entry folder;
    if (const int error = look(path, Links::follow, folder))
        return error;
    if (!S_ISDIR(folder.status.st_mode))
        return ENOTDIR;
    if (const SystemFolder *system = systemFolder(folder.place.phonePath)) {
        names = system->names;
        return system->listing == Listing::allowed ? 0 : EACCES;
    }
    if (!isReadable(folder.status))
        return EACCES;
    return listHostFolder(folder.place.hostPath, names);
}

} // namespace vantrel::demo
