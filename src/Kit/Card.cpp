#include "Kit/Card.h"

#include "Kit/Shapes.h"

#include <QPainter>

namespace vantrel {

Card::Card(double radius, QWidget *parent) : QWidget(parent), m_radius(radius) {
    connect(&AppTheme::instance(), &AppTheme::schemeChanged, this, qOverload<>(&QWidget::update));
}

void Card::setColors(const ThemeColor &fill, const ThemeColor &stroke) {
    if (fill == m_fill && stroke == m_stroke)
        return;
    m_fill = fill;
    m_stroke = stroke;
    update();
}

void Card::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintCard(painter, rect(), m_radius, m_fill, m_stroke);
}

} // namespace vantrel
