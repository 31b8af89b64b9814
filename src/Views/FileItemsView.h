#pragma once

#include "Records/Pane.h"
#include "Views/FileEntry.h"

#include <QAbstractItemView>
#include <QElapsedTimer>

#include <optional>
#include <utility>

namespace vantrel {

class FileDelegate;
class FileItemsModel;
class FileSelectionModel;

/// The scrolled entries of a pane. They stand in lines, from top to bottom and from left to right in each;
/// where, the subclass knows: of one column or of several.
///
/// The mouse selects, toggles and opens; with Shift it selects all from the entry that was clicked last, with
/// Control it toggles. The keys move a focus ring, which begins at that entry or, for who arrives with Tab,
/// at the first in sight, and leave the selection alone: Space toggles, Shift with a movement selects what it
/// passes. So assistive technology has a focus to follow. Letters go to the next name that begins with them.
class FileItemsView : public QAbstractItemView {
    Q_OBJECT

public:
    /// Owns the delegate. The model and the selection may be shared by several views.
    FileItemsView(FileItemsModel *model, FileSelectionModel *selection, FileDelegate *delegate,
                  QWidget *parent = nullptr);

    /// Shows the first entries, and has the keyboard begin there.
    void startAtTop();
    /// What is in sight, and showing it again: as far as it is still there.
    [[nodiscard]] PanePlace place() const;
    void showPlace(const PanePlace &place);
    /// Tells assistive technology that another entry may stand where the ring is.
    void announceFocus();
    /// Takes the keyboard from a control that goes away, with the ring: who was there works with keys.
    void takeFocus() { setFocus(Qt::TabFocusReason); }
    /// The entry that has the focus ring; invalid when none has.
    [[nodiscard]] QModelIndex focusedIndex() const;

    /// Marks the folder that a drop would copy into; an invalid one takes the mark away.
    void setDropTarget(const QModelIndex &folder);

    /// The entries in sight, the first and the last; the last is before the first where there are none.
    [[nodiscard]] std::pair<int, int> rowsInSight() const;

    [[nodiscard]] QRect visualRect(const QModelIndex &index) const override;
    [[nodiscard]] QModelIndex indexAt(const QPoint &point) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QList<int> &roles = {}) override;

Q_SIGNALS:
    void toggled(const FileItem &item);
    void selected(const FileItem &item);
    /// A range of entries is to be selected, or is no longer.
    void ranged(const QList<FileItem> &items, bool isSelected);
    void opened(const FileItem &item);
    /// The mouse has begun to drag the entry.
    void dragged(const FileItem &item);
    void contextMenuRequested(const FileItem &item, const QPoint &globalPosition);
    /// While the view is seen: place() has changed.
    void placeChanged();

protected:
    // -- The layout, in pixels of the content. It is that of the model as it was at forgetLayout() or later.

    /// How many entries stand side by side.
    [[nodiscard]] virtual int columns() const = 0;
    /// The line at a height, or the nearest; 0 where there is none.
    [[nodiscard]] virtual int lineAt(int y) const = 0;
    [[nodiscard]] virtual QRect rectOf(int row) const = 0;
    [[nodiscard]] virtual int contentHeight() const = 0;
    /// Something in the model has changed that may be of consequence for it.
    virtual void forgetLayout() {}

    /// The entries of the lines between two heights, the first and the last.
    [[nodiscard]] std::pair<int, int> rowsBetween(int top, int bottom) const;
    void updateGeometries() override;
    [[nodiscard]] int horizontalOffset() const override { return 0; }
    [[nodiscard]] int verticalOffset() const override;
    [[nodiscard]] bool isIndexHidden(const QModelIndex &) const override { return false; }
    void scrollContentsBy(int dx, int dy) override;

    void reset() override;
    void doItemsLayout() override;
    void paintEvent(QPaintEvent *event) override;
    void rowsInserted(const QModelIndex &parent, int start, int end) override;
    void rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end) override;
    void setSelection(const QRect &, QItemSelectionModel::SelectionFlags) override {} // the pane selects
    /// What a change of the selection repaints: the model has told.
    [[nodiscard]] QRegion visualRegionForSelection(const QItemSelection &) const override { return {}; }
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &,
                                                                       const QEvent *) const override {
        return QItemSelectionModel::NoUpdate; // the pane selects
    }

private:
    struct Target {
        QUuid id;
        FileEntry::Part part;
        friend bool operator==(const Target &, const Target &) = default;
    };

    void layOutRows();
    void updateRows(int first, int last);
    [[nodiscard]] std::optional<Target> targetAt(const QPoint &point) const;
    void click(const Target &target, const FileItem &item, Qt::KeyboardModifiers modifiers);
    void extendTo(int row);
    void showFocus();
    void hideFocus();

    FileDelegate *m_delegate;
    std::optional<Target> m_pressed;
    QPoint m_pressedAt;
    QPersistentModelIndex m_dropTarget;
    std::optional<Target> m_clicked; ///< the last one, which a second click may make a double click
    QPersistentModelIndex m_anchor;  ///< where a range begins
    std::optional<int> m_rangeEnd;   ///< the row that the range from there has reached
    QElapsedTimer m_typing;          ///< since the last letter of a name
    bool m_showsFocus = false;
};

/// Gives the keyboard to the entries of the window's first pane, if it has one. For controls that have to
/// give it up and have nothing harmless beside them.
void focusEntries(const QWidget *window);

} // namespace vantrel
