#include "App/System/AppVersion.h"

#include <algorithm>

namespace vantrel {

namespace {

bool isDigit(QChar character) {
    return character >= u'0' && character <= u'9';
}

/// Takes the next run of digits or of letters off the front of `version`; empty at its end. Anything else
/// separates.
QStringView takeComponent(QStringView &version) {
    while (!version.empty() && !version.front().isLetter() && !isDigit(version.front()))
        version = version.sliced(1);
    const bool numeric = !version.empty() && isDigit(version.front());
    const auto belongs = [&](QChar character) { return numeric ? isDigit(character) : character.isLetter(); };
    const auto end = std::find_if_not(version.begin(), version.end(), belongs);
    const QStringView component = version.first(end - version.begin());
    version = version.sliced(component.size());
    return component;
}

/// By value. Texts, since build numbers made of dates have more digits than any integer type here.
std::strong_ordering compareDigits(QStringView left, QStringView right) {
    const auto significant = [](QStringView digits) {
        while (!digits.empty() && digits.front() == u'0')
            digits = digits.sliced(1);
        return digits;
    };
    left = significant(left);
    right = significant(right);
    if (left.size() != right.size())
        return left.size() <=> right.size();
    return left.compare(right) <=> 0;
}

} // namespace

QString AppVersion::label() const {
    if (shortVersion.isEmpty() || build.isEmpty())
        return shortVersion + build;
    return shortVersion + QStringLiteral(" (") + build + u')';
}

std::strong_ordering compareVersions(QStringView left, QStringView right) {
    while (true) {
        const QStringView a = takeComponent(left);
        const QStringView b = takeComponent(right);
        if (a.empty() && b.empty())
            return std::strong_ordering::equal;
        const bool aIsText = !a.empty() && !isDigit(a.front());
        const bool bIsText = !b.empty() && !isDigit(b.front());
        if (aIsText != bIsText)
            return aIsText ? std::strong_ordering::less : std::strong_ordering::greater;
        const std::strong_ordering order =
            aIsText ? a.compare(b, Qt::CaseInsensitive) <=> 0 : compareDigits(a, b);
        if (order != std::strong_ordering::equal)
            return order;
    }
}

bool isNewer(const AppVersion &candidate, const AppVersion &installed) {
    if (!candidate.shortVersion.isEmpty() && !installed.shortVersion.isEmpty()) {
        const std::strong_ordering order = compareVersions(candidate.shortVersion, installed.shortVersion);
        if (order != std::strong_ordering::equal)
            return order == std::strong_ordering::greater;
    }
    return compareVersions(candidate.build, installed.build) == std::strong_ordering::greater;
}

} // namespace vantrel
