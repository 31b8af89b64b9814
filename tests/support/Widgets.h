#pragma once

#include "support/Printers.h"

#include "Kit/ToolTips.h"

#include <QtTest>
#include <QtWidgets>
#include <gmock/gmock.h>

/// What a test does to widgets, and how it looks at pictures.
namespace vantrel {

inline QAccessibleInterface *accessible(QObject *object) {
    return QAccessible::queryAccessibleInterface(object);
}

/// How many pixels of a row of pixels have that colour, nearly.
inline int pixelsOf(const QColor &color, const QImage &image, int y) {
    int count = 0;
    for (int x = 0; x < image.width(); ++x) {
        const QColor pixel = image.pixelColor(x, y);
        count += qAbs(pixel.red() - color.red()) + qAbs(pixel.green() - color.green()) +
                     qAbs(pixel.blue() - color.blue()) <
                 12;
    }
    return count;
}

/// A transparent picture of `size` layout pixels on a screen of `ratio`, with what `paint` put on it.
inline QImage painted(QSize size, double ratio, const std::function<void(QPainter &)> &paint) {
    QImage image((QSizeF(size) * ratio).toSize(), QImage::Format_ARGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(painter);
    return image;
}

/// The rectangle in device pixels outside of which nothing was painted.
inline QRect inkBounds(const QImage &image) {
    QRect bounds;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y).alpha() > 0)
                bounds |= QRect(x, y, 1, 1);
    return bounds;
}

inline void click(QWidget *widget, const QPoint &point) {
    QTest::mouseClick(widget, Qt::LeftButton, {}, point);
}
inline void click(QWidget *control) {
    click(control, control->rect().center());
}

/// Turns the mouse's wheel down over a list.
inline void turnWheel(const QAbstractScrollArea *list, int lines) {
    const QPointF place(50, 50);
    QWheelEvent wheel(place, list->viewport()->mapToGlobal(place), {}, {0, -120 * lines}, {}, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(list->viewport(), &wheel);
}

/// What is said when the mouse rests at a place of the list.
inline QString toolTipAt(const QAbstractScrollArea *list, QPoint place) {
    QHelpEvent event(QEvent::ToolTip, place, list->viewport()->mapToGlobal(place));
    QCoreApplication::sendEvent(list->viewport(), &event);
    return ToolTips::text();
}

/// Collects what is painted of a widget.
class PaintedRegion : public QObject {
public:
    explicit PaintedRegion(QWidget *widget) : QObject(widget) { widget->installEventFilter(this); }
    QRegion region;

protected:
    bool eventFilter(QObject *, QEvent *event) override {
        if (event->type() == QEvent::Paint)
            region += static_cast<QPaintEvent *>(event)->region();
        return false;
    }
};

} // namespace vantrel
