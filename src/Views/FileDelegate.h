#pragma once

#include "Views/FileGridCell.h"
#include "Views/FileRow.h"

#include <QAbstractItemDelegate>

namespace vantrel {

/// How a view paints the entries of a FileItemsModel, and what lies where in one of them.
class FileDelegate : public QAbstractItemDelegate {
public:
    [[nodiscard]] static FileEntry entry(const QModelIndex &index);

    [[nodiscard]] virtual FileEntry::Part partAt(const FileEntry &entry, const QRect &rect,
                                                 const QPoint &point) const = 0;
    /// Whether it is of any consequence to the look.
    [[nodiscard]] virtual bool showsModified() const = 0;
    /// Of the focus ring's corners, in layout pixels.
    [[nodiscard]] virtual double focusRadius() const = 0;

    /// Nothing: the views know where each entry lies.
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override {
        return {};
    }
    /// A name that is cut shows in full while the mouse rests on its entry.
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    /// Whether the name is too long to be shown in full.
    [[nodiscard]] virtual bool cutsName(const FileEntry &entry, const QRect &rect) const = 0;
};

/// What a FileRow and a FileGridCell answer alike.
template <class Cell>
class FileCellDelegate : public FileDelegate {
public:
    [[nodiscard]] FileEntry::Part partAt(const FileEntry &entry, const QRect &rect,
                                         const QPoint &point) const override {
        return Cell{entry}.hitTest(rect, point);
    }
    [[nodiscard]] bool showsModified() const override { return Cell::showsModified; }
    [[nodiscard]] double focusRadius() const override { return Cell::radius; }

protected:
    [[nodiscard]] bool cutsName(const FileEntry &entry, const QRect &rect) const override {
        return Cell{entry}.cutsName(rect);
    }
};

/// A FileRow with a divider under it.
class FileRowDelegate : public FileCellDelegate<FileRow> {
public:
    /// Of a row with its divider, in layout pixels.
    [[nodiscard]] static int height(bool showsLocation);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};

/// A FileGridCell.
class FileGridCellDelegate : public FileCellDelegate<FileGridCell> {
public:
    /// What of a cell is the tile's, in layout pixels.
    void setTileHeight(double height) { m_tileHeight = height; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

private:
    double m_tileHeight = FileGridCellGeometry::standardTileHeight;
};

} // namespace vantrel
