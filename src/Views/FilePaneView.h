#pragma once

#include "Views/FilePane.h"

#include <QWidget>

class QLineEdit;
class QSlider;

namespace vantrel {

class ColumnButton;
class EmptinessView;
class FileGridView;
class FileItemsModel;
class FileItemsView;
class IconButton;
class PaneState;
class PathBar;
class ScopePicker;
class SelectAllBox;
class TextLabel;

/// A file browser: a title, a path, tools, a search row, the entries as a list or a grid, a footer. It knows
/// neither phone nor computer; it shows a FilePane and the entries of a PaneState, and reports what the user
/// does through the FilePane's callbacks.
///
/// Long texts are shortened; none makes the pane wider.
class FilePaneView : public QWidget {
public:
    /// The state must outlive the view.
    explicit FilePaneView(const PaneState &state, QWidget *parent = nullptr);

    /// Shows this, and the entries as they are now. Only what differs is touched.
    void setPane(const FilePane &pane);
    [[nodiscard]] const FilePane &pane() const { return m_pane; }

    /// Gives the keyboard to the entries, with its ring.
    void takeFocus();
    /// Lets the path be typed.
    void editPath();
    /// Shows the details of the entry that has the ring, or of what is selected.
    void showDetails();

    /// The same for every pane, whatever it shows: two of them share a width equally.
    [[nodiscard]] QSize sizeHint() const override { return {480, 480}; }
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    [[nodiscard]] QWidget *makeHeader();
    [[nodiscard]] QSlider *makeTileSlider();
    void setTileSize(int size);
    [[nodiscard]] QWidget *makeSearchBar();
    [[nodiscard]] ColumnButton *makeColumn(const QString &name, FileSortKey key);
    [[nodiscard]] QWidget *makeColumnHeaders();
    [[nodiscard]] QWidget *makeGridSelectAllBar();
    [[nodiscard]] QWidget *makeFooter();

    void showTools();
    void showSearch();
    void showSelectAll();
    void showOrder();
    void fitColumns();
    void showEntries();
    void announceEntries();
    [[nodiscard]] bool isGrid() const;
    [[nodiscard]] FileItemsView *entries() const;

    void open(const FileItem &item) const;
    void select(const FileItem &item);
    void clearSearch();
    [[nodiscard]] const FileItem *folderAt(const QPointF &place) const;
    void showFooter();
    void showDrop(const QDropEvent *event);
    void toggleSelectAll() const;
    void showContextMenu(const FileItem &item, const QPoint &position);

    const PaneState &m_state;
    FileItemsModel *m_items;
    FilePane m_pane;
    QString m_dropText;    ///< what a drop would do, while something is dragged over the pane
    bool m_isFirst = true; ///< nothing was shown yet

    QWidget *m_header;
    TextLabel *m_title;
    PathBar *m_path;
    QList<std::pair<IconButton *, std::function<void()> FilePane::*>> m_actions; ///< and what they call
    QList<IconButton *> m_placeTools; ///< of a side with more than one place to begin at
    IconButton *m_back = nullptr;
    IconButton *m_newFolder;
    IconButton *m_listTool;
    IconButton *m_gridTool;
    QSlider *m_tileSlider;

    QWidget *m_searchBar;
    QLineEdit *m_searchField;
    ScopePicker *m_scopePicker;
    IconButton *m_clearSearch;

    QWidget *m_columnHeaders = nullptr;
    SelectAllBox *m_columnSelectAll;
    QList<ColumnButton *> m_columns; ///< over the list and over the grid
    QWidget *m_gridBar;
    SelectAllBox *m_gridSelectAll;
    TextLabel *m_gridSelectAllTitle;

    FileItemsView *m_list;
    FileGridView *m_grid;
    EmptinessView *m_emptiness;

    QWidget *m_footer;
    TextLabel *m_footerLeading;
    TextLabel *m_footerTrailing;
};

} // namespace vantrel
