#pragma once

#include <QWidget>

#include <functional>

namespace vantrel {

/// A widget that only shows something.
class Canvas : public QWidget {
public:
    /// Paints on a rectangle in the colours of the moment: it runs again when the scheme changes.
    using Paint = std::function<void(QPainter &painter, const QRectF &rect)>;

    explicit Canvas(Paint paint, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Paint m_paint;
};

/// A container on a rounded, outlined ground. Its layout and children are the view's business; children that
/// reach into the corners clip themselves to roundedRect() of the same radius.
class Card : public Canvas {
public:
    /// `radius` in layout pixels.
    explicit Card(double radius, QWidget *parent = nullptr);
};

/// A line of one layout pixel.
class Divider : public Canvas {
public:
    explicit Divider(Qt::Orientation orientation = Qt::Horizontal, QWidget *parent = nullptr);
};

} // namespace vantrel
