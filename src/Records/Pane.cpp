#include "Records/Pane.h"

#include <algorithm>

namespace vantrel {

namespace {

template <class Choices>
std::optional<typename Choices::value_type> fromRawValue(const Choices &all, const QString &text) {
    const auto *found =
        std::find_if(all.begin(), all.end(), [&text](auto choice) { return rawValue(choice) == text; });
    return found != all.end() ? std::optional(*found) : std::nullopt;
}

bool isHere(AndroidSearchScope scope) {
    return scope == AndroidSearchScope::thisFolder;
}

} // namespace

QString rawValue(PaneViewMode mode) {
    return mode == PaneViewMode::list ? QStringLiteral("list") : QStringLiteral("grid");
}

QString rawValue(AndroidSearchScope scope) {
    return isHere(scope) ? QStringLiteral("thisFolder") : QStringLiteral("everywhere");
}

std::optional<PaneViewMode> paneViewModeFromRawValue(const QString &text) {
    return fromRawValue(allPaneViewModes, text);
}

std::optional<AndroidSearchScope> androidSearchScopeFromRawValue(const QString &text) {
    return fromRawValue(allAndroidSearchScopes, text);
}

QString displayTitle(AndroidSearchScope scope) {
    return isHere(scope) ? QStringLiteral("This folder") : QStringLiteral("Everywhere");
}

QString searchPlaceholder(AndroidSearchScope scope) {
    return isHere(scope) ? QStringLiteral("Search this folder") : QStringLiteral("Search entire device");
}

} // namespace vantrel
