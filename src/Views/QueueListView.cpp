#include "Views/QueueListView.h"

#include "Records/QueueItem.h"
#include "Theme/AppTheme.h"
#include "Views/QueueAccessibility.h"
#include "Views/QueueDelegate.h"

#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr int dividerHeight = QueueDelegate::dividerHeight;

/// From the top of one row to the top of the next.
int pitch() {
    return QueueRowGeometry::rowHeight() + dividerHeight;
}

} // namespace

QueueListView::QueueListView(QAbstractItemModel *queue, double radius, QWidget *parent) : QListView(parent) {
    setObjectName(QStringLiteral("queue.list"));
    makeQueueAccessible();
    setAccessibleName(QStringLiteral("Transfers"));
    setModel(queue);
    setItemDelegate(new QueueDelegate(radius, this));
    setUniformItemSizes(true);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setFocusPolicy(Qt::TabFocus);

    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    verticalScrollBar()->setSingleStep(pitch() / 3);
    connect(verticalScrollBar(), &QAbstractSlider::actionTriggered, this, [this] { // by the user alone
        m_followsRunning = areInSight(m_running, verticalScrollBar()->sliderPosition());
    });
    // The last row has no divider: the place where it would be lies below the list's edge.
    setViewportMargins(0, 0, 0, -dividerHeight);
    viewport()->setAutoFillBackground(false);
}

int QueueListView::heightOfRows(qsizetype count) {
    // A queue of a million rows would still fit; beyond that the panel is as high as it can get anyway.
    constexpr qsizetype enough = 1'000'000;
    return count < 1 ? 0 : int(std::min(count, enough)) * pitch() - dividerHeight;
}

bool QueueListView::areInSight(const QList<int> &running, int offset) const {
    if (running.isEmpty())
        return true;
    const auto isInSight = [&](int row) {
        return row * pitch() >= offset && heightOfRows(row + 1) <= offset + viewport()->height();
    };
    const auto [first, last] = std::minmax_element(running.begin(), running.end());
    const bool fit = heightOfRows(*last - *first + 1) <= viewport()->height();
    return fit ? isInSight(*first) && isInSight(*last)
               : std::any_of(running.begin(), running.end(), isInSight);
}

void QueueListView::keepInSight(const QList<int> &running) {
    m_running = running;
    m_followsRunning = m_followsRunning || running.isEmpty();
    const int place = verticalScrollBar()->value();
    if (!m_followsRunning || hasFocus() || m_pressed.isValid() || areInSight(running, place))
        return;
    // The queue is worked off upwards: the lowest one at the lower edge leaves room for those that come next.
    const auto [first, last] = std::minmax_element(running.begin(), running.end());
    const int below = heightOfRows(*last + 1) - viewport()->height();
    const bool fit = *first * pitch() >= below;
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(fit && place > below ? *first * pitch() : below);
}

QRect QueueListView::removeButtonRect(const QModelIndex &row) const {
    return QueueRowGeometry(visualRect(row).adjusted(0, 0, 0, -dividerHeight)).removeButton;
}

QModelIndex QueueListView::removeButtonAt(const QPoint &place) const {
    const QModelIndex row = indexAt(place);
    return row.isValid() && removeButtonRect(row).contains(place) ? row : QModelIndex();
}

void QueueListView::pressRemoveButton(const QModelIndex &row) {
    Q_EMIT removeRequested(queueItemAt(row).id);
}

QRect QueueListView::actionRect(const QModelIndex &row) const {
    const QueueItem item = queueItemAt(row);
    return QueueDelegate::actionTitle(item).isEmpty()
               ? QRect()
               : QueueRowGeometry(visualRect(row).adjusted(0, 0, 0, -dividerHeight), true).action;
}

void QueueListView::pressAction(const QModelIndex &row) {
    const QueueItem item = queueItemAt(row);
    if (item.canTryAgain())
        Q_EMIT tryAgainRequested(item.id);
    else if (item.canKeepBoth())
        Q_EMIT keepBothRequested(item.id);
    setOnAction(false);
}

void QueueListView::setOnAction(bool isOnAction) {
    if (m_isOnAction == isOnAction)
        return;
    m_isOnAction = isOnAction;
    update(currentIndex());
    announceFocus(this);
}

void QueueListView::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                                const QList<int> &roles) {
    // QListView would lay out all its rows, since one might have got another size. None of ours ever does.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    QAbstractItemView::dataChanged(topLeft, bottomRight, roles);
    announceProgress(this, topLeft);
}

void QueueListView::rowsAboutToBeRemoved(const QModelIndex &parent, int first, int last) {
    // The keyboard goes to the row that takes the place, which is in sight already; the toolkit would choose
    // the one above.
    const QModelIndex next = model()->index(last + 1, 0);
    if (next.isValid() && first <= currentIndex().row() && currentIndex().row() <= last) {
        setAutoScroll(false);
        setCurrentIndex(next);
        setAutoScroll(true);
    }
    announceRemoval(this, first, last);
    QListView::rowsAboutToBeRemoved(parent, first, last);
}

void QueueListView::currentChanged(const QModelIndex &current, const QModelIndex &previous) {
    QListView::currentChanged(current, previous);
    m_isOnAction = false;
    announceFocus(this);
}

bool QueueListView::focusNextPrevChild(bool next) {
    const QModelIndex current = currentIndex();
    const QModelIndex neighbour = current.siblingAtRow(current.row() + (next ? 1 : -1));
    if (!neighbour.isValid())
        return QListView::focusNextPrevChild(next);
    setCurrentIndex(neighbour);
    return true;
}

void QueueListView::focusInEvent(QFocusEvent *event) {
    if (event->reason() == Qt::TabFocusReason) {
        setCurrentIndex(indexAt(QPoint(0, 0)));
    } else if (event->reason() == Qt::BacktabFocusReason) {
        const QModelIndex lowest = indexAt(viewport()->rect().bottomLeft());
        setCurrentIndex(lowest.isValid() ? lowest : model()->index(model()->rowCount() - 1, 0));
    }
    QListView::focusInEvent(event);
    // After the toolkit has said that the whole list has the keyboard.
    QMetaObject::invokeMethod(
        this, [this] { announceFocus(this); }, Qt::QueuedConnection);
}

void QueueListView::keyPressEvent(QKeyEvent *event) {
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (currentIndex().isValid() && !event->isAutoRepeat())
            m_isOnAction ? pressAction(currentIndex()) : pressRemoveButton(currentIndex());
        break;
    case Qt::Key_Left:
    case Qt::Key_Right:
        setOnAction(event->key() == Qt::Key_Left && actionRect(currentIndex()).isValid());
        break;
    default:
        QListView::keyPressEvent(event);
    }
}

void QueueListView::mousePressEvent(QMouseEvent *event) {
    const QPoint place = event->position().toPoint();
    const QModelIndex row = indexAt(place);
    m_isActionPressed = row.isValid() && actionRect(row).contains(place);
    m_pressed = event->button() != Qt::LeftButton ? QModelIndex()
                : m_isActionPressed               ? row
                                                  : removeButtonAt(place);
    event->setAccepted(m_pressed.isValid());
}

void QueueListView::mouseMoveEvent(QMouseEvent *event) {
    event->ignore(); // nothing is dragged
}

void QueueListView::mouseReleaseEvent(QMouseEvent *event) {
    const QModelIndex pressed = std::exchange(m_pressed, QPersistentModelIndex());
    if (pressed.isValid() && m_isActionPressed) {
        if (actionRect(pressed).contains(event->position().toPoint()))
            pressAction(pressed);
        return;
    }
    if (pressed.isValid() && removeButtonAt(event->position().toPoint()) == pressed)
        pressRemoveButton(pressed);
}

void QueueListView::mouseDoubleClickEvent(QMouseEvent *event) {
    mousePressEvent(event);
}

} // namespace vantrel
