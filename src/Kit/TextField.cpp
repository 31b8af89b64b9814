#include "Kit/TextField.h"

#include <QMouseEvent>
#include <QPainter>

namespace vantrel {

namespace {
constexpr int blankBefore = 2; ///< what the toolkit keeps free before the first letter
} // namespace

TextField::TextField(const TextStyle &style, QWidget *parent) : QLineEdit(parent), m_style(style) {
    setFrame(false);
    setTextStyle(this, style);
    fit();
}

/// To what the style's size is now.
void TextField::fit() {
    m_scale = m_style.size * textScale() / m_style.font().pixelSize();
    setTextMargins(-blankBefore, 0, width() - qFloor(width() / m_scale),
                   height() - qRound(height() / m_scale));
}

void TextField::resizeEvent(QResizeEvent *event) {
    QLineEdit::resizeEvent(event);
    fit();
}

void TextField::changeEvent(QEvent *event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fit();
}

void TextField::paintEvent(QPaintEvent *event) {
    // On a picture: painters of one widget that go on with each other would clip at its place twice.
    const double ratio = devicePixelRatioF();
    QImage picture((QSizeF(size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.scale(m_scale, m_scale);
    m_painter = &painter;
    QLineEdit::paintEvent(event);
    m_painter = nullptr;
    painter.end();
    QPainter(this).drawImage(0, 0, picture);
    // The toolkit asks for the caret where it has laid it out.
    if (event->rect() != rect())
        update();
}

/// The toolkit's own painter goes on with this one, and so with its scale.
QPainter *TextField::sharedPainter() const {
    return m_painter ? m_painter : QLineEdit::sharedPainter();
}

QPaintDevice *TextField::redirected(QPoint *offset) const {
    QPaintDevice *device = QLineEdit::redirected(offset);
    if (m_painter && offset)
        *offset = {}; // in the picture there is none
    return device;
}

QMouseEvent TextField::laidOut(const QMouseEvent &event) const {
    return {event.type(),          event.position() / m_scale,
            event.scenePosition(), event.globalPosition(),
            event.button(),        event.buttons(),
            event.modifiers(),     event.source()};
}

void TextField::mousePressEvent(QMouseEvent *event) {
    QMouseEvent there = laidOut(*event);
    QLineEdit::mousePressEvent(&there);
    event->setAccepted(there.isAccepted());
}

void TextField::mouseMoveEvent(QMouseEvent *event) {
    QMouseEvent there = laidOut(*event);
    QLineEdit::mouseMoveEvent(&there);
    event->setAccepted(there.isAccepted());
}

void TextField::mouseReleaseEvent(QMouseEvent *event) {
    QMouseEvent there = laidOut(*event);
    QLineEdit::mouseReleaseEvent(&there);
    event->setAccepted(there.isAccepted());
}

void TextField::mouseDoubleClickEvent(QMouseEvent *event) {
    QMouseEvent there = laidOut(*event);
    QLineEdit::mouseDoubleClickEvent(&there);
    event->setAccepted(there.isAccepted());
}

QVariant TextField::inputMethodQuery(Qt::InputMethodQuery query) const {
    const QVariant answer = QLineEdit::inputMethodQuery(query);
    if (query != Qt::ImCursorRectangle)
        return answer;
    const QRectF laidOut = answer.toRectF();
    return QRectF(laidOut.topLeft() * m_scale, laidOut.size() * m_scale);
}

} // namespace vantrel
