#include "Kit/Divider.h"

#include "Kit/Shapes.h"

#include <QPainter>

namespace vantrel {

Divider::Divider(Qt::Orientation orientation, const ThemeColor &color, QWidget *parent)
    : QWidget(parent), m_color(color) {
    if (orientation == Qt::Horizontal)
        setFixedHeight(1);
    else
        setFixedWidth(1);
}

void Divider::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    fillLine(painter, rect(), m_color);
}

} // namespace vantrel
