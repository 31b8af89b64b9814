#include "Kit/TextLabel.h"

#include "Kit/ToolTips.h"

#include <QEvent>
#include <QPainter>

namespace vantrel {

TextLabel::TextLabel(const TextStyle &style, const ThemeColor &color, QWidget *parent)
    : QLabel(parent), m_style(style), m_color(color) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void TextLabel::setText(const QString &text) {
    if (text == QLabel::text())
        return;
    QLabel::setText(text);
    setAccessibleName(displayText(text));
    updateGeometry();
}

void TextLabel::setColor(const ThemeColor &color) {
    if (color == m_color)
        return;
    m_color = color;
    update();
}

void TextLabel::setMaximumLines(int lines) {
    m_maximumLines = lines;
    QSizePolicy policy = sizePolicy();
    policy.setHeightForWidth(lines > 1);
    // A layout never gives a fixed height more than the size hint, which is one line.
    policy.setVerticalPolicy(lines > 1 ? QSizePolicy::Preferred : QSizePolicy::Fixed);
    setSizePolicy(policy);
    updateGeometry();
    update();
}

void TextLabel::setElision(Elision elision) {
    m_elision = elision;
    update();
}

void TextLabel::setKeptWidth(int width) {
    m_keptWidth = width;
    updateGeometry();
}

bool TextLabel::isElided() const {
    if (m_maximumLines == 1)
        return m_style.width(text()) > width();
    return wrappedLines(text(), m_style, width(), m_maximumLines) !=
           wrappedLines(text(), m_style, width(), m_maximumLines + 1);
}

QSize TextLabel::sizeHint() const {
    // One more than the exact width: rounding in a layout must not shorten a text that fits.
    const int width = text().isEmpty() ? 0 : qCeil(m_style.width(text())) + 1;
    return {width, m_style.lineHeight()};
}

int TextLabel::heightForWidth(int width) const {
    const auto lines = wrappedLines(text(), m_style, width, m_maximumLines).size();
    return int(qMax<qsizetype>(1, lines)) * m_style.lineHeight();
}

bool TextLabel::event(QEvent *event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        ToolTips::show(isElided() ? displayText(text()) : QString(), this, rect());
        return true;
    }
    return QLabel::event(event);
}

void TextLabel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    if (m_maximumLines == 1)
        paintText(painter, rect(), text(), m_style, m_color, alignment(), m_elision);
    else
        paintLines(painter, rect(), text(), m_style, m_color, m_maximumLines,
                   alignment() & Qt::AlignHorizontal_Mask);
}

} // namespace vantrel
