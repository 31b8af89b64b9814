#pragma once

#include <QUrl>

namespace vantrel {

class Settings;

/// Whether this build has somewhere to send usage signals to. One that has not never records any.
[[nodiscard]] bool hasAnalyticsService();

/// Starts the usage analytics, unless the user has turned them off, tells them when the program leaves and
/// returns to the foreground, and follows the settings: once they are turned off, what was kept for them is
/// removed. `service` may be empty. Needs the application object; to be called once, on the main thread. The
/// settings must outlive the event loop.
void startUsageAnalytics(const Settings &settings, const QUrl &service);

} // namespace vantrel
