#pragma once

#include "Records/FileItem.h"
#include "Thumbnails/ThumbnailStore.h"
#include "Views/FileEntry.h"

#include <QAbstractListModel>
#include <QBitArray>
#include <QItemSelectionModel>

namespace vantrel {

class PaneState;

/// What a pane shows, a row per entry. It says which rows look different from before, by their place: a
/// folder that is only listed again has new identities and the same looks, and nothing is repainted. It
/// shares the pane's list and makes nothing per row.
class FileItemsModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        entryRole = Qt::UserRole, ///< the FileEntry
        modifiedRole,             ///< its date, which the grid does not show
        selectedRole,             ///< whether it is selected, which is of no consequence to where it lies
        pictureRole,              ///< its picture, which the list does not show; null while there is none
    };

    /// The pane must outlive the model.
    explicit FileItemsModel(const PaneState &pane, QObject *parent = nullptr);

    /// Takes over what the pane shows now, and whether each entry tells its folder.
    void follow(bool showsLocation);

    /// Where the entries are, and whom to ask for their pictures, who must outlive the model; nobody, where
    /// there are to be none.
    void setPictures(ThumbnailStore *pictures, const FilePlace &place);
    /// The rows that are looked at from now on, and the longest side of their pictures in device pixels. No
    /// rows, when `last` is before `first`.
    void look(int first, int last, int edge);

    [[nodiscard]] const QList<FileItem> &items() const { return m_items; }
    /// Whether each entry tells its folder.
    [[nodiscard]] bool showsLocation() const { return m_showsLocation; }
    [[nodiscard]] const QBitArray &selectedRows() const { return m_selectedRows; }

    [[nodiscard]] QModelIndex index(int row, int column = 0, const QModelIndex &parent = {}) const override;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override {
        return parent.isValid() ? 0 : int(m_items.size());
    }
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override {
        return QAbstractListModel::flags(index) | Qt::ItemIsUserCheckable;
    }

Q_SIGNALS:
    void selectedRowsChanged();
    /// After all signals of one follow().
    void followed();

private:
    bool insertNewRows();
    [[nodiscard]] QBitArray selectedAmong(const QList<FileItem> &items) const;
    void askForPictures() const;
    void tellPictures(const FilePlace &place, const QSet<QString> &paths);
    void tellChanges(const QList<FileItem> &itemsBefore, const QBitArray &selectedBefore);

    const PaneState &m_pane;
    QList<FileItem> m_items;
    QBitArray m_selectedRows;
    bool m_showsLocation = false;

    /// What of it is looked at.
    struct Sight {
        int first = 0;
        int last = -1;
        int edge = 0;
        friend bool operator==(const Sight &, const Sight &) = default;
    };
    ThumbnailStore *m_pictures = nullptr;
    FilePlace m_place;
    Sight m_sight;
};

/// The pane's selection as the toolkit's views and assistive technology know it. It is a mirror: what they
/// ask it to select is passed on to the pane, and shows here when the pane has done it.
class FileSelectionModel : public QItemSelectionModel {
    Q_OBJECT

public:
    explicit FileSelectionModel(FileItemsModel *model, QObject *parent = nullptr);

    using QItemSelectionModel::select;
    void select(const QItemSelection &selection, SelectionFlags command) override;

Q_SIGNALS:
    /// The user wants the entry's mark to change.
    void toggled(const FileItem &item);

private:
    void mirror();

    FileItemsModel *m_model;
};

} // namespace vantrel
