#pragma once

#include <QString>

#include <compare>

namespace vantrel {

/// A version as people see it and the number of its build, for example "1.4" and "27". Either may be empty.
struct AppVersion {
    QString shortVersion;
    QString build;

    /// "1.4 (27)", or what there is of it.
    [[nodiscard]] QString label() const;

    friend bool operator==(const AppVersion &, const AppVersion &) = default;
};

/// Orders version texts: runs of digits by their value, of any length; a missing component counts as 0, so
/// that 1.0 and 1.0.0 are the same; a component that begins with a letter marks a version on the way to the
/// one before it (1.0-rc1 < 1.0).
[[nodiscard]] std::strong_ordering compareVersions(QStringView left, QStringView right);

/// Whether `candidate` replaces `installed`: the versions decide, and between equal ones the build numbers.
/// Where one side has no version, the build numbers alone decide.
[[nodiscard]] bool isNewer(const AppVersion &candidate, const AppVersion &installed);

} // namespace vantrel
