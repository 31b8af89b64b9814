#include "Kit/Spinner.h"

#include "Kit/Accessibility.h"
#include "Theme/AppTheme.h"

#include <QPainter>
#include <QStyle>

#include <chrono>

namespace vantrel {

namespace {
constexpr int spokes = 8;
} // namespace

Spinner::Spinner(Size size, const QString &name, QWidget *parent) : QWidget(parent) {
    const int side = size == Size::mini ? 12 : 18;
    setFixedSize(side, side);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    describe(this, QAccessible::Indicator, name);
    connect(&AppTheme::instance(), &AppTheme::schemeChanged, this, qOverload<>(&QWidget::update));
    m_timer.setInterval(std::chrono::milliseconds(100));
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_step = (m_step + 1) % spokes;
        update();
    });
}

void Spinner::showEvent(QShowEvent *) {
    if (style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0)
        m_timer.start();
}

void Spinner::hideEvent(QHideEvent *) {
    m_timer.stop();
}

void Spinner::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = width() / 2.0;
    const double thickness = width() / 8.0;
    painter.translate(radius, radius);
    painter.rotate(m_step * 360.0 / spokes);
    for (int spoke = 0; spoke < spokes; ++spoke) {
        const double strength = 0.2 + 0.8 * spoke / (spokes - 1);
        const QColor color = AppTheme::inkSecondary().withOpacity(strength);
        painter.setPen(QPen(color, thickness, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius + thickness / 2));
        painter.rotate(360.0 / spokes);
    }
}

} // namespace vantrel
