#include "Kit/ReadOnlyText.h"

#include "Kit/Accessibility.h"
#include "Kit/Shapes.h"

#include <QFontMetrics>
#include <QPainter>
#include <QScrollBar>
#include <QTextLayout>

#include <algorithm>

namespace vantrel {

namespace {

QTextOption wrapping() {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // a name may be one long word
    return option;
}

} // namespace

ReadOnlyText::ReadOnlyText(const QString &name, const TextStyle &style, QWidget *parent)
    : QPlainTextEdit(parent) {
    setAccessibleName(name);
    setFont(style.font());
    setFrameShape(NoFrame);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setWordWrapMode(wrapping().wrapMode());
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalScrollBar()->setAccessibleName(name);
    describe(viewport(), QAccessible::Graphic, {}); // the text is this widget's
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void ReadOnlyText::setText(const QString &text) {
    const QString shown = displayText(text);
    if (shown == toPlainText())
        return;
    setPlainText(shown);
    updateGeometry();
}

int ReadOnlyText::linesAt(int width) const {
    QTextLayout layout(toPlainText(), font());
    layout.setTextOption(wrapping());
    int lines = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        ++lines;
    }
    layout.endLayout();
    return std::max(lines, 1);
}

int ReadOnlyText::heightForWidth(int width) const {
    return std::min(linesAt(width), mostLines) * QFontMetrics(font()).lineSpacing();
}

void ReadOnlyText::resizeEvent(QResizeEvent *event) {
    QPlainTextEdit::resizeEvent(event);
    setVerticalScrollBarPolicy(linesAt(width()) > mostLines ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
}

QSize ReadOnlyText::minimumSizeHint() const {
    return {0, QFontMetrics(font()).lineSpacing()};
}

void ReadOnlyText::focusInEvent(QFocusEvent *event) {
    m_showsFocus = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    QPlainTextEdit::focusInEvent(event);
    viewport()->update();
}

void ReadOnlyText::focusOutEvent(QFocusEvent *event) {
    QPlainTextEdit::focusOutEvent(event);
    viewport()->update();
}

void ReadOnlyText::paintEvent(QPaintEvent *event) {
    QPlainTextEdit::paintEvent(event);
    if (!m_showsFocus || !hasFocus())
        return;
    QPainter painter(viewport());
    paintFocusRing(painter, viewport()->rect(), 3);
}

} // namespace vantrel
