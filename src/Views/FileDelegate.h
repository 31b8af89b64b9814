#pragma once

#include "Views/FileEntry.h"

#include <QAbstractItemDelegate>

namespace vantrel {

/// How a view paints the entries of a FileItemsModel, and what lies where in one of them.
class FileDelegate : public QAbstractItemDelegate {
    Q_OBJECT

public:
    [[nodiscard]] static FileEntry entry(const QModelIndex &index);

    [[nodiscard]] virtual FileEntry::Part partAt(const FileEntry &entry, const QRect &rect,
                                                 const QPoint &point) const = 0;
    /// Whether it is of any consequence to the look.
    [[nodiscard]] virtual bool showsModified() const = 0;
    /// Of the focus ring's corners, in layout pixels.
    [[nodiscard]] virtual double focusRadius() const = 0;

    /// A name that is cut shows in full while the mouse rests on its entry.
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    using QAbstractItemDelegate::QAbstractItemDelegate;

    /// Whether the name is too long to be shown in full.
    [[nodiscard]] virtual bool cutsName(const FileEntry &entry, const QRect &rect) const = 0;
};

/// A FileRow with a divider under it.
class FileRowDelegate : public FileDelegate {
    Q_OBJECT

public:
    /// How far the dividers are indented from the left.
    static constexpr int dividerIndent = 40;

    using FileDelegate::FileDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    [[nodiscard]] FileEntry::Part partAt(const FileEntry &entry, const QRect &rect,
                                         const QPoint &point) const override;
    [[nodiscard]] bool showsModified() const override { return true; }
    [[nodiscard]] double focusRadius() const override { return 4; }

protected:
    [[nodiscard]] bool cutsName(const FileEntry &entry, const QRect &rect) const override;
};

/// A FileGridCell.
class FileGridCellDelegate : public FileDelegate {
    Q_OBJECT

public:
    using FileDelegate::FileDelegate;

    /// What every cell takes, in layout pixels.
    void setCellSize(const QSize &size) { m_cellSize = size; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    [[nodiscard]] FileEntry::Part partAt(const FileEntry &entry, const QRect &rect,
                                         const QPoint &point) const override;
    [[nodiscard]] bool showsModified() const override { return false; }
    [[nodiscard]] double focusRadius() const override { return 10; }

protected:
    [[nodiscard]] bool cutsName(const FileEntry &entry, const QRect &rect) const override;

private:
    QSize m_cellSize;
};

} // namespace vantrel
