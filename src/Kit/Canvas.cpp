#include "Kit/Canvas.h"

#include <QPainter>

namespace vantrel {

void Canvas::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    m_paint(painter, rect());
}

} // namespace vantrel
