#include "Views/FileGridView.h"

#include "Views/FileGridCell.h"

#include <algorithm>

namespace vantrel {

FileGridGeometry::FileGridGeometry(int width) : cellHeight(FileGridCellGeometry::height()) {
    const int available = std::max(0, width - 2 * inset);
    columns = std::max(1, (available + spacing) / (minColumnWidth + spacing));
    columnWidth = std::clamp((available - (columns - 1) * spacing) / columns, minColumnWidth, maxColumnWidth);
    const int used = columns * columnWidth + (columns - 1) * spacing;
    left = inset + std::max(0, available - used) / 2;
}

QRect FileGridGeometry::cell(qsizetype index) const {
    const int line = int(index / columns);
    const int column = int(index % columns);
    return {left + column * (columnWidth + spacing), inset + line * pitch(), columnWidth, cellHeight};
}

int FileGridGeometry::contentHeight(qsizetype count) const {
    const int lines = int((count + columns - 1) / columns);
    return lines == 0 ? 0 : 2 * inset + lines * pitch() - spacing;
}

FileGridView::FileGridView(QWidget *parent) : FileItemsView(parent) {
    setObjectName(QStringLiteral("fileGrid"));
}

int FileGridView::contentHeight() const {
    return geometryNow().contentHeight(count());
}

int FileGridView::columns() const {
    return geometryNow().columns;
}

int FileGridView::pitch() const {
    return geometryNow().pitch();
}

QRect FileGridView::rectOf(qsizetype index) const {
    return geometryNow().cell(index);
}

FileItemsView::Range FileGridView::entriesBetween(int top, int bottom) const {
    const FileGridGeometry grid = geometryNow();
    const auto lineAt = [&grid](int y) { return std::max(0, y - FileGridGeometry::inset) / grid.pitch(); };
    return {lineAt(top) * grid.columns, (lineAt(bottom) + 1) * grid.columns - 1};
}

bool FileGridView::looksSame(const FileEntry &a, const FileEntry &b) const {
    return FileGridCell{a} == FileGridCell{b};
}

FileEntry::Part FileGridView::partAt(const FileEntry &entry, const QRect &rect, const QPoint &point) const {
    return FileGridCell{entry}.hitTest(rect, point);
}

bool FileGridView::cutsName(const FileEntry &entry, const QRect &rect) const {
    return FileGridCell{entry}.cutsName(rect);
}

void FileGridView::paintEntry(QPainter &painter, const FileEntry &entry, const QRect &rect) const {
    FileGridCell{entry}.paint(painter, rect);
}

} // namespace vantrel
