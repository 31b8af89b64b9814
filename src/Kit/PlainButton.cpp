#include "Kit/PlainButton.h"

#include "Kit/Shapes.h"
#include "Kit/TextStyle.h"

#include <QKeyEvent>
#include <QPainter>

namespace vantrel {

PlainButton::PlainButton(QWidget *parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::TabFocus);
}

void PlainButton::setHelp(const QString &help) {
    setToolTip(plainToolTip(help));
    setAccessibleName(help);
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

} // namespace vantrel
