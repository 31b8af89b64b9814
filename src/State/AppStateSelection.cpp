#include "State/AppState.h"

#include "Records/FileSizeFormat.h"
#include "Records/TextLength.h"
#include "State/AppStateAssign.h"

#include <algorithm>

namespace vantrel {

namespace {

QString plural(qsizetype count, const QString &noun) {
    return QString::number(count) % QLatin1Char(' ') % noun % (count == 1 ? QString() : QStringLiteral("s"));
}

} // namespace

QString AppState::trimmedSearchText() const {
    return m_androidSearchText.trimmed();
}

QList<FileItem> AppState::displayedAndroidItems() const {
    const QString query = trimmedSearchText();
    if (query.isEmpty())
        return m_androidItems;
    if (m_androidSearchScope == AndroidSearchScope::everywhere)
        return m_androidSearchResults;
    if (!m_filtered.source.isSharedWith(m_androidItems) || m_filtered.query != query) {
        m_filtered.source = m_androidItems;
        m_filtered.query = query;
        m_filtered.matches.clear();
        for (const FileItem &item : m_androidItems) {
            if (item.name.contains(query, Qt::CaseInsensitive))
                m_filtered.matches.append(item);
        }
    }
    return m_filtered.matches;
}

QList<FileItem> AppState::visibleItems(BrowserSide side) const {
    return side == BrowserSide::mac ? m_macItems : displayedAndroidItems();
}

const QSet<QUuid> &AppState::selectedIDs(BrowserSide side) const {
    return side == BrowserSide::mac ? m_macSelectedIDs : m_androidSelectedIDs;
}

QSet<QUuid> &AppState::mutableSelectedIDs(BrowserSide side) {
    return side == BrowserSide::mac ? m_macSelectedIDs : m_androidSelectedIDs;
}

void AppState::selectionChanged(BrowserSide side) {
    if (side == BrowserSide::mac)
        Q_EMIT macSelectedIDsChanged();
    else
        Q_EMIT androidSelectedIDsChanged();
}

void AppState::toggleSelection(const FileItem &item, BrowserSide side) {
    QSet<QUuid> &ids = mutableSelectedIDs(side);
    if (!ids.remove(item.id))
        ids.insert(item.id);
    selectionChanged(side);
}

void AppState::selectItem(const FileItem &item, BrowserSide side) {
    QSet<QUuid> &ids = mutableSelectedIDs(side);
    if (ids.contains(item.id))
        return;
    ids.insert(item.id);
    selectionChanged(side);
}

void AppState::selectAllVisible(BrowserSide side) {
    const QList<FileItem> visible = visibleItems(side);
    if (visible.isEmpty())
        return;
    QSet<QUuid> &ids = mutableSelectedIDs(side);
    ids.reserve(ids.size() + visible.size());
    for (const FileItem &item : visible)
        ids.insert(item.id);
    selectionChanged(side);
}

void AppState::toggleSelectAllVisible(BrowserSide side) {
    if (selectAllState(side) != PaneSelectAllState::all) {
        selectAllVisible(side);
        return;
    }
    QSet<QUuid> &ids = mutableSelectedIDs(side);
    for (const FileItem &item : visibleItems(side))
        ids.remove(item.id);
    selectionChanged(side);
}

void AppState::clearSelection(BrowserSide side) {
    QSet<QUuid> &ids = mutableSelectedIDs(side);
    if (ids.isEmpty())
        return;
    ids.clear();
    selectionChanged(side);
}

PaneSelectAllState AppState::selectAllState(BrowserSide side) const {
    const QList<FileItem> visible = visibleItems(side);
    const QSet<QUuid> &ids = selectedIDs(side);
    const auto selected = std::count_if(visible.begin(), visible.end(),
                                        [&](const FileItem &item) { return ids.contains(item.id); });
    if (selected == 0)
        return PaneSelectAllState::none;
    return selected == visible.size() ? PaneSelectAllState::all : PaneSelectAllState::partial;
}

QString AppState::macSelectionSummary() const {
    if (m_macSelectedIDs.isEmpty())
        return QStringLiteral("Nothing selected");
    return QString::number(m_macSelectedIDs.size()) + QStringLiteral(" selected");
}

QString AppState::androidSelectionSummary() const {
    if (m_androidSelectedIDs.isEmpty())
        return QStringLiteral("Nothing selected");
    qsizetype files = 0;
    qsizetype folders = 0;
    for (const FileItem &item : displayedAndroidItems()) {
        if (m_androidSelectedIDs.contains(item.id))
            ++(item.isDirectory ? folders : files);
    }
    if (folders > 0 && files == 0)
        return plural(folders, QStringLiteral("folder")) + QStringLiteral(" selected");
    if (files > 0 && folders == 0)
        return plural(files, QStringLiteral("file")) + QStringLiteral(" selected");
    return QString::number(m_androidSelectedIDs.size()) + QStringLiteral(" items selected");
}

QString AppState::androidFooterStats() const {
    const QString query = trimmedSearchText();
    if (m_androidSearchScope == AndroidSearchScope::everywhere && !query.isEmpty()) {
        if (characterCount(query) < shortestSearchQuery)
            return QStringLiteral("Type at least 2 characters");
        const qsizetype hits = m_androidSearchResults.size();
        const QString quoted = QStringLiteral(" for “") % query % QStringLiteral("”");
        if (hits < searchResultLimit)
            return plural(hits, QStringLiteral("result")) + quoted;
        return QStringLiteral("Showing first ") % QString::number(hits) % QStringLiteral(" results") % quoted;
    }

    const QList<FileItem> shown = displayedAndroidItems();
    qint64 bytes = 0;
    for (const FileItem &item : shown) {
        // Sizes come from the phone: their sum may not fit.
        if (__builtin_add_overflow(bytes, item.sizeBytes.value_or(0), &bytes))
            bytes = std::numeric_limits<qint64>::max();
    }
    const QString counted =
        query.isEmpty() ? QString() : QString::number(shown.size()) + QStringLiteral(" of ");
    return counted % QString::number(m_androidItems.size()) % QStringLiteral(" items • ") %
           formatFileSize(bytes);
}

} // namespace vantrel
