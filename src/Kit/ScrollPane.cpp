#include "Kit/ScrollPane.h"

#include "Kit/Accessibility.h"
#include "Kit/Canvas.h"
#include "Kit/Shapes.h"

#include <QScrollBar>

namespace vantrel {

ScrollPane::ScrollPane(const QString &name, QWidget *content, QWidget *parent)
    : QScrollArea(parent), m_ring(new Canvas([](QPainter &painter, const QRectF &rect) {
          constexpr double radius = 6;
          paintFocusRing(painter, rect, radius);
      })) {
    describe(this, QAccessible::Pane, name);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setWidget(content);
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    setFocusPolicy(Qt::NoFocus);
    connect(verticalScrollBar(), &QAbstractSlider::rangeChanged, this,
            [this] { setFocusPolicy(scrolls() ? Qt::TabFocus : Qt::NoFocus); });
    m_ring->setParent(this);
    m_ring->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_ring->hide();
}

bool ScrollPane::scrolls() const {
    return verticalScrollBar()->maximum() > 0;
}

void ScrollPane::resizeEvent(QResizeEvent *event) {
    QScrollArea::resizeEvent(event);
    m_ring->setGeometry(rect());
}

void ScrollPane::focusInEvent(QFocusEvent *event) {
    QScrollArea::focusInEvent(event);
    m_ring->show();
    m_ring->raise();
}

void ScrollPane::focusOutEvent(QFocusEvent *event) {
    QScrollArea::focusOutEvent(event);
    m_ring->hide();
}

} // namespace vantrel
