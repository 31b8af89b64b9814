#pragma once

#include <QAbstractSlider>

class QAbstractScrollArea;

namespace vantrel {

/// A slim scroll bar that lies over the right edge of a scroll area's content and takes no width from it, so
/// that rows keep in line with what stands above them. It is there while there is something to scroll, and
/// follows the area's own bar, which stays out of sight.
class OverlayScrollBar : public QAbstractSlider {
    Q_OBJECT

public:
    static constexpr int extent = 10; ///< width, layout pixels

    /// Becomes a child of the area and finds its own place.
    explicit OverlayScrollBar(QAbstractScrollArea *area);

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    [[nodiscard]] QRectF thumb() const;
    void follow();

    QAbstractScrollArea *m_area;
    double m_grip = 0; ///< where in the thumb the mouse holds it
};

} // namespace vantrel
