#pragma once

#include <QFont>
#include <QRectF>
#include <QString>
#include <QStringList>

class QColor;
class QPainter;
class QWidget;

namespace vantrel {

/// Weight of a text or of a symbol beside it.
enum class Weight {
    regular = QFont::Normal,
    medium = QFont::Medium,
    semibold = QFont::DemiBold,
    bold = QFont::Bold,
};

enum class FontDesign { standard, monospaced };

/// Where the "…" goes when a line is too long.
enum class Elision { end, middle };

/// How many times as large as its style says a text appears, as the user has told the desktop; 1 at first.
[[nodiscard]] double textScale();
/// Within what the window has room for. AppStyle tells the widgets.
void setTextScale(double scale);
/// A length that is there for a text, such as a column's width, for texts as large as they appear; in whole
/// layout pixels.
[[nodiscard]] int withTexts(double length);

/// How a text looks. All sizes are layout pixels; half pixels count.
struct TextStyle {
    double size = 13;
    Weight weight = Weight::regular;
    FontDesign design = FontDesign::standard;
    double tracking = 0; ///< extra space after each letter

    /// The font for what the toolkit draws itself (see setTextStyle()): Inter where it is installed, else
    /// the system's; the system's fixed font when monospaced. The toolkit rounds its size to whole pixels, so
    /// views measure and paint with the functions below, which do not.
    [[nodiscard]] QFont font() const;
    /// Height of one line in whole layout pixels.
    [[nodiscard]] int lineHeight() const;
    /// Width of `text` on one line.
    [[nodiscard]] double width(const QString &text) const;

    friend bool operator==(const TextStyle &, const TextStyle &) = default;
};

/// `text` in a form that cannot deceive: what would reorder or break the line (bidirectional embeddings,
/// overrides, isolates and marks, control characters) is shown as a visible sign instead of being obeyed. A
/// line break shows as "↵". Everything below does this to the text it is given.
[[nodiscard]] QString displayText(const QString &text);

/// `text` on one line, shortened with "…" to at most `width`; empty when not even the "…" fits.
[[nodiscard]] QString elidedText(const QString &text, const TextStyle &style, double width,
                                 Elision elision = Elision::end);

/// `text` broken into at most `maximumLines` lines of at most `width`, between words where possible; what
/// does not fit is cut off the end of the last line with "…".
[[nodiscard]] QStringList wrappedLines(const QString &text, const TextStyle &style, double width,
                                       int maximumLines);

/// Gives a widget of the toolkit's, such as a text field, the style's font, and keeps it as large as texts
/// appear.
void setTextStyle(QWidget *widget, const TextStyle &style);

/// Paints one line into `rect`, shortened when it is too long. Left is where lines begin: on the right for
/// those who read from there, unless the alignment is absolute.
void paintText(QPainter &painter, const QRectF &rect, const QString &text, const TextStyle &style,
               const QColor &color, Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter,
               Elision elision = Elision::end);

/// Paints up to `maximumLines` lines from the top of `rect`; `alignment` is the horizontal one. Returns how
/// many lines there are.
int paintLines(QPainter &painter, const QRectF &rect, const QString &text, const TextStyle &style,
               const QColor &color, int maximumLines, Qt::Alignment alignment = Qt::AlignHCenter);

} // namespace vantrel
