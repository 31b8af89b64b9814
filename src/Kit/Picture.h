#pragma once

#include <QRectF>

class QImage;
class QPainter;

namespace vantrel {

/// Fills a shape like roundedRect() with a picture, cropped to its middle; a very small one stands in the
/// middle as it is. What was painted lately is painted again without being scaled.
void paintPicture(QPainter &painter, const QRectF &rect, double radius, const QImage &picture);

} // namespace vantrel
