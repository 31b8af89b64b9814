#pragma once

#include "Records/Pane.h"

#include <QList>
#include <QRect>

#include <algorithm>

namespace vantrel {

/// Where the tiles of a grid lie, in layout pixels of its content: as many columns as fit, each between the
/// tiles' size and maxColumnWidth wide and all of one width; the user chooses the former. Pixels that do not
/// go into whole columns are shared by both sides. A line of tiles is as high as its highest tile. Nothing
/// here takes longer for many entries but layOut().
class FileGridGeometry {
public:
    static constexpr int inset = 12; ///< on every side
    static constexpr int spacing = 10;

    /// Of no entries yet, in so wide a view.
    explicit FileGridGeometry(int width, int tileSize = TileSize::standard);

    double tileHeight;
    int maxColumnWidth;
    int columns;
    int columnWidth;
    int left; ///< of the first column

    /// Puts `count` entries into lines; `heightOf(row)` is that of an entry's tile.
    template <typename HeightOf>
    void layOut(int count, HeightOf heightOf) {
        m_count = count;
        m_tops.clear();
        m_tops.reserve(count / columns + 2);
        m_tops.append(inset);
        for (int first = 0; first < count; first += columns) {
            int height = 0;
            for (int row = first; row < std::min(first + columns, count); ++row)
                height = std::max(height, heightOf(row));
            m_tops.append(m_tops.last() + height + spacing);
        }
    }

    /// Whether the columns and the tiles are those of the other, whatever lies in them.
    [[nodiscard]] bool isLike(const FileGridGeometry &other) const;
    /// Of the whole content, its insets included; 0 without entries.
    [[nodiscard]] int height() const;
    /// The line at a height of the content or, in a gap, the one above; one that is there as long as any is.
    [[nodiscard]] int lineAt(int y) const;
    /// As high as its line; empty for what is no entry.
    [[nodiscard]] QRect rectOf(int row) const;

    friend bool operator==(const FileGridGeometry &, const FileGridGeometry &) = default;

private:
    int m_count = 0;
    QList<int> m_tops; ///< of each line, and of the one that would follow
};

} // namespace vantrel
