#pragma once

#include "Kit/Canvas.h"

namespace vantrel {

/// A line of one layout pixel.
class Divider : public Canvas {
public:
    explicit Divider(Qt::Orientation orientation = Qt::Horizontal, QWidget *parent = nullptr);
};

} // namespace vantrel
