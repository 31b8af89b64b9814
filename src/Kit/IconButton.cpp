#include "Kit/IconButton.h"

#include "Kit/Accessibility.h"
#include "Kit/Shapes.h"

#include <QKeyEvent>
#include <QPainter>

namespace vantrel {

PlainButton::PlainButton(QWidget *parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::TabFocus);
}

void PlainButton::setHelp(const QString &help, QAccessible::Role role) {
    setToolTip(displayText(help));
    describe(this, role, help);
}

void PlainButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.save();
    paintContent(painter);
    painter.restore();
    if (hasFocus())
        paintFocusRing(painter, rect(), m_ringRadius);
}

void PlainButton::keyPressEvent(QKeyEvent *event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && !event->isAutoRepeat())
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

IconButton::IconButton(QSize size, double radius, QWidget *parent)
    : PlainButton(parent), m_radius(qMin(radius, qMin(size.width(), size.height()) / 2.0)) {
    setFixedSize(size);
    setRingRadius(m_radius);
}

void IconButton::setLook(const Look &look) {
    if (m_look == look)
        return;
    m_look = look;
    update();
}

void IconButton::paintContent(QPainter &painter) {
    painter.setOpacity(isEnabled() ? 1 : m_look.disabledOpacity);
    paintCard(painter, rect(), m_radius, m_look.fill, m_look.stroke, m_look.strokeWidth);
    m_look.symbol.paint(painter, rect(), m_look.glyph);
}

} // namespace vantrel
