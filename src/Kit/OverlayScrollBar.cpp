#include "Kit/OverlayScrollBar.h"

#include "Kit/Shapes.h"
#include "Theme/AppTheme.h"

#include <QAbstractScrollArea>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace vantrel {

namespace {
constexpr double shortestThumb = 28;
constexpr double margin = 2;
} // namespace

OverlayScrollBar::OverlayScrollBar(QAbstractScrollArea *area) : QAbstractSlider(area), m_area(area) {
    setOrientation(Qt::Vertical);
    setFocusPolicy(Qt::NoFocus);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->installEventFilter(this);

    QScrollBar *bar = area->verticalScrollBar();
    connect(bar, &QScrollBar::rangeChanged, this, &OverlayScrollBar::follow);
    connect(bar, &QScrollBar::valueChanged, this, &OverlayScrollBar::setValue);
    connect(this, &OverlayScrollBar::valueChanged, bar, &QScrollBar::setValue);
    connect(this, &OverlayScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&AppTheme::instance(), &AppTheme::schemeChanged, this, qOverload<>(&QWidget::update));
    follow();
}

void OverlayScrollBar::follow() {
    const QScrollBar *bar = m_area->verticalScrollBar();
    const int value = bar->value();
    setRange(bar->minimum(), bar->maximum());
    setPageStep(bar->pageStep());
    setSingleStep(bar->singleStep());
    setValue(value);
    setGeometry(m_area->width() - extent, 0, extent, m_area->height());
    setVisible(maximum() > minimum());
}

bool OverlayScrollBar::eventFilter(QObject *, QEvent *event) {
    if (event->type() == QEvent::Resize)
        follow();
    return false;
}

QRectF OverlayScrollBar::thumb() const {
    const double room = height() - 2 * margin;
    const double total = double(maximum()) - minimum() + pageStep();
    const double length = std::min(room, std::max(shortestThumb, room * pageStep() / total));
    const double progress = double(value() - minimum()) / std::max(1, maximum() - minimum());
    return {margin, margin + (room - length) * progress, width() - 2 * margin, length};
}

void OverlayScrollBar::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor color = AppTheme::inkTertiary().withOpacity(isSliderDown() ? 0.8 : 0.5);
    painter.fillPath(capsule(thumb()), color);
}

void OverlayScrollBar::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    const QRectF held = thumb();
    const double y = event->position().y();
    if (y < held.top()) {
        triggerAction(SliderPageStepSub);
    } else if (y > held.bottom()) {
        triggerAction(SliderPageStepAdd);
    } else {
        m_grip = y - held.top();
        setSliderDown(true);
        update();
    }
}

void OverlayScrollBar::mouseMoveEvent(QMouseEvent *event) {
    const double room = height() - 2 * margin - thumb().height();
    if (!isSliderDown() || room <= 0)
        return;
    const double progress = (event->position().y() - m_grip - margin) / room;
    setValue(minimum() + qRound(progress * (maximum() - minimum())));
}

void OverlayScrollBar::mouseReleaseEvent(QMouseEvent *) {
    setSliderDown(false);
    update();
}

} // namespace vantrel
