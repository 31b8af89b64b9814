#pragma once

#include <QList>
#include <QPointF>
#include <QRect>
#include <QSize>
#include <Qt>

namespace vantrel {

/// Which edges of a frameless window of the given size a press at `position` (in the window) resizes; none
/// inside. Near a corner the strip is longer along both edges, so that a corner is easy to hit. It reaches
/// `outside` layout pixels beyond the window, where the window gets the mouse there.
[[nodiscard]] Qt::Edges resizeEdgesAt(QPointF position, QSize windowSize, int outside = 0);

/// The frame that results when the given edges follow the mouse by `offset`; never smaller than `minimum`,
/// the opposite edges stay where they are.
[[nodiscard]] QRect resizedFrame(const QRect &frame, Qt::Edges edges, QPoint offset, QSize minimum);

/// `frame`, moved just so far that its title bar can still be reached with the mouse: the top edge on one of
/// the screens and a piece of the title bar beside the window buttons in view. The frame of a window that can
/// be reached comes back unchanged. `screens` are the parts of the screens that panels leave free; none:
/// unchanged.
[[nodiscard]] QRect reachableFrame(const QRect &frame, const QList<QRect> &screens);

/// `frame`, made to lie within one screen: the one that most of it is on, or, when it is on none, the middle
/// of the first. It is smaller than `minimum` only where the screen is. `screens` as above; none: unchanged.
[[nodiscard]] QRect fittedFrame(const QRect &frame, QSize minimum, const QList<QRect> &screens);

/// Where the top left corner of a window of size `normal` goes when it is dragged out of its zoom by the
/// mouse at `mouse`: the mouse keeps its distance from the top and its share of the width. `pressed` is where
/// it went down in the zoomed window.
[[nodiscard]] QPoint placeDraggedOut(int zoomedWidth, QPointF pressed, QSize normal, QPoint mouse);

} // namespace vantrel
