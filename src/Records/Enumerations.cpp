#include "Records/Enumerations.h"

namespace vantrel {

namespace {

template <class Value, size_t count>
std::optional<Value> fromRawValue(const std::array<Value, count> &all, const QString &text) {
    for (const Value value : all) {
        if (rawValue(value) == text)
            return value;
    }
    return std::nullopt;
}

} // namespace

QString rawValue(PaneViewMode mode) {
    return mode == PaneViewMode::list ? QStringLiteral("list") : QStringLiteral("grid");
}

QString rawValue(AndroidSearchScope scope) {
    return scope == AndroidSearchScope::thisFolder ? QStringLiteral("thisFolder")
                                                   : QStringLiteral("everywhere");
}

std::optional<PaneViewMode> paneViewModeFromRawValue(const QString &text) {
    return fromRawValue(allPaneViewModes, text);
}

std::optional<AndroidSearchScope> androidSearchScopeFromRawValue(const QString &text) {
    return fromRawValue(allAndroidSearchScopes, text);
}

QString displayTitle(AndroidSearchScope scope) {
    return scope == AndroidSearchScope::thisFolder ? QStringLiteral("This folder")
                                                   : QStringLiteral("Everywhere");
}

QString searchPlaceholder(AndroidSearchScope scope) {
    return scope == AndroidSearchScope::thisFolder ? QStringLiteral("Search this folder")
                                                   : QStringLiteral("Search entire device");
}

} // namespace vantrel
