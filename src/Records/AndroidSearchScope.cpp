#include "Records/AndroidSearchScope.h"

namespace vantrel {

QString rawValue(AndroidSearchScope scope) {
    return scope == AndroidSearchScope::thisFolder ? QStringLiteral("thisFolder")
                                                   : QStringLiteral("everywhere");
}

std::optional<AndroidSearchScope> androidSearchScopeFromRawValue(const QString &text) {
    for (const AndroidSearchScope scope : allAndroidSearchScopes) {
        if (rawValue(scope) == text)
            return scope;
    }
    return std::nullopt;
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
