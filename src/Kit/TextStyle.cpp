#include "Kit/TextStyle.h"

#include <QEvent>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPainter>
#include <QRegularExpression>
#include <QStyle>
#include <QTextLayout>
#include <QWidget>

namespace vantrel {

namespace {

QString systemFamily(QFontDatabase::SystemFont font) {
    return QFontDatabase::systemFont(font).family();
}

const QStringList &families(FontDesign design) {
    // Asking for the system's fonts again for every text would be noticed while scrolling.
    static const QStringList monospaced{systemFamily(QFontDatabase::FixedFont)};
    static const QStringList standard{
#ifndef Q_OS_MACOS
        QStringLiteral("Inter"), // whether it is installed the toolkit finds out when it opens the font
#endif
        systemFamily(QFontDatabase::GeneralFont)};
    return design == FontDesign::monospaced ? monospaced : standard;
}

QFont styledFont(const TextStyle &style, int pixelSize) {
    QFont font(families(style.design));
    font.setPixelSize(pixelSize);
    font.setWeight(QFont::Weight(style.weight));
    // Hinting would round every advance to whole pixels, and so undo half of what the sizes differ in.
    font.setHintingPreference(QFont::PreferNoHinting);
    if (style.design == FontDesign::monospaced)
        font.setStyleHint(QFont::Monospace);
    if (style.tracking != 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, style.tracking * pixelSize / style.size);
    return font;
}

/// Qt 6.4 rounds every font to whole pixels, even a size given in fractions of points: 12.5 comes out as 13.
/// So every text is laid out in this size and painted through a scale. One size for all also means one font
/// of each weight to open, which is a good part of the time that the window needs to open.
constexpr int layoutSize = 32;

double currentScale = 1;

QFont layoutFont(const TextStyle &style) {
    return styledFont(style, layoutSize);
}

/// What a length in layout pixels is multiplied with in the layout of a text.
double enlargement(const TextStyle &style) {
    return layoutSize / (style.size * currentScale);
}

/// Has the style's font put to a widget again when texts appear in another size.
class FontKeeper : public QObject {
public:
    FontKeeper(QWidget *widget, const TextStyle &style) : QObject(widget), m_style(style) {
        setObjectName(keeperName());
        widget->setFont(style.font());
        widget->installEventFilter(this);
    }
    static QString keeperName() { return QStringLiteral("fontKeeper"); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (event->type() == QEvent::FontChange)
            static_cast<QWidget *>(watched)->setFont(m_style.font()); // it ends when it is the same
        return false;
    }

private:
    TextStyle m_style;
};

/// Unicode's Bidi_Control characters. The marks among them change little, but two names that differ in one
/// would look the same.
bool reorders(QChar character) {
    const ushort code = character.unicode();
    return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0x200E ||
           code == 0x200F || code == 0x061C;
}

bool breaksLine(QChar character) {
    const ushort code = character.unicode();
    return (code >= '\n' && code <= '\r') || code == 0x85 || code == 0x2028 || code == 0x2029;
}

/// The text as it is laid out: Inter draws "->", "<=" and the "x" of "3x4" as the arrows and signs that they
/// resemble, and then two names look the same. A character without width between them keeps them apart.
QString laidOutText(const QString &text) {
    static const QRegularExpression joint(
        QStringLiteral("(?<=[-<>=])(?=[-<>=])|(?<=\\d)(?=x\\d)|(?<=x)(?=\\d)"));
    return displayText(text).replace(joint, QStringLiteral("\u200c"));
}

/// One line from left to right whatever its first letter: an extension stays at the end of the name.
QTextLine layOutLine(QTextLayout &layout) {
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(Qt::LeftToRight);
    layout.setTextOption(option);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    return line;
}

/// `available` in the layout's pixels.
QString elided(const QString &safeText, const QFont &font, double available, Elision elision) {
    const QFontMetricsF metrics(font);
    if (metrics.horizontalAdvance(safeText) <= available)
        return safeText;
    const QString shortened = metrics.elidedText(
        safeText, elision == Elision::middle ? Qt::ElideMiddle : Qt::ElideRight, available);
    return metrics.horizontalAdvance(shortened) > available ? QString() : shortened;
}

/// Where in a room of size `room` something of `size` begins.
QPointF aligned(const QSizeF &size, const QSizeF &room, Qt::Alignment alignment) {
    const QSizeF free = room - size;
    alignment = QStyle::visualAlignment(QGuiApplication::layoutDirection(), alignment);
    const auto share = [alignment](Qt::Alignment center, Qt::Alignment end) {
        return alignment & center ? 0.5 : alignment & end ? 1.0 : 0.0;
    };
    return {free.width() * share(Qt::AlignHCenter, Qt::AlignRight),
            free.height() * share(Qt::AlignVCenter, Qt::AlignBottom)};
}

/// Stacked combining marks could reach into the neighbouring rows; real scripts need a little more than the
/// line.
QRectF clipFor(const QRectF &rect) {
    return rect.adjusted(-1, -3, 1, 3);
}

} // namespace

double textScale() {
    return currentScale;
}

void setTextScale(double scale) {
    constexpr double least = 0.5;
    constexpr double most = 2;
    currentScale = qBound(least, scale, most);
}

int withTexts(double length) {
    return qRound(length * currentScale);
}

void setTextStyle(QWidget *widget, const TextStyle &style) {
    // The toolkit would have an empty field begin where the keyboard's letters do.
    if (auto *field = qobject_cast<QLineEdit *>(widget); field && QGuiApplication::isRightToLeft())
        field->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
    delete widget->findChild<QObject *>(FontKeeper::keeperName(), Qt::FindDirectChildrenOnly);
    new FontKeeper(widget, style);
}

QFont TextStyle::font() const {
    return styledFont(*this, qRound(size * currentScale));
}

int TextStyle::lineHeight() const {
    return qCeil(QFontMetricsF(layoutFont(*this)).height() / enlargement(*this));
}

double TextStyle::width(const QString &text) const {
    return QFontMetricsF(layoutFont(*this)).horizontalAdvance(laidOutText(text)) / enlargement(*this);
}

QString displayText(const QString &text) {
    QString shown;
    shown.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (breaksLine(character)) {
            if (character == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n')
                ++i;
            shown += QChar(0x21B5);
        } else if (reorders(character) || character.category() == QChar::Other_Control) {
            shown += QChar(QChar::ReplacementCharacter);
        } else {
            shown += character;
        }
    }
    return shown;
}

QString elidedText(const QString &text, const TextStyle &style, double width, Elision elision) {
    return elided(laidOutText(text), layoutFont(style), width * enlargement(style), elision);
}

QStringList wrappedLines(const QString &text, const TextStyle &style, double width, int maximumLines) {
    const QString shown = laidOutText(text);
    const QFont font = layoutFont(style);
    const double available = width * enlargement(style);
    QTextLayout layout(shown, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(Qt::LeftToRight);
    layout.setTextOption(option);

    QStringList lines;
    layout.beginLayout();
    while (lines.size() < maximumLines) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(available);
        const bool last = lines.size() + 1 == maximumLines;
        const QString rest = shown.mid(line.textStart(), last ? -1 : line.textLength()).trimmed();
        lines += elided(rest, font, available, Elision::end);
    }
    layout.endLayout();
    return lines;
}

void paintText(QPainter &painter, const QRectF &rect, const QString &text, const TextStyle &style,
               const QColor &color, Qt::Alignment alignment, Elision elision) {
    const double enlarged = enlargement(style);
    const QSizeF room = rect.size() * enlarged;
    QTextLayout layout(laidOutText(text), layoutFont(style));
    QTextLine line = layOutLine(layout);
    if (line.naturalTextWidth() > room.width()) {
        layout.setText(elided(layout.text(), layout.font(), room.width(), elision));
        line = layOutLine(layout);
    }
    if (layout.text().isEmpty())
        return;
    painter.save();
    painter.setClipRect(clipFor(rect), Qt::IntersectClip);
    painter.setPen(color);
    painter.translate(rect.topLeft());
    painter.scale(1 / enlarged, 1 / enlarged);
    line.draw(&painter, aligned({line.naturalTextWidth(), line.ascent() + line.descent()}, room, alignment));
    painter.restore();
}

int paintLines(QPainter &painter, const QRectF &rect, const QString &text, const TextStyle &style,
               const QColor &color, int maximumLines, Qt::Alignment alignment) {
    QRectF line(rect.left(), rect.top(), rect.width(), style.lineHeight());
    const QStringList lines = wrappedLines(text, style, rect.width(), maximumLines);
    for (const QString &words : lines) {
        paintText(painter, line, words, style, color, alignment | Qt::AlignVCenter);
        line.translate(0, line.height());
    }
    return int(lines.size());
}

} // namespace vantrel
