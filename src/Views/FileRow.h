#pragma once

#include "Theme/AppTheme.h"
#include "Views/FileEntry.h"

#include <QRectF>

class QPainter;

namespace vantrel {

/// Where the parts of a list row lie inside its rectangle, in layout pixels. The columns never overlap,
/// however narrow the row: what does not fit runs out at its end.
struct FileRowGeometry {
    static constexpr double inset = 12; ///< on either side
    static constexpr double checkboxWidth = 28;
    /// As wide as what they show at most, with texts as large as they appear.
    [[nodiscard]] static double sizeWidth();
    [[nodiscard]] static double modifiedWidth();
    /// Whether a row of this width has room for the date: large texts leave more to the name.
    [[nodiscard]] static bool showsModified(double rowWidth);

    FileRowGeometry(const QRectF &rect, bool showsLocation);

    [[nodiscard]] static int height(bool showsLocation);

    QRectF checkbox; ///< the mark's cell, as high as the row
    QRectF icon;
    QRectF name;
    QRectF location; ///< empty unless shown
    QRectF size;
    QRectF modified; ///< empty where there is no room for it
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
