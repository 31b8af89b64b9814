#pragma once

#include "Theme/AppTheme.h"

#include <QWidget>

namespace vantrel {

/// A container on a rounded, outlined ground. Its layout and children are the view's business; children that
/// reach into the corners clip themselves to roundedRect(rect(), radius()).
class Card : public QWidget {
    Q_OBJECT

public:
    /// `radius` in layout pixels.
    explicit Card(double radius, QWidget *parent = nullptr);

    void setColors(const ThemeColor &fill, const ThemeColor &stroke);
    [[nodiscard]] double radius() const { return m_radius; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    double m_radius;
    ThemeColor m_fill = AppTheme::surface();
    ThemeColor m_stroke = AppTheme::stroke();
};

} // namespace vantrel
