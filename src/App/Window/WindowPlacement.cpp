#include "App/Window/WindowPlacement.h"

#include <QPoint>

#include <algorithm>
#include <limits>

namespace vantrel {

namespace {

constexpr int edgeWidth = 5;
constexpr int cornerLength = 14;
constexpr int reachableWidth =
    120; // more than the window buttons take, so that there is something left to drag
constexpr int reachableHeight = 32;

/// Moves the span [start, start + length) by the least amount that makes `needed` of it lie in [low, high).
int pulledInto(int start, int length, int low, int high, int needed) {
    return std::clamp(start, low - length + needed, high - needed);
}

} // namespace

Qt::Edges resizeEdgesAt(QPointF position, QSize windowSize, int outside) {
    const qreal left = position.x();
    const qreal top = position.y();
    const qreal right = windowSize.width() - position.x();
    const qreal bottom = windowSize.height() - position.y();
    if (left < -outside || top < -outside || right <= -outside || bottom <= -outside)
        return {};
    const bool onVerticalEdge = left < edgeWidth || right <= edgeWidth;
    const bool onHorizontalEdge = top < edgeWidth || bottom <= edgeWidth;
    if (!onVerticalEdge && !onHorizontalEdge)
        return {};
    const qreal reachX = onHorizontalEdge ? cornerLength : edgeWidth;
    const qreal reachY = onVerticalEdge ? cornerLength : edgeWidth;
    Qt::Edges edges;
    edges.setFlag(Qt::LeftEdge, left < reachX);
    edges.setFlag(Qt::RightEdge, right <= reachX);
    edges.setFlag(Qt::TopEdge, top < reachY);
    edges.setFlag(Qt::BottomEdge, bottom <= reachY);
    return edges;
}

QRect resizedFrame(const QRect &frame, Qt::Edges edges, QPoint offset, QSize minimum) {
    QSize size = frame.size();
    if (edges & Qt::LeftEdge)
        size.rwidth() -= offset.x();
    else if (edges & Qt::RightEdge)
        size.rwidth() += offset.x();
    if (edges & Qt::TopEdge)
        size.rheight() -= offset.y();
    else if (edges & Qt::BottomEdge)
        size.rheight() += offset.y();
    size = size.expandedTo(minimum);
    QRect resized(frame.topLeft(), size);
    if (edges & Qt::LeftEdge)
        resized.moveRight(frame.right());
    if (edges & Qt::TopEdge)
        resized.moveBottom(frame.bottom());
    return resized;
}

QRect reachableFrame(const QRect &frame, const QList<QRect> &screens) {
    QRect best = frame;
    int leastDistance = std::numeric_limits<int>::max();
    for (const QRect &screen : screens) {
        const int needed = std::min({reachableWidth, screen.width(), frame.width()});
        const int x = pulledInto(frame.x(), frame.width(), screen.x(), screen.x() + screen.width(), needed);
        const int y = std::clamp(frame.y(), screen.y(),
                                 std::max(screen.y(), screen.y() + screen.height() - reachableHeight));
        const QPoint moved = QPoint(x, y) - frame.topLeft();
        if (moved.manhattanLength() < leastDistance) {
            leastDistance = moved.manhattanLength();
            best = frame.translated(moved);
        }
    }
    return best;
}

QRect fittedFrame(const QRect &frame, QSize minimum, const QList<QRect> &screens) {
    if (screens.isEmpty())
        return frame;
    const auto share = [&frame](const QRect &screen) {
        const QRect common = screen.intersected(frame);
        return qint64(common.width()) * common.height();
    };
    const QRect screen = *std::ranges::max_element(screens, {}, share);
    QRect fitted(frame.topLeft(), frame.size().expandedTo(minimum).boundedTo(screen.size()));
    if (share(screen) <= 0)
        fitted.moveCenter(screen.center());
    fitted.moveLeft(
        pulledInto(fitted.x(), fitted.width(), screen.x(), screen.x() + screen.width(), fitted.width()));
    fitted.moveTop(
        pulledInto(fitted.y(), fitted.height(), screen.y(), screen.y() + screen.height(), fitted.height()));
    return fitted;
}

QPoint placeDraggedOut(int zoomedWidth, QPointF pressed, QSize normal, QPoint mouse) {
    const qreal share = pressed.x() / std::max(1, zoomedWidth);
    return mouse - QPointF(share * normal.width(), pressed.y()).toPoint();
}

} // namespace vantrel
