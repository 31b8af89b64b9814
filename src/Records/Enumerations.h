#pragma once

#include <QString>

#include <array>
#include <optional>

namespace vantrel {

/// Which pane of the window.
enum class BrowserSide { android, mac };

/// Which way a copy goes: a pull from the phone or a push to it.
enum class TransferDirection { androidToMac, macToAndroid };

/// How a pane lays out its entries.
enum class PaneViewMode { list, grid };

/// What the phone pane's search field searches.
enum class AndroidSearchScope { thisFolder, everywhere };

/// What a pane's select-all box shows: nothing visible selected, some of it, all of it.
enum class PaneSelectAllState { none, partial, all };

inline constexpr std::array allPaneViewModes{PaneViewMode::list, PaneViewMode::grid};
inline constexpr std::array allAndroidSearchScopes{AndroidSearchScope::thisFolder,
                                                   AndroidSearchScope::everywhere};

/// The name under which a value is stored; the same text read back gives the value, any other text gives
/// none.
[[nodiscard]] QString rawValue(PaneViewMode mode);
[[nodiscard]] QString rawValue(AndroidSearchScope scope);
[[nodiscard]] std::optional<PaneViewMode> paneViewModeFromRawValue(const QString &text);
[[nodiscard]] std::optional<AndroidSearchScope> androidSearchScopeFromRawValue(const QString &text);

/// The scope's title in the scope picker.
[[nodiscard]] QString displayTitle(AndroidSearchScope scope);
/// The search field's placeholder while the scope is chosen.
[[nodiscard]] QString searchPlaceholder(AndroidSearchScope scope);

} // namespace vantrel
