#pragma once

#include "Views/FileItemsView.h"

namespace vantrel {

/// Where the cells of a grid lie: as many columns as fit, each between minColumnWidth and maxColumnWidth wide
/// and all of one width. Layout pixels; pixels that do not go into whole columns are shared by both sides.
struct FileGridGeometry {
    static constexpr int inset = 12; ///< on every side
    static constexpr int spacing = 10;
    static constexpr int minColumnWidth = 96;
    static constexpr int maxColumnWidth = 120;

    explicit FileGridGeometry(int width);

    int columns;
    int columnWidth;
    int left; ///< of the first column
    int cellHeight;

    [[nodiscard]] int pitch() const { return cellHeight + spacing; }
    [[nodiscard]] QRect cell(qsizetype index) const;
    [[nodiscard]] int contentHeight(qsizetype count) const;
};

/// The entries in lines of tiles, a FileGridCell each.
class FileGridView : public FileItemsView {
    Q_OBJECT

public:
    explicit FileGridView(QWidget *parent = nullptr);

protected:
    [[nodiscard]] int contentHeight() const override;
    [[nodiscard]] int columns() const override;
    [[nodiscard]] int pitch() const override;
    [[nodiscard]] QRect rectOf(qsizetype index) const override;
    [[nodiscard]] Range entriesBetween(int top, int bottom) const override;

    [[nodiscard]] bool looksSame(const FileEntry &a, const FileEntry &b) const override;
    [[nodiscard]] FileEntry::Part partAt(const FileEntry &entry, const QRect &rect,
                                         const QPoint &point) const override;
    [[nodiscard]] bool cutsName(const FileEntry &entry, const QRect &rect) const override;
    void paintEntry(QPainter &painter, const FileEntry &entry, const QRect &rect) const override;
    [[nodiscard]] double focusRadius() const override { return 10; }

private:
    [[nodiscard]] FileGridGeometry geometryNow() const { return FileGridGeometry(viewport()->width()); }
};

} // namespace vantrel
