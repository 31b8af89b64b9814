#pragma once

#include "Views/FileEntry.h"

#include <QListView>

#include <optional>

namespace vantrel {

class FileDelegate;
class FileItemsModel;
class FileSelectionModel;

/// The scrolled entries of a pane, one below the other; FileGridView shows tiles.
///
/// The mouse selects, toggles and opens. The keyboard has no part in the selection of those who work with the
/// mouse: the arrow keys scroll. Who arrives with Tab gets a focus ring on one entry, which the arrow keys
/// move and whose mark Space toggles; so assistive technology has a focus to follow.
class FileItemsView : public QListView {
    Q_OBJECT

public:
    /// Owns the delegate. The model and the selection may be shared by several views.
    FileItemsView(FileItemsModel *model, FileSelectionModel *selection, FileDelegate *delegate,
                  QWidget *parent = nullptr);

    /// Shows the first entries, and has the keyboard begin there.
    void startAtTop();
    /// Tells assistive technology that another entry may stand where the ring is.
    void announceFocus();
    /// Takes the keyboard from a control that goes away, with the ring: who was there works with keys.
    void takeFocus() { setFocus(Qt::TabFocusReason); }
    /// The entry that has the focus ring; invalid when none has.
    [[nodiscard]] QModelIndex focusedIndex() const;

    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QList<int> &roles = {}) override;

Q_SIGNALS:
    void toggled(const FileItem &item);
    void selected(const FileItem &item);
    void opened(const FileItem &item);
    void contextMenuRequested(const FileItem &item, const QPoint &globalPosition);

protected:
    /// How many entries stand side by side, and how far the tops of two such lines are apart.
    [[nodiscard]] virtual int columns() const { return 1; }
    [[nodiscard]] virtual int pitch() const;
    [[nodiscard]] int firstVisibleRow() const;

    void paintEvent(QPaintEvent *event) override;
    void updateGeometries() override;
    void rowsInserted(const QModelIndex &parent, int start, int end) override;
    void rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end) override;
    /// What a change of the selection repaints: the model has told.
    [[nodiscard]] QRegion visualRegionForSelection(const QItemSelection &) const override { return {}; }
    /// Of two views on one selection, only the one that is seen tells of it.
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override {
        if (isVisible())
            QListView::selectionChanged(selected, deselected);
    }
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
    [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                                       const QEvent *event) const override;

private:
    struct Target {
        QUuid id;
        FileEntry::Part part;
        friend bool operator==(const Target &, const Target &) = default;
    };

    void layOutRows();
    void updateRows(int first, int last);
    [[nodiscard]] std::optional<Target> targetAt(const QPoint &point) const;
    void click(const Target &target, const FileItem &item);
    void showFocus();
    void hideFocus();

    FileDelegate *m_delegate;
    std::optional<Target> m_pressed;
    std::optional<Target> m_clicked; ///< the last one, which a second click may make a double click
    bool m_showsFocus = false;
};

/// Gives the keyboard to the entries of the window's first pane, if it has one. For controls that have to
/// give it up and have nothing harmless beside them.
void focusEntries(const QWidget *window);

} // namespace vantrel
