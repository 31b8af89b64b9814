#include "Kit/Divider.h"

#include "Kit/Shapes.h"
#include "Theme/AppTheme.h"

namespace vantrel {

Divider::Divider(Qt::Orientation orientation, QWidget *parent)
    : Canvas([](QPainter &painter, const QRectF &rect) { fillLine(painter, rect, AppTheme::stroke()); },
             parent) {
    orientation == Qt::Horizontal ? setFixedHeight(1) : setFixedWidth(1);
}

} // namespace vantrel
