#include "Kit/Card.h"

#include "Kit/Shapes.h"
#include "Theme/AppTheme.h"

namespace vantrel {

Card::Card(double radius, QWidget *parent)
    : Canvas(
          [radius](QPainter &painter, const QRectF &rect) {
              paintCard(painter, rect, radius, AppTheme::surface(), AppTheme::stroke());
          },
          parent) {}

} // namespace vantrel
