#pragma once

#include "Theme/AppTheme.h"
#include "Views/FileEntry.h"

#include <QRectF>

class QPainter;

namespace vantrel {

/// Where the parts of a list row lie inside its rectangle, in layout pixels. The columns never overlap,
/// however narrow the row: what does not fit runs out on the right.
struct FileRowGeometry {
    static constexpr double inset = 12; ///< left and right
    static constexpr double checkboxWidth = 28;
    static constexpr double sizeWidth = 88;
    static constexpr double modifiedWidth = 100;

    FileRowGeometry(const QRectF &rect, bool showsLocation);

    [[nodiscard]] static int height(bool showsLocation);

    QRectF checkbox; ///< the mark's cell, as high as the row
    QRectF icon;
    QRectF name;
    QRectF location; ///< empty unless shown
    QRectF size;
    QRectF modified;
};

/// One entry in the list layout.
struct FileRow : FileEntry {
    static constexpr bool showsModified = true;
    static constexpr double radius = 4; ///< of the focus ring

    /// The symbol and its colour; of a file, from the end of its name.
    [[nodiscard]] QString icon() const;
    [[nodiscard]] ThemeColor iconColor() const;

    [[nodiscard]] Part hitTest(const QRectF &rect, const QPointF &point) const;
    /// Whether the name is too long to be shown in full.
    [[nodiscard]] bool cutsName(const QRectF &rect) const;
    void paint(QPainter &painter, const QRectF &rect) const;
};

} // namespace vantrel
