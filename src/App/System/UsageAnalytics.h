#pragma once

namespace vantrel {

class Settings;

/// Starts the usage analytics, unless the user has turned them off, and tells them when the program leaves
/// and returns to the foreground. Needs the application object; to be called once, on the main thread.
void startUsageAnalytics(const Settings &settings);

} // namespace vantrel
