#include "Kit/ProgressBar.h"

#include "Kit/Shapes.h"

#include <QPainter>

namespace vantrel {

namespace {

/// NaN, from a division by an unknown total, counts as nothing done.
double bounded(double fraction) {
    return fraction > 0 ? qMin(fraction, 1.0) : 0;
}

} // namespace

ProgressBar::ProgressBar(int height, QWidget *parent) : QProgressBar(parent) {
    setRange(0, 100);
    setValue(0);
    setTextVisible(false);
    setFixedHeight(height);
    setMinimumWidth(0);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&AppTheme::instance(), &AppTheme::schemeChanged, this, qOverload<>(&QWidget::update));
}

void ProgressBar::setFraction(double fraction) {
    fraction = bounded(fraction);
    if (qFuzzyCompare(1 + fraction, 1 + m_fraction))
        return;
    m_fraction = fraction;
    setValue(qRound(fraction * 100));
    update();
}

void ProgressBar::setColors(const ThemeColor &fill, const ThemeColor &track) {
    if (fill == m_fill && track == m_track)
        return;
    m_fill = fill;
    m_track = track;
    update();
}

void ProgressBar::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintProgress(painter, rect(), m_fraction, m_fill, m_track);
}

void paintProgress(QPainter &painter, const QRectF &rect, double fraction, const QColor &fill,
                   const QColor &track) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath whole = capsule(rect);
    painter.fillPath(whole, track);
    const double filled = rect.width() * bounded(fraction);
    // The first pixels of a fill are narrower than the track's round end and must not stick out of it.
    if (filled > 0)
        painter.fillPath(capsule(QRectF(rect.topLeft(), QSizeF(filled, rect.height()))).intersected(whole),
                         fill);
    painter.restore();
}

} // namespace vantrel
