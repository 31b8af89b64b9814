#include "Kit/Canvas.h"

#include "Kit/Accessibility.h"
#include "Kit/Shapes.h"
#include "Theme/AppTheme.h"

#include <QPainter>

namespace vantrel {

Canvas::Canvas(Paint paint, QWidget *parent) : QWidget(parent), m_paint(std::move(paint)) {
    describe(this, QAccessible::Graphic, {});
}

void Canvas::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    m_paint(painter, rect());
}

Card::Card(double radius, QWidget *parent)
    : Canvas(
          [radius](QPainter &painter, const QRectF &rect) {
              paintCard(painter, rect, radius, AppTheme::surface(), AppTheme::stroke());
          },
          parent) {
    describe(this, QAccessible::Grouping, {});
}

Divider::Divider(Qt::Orientation orientation, QWidget *parent)
    : Canvas([](QPainter &painter, const QRectF &rect) { fillLine(painter, rect, AppTheme::stroke()); },
             parent) {
    describe(this, QAccessible::Separator, {});
    orientation == Qt::Horizontal ? setFixedHeight(1) : setFixedWidth(1);
}

} // namespace vantrel
