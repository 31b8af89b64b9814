#pragma once

#include <QString>

#include <array>
#include <optional>

namespace vantrel {

/// What the phone pane's search field searches.
enum class AndroidSearchScope { thisFolder, everywhere };

inline constexpr std::array allAndroidSearchScopes{AndroidSearchScope::thisFolder,
                                                   AndroidSearchScope::everywhere};

/// The name under which a scope is stored.
[[nodiscard]] QString rawValue(AndroidSearchScope scope);
/// The scope of exactly that name, or none.
[[nodiscard]] std::optional<AndroidSearchScope> androidSearchScopeFromRawValue(const QString &text);

/// The scope's title in the scope picker.
[[nodiscard]] QString displayTitle(AndroidSearchScope scope);
/// The search field's placeholder while the scope is chosen.
[[nodiscard]] QString searchPlaceholder(AndroidSearchScope scope);

} // namespace vantrel
