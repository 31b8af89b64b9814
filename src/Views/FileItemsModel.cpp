#include "Views/FileItemsModel.h"

#include "Kit/TextStyle.h"
#include "State/PaneState.h"

#include <algorithm>

namespace vantrel {

namespace {

/// How an entry differs to the eye from the one that stood at its place.
enum class Change { none, date, mark, look };

Change changeBetween(const FileItem &a, const FileItem &b, bool showsLocation) {
    // Names come last: only they take time.
    const bool looksSame = a.isDirectory == b.isDirectory && a.sizeBytes == b.sizeBytes &&
                           a.itemCount == b.itemCount && a.name == b.name &&
                           (!showsLocation || a.path == b.path);
    if (!looksSame)
        return Change::look;
    return a.modifiedAt == b.modifiedAt ? Change::none : Change::date;
}

} // namespace

FileItemsModel::FileItemsModel(const PaneState &pane, QObject *parent)
    : QAbstractListModel(parent), m_pane(pane) {}

void FileItemsModel::follow(bool showsLocation) {
    const bool hasNewRows = showsLocation == m_showsLocation && insertNewRows();
    const QList<FileItem> itemsBefore = m_items;
    const QBitArray selectedBefore = m_selectedRows;
    const bool isReset = showsLocation != m_showsLocation; // every row gets another height
    const auto had = int(m_items.size());
    const auto has = int(m_pane.visibleItems().size());

    if (isReset)
        beginResetModel();
    else if (has > had)
        beginInsertRows({}, had, has - 1);
    else if (has < had)
        beginRemoveRows({}, has, had - 1);

    m_showsLocation = showsLocation;
    m_items = m_pane.visibleItems();
    m_selectedRows = selectedAmong(m_items);

    if (isReset)
        endResetModel();
    else if (has > had)
        endInsertRows();
    else if (has < had)
        endRemoveRows();

    if (!isReset)
        tellChanges(itemsBefore, selectedBefore);
    if (!m_items.isSharedWith(itemsBefore))
        askForPictures();
    if (isReset || hasNewRows || m_selectedRows != selectedBefore)
        Q_EMIT selectedRowsChanged();
    Q_EMIT followed();
}

/// Where the pane shows the known entries and some more among them, as when a folder is listed again that has
/// received files, the views are told which rows are new: the keyboard stays with its entry, and what is in
/// sight stays there. For a few places only; each is laid out by itself.
bool FileItemsModel::insertNewRows() {
    constexpr int mostPlaces = 8;
    const QList<FileItem> &now = m_pane.visibleItems();
    if (m_items.isEmpty() || now.size() <= m_items.size() || now.isSharedWith(m_items))
        return false;
    QList<std::pair<int, int>> runs; // first and last new row, as they lie in the end
    qsizetype known = 0;
    bool looksSame = true; // else what has changed is yet to be told
    for (int row = 0; row < now.size(); ++row) {
        if (known < m_items.size() && now.at(row).id == m_items.at(known).id) {
            looksSame =
                looksSame && changeBetween(now.at(row), m_items.at(known), m_showsLocation) == Change::none;
            ++known;
        } else if (!runs.isEmpty() && runs.last().second == row - 1) {
            runs.last().second = row;
        } else {
            runs.append({row, row});
            if (runs.size() > mostPlaces)
                return false;
        }
    }
    if (known < m_items.size())
        return false;
    for (const auto &[first, last] : std::as_const(runs)) {
        beginInsertRows({}, first, last);
        // Mostly there is one run, as when a search is cleared: no entry is copied then.
        m_items = looksSame && last == runs.last().second
                      ? now
                      : m_items.mid(0, first) + now.mid(first, last - first + 1) + m_items.mid(first);
        m_selectedRows = selectedAmong(m_items);
        endInsertRows();
    }
    return true;
}

QBitArray FileItemsModel::selectedAmong(const QList<FileItem> &items) const {
    QBitArray selected(items.size());
    const QSet<QUuid> &ids = m_pane.selectedIDs();
    for (qsizetype row = 0; row < items.size() && !ids.isEmpty(); ++row) {
        if (ids.contains(items.at(row).id))
            selected.setBit(row);
    }
    return selected;
}

void FileItemsModel::tellChanges(const QList<FileItem> &itemsBefore, const QBitArray &selectedBefore) {
    const bool sameItems = m_items.isSharedWith(itemsBefore);
    if (sameItems && m_selectedRows == selectedBefore)
        return;
    const auto changeOf = [&](qsizetype row) {
        const Change of =
            sameItems ? Change::none : changeBetween(itemsBefore.at(row), m_items.at(row), m_showsLocation);
        const bool isMarked = m_selectedRows.testBit(row) != selectedBefore.testBit(row);
        return of == Change::none && isMarked ? Change::mark : isMarked ? Change::look : of;
    };
    const auto rolesOf = [](Change change) {
        return change == Change::date   ? QList<int>{modifiedRole}
               : change == Change::mark ? QList<int>{selectedRole}
                                        : QList<int>{};
    };
    // A signal for every run of rows that changed alike.
    const auto count = int(std::min(m_items.size(), itemsBefore.size()));
    Change run = Change::none;
    int first = 0;
    for (int row = 0; row <= count; ++row) {
        const Change change = row < count ? changeOf(row) : Change::none;
        if (change == run)
            continue;
        if (run != Change::none)
            Q_EMIT dataChanged(index(first), index(row - 1), rolesOf(run));
        run = change;
        first = row;
    }
}

// -- Pictures

void FileItemsModel::setPictures(ThumbnailStore *pictures, const FilePlace &place) {
    const bool isKnown = m_pictures == pictures;
    if (isKnown && m_place == place)
        return;
    m_pictures = pictures;
    m_place = place;
    if (pictures && !isKnown)
        connect(pictures, &ThumbnailStore::arrived, this, &FileItemsModel::tellPictures);
    askForPictures();
}

void FileItemsModel::look(int first, int last, int edge) {
    const Sight sight{first, last, edge};
    if (std::exchange(m_sight, sight) != sight)
        askForPictures();
}

void FileItemsModel::askForPictures() const {
    if (m_pictures)
        m_pictures->look(this, m_place, m_items.mid(m_sight.first, m_sight.last - m_sight.first + 1),
                         m_sight.edge);
}

/// Rows that nobody looks at are painted with their pictures when they come into sight.
void FileItemsModel::tellPictures(const FilePlace &place, const QSet<QString> &paths) {
    if (place != m_place)
        return;
    const int last = std::min(m_sight.last, int(m_items.size()) - 1);
    for (int row = m_sight.first; row <= last; ++row) {
        if (paths.contains(m_items.at(row).path))
            Q_EMIT dataChanged(index(row), index(row), {pictureRole});
    }
}

/// A view asks for every row's when it lays them out: without the base's detours.
QModelIndex FileItemsModel::index(int row, int column, const QModelIndex &parent) const {
    const bool exists = row >= 0 && row < m_items.size() && column == 0 && !parent.isValid();
    return exists ? createIndex(row, column) : QModelIndex();
}

QVariant FileItemsModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const FileItem &item = m_items.at(index.row());
    const bool isSelected = m_selectedRows.testBit(index.row());
    const auto entry = [&] { return FileEntry{item, isSelected, m_showsLocation}; };
    switch (role) {
    case entryRole:
        return QVariant::fromValue(entry());
    case Qt::DisplayRole:
        return item.name;
    case Qt::AccessibleTextRole:
        return displayText(item.name);
    case Qt::AccessibleDescriptionRole:
        return displayText(entry().captionLabel() + QStringLiteral(", ") + item.modifiedLabel());
    case Qt::CheckStateRole:
        return isSelected ? Qt::Checked : Qt::Unchecked;
    case modifiedRole:
        return item.modifiedLabel();
    case pictureRole:
        return m_pictures ? m_pictures->picture(m_place, item) : QImage();
    default:
        return {};
    }
}

// -- Selection

FileSelectionModel::FileSelectionModel(FileItemsModel *model, QObject *parent)
    : QItemSelectionModel(model, parent), m_model(model) {
    connect(model, &FileItemsModel::selectedRowsChanged, this, &FileSelectionModel::mirror);
}

void FileSelectionModel::select(const QItemSelection &selection, SelectionFlags command) {
    if (!(command & (Select | Deselect | Toggle)))
        return;
    const QModelIndexList indexes = selection.indexes();
    const QList<FileItem> items = m_model->items(); // what is called may give the model others
    for (const QModelIndex &index : indexes) {
        if (command & Toggle || isSelected(index) == command.testFlag(Deselect))
            Q_EMIT toggled(items.at(index.row()));
    }
}

void FileSelectionModel::mirror() {
    const QBitArray &rows = m_model->selectedRows();
    QItemSelection selection;
    for (qsizetype row = 0; row < rows.size(); ++row) {
        const qsizetype first = row;
        while (row < rows.size() && rows.testBit(row))
            ++row;
        if (row > first)
            selection.append(QItemSelectionRange(m_model->index(int(first)), m_model->index(int(row - 1))));
    }
    QItemSelectionModel::select(selection, ClearAndSelect);
}

} // namespace vantrel
