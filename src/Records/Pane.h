#pragma once

#include <QString>

#include <array>
#include <optional>

namespace vantrel {

/// Which pane of the window.
enum class BrowserSide { android, mac };

/// How a pane lays out its entries.
enum class PaneViewMode { list, grid };
inline constexpr std::array allPaneViewModes{PaneViewMode::list, PaneViewMode::grid};

/// What of a pane's entries is in sight. Entries are named by their paths: a folder that is listed again has
/// other identities, and perhaps other rows.
struct PanePlace {
    QString top = {};     ///< the first entry in sight; empty where that is of no account
    int row = 0;          ///< its row, for when it is gone
    int offset = 0;       ///< how far its top is above the upper edge, layout pixels
    QString current = {}; ///< the entry that the keyboard goes on from

    friend bool operator==(const PanePlace &, const PanePlace &) = default;
};

/// How a folder is come to: as one that begins at its top, or as one to find again as it was left.
enum class Arrival { anew, back };

/// How wide a grid's tile is at least, in layout pixels; the user chooses among a few.
struct TileSize {
    static constexpr int least = 72;
    static constexpr int standard = 96;
    static constexpr int most = 240;
    static constexpr int step = 24;

    /// The nearest that there is.
    [[nodiscard]] static constexpr int nearest(int size) {
        const int bounded = size < least ? least : size > most ? most : size;
        return least + (bounded - least + step / 2) / step * step;
    }
};

/// What the phone pane's search field searches.
enum class AndroidSearchScope { thisFolder, everywhere };
inline constexpr std::array allAndroidSearchScopes{AndroidSearchScope::thisFolder,
                                                   AndroidSearchScope::everywhere};

/// What a pane's select-all box shows: nothing visible selected, some of it, all of it.
enum class PaneSelectAllState { none, partial, all };

/// The name under which a choice is stored.
[[nodiscard]] QString rawValue(PaneViewMode mode);
[[nodiscard]] QString rawValue(AndroidSearchScope scope);
/// The choice of exactly that name, or none.
[[nodiscard]] std::optional<PaneViewMode> paneViewModeFromRawValue(const QString &text);
[[nodiscard]] std::optional<AndroidSearchScope> androidSearchScopeFromRawValue(const QString &text);

/// The scope's title in the scope picker.
[[nodiscard]] QString displayTitle(AndroidSearchScope scope);
/// The search field's placeholder while the scope is chosen.
[[nodiscard]] QString searchPlaceholder(AndroidSearchScope scope);

} // namespace vantrel
