#include "State/PaneState.h"

#include "Records/ByteSum.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace vantrel {

namespace {

qint64 bytesOf(const QList<FileItem> &items) {
    return std::accumulate(items.begin(), items.end(), qint64(0), [](qint64 sum, const FileItem &item) {
        return byteSum(sum, item.sizeBytes.value_or(0));
    });
}

} // namespace

PaneState::PaneState(BrowserSide side, const QString &path) : m_side(side), m_path(path) {}

void PaneState::toggleSelection(const FileItem &item) {
    m_justSelected = QUuid();
    if (!m_selectedIDs.remove(item.id))
        m_selectedIDs.insert(item.id);
    Q_EMIT selectedIDsChanged();
}

void PaneState::selectItem(const FileItem &item) {
    const bool isNew = !m_selectedIDs.contains(item.id);
    setSelected({item}, true);
    m_justSelected = isNew ? item.id : QUuid();
}

void PaneState::setSelected(const QList<FileItem> &items, bool isSelected) {
    m_justSelected = QUuid();
    const qsizetype before = m_selectedIDs.size();
    if (isSelected)
        m_selectedIDs.reserve(before + items.size());
    for (const FileItem &item : items) {
        if (isSelected)
            m_selectedIDs.insert(item.id);
        else
            m_selectedIDs.remove(item.id);
    }
    if (m_selectedIDs.size() != before)
        Q_EMIT selectedIDsChanged();
}

void PaneState::selectAllVisible() {
    setSelected(m_visibleItems, true);
}

void PaneState::toggleSelectAllVisible() {
    setSelected(m_visibleItems, selectAllState() != PaneSelectAllState::all);
}

void PaneState::clearSelection() {
    if (m_selectedIDs.isEmpty())
        return;
    m_selectedIDs.clear();
    Q_EMIT selectedIDsChanged();
}

QList<FileItem> PaneState::selectedItems() const {
    QList<FileItem> selected;
    std::copy_if(m_visibleItems.begin(), m_visibleItems.end(), std::back_inserter(selected),
                 [this](const FileItem &item) { return m_selectedIDs.contains(item.id); });
    return selected;
}

PaneSelectAllState PaneState::selectAllState() const {
    const auto selected = std::count_if(m_visibleItems.begin(), m_visibleItems.end(),
                                        [this](const auto &item) { return m_selectedIDs.contains(item.id); });
    if (selected == 0)
        return PaneSelectAllState::none;
    return selected == m_visibleItems.size() ? PaneSelectAllState::all : PaneSelectAllState::partial;
}

void PaneState::setOrder(FileOrder order) {
    if (order == m_order)
        return;
    m_order = order;
    updateVisibleItems();
    Q_EMIT orderChanged();
}

quint64 PaneState::open(const QString &path, Arrival arrival) {
    if (path != m_path) {
        leave(path);
        m_wanted = {};
        if (arrival == Arrival::back)
            m_wanted = m_visits.visitOf(path).value_or(FolderVisit{path, {.current = m_path}});
    }
    m_path = path;
    clearSelection();
    m_hasFailed = false;
    m_browseError = std::nullopt;
    return ++m_token;
}

/// Remembers the folder as it is left. The first click of the two that open a folder has selected it: nobody
/// wants to find it selected for that.
void PaneState::leave(const QString &to) {
    if (!std::exchange(m_isListed, false))
        return;
    FolderVisit visit{m_path, m_place};
    for (const FileItem &item : std::as_const(m_items)) {
        if (m_selectedIDs.contains(item.id) && !(item.id == m_justSelected && item.path == to))
            visit.selected.insert(item.name);
    }
    m_visits.remember(visit);
}

/// Takes over what the folder is to be shown as, whose entries these are. Returns whether any is selected.
bool PaneState::arrive(const QList<FileItem> &items) {
    const FolderVisit visit = std::exchange(m_wanted, {});
    m_place = visit.place;
    ++m_placeToken;
    const qsizetype before = m_selectedIDs.size();
    for (const FileItem &item : items) {
        // Where one comes from may lie deeper.
        if (visit.place.current.startsWith(item.path + QLatin1Char('/')))
            m_place.current = item.path;
        if (visit.selected.contains(item.name))
            m_selectedIDs.insert(item.id);
    }
    return m_selectedIDs.size() > before;
}

void PaneState::setPlace(const PanePlace &place) {
    if (m_isListed && !m_hits)
        m_place = place;
}

void PaneState::setOwner(const QString &serial) {
    if (std::exchange(m_owner, serial) == serial)
        return;
    m_visits.forget();
    m_isListed = false;
    m_wanted = {};
}

void PaneState::fail(const QString &reason) {
    replaceItems({}, 0);
    m_hasFailed = true;
    m_browseError = reason;
}

void PaneState::setItems(const QList<FileItem> &items, qsizetype unreadableCount) {
    const bool selects = !std::exchange(m_isListed, true) && arrive(items);
    replaceItems(items, unreadableCount);
    if (selects)
        Q_EMIT selectedIDsChanged();
}

void PaneState::replaceItems(const QList<FileItem> &items, qsizetype unreadableCount) {
    if (std::exchange(m_hasFailed, false))
        m_browseError = std::nullopt;
    if (items == m_items && unreadableCount == m_unreadableCount)
        return;
    m_items = items;
    m_unreadableCount = unreadableCount;
    updateVisibleItems();
    Q_EMIT itemsChanged();
}

void PaneState::setItemsAgain(const QList<FileItem> &items, qsizetype unreadableCount) {
    QHash<QString, QUuid> known;
    known.reserve(m_items.size());
    for (const FileItem &item : std::as_const(m_items))
        known.insert(item.path, item.id);
    QList<FileItem> same = items;
    for (FileItem &item : same)
        item.id = known.contains(item.path) ? known.take(item.path) : item.id;
    setItems(same, unreadableCount);
}

void PaneState::empty(const std::optional<QString> &error) {
    ++m_token;
    m_isLoading = false;
    m_isListed = false;
    replaceItems({}, 0);
    m_browseError = error;
}

void PaneState::setFilter(const QString &text) {
    if (text == m_filter)
        return;
    m_filter = text;
    updateVisibleItems();
}

void PaneState::setHits(const std::optional<QList<FileItem>> &hits) {
    if (hits == m_hits)
        return;
    const bool showsFolderAgain = m_hits && !hits;
    m_hits = hits;
    m_placeToken += showsFolderAgain ? 1 : 0;
    updateVisibleItems();
}

void PaneState::updateVisibleItems() {
    const auto [items, bytes] = m_hits ? Filtered{*m_hits, bytesOf(*m_hits)} : filtered();
    const QList<FileItem> visible = inOrder(items, m_order);
    const bool hasChanged = !visible.isSharedWith(m_visibleItems);
    m_visibleItems = visible;
    m_visibleBytes = bytes;
    const bool lostGhosts = dropGhosts(); // before anybody is told of what is shown
    if (hasChanged)
        Q_EMIT visibleItemsChanged();
    if (lostGhosts)
        Q_EMIT selectedIDsChanged();
}

PaneState::Filtered PaneState::filtered() const {
    if (m_filter.isEmpty())
        return {m_items, bytesOf(m_items)};
    // A list that grows with its matches would be moved again and again, and that takes as long as the
    // search.
    std::vector<qsizetype> matches;
    Filtered filtered;
    for (qsizetype row = 0; row < m_items.size(); ++row) {
        const FileItem &item = m_items.at(row);
        if (!item.name.contains(m_filter, Qt::CaseInsensitive))
            continue;
        matches.push_back(row);
        filtered.bytes = byteSum(filtered.bytes, item.sizeBytes.value_or(0));
    }
    filtered.items.reserve(qsizetype(matches.size()));
    for (const qsizetype row : matches)
        filtered.items.append(m_items.at(row));
    return filtered;
}

/// Takes out of the selection what neither the folder nor the hits hold any more. Returns whether there was
/// any.
bool PaneState::dropGhosts() {
    if (m_selectedIDs.isEmpty())
        return false;
    QSet<QUuid> present;
    const auto keep = [&](const QList<FileItem> &items) {
        for (const FileItem &item : items) {
            if (m_selectedIDs.contains(item.id))
                present.insert(item.id);
        }
    };
    keep(m_items);
    keep(m_visibleItems);
    if (present.size() == m_selectedIDs.size())
        return false;
    m_selectedIDs = present;
    return true;
}

} // namespace vantrel
