#pragma once

#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"
#include "Views/FileEntry.h"

#include <QImage>
#include <QRectF>

class QPainter;

namespace vantrel {

/// Where the parts of a grid cell lie inside its rectangle, in layout pixels.
struct FileGridCellGeometry {
    static constexpr double standardTileHeight = 72;
    static constexpr int nameLines = 2; ///< at most
    static constexpr TextStyle nameStyle{11, Weight::semibold};

    explicit FileGridCellGeometry(const QRectF &rect, double tileHeight = standardTileHeight);

    /// Of a cell whose name takes so many lines.
    [[nodiscard]] static int height(double tileHeight = standardTileHeight, int lines = nameLines);

    QRectF tile;
    QRectF badge;
    QRectF badgeTarget; ///< the badge with its margin: what a click on the mark has to hit
    QRectF name;        ///< room for nameLines lines
    QRectF caption;     ///< below a name of one line; a second line moves it down
};

/// One entry in the grid layout.
struct FileGridCell : FileEntry {
    static constexpr bool showsModified = false;
    static constexpr double radius = 10; ///< of the tile, and of the focus ring

    QImage picture = {}; ///< null: the symbol stands for it
    double tileHeight = FileGridCellGeometry::standardTileHeight;

    /// As in the list, but pictures have their own.
    [[nodiscard]] QString icon() const;
    [[nodiscard]] ThemeColor iconColor() const;

    [[nodiscard]] Part hitTest(const QRectF &rect, const QPointF &point) const;
    /// Whether the name is too long to be shown in full.
    [[nodiscard]] bool cutsName(const QRectF &rect) const;
    void paint(QPainter &painter, const QRectF &rect) const;

private:
    void paintTile(QPainter &painter, const FileGridCellGeometry &parts) const;
};

} // namespace vantrel
