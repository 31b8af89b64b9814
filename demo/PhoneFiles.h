#pragma once

#include "Settings.h"

#include <sys/stat.h>

#include <string>
#include <vector>

namespace vantrel::demo {

/// What becomes of a symbolic link at the end of a path.
enum class Links { follow, keep };

/// Where a phone path leads.
struct Place {
    std::string phonePath; ///< with links and ".." worked out; "/storage/emulated/0/…" for shared storage
    std::string hostPath;  ///< in the served folder; empty when the path lies outside shared storage
    int error = 0;         ///< errno: 0 when it exists
    bool denied = false;   ///< a setting makes it, or a folder above it, fail
};

/// What stands at a phone path.
struct Entry {
    Place place;
    struct stat status {};
    std::string linkTarget; ///< of a symbolic link, when links are kept
};

/// The phone's file system: the served folder as /sdcard (which is /storage/emulated/0), and around it the
/// few system folders that a phone shows. No path, ".." or symbolic link leads out of the served folder.
class PhoneFiles {
public:
    explicit PhoneFiles(const SettingsSource &settings) : m_settings(settings) {}

    /// Works a phone path out. A path whose end does not exist has the error ENOENT and still a host path.
    [[nodiscard]] Place resolve(const std::string &path, Links links) const;
    /// Looks a path up. Returns 0 or errno; a path that is made to fail has EACCES, and its status is filled
    /// all the same when it exists.
    [[nodiscard]] int look(const std::string &path, Links links, Entry &entry) const;
    /// The names in a folder, sorted by byte, without "." and "..". Returns 0 or errno.
    [[nodiscard]] int list(const std::string &path, std::vector<std::string> &names) const;

private:
    [[nodiscard]] std::string hostPathOf(const std::string &phonePath) const;
    [[nodiscard]] bool isDenied(const std::string &phonePath) const;
    [[nodiscard]] Place resolveEachComponent(const std::string &path, Links links) const;

    const SettingsSource &m_settings;
    /// The folder of the path that was worked out last: most commands name hundreds of paths in one.
    mutable std::string m_folder;
    mutable Place m_folderPlace;
};

/// Whether the phone may read this. Asks the mode rather than the system, since root may read everything.
[[nodiscard]] bool isReadable(const struct stat &status);
/// Whether the phone may change this.
[[nodiscard]] bool isWritable(const struct stat &status);

/// The names in a folder of this computer, sorted by byte, without "." and "..". Returns 0 or errno.
[[nodiscard]] int listHostFolder(const std::string &path, std::vector<std::string> &names);

/// A folder's path and a name in it, joined by exactly one "/".
[[nodiscard]] std::string joined(const std::string &folder, const std::string &name);
/// The last component of a path, trailing slashes aside.
[[nodiscard]] std::string lastComponent(std::string path);

} // namespace vantrel::demo
