#include "State/VisitedFolders.h"

#include <algorithm>

namespace vantrel {

void VisitedFolders::remember(const FolderVisit &visit) {
    m_visits.removeIf([&](const FolderVisit &known) { return known.path == visit.path; });
    m_visits.append(visit);
    qsizetype names = 0;
    for (const FolderVisit &known : std::as_const(m_visits))
        names += known.selected.size();
    while (m_visits.size() > mostFolders || names > mostNames)
        names -= m_visits.takeFirst().selected.size();
}

std::optional<FolderVisit> VisitedFolders::visitOf(const QString &path) const {
    const auto known = std::find_if(m_visits.begin(), m_visits.end(),
                                    [&](const FolderVisit &visit) { return visit.path == path; });
    return known == m_visits.end() ? std::nullopt : std::optional(*known);
}

} // namespace vantrel
