#include "Views/FileGridView.h"

#include "Views/FileDelegate.h"
#include "Views/FileGridCell.h"

#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>

namespace vantrel {

FileGridGeometry::FileGridGeometry(int width) {
    const int available = std::max(0, width - 2 * inset);
    columns = std::max(1, (available + spacing) / (minColumnWidth + spacing));
    columnWidth = std::clamp((available - (columns - 1) * spacing) / columns, minColumnWidth, maxColumnWidth);
    const int used = columns * columnWidth + (columns - 1) * spacing;
    left = inset + std::max(0, available - used) / 2;
}

FileGridView::FileGridView(FileItemsModel *model, FileSelectionModel *selection, QWidget *parent)
    : FileItemsView(model, selection, new FileGridCellDelegate, parent),
      m_cells(static_cast<FileGridCellDelegate *>(itemDelegate())), m_geometry(0) {
    setFlow(LeftToRight);
    setWrapping(true);
    fit(width());
}

void FileGridView::fit(int width) {
    const FileGridGeometry geometry(width);
    if (geometry == m_geometry)
        return;
    m_geometry = geometry;
    const QSize cell(m_geometry.columnWidth, FileGridCellGeometry::height());
    m_cells->setCellSize(cell);
    setGridSize(cell + QSize(FileGridGeometry::spacing, FileGridGeometry::spacing));
}

void FileGridView::updateGeometries() {
    QScrollBar *bar = verticalScrollBar();
    const int place = bar->value();
    FileItemsView::updateGeometries();
    // An inset above and one below; after the last line there is no spacing.
    if (model()->rowCount() > 0) {
        constexpr int more = 2 * FileGridGeometry::inset - FileGridGeometry::spacing;
        bar->setMaximum(std::max(0, contentsSize().height() + more - viewport()->height()));
        bar->setValue(place);
    }
}

void FileGridView::resizeEvent(QResizeEvent *event) {
    fit(event->size().width());
    FileItemsView::resizeEvent(event);
    // The toolkit takes its time; tiles that lag behind the window's edge look broken.
    if (isVisible())
        executeDelayedItemsLayout();
}

} // namespace vantrel
