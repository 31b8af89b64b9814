#include "Kit/Card.h"

#include "Kit/Shapes.h"
#include "Theme/AppTheme.h"

#include <QPainter>

namespace vantrel {

Card::Card(double radius, QWidget *parent) : QWidget(parent), m_radius(radius) {}

void Card::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintCard(painter, rect(), m_radius, AppTheme::surface(), AppTheme::stroke());
}

} // namespace vantrel
