#pragma once

#include "Kit/Canvas.h"

namespace vantrel {

/// A container on a rounded, outlined ground. Its layout and children are the view's business; children that
/// reach into the corners clip themselves to roundedRect() of the same radius.
class Card : public Canvas {
public:
    /// `radius` in layout pixels.
    explicit Card(double radius, QWidget *parent = nullptr);
};

} // namespace vantrel
