#pragma once

#include "PhoneFiles.h"
#include "Settings.h"
#include "ShellLine.h"

#include <string>
#include <sys/stat.h>
#include <vector>

namespace vantrel::demo {

/// What a tool leaves behind.
struct Answer {
    std::string standardOutput;
    std::string standardError;
    int exitStatus = 0;
};

/// A mode as `ls -l` and `find -printf %M` write it: "drwxr-xr-x".
[[nodiscard]] std::string modeText(mode_t mode);

/// The name of the command that a shell line runs: "ls", "find"…, or "unknown" when the phone has no such
/// command or the line is put together in another way than expected. Settings are chosen by this name.
[[nodiscard]] std::string nameOfShellCommand(const std::vector<ShellPipeline> &line);

/// Runs a line that nameOfShellCommand knows, in this process.
[[nodiscard]] Answer runShellCommand(const std::vector<ShellPipeline> &line, const PhoneFiles &files,
                                     const Settings &settings);

} // namespace vantrel::demo
