#pragma once

#include "Records/Pane.h"

#include <QList>
#include <QSet>

#include <optional>

namespace vantrel {

/// Where in a folder the user was when it was left.
struct FolderVisit {
    QString path = {};
    PanePlace place = {};
    QSet<QString> selected = {}; ///< names
};

/// The last folders that a pane has shown, as they were left: so many that nobody misses one, and no more
/// names than are worth their memory.
class VisitedFolders {
public:
    static constexpr qsizetype mostFolders = 100;
    static constexpr qsizetype mostNames = 200'000; ///< of all folders together

    /// Takes the place of what is known of that folder.
    void remember(const FolderVisit &visit);
    [[nodiscard]] std::optional<FolderVisit> visitOf(const QString &path) const;
    void forget() { m_visits.clear(); }

private:
    QList<FolderVisit> m_visits; ///< the newest last
};

} // namespace vantrel
