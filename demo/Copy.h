#pragma once

#include "PhoneFiles.h"
#include "Settings.h"

#include <string>

namespace vantrel::demo {

enum class CopyDirection { push, pull };

/// Copies a file or a folder as adb 29 does, printing progress, errors and the closing line where it prints
/// them. The settings are looked at again with every block. Returns the exit status. Throws SettingsError.
[[nodiscard]] int runCopy(CopyDirection direction, const std::string &source, const std::string &destination,
                          const PhoneFiles &files, SettingsSource &settings);

/// Writes the whole text to a file descriptor. False when the other end is gone.
bool writeAll(int descriptor, std::string_view text);

} // namespace vantrel::demo
