#pragma once

#include <QString>

#include <array>
#include <optional>

namespace vantrel {

/// Which pane of the window.
enum class BrowserSide { android, mac };

/// How a pane lays out its entries.
enum class PaneViewMode { list, grid };

/// What a pane's select-all box shows: nothing visible selected, some of it, all of it.
enum class PaneSelectAllState { none, partial, all };

inline constexpr std::array allPaneViewModes{PaneViewMode::list, PaneViewMode::grid};

/// The name under which a view mode is stored.
[[nodiscard]] QString rawValue(PaneViewMode mode);
/// The view mode of exactly that name, or none.
[[nodiscard]] std::optional<PaneViewMode> paneViewModeFromRawValue(const QString &text);

} // namespace vantrel
