#include "State/AppState.h"

#include "Records/FileSizeFormat.h"
#include "Records/TextLength.h"

namespace vantrel {

namespace {

QString plural(qsizetype count, const QString &noun) {
    return QString::number(count) % QLatin1Char(' ') % noun % (count == 1 ? QString() : QStringLiteral("s"));
}

QString unreadable(qsizetype count) {
    if (count == 0)
        return {};
    return QStringLiteral(" • ") % QString::number(count) %
           (count == 1 ? QStringLiteral(" entry") : QStringLiteral(" entries")) %
           QStringLiteral(" could not be read");
}

} // namespace

QString AppState::macSelectionSummary() const {
    if (macSelectedIDs().isEmpty())
        return QStringLiteral("Nothing selected");
    return QString::number(macSelectedIDs().size()) + QStringLiteral(" selected");
}

QString AppState::androidSelectionSummary() const {
    if (androidSelectedIDs().isEmpty())
        return QStringLiteral("Nothing selected");
    qsizetype files = 0;
    qsizetype folders = 0;
    for (const FileItem &item : displayedAndroidItems()) {
        if (androidSelectedIDs().contains(item.id))
            ++(item.isDirectory ? folders : files);
    }
    if (folders > 0 && files == 0)
        return plural(folders, QStringLiteral("folder")) + QStringLiteral(" selected");
    if (files > 0 && folders == 0)
        return plural(files, QStringLiteral("file")) + QStringLiteral(" selected");
    return QString::number(androidSelectedIDs().size()) + QStringLiteral(" items selected");
}

QString AppState::androidFooterStats() const {
    const QString query = m_search.query();
    if (m_search.isEverywhereActive()) {
        if (characterCount(query) < DeviceSearch::shortestQuery)
            return QStringLiteral("Type at least 2 characters");
        const qsizetype hits = androidSearchResults().size();
        const QString quoted = QStringLiteral(" for “") % query % QStringLiteral("”");
        if (hits < DeviceSearch::resultLimit)
            return plural(hits, QStringLiteral("result")) + quoted;
        return QStringLiteral("Showing first ") % QString::number(hits) % QStringLiteral(" results") % quoted;
    }

    const QString counted = query.isEmpty()
                                ? QString()
                                : QString::number(displayedAndroidItems().size()) + QStringLiteral(" of ");
    return counted % QString::number(androidItems().size()) % QStringLiteral(" items • ") %
           formatFileSize(m_androidPane.visibleBytes()) % unreadable(m_androidPane.unreadableCount());
}

} // namespace vantrel
