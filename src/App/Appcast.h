#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <tl/expected.hpp>

#include <compare>
#include <optional>

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

/// One release in an update feed.
struct AppcastItem {
    AppVersion version;
    QUrl link;      ///< the page that tells about it; may be empty
    QUrl enclosure; ///< the file; may be empty

    friend bool operator==(const AppcastItem &, const AppcastItem &) = default;
};

/// An update feed: RSS whose items name versions, with the releases meant for this operating system and for
/// everyone.
struct Appcast {
    QUrl link; ///< the channel's own page; may be empty
    QList<AppcastItem> items;

    /// The item with the newest version; nothing for a feed without items.
    [[nodiscard]] std::optional<AppcastItem> newest() const;

    friend bool operator==(const Appcast &, const Appcast &) = default;
};

enum class AppcastError {
    malformed,       ///< not well-formed XML
    hasDocumentType, ///< carries a document type, the carrier of entity definitions; a feed has no use for
                     ///< one
    notAFeed,        ///< XML, but no RSS channel
};

/// Reads a feed. Items without a usable version are left out. Knows no network and no clock.
[[nodiscard]] tl::expected<Appcast, AppcastError> parseAppcast(const QByteArray &xml);

} // namespace vantrel
