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

FileGridView::FileGridView(FileItemsModel *model, FileSelectionModel *selection, QWidget *parent)
    : FileItemsView(model, selection, new FileGridCellDelegate, parent),
      m_cells(static_cast<FileGridCellDelegate *>(itemDelegate())), m_geometry(width()),
      m_widths(FileGridCellGeometry::nameStyle) {
    connect(model, &FileItemsModel::followed, this, &FileGridView::takeOtherNames);
}

// -- Layout

const FileGridGeometry &FileGridView::geometry() const {
    if (!std::exchange(m_isStale, false))
        return m_geometry;
    const QList<FileItem> &items = static_cast<const FileItemsModel *>(model())->items();
    const int column = m_geometry.columnWidth;
    const double tile = m_geometry.tileHeight;
    const int heights[] = {FileGridCellGeometry::height(tile, 1), FileGridCellGeometry::height(tile, 2)};
    int mayLayOut = 200; // names; the others that only that would tell get the room of two lines
    keepKnownNames(items);
    m_geometry.layOut(int(items.size()), [&](int row) {
        NameRoom &room = m_nameRooms[row];
        if (room.column != column) {
            const float spare = float(column) - room.width.about;
            const bool isSure = qAbs(spare) > room.width.within;
            const bool isOne =
                isSure ? spare > 0
                       : mayLayOut-- > 0 &&
                             wrappedLines(items.at(row).name, FileGridCellGeometry::nameStyle, column, 2)
                                     .size() < 2;
            room.lines = isOne ? 1 : 2;
            room.column = column;
        }
        return heights[room.lines - 1];
    });
    return m_geometry;
}

/// What is known of a name stays with it: mostly some entries have left, as those that a search does not
/// find, or some have come, and the others follow each other as before. A name is known again by where its
/// text lies, since comparing it takes as long as measuring it.
void FileGridView::keepKnownNames(const QList<FileItem> &items) const {
    if (m_laidOut.isSharedWith(items))
        return;
    const QList<FileItem> before = std::exchange(m_laidOut, items); // until here its texts lie where they lay
    const QList<NameRoom> known = std::exchange(m_nameRooms, QList<NameRoom>(items.size()));
    qsizetype left = std::max<qsizetype>(0, known.size() - items.size());
    qsizetype came = std::max<qsizetype>(0, items.size() - known.size());
    auto old = known.begin();
    for (qsizetype row = 0; row < items.size(); ++row) {
        const QString &name = items.at(row).name;
        const auto isKnown = [&] {
            return old != known.end() && old->name.data() == name.constData() &&
                   old->name.size() == name.size();
        };
        for (; left > 0 && !isKnown(); --left)
            ++old;
        if (isKnown()) {
            m_nameRooms[row] = *old++;
            continue;
        }
        m_nameRooms[row] = {name, m_widths.widthOf(name)};
        if (came > 0)
            --came;
        else if (old != known.end())
            ++old; // another one is at its place
    }
}

void FileGridView::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                               const QList<int> &roles) {
    FileItemsView::dataChanged(topLeft, bottomRight, roles);
    if (!roles.isEmpty() || m_isStale || m_hasOtherNames) // no other name, or it will be looked at anyway
        return;
    const QList<FileItem> &items = static_cast<const FileItemsModel *>(model())->items();
    for (int row = topLeft.row(); row <= bottomRight.row() && !m_hasOtherNames; ++row)
        m_hasOtherNames = items.at(row).name != m_laidOut.at(row).name;
}

/// Once for all the changes that come together: a name may take another number of lines.
void FileGridView::takeOtherNames() {
    if (!std::exchange(m_hasOtherNames, false) || m_isStale)
        return;
    const FileGridGeometry before = m_geometry;
    forgetLayout();
    if (isVisible() && geometry() != before) {
        updateGeometries();
        viewport()->update();
    }
}

/// Lays the tiles out for another width or size, if that is of any consequence.
void FileGridView::fit(int width) {
    const FileGridGeometry fitting(width, m_tileSize);
    if (fitting.isLike(m_geometry))
        return;
    m_geometry = fitting;
    m_cells->setTileHeight(m_geometry.tileHeight);
    forgetLayout();
    viewport()->update();
}

void FileGridView::setTileSize(int size) {
    if (std::exchange(m_tileSize, size) == size)
        return;
    const PanePlace before = isVisible() ? place() : PanePlace();
    const bool isAtTop = verticalScrollBar()->value() == 0;
    fit(viewport()->width());
    if (!isVisible())
        return;
    updateGeometries();
    if (!isAtTop)
        scrollTo(model()->index(before.row, 0), PositionAtTop);
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
    const auto [first, last] = rowsInSight();
    // A photo that stands upright is higher than its tile, of which it fills the width.
    const double longest = m_geometry.maxColumnWidth * 4 / 3.0 * devicePixelRatioF();
    static_cast<FileItemsModel *>(model())->look(first, last, int(longest));
}

void FileGridView::changeEvent(QEvent *event) {
    if (event->type() == QEvent::FontChange) { // texts appear in another size
        m_widths = WidthTable(FileGridCellGeometry::nameStyle);
        m_laidOut.clear();
        m_nameRooms.clear();
        forgetLayout();
        if (isVisible()) {
            updateGeometries();
            viewport()->update();
        }
    }
    FileItemsView::changeEvent(event);
}

void FileGridView::hideEvent(QHideEvent *event) {
    FileItemsView::hideEvent(event);
    static_cast<FileItemsModel *>(model())->look(0, -1, 0);
}

void FileGridView::resizeEvent(QResizeEvent *event) {
    fit(event->size().width());
    FileItemsView::resizeEvent(event);
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
    const auto [first, last] = rowsBetween(rect.top() + verticalOffset(), rect.bottom() + verticalOffset());
    for (int row = first; row <= last; ++row) {
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
