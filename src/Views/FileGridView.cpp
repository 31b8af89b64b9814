#include "Views/FileGridView.h"

#include "Kit/Shapes.h"
#include "Views/FileDelegate.h"
#include "Views/FileGridCell.h"
#include "Views/FileItemsModel.h"

#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>

namespace vantrel {

FileGridGeometry::FileGridGeometry(int width, int tileSize)
    : tileHeight(tileSize * 3 / 4.0), maxColumnWidth(tileSize * 5 / 4) {
    const int available = std::max(0, width - 2 * inset);
    columns = std::max(1, (available + spacing) / (tileSize + spacing));
    columnWidth = std::clamp((available - (columns - 1) * spacing) / columns, tileSize, maxColumnWidth);
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
    const FileGridGeometry geometry(width, m_tileSize);
    if (geometry == m_geometry)
        return;
    m_geometry = geometry;
    const QSize cell(m_geometry.columnWidth, FileGridCellGeometry::height(m_geometry.tileHeight));
    m_cells->setCellSize(cell, m_geometry.tileHeight);
    setGridSize(cell + QSize(FileGridGeometry::spacing, FileGridGeometry::spacing));
}

void FileGridView::setTileSize(int size) {
    if (std::exchange(m_tileSize, size) == size)
        return;
    const QModelIndex first = model()->index(firstVisibleRow(), 0);
    const bool isAtTop = verticalScrollBar()->value() == 0;
    fit(viewport()->width());
    if (!isVisible())
        return;
    executeDelayedItemsLayout();
    if (!isAtTop)
        scrollTo(first, PositionAtTop);
    viewport()->update();
}

void FileGridView::wheelEvent(QWheelEvent *event) {
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        FileItemsView::wheelEvent(event);
        return;
    }
    constexpr int notch = QWheelEvent::DefaultDeltasPerStep;
    m_turned += event->angleDelta().y();
    const int steps = m_turned / notch;
    m_turned -= steps * notch;
    if (steps != 0)
        Q_EMIT tileSizeStepped(steps);
    event->accept();
}

// -- Pictures

void FileGridView::lookAtVisible() {
    const int first = firstVisibleRow();
    int last = first - 1;
    while (last + 1 < model()->rowCount() &&
           visualRect(model()->index(last + 1, 0)).top() < viewport()->height())
        ++last;
    // A photo that stands upright is higher than its tile, of which it fills the width.
    const double longest = m_geometry.maxColumnWidth * 4 / 3.0 * devicePixelRatioF();
    static_cast<FileItemsModel *>(model())->look(first, last, int(longest));
}

void FileGridView::hideEvent(QHideEvent *event) {
    FileItemsView::hideEvent(event);
    static_cast<FileItemsModel *>(model())->look(0, -1, 0);
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

// -- Rubber band

QPoint FileGridView::scrolled() const {
    return {0, verticalScrollBar()->value()};
}

QRect FileGridView::bandRect() const {
    return QRect(m_band->from, m_band->to).normalized().translated(-scrolled());
}

QSet<int> FileGridView::rowsIn(const QRect &rect) const {
    QSet<int> rows;
    const int firstLine = std::max(0, (rect.top() + verticalOffset()) / pitch());
    const int lastLine = std::max(0, rect.bottom() + verticalOffset()) / pitch();
    const int last = std::min((lastLine + 1) * columns(), model()->rowCount());
    for (int row = firstLine * columns(); row < last; ++row) {
        if (visualRect(model()->index(row, 0)).intersects(rect))
            rows.insert(row);
    }
    return rows;
}

void FileGridView::stretchBand(const QPoint &to) {
    const auto *items = static_cast<const FileItemsModel *>(model());
    m_band->to = to + scrolled();
    const QSet<int> covered = rowsIn(bandRect());
    QList<FileItem> entered;
    QList<FileItem> left;
    QSet<int> selected;
    for (const int row : covered) {
        // What was selected before is none of the band's.
        if (m_band->selected.contains(row)) {
            selected.insert(row);
        } else if (!items->selectedRows().testBit(row)) {
            selected.insert(row);
            entered.append(items->items().at(row));
        }
    }
    for (const int row : std::as_const(m_band->selected)) {
        if (!covered.contains(row) && row < items->items().size())
            left.append(items->items().at(row));
    }
    m_band->selected = selected;
    viewport()->update();
    if (!left.isEmpty())
        Q_EMIT ranged(left, false);
    if (!entered.isEmpty())
        Q_EMIT ranged(entered, true);
}

void FileGridView::mousePressEvent(QMouseEvent *event) {
    FileItemsView::mousePressEvent(event);
    if (event->button() == Qt::LeftButton && !indexAt(event->pos()).isValid())
        m_band = RubberBand{event->pos() + scrolled(), event->pos() + scrolled(), {}};
}

void FileGridView::mouseMoveEvent(QMouseEvent *event) {
    if (!m_band) {
        FileItemsView::mouseMoveEvent(event);
        return;
    }
    const int beyond = event->pos().y() - std::clamp(event->pos().y(), 0, viewport()->height());
    verticalScrollBar()->setValue(verticalScrollBar()->value() + beyond);
    stretchBand(event->pos());
}

void FileGridView::mouseReleaseEvent(QMouseEvent *event) {
    if (std::exchange(m_band, std::nullopt))
        viewport()->update();
    FileItemsView::mouseReleaseEvent(event);
}

void FileGridView::paintEvent(QPaintEvent *event) {
    FileItemsView::paintEvent(event);
    lookAtVisible(); // what is painted is in sight, whatever brought it there
    if (!m_band || m_band->from == m_band->to)
        return;
    QPainter painter(viewport());
    paintCard(painter, bandRect(), 3, AppTheme::accentSoft(), AppTheme::accent().withOpacity(0.6));
}

} // namespace vantrel
