#pragma once

namespace vantrel {

/// Starts to read the system's font configuration on a thread of its own, while the window comes up: that
/// takes about as long, and the first text needs it. For the main thread, before the first window. Where
/// there is no such configuration this does nothing.
void readFontConfiguration();

/// Returns when what readFontConfiguration() started has ended, at once if that was never called. For the
/// main thread, before the first text: the toolkit would read everything a second time.
void awaitFontConfiguration();

} // namespace vantrel
