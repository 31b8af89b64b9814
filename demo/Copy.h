#pragma once

#include "PhoneFiles.h"
#include "Settings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vantrel::demo {

enum class CopyDirection { push, pull };
/// Whether a pull keeps times and modes; a push always sends the time.
enum class KeepTimes { no, yes };

/// Copies files or folders as adb 29 does, printing progress, errors and the closing line where it prints
/// them. The settings are looked at again with every block. Returns the exit status. Throws SettingsError.
[[nodiscard]] int runCopy(CopyDirection direction, KeepTimes keepTimes,
                          const std::vector<std::string> &sources, const std::string &destination,
                          const PhoneFiles &files, SettingsSource &settings);

/// The rest of a phone's file to standard output, from `first` on, the file's first byte being 1; or standard
/// input behind what a phone's file holds. As runCopy, but with the shell's errors on standard error.
[[nodiscard]] int runTail(const std::string &path, std::int64_t first, const PhoneFiles &files,
                          SettingsSource &settings);
[[nodiscard]] int runAppend(const std::string &path, const PhoneFiles &files, SettingsSource &settings);

/// Writes the whole text to a file descriptor. False when the other end is gone.
bool writeAll(int descriptor, std::string_view text);

} // namespace vantrel::demo
