#pragma once

#include "App/System/AppVersion.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <tl/expected.hpp>

#include <optional>

namespace vantrel {

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
