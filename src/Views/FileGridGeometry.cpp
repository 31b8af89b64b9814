#include "Views/FileGridGeometry.h"

namespace vantrel {

FileGridGeometry::FileGridGeometry(int width, int tileSize)
    : tileHeight(tileSize * 3 / 4.0), maxColumnWidth(tileSize * 5 / 4) {
    const int available = std::max(0, width - 2 * inset);
    columns = std::max(1, (available + spacing) / (tileSize + spacing));
    columnWidth = std::clamp((available - (columns - 1) * spacing) / columns, tileSize, maxColumnWidth);
    const int used = columns * columnWidth + (columns - 1) * spacing;
    left = inset + std::max(0, available - used) / 2;
}

bool FileGridGeometry::isLike(const FileGridGeometry &other) const {
    return columns == other.columns && columnWidth == other.columnWidth && left == other.left &&
           tileHeight == other.tileHeight;
}

int FileGridGeometry::height() const {
    return m_count == 0 ? 0 : m_tops.last() - spacing + inset;
}

int FileGridGeometry::lineAt(int y) const {
    if (m_count == 0)
        return 0;
    const auto below = std::upper_bound(m_tops.begin(), m_tops.end() - 1, y);
    return std::max(0, int(below - m_tops.begin()) - 1);
}

QRect FileGridGeometry::rectOf(int row) const {
    if (row < 0 || row >= m_count)
        return {};
    const int line = row / columns;
    const int top = m_tops.at(line);
    return {left + row % columns * (columnWidth + spacing), top, columnWidth,
            m_tops.at(line + 1) - spacing - top};
}

} // namespace vantrel
