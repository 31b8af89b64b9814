#pragma once

#include "Theme/AppTheme.h"

#include <QProgressBar>

namespace vantrel {

/// A capsule filled from the left. Assistive technology reads its value in percent.
class ProgressBar : public QProgressBar {
    Q_OBJECT

public:
    /// `height` in layout pixels; the width is the layout's.
    explicit ProgressBar(int height, QWidget *parent = nullptr);

    /// How much is filled, 0 to 1; anything beyond is cut off.
    void setFraction(double fraction);
    void setColors(const ThemeColor &fill, const ThemeColor &track);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    double m_fraction = 0;
    ThemeColor m_fill = AppTheme::progress();
    ThemeColor m_track = AppTheme::stroke();
};

/// What ProgressBar paints, for views that paint their rows themselves.
void paintProgress(QPainter &painter, const QRectF &rect, double fraction, const QColor &fill,
                   const QColor &track);

} // namespace vantrel
