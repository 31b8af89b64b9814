#pragma once

#include <thread>

namespace vantrel {

/// Reads the system's font configuration on a thread of its own, for main() to start before the application
/// connects to the display: the two take about as long, and the first text needs both. Join it before that
/// text. Where there is no such configuration the thread has nothing to do.
[[nodiscard]] std::jthread readFontConfiguration();

} // namespace vantrel
