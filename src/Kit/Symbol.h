#pragma once

#include "Kit/TextStyle.h"

#include <QSizeF>
#include <QString>

class QColor;
class QImage;
class QPainter;
class QRectF;

namespace vantrel {

/// An icon of the application's own family, drawn beside text: "folder.fill" at 13 semibold matches a 13
/// semibold text. The drawings lie in Resources/symbols, one SVG file per name, on a grid of 24 x 24.
///
/// In the files black is ink and white cuts through to the background; the first stroke width is the family's
/// and is replaced by the one of the weight.
struct Symbol {
    QString name;
    double size = 13; ///< layout pixels, as a text's size
    Weight weight = Weight::regular;

    [[nodiscard]] static bool exists(const QString &name);

    /// The square that the grid takes, in layout pixels: the drawing with its margin.
    [[nodiscard]] QSizeF naturalSize() const;

    /// Paints the symbol at its natural size, tinted with `color`, centred in `rect` and on whole device
    /// pixels. An unknown name is a mistake in the program: it asserts, and paints nothing.
    void paint(QPainter &painter, const QRectF &rect, const QColor &color) const;

    friend bool operator==(const Symbol &, const Symbol &) = default;
};

/// The names of the arrows that point to where lines begin, as going back does, and to where they end.
[[nodiscard]] QString backChevron();
[[nodiscard]] QString forwardChevron();

} // namespace vantrel
