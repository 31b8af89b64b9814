#include "Views/FileItemsView.h"

#include "Kit/Shapes.h"
#include "Views/FileDelegate.h"
#include "Views/FileItemsAccessibility.h"
#include "Views/FileItemsModel.h"

#include <QAccessible>
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <functional>

namespace vantrel {

FileItemsView::FileItemsView(FileItemsModel *model, FileSelectionModel *selection, FileDelegate *delegate,
                             QWidget *parent)
    : QAbstractItemView(parent), m_delegate(delegate) {
    makeFileItemsAccessible();
    delegate->setParent(this);
    setItemDelegate(delegate);
    setModel(model);
    setSelectionModel(selection);
    // After the toolkit's own slots, which have done with the rows by then.
    connect(model, &FileItemsModel::rowsRemoved, this, &FileItemsView::layOutRows);

    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSelectionMode(MultiSelection);
    setEditTriggers(NoEditTriggers);
}

// -- Contents

void FileItemsView::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                                const QList<int> &roles) {
    // The toolkit would lay out every row anew and repaint them all; ours keep their size.
    const int unseen =
        m_delegate->showsModified() ? FileItemsModel::pictureRole : FileItemsModel::modifiedRole;
    if (roles != QList<int>{unseen})
        updateRows(topLeft.row(), bottomRight.row());
}

void FileItemsView::rowsInserted(const QModelIndex &parent, int start, int end) {
    const int count = end - start + 1;
    const int place = verticalOffset();
    const bool isSeen = isVisible(); // or its layout waits
    const int first = isSeen ? rowsInSight().first : 0;
    const int top = isSeen ? rectOf(first).top() : 0;
    const bool isAbove = isSeen && place > 0 && start <= first && count < model()->rowCount();
    QAbstractItemView::rowsInserted(parent, start, end);
    layOutRows();
    if (isAbove) // what is in sight stays there
        verticalScrollBar()->setValue(place + rectOf(first + count).top() - top);
    updateRows(start, end);
}

void FileItemsView::rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end) {
    updateRows(start, end);
    QAbstractItemView::rowsAboutToBeRemoved(parent, start, end);
}

/// After a change of their number, which is one at the end: those before it stay as they are painted.
void FileItemsView::layOutRows() {
    forgetLayout();
    if (isVisible())
        updateGeometries();
    else
        scheduleDelayedItemsLayout(); // until it is shown
}

void FileItemsView::updateRows(int first, int last) {
    if (!isVisible())
        return;
    const auto [firstInSight, lastInSight] = rowsInSight();
    for (int row = std::max(first, firstInSight); row <= std::min(last, lastInSight); ++row)
        update(model()->index(row, 0));
}

void FileItemsView::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) {
    // Of two views on one selection, only the one that is seen tells of it.
    if (!isVisible())
        return;
    const auto tell = [this](const QItemSelection &changed, QAccessible::Event type) {
        if (changed.isEmpty())
            return;
        QAccessibleEvent event(this, type);
        event.setChild(changed.first().top());
        QAccessible::updateAccessibility(&event);
    };
    tell(selected, QAccessible::SelectionAdd);
    tell(deselected, QAccessible::SelectionRemove);
    QAbstractItemView::selectionChanged(selected, deselected);
}

// -- Layout

std::pair<int, int> FileItemsView::rowsBetween(int top, int bottom) const {
    const int last = (lineAt(bottom) + 1) * columns() - 1;
    return {lineAt(top) * columns(), std::min(last, model()->rowCount() - 1)};
}

std::pair<int, int> FileItemsView::rowsInSight() const {
    return rowsBetween(verticalOffset(), verticalOffset() + viewport()->height() - 1);
}

QRect FileItemsView::visualRect(const QModelIndex &index) const {
    if (!index.isValid())
        return {};
    return QStyle::visualRect(layoutDirection(), viewport()->rect(),
                              rectOf(index.row()).translated(0, -verticalOffset()));
}

QModelIndex FileItemsView::indexAt(const QPoint &point) const {
    const int y = point.y() + verticalOffset();
    const auto [first, last] = rowsBetween(y, y);
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = model()->index(row, 0);
        if (visualRect(index).contains(point))
            return index;
    }
    return {};
}

int FileItemsView::verticalOffset() const {
    return verticalScrollBar()->value();
}

void FileItemsView::updateGeometries() {
    constexpr int largestStep = 36;
    QScrollBar *bar = verticalScrollBar();
    bar->setSingleStep(std::clamp(rectOf(0).height(), 1, largestStep));
    bar->setPageStep(viewport()->height());
    bar->setRange(0, std::max(0, contentHeight() - viewport()->height()));
    QAbstractItemView::updateGeometries();
}

void FileItemsView::reset() {
    forgetLayout();
    QAbstractItemView::reset();
}

void FileItemsView::doItemsLayout() {
    forgetLayout();
    QAbstractItemView::doItemsLayout();
}

void FileItemsView::scrollContentsBy(int dx, int dy) {
    scrollDirtyRegion(dx, dy);
    viewport()->scroll(dx, dy);
    if (isVisible())
        Q_EMIT placeChanged();
}

void FileItemsView::scrollTo(const QModelIndex &index, ScrollHint hint) {
    if (!index.isValid())
        return;
    const QRect rect = rectOf(index.row());
    // What lies beyond the outer lines is seen with them.
    const bool isFirst = index.row() < columns();
    const bool isLast = lineAt(rect.top()) == lineAt(contentHeight());
    const int top = isFirst ? 0 : rect.top();
    const int height = viewport()->height();
    const int above = (isLast ? contentHeight() : rect.bottom() + 1) - height;
    const int place = verticalOffset();
    int to = place > top || above > top ? top : std::max(place, above);
    if (hint == PositionAtTop)
        to = top;
    else if (hint == PositionAtBottom)
        to = above;
    else if (hint == PositionAtCenter)
        to = rect.center().y() - height / 2;
    verticalScrollBar()->setValue(to);
}

// -- Painting

void FileItemsView::paintEvent(QPaintEvent *event) {
    QPainter painter(viewport());
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const int top = event->rect().top() + verticalOffset();
    const auto [first, last] = rowsBetween(top, top + event->rect().height() - 1);
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = model()->index(row, 0);
        option.rect = visualRect(index);
        if (event->region().intersects(option.rect))
            m_delegate->paint(&painter, option, index);
    }
    if (m_dropTarget.isValid())
        paintCard(painter, QRectF(visualRect(m_dropTarget)).adjusted(1, 1, -1, -1), m_delegate->focusRadius(),
                  Qt::transparent, AppTheme::accent(), 2);
    if (!m_showsFocus || !hasFocus())
        return;
    const QModelIndex current = focusedIndex();
    paintFocusRing(painter, current.isValid() ? visualRect(current) : viewport()->rect(),
                   m_delegate->focusRadius());
}

void FileItemsView::setDropTarget(const QModelIndex &folder) {
    if (m_dropTarget == folder)
        return;
    update(m_dropTarget);
    m_dropTarget = folder;
    update(m_dropTarget);
}

void FileItemsView::startAtTop() {
    setCurrentIndex(model()->index(0, 0));
    scrollToTop();
}

PanePlace FileItemsView::place() const {
    const QList<FileItem> &items = static_cast<const FileItemsModel *>(model())->items();
    const int first = rowsInSight().first;
    const int current = currentIndex().row();
    if (first >= items.size())
        return {};
    return {items.at(first).path, first, verticalOffset() - rectOf(first).top(),
            current >= 0 && current < items.size() ? items.at(current).path : QString()};
}

void FileItemsView::showPlace(const PanePlace &place) {
    const QList<FileItem> &items = static_cast<const FileItemsModel *>(model())->items();
    const auto rowOf = [&](const QString &path) -> std::optional<int> {
        if (path.isEmpty())
            return std::nullopt;
        const auto found =
            std::find_if(items.begin(), items.end(), [&](const FileItem &item) { return item.path == path; });
        return found != items.end() ? std::optional(int(found - items.begin())) : std::nullopt;
    };
    executeDelayedItemsLayout();
    const auto current = rowOf(place.current);
    setCurrentIndex(model()->index(current.value_or(0), 0));
    if (place.top.isEmpty() && current) {
        scrollTo(currentIndex(), PositionAtCenter);
    } else {
        const int last = std::max(0, int(items.size()) - 1);
        const int row = rowOf(place.top).value_or(std::min(place.row, last));
        // What is above the first entry is seen with it, in every layout.
        verticalScrollBar()->setValue(row == 0 && place.offset == 0 ? 0 : rectOf(row).top() + place.offset);
    }
}

// -- Mouse

std::optional<FileItemsView::Target> FileItemsView::targetAt(const QPoint &point) const {
    const QModelIndex index = indexAt(point);
    if (!index.isValid())
        return std::nullopt;
    const FileEntry entry = FileDelegate::entry(index);
    return Target{entry.item.id, m_delegate->partAt(entry, visualRect(index), point)};
}

void FileItemsView::click(const Target &target, const FileItem &item, Qt::KeyboardModifiers modifiers) {
    if (modifiers.testFlag(Qt::ShiftModifier) && m_anchor.isValid()) {
        extendTo(currentIndex().row());
        return;
    }
    m_anchor = currentIndex();
    m_rangeEnd.reset();
    if (target.part == FileEntry::Part::mark || modifiers.testFlag(Qt::ControlModifier))
        Q_EMIT toggled(item);
    else
        Q_EMIT selected(item);
}

/// Selects all from the anchor to the row, and takes back what the range reached beyond it before.
void FileItemsView::extendTo(int row) {
    const QList<FileItem> items = static_cast<const FileItemsModel *>(model())->items();
    const int anchor = m_anchor.row();
    const int before = std::min(m_rangeEnd.value_or(anchor), int(items.size()) - 1);
    m_rangeEnd = row;
    const auto [first, last] = std::minmax(anchor, row);
    const QList<FileItem> above = items.mid(before, std::max(0, first - before));
    const QList<FileItem> below = items.mid(last + 1, std::max(0, before - last));
    if (const QList<FileItem> left = above + below; !left.isEmpty())
        Q_EMIT ranged(left, false);
    Q_EMIT ranged(items.mid(first, last - first + 1), true);
}

void FileItemsView::mousePressEvent(QMouseEvent *event) {
    hideFocus();
    QAbstractItemView::mousePressEvent(event);
    m_pressed = event->button() == Qt::LeftButton ? targetAt(event->pos()) : std::nullopt;
    m_pressedAt = event->pos();
    // A click beside the entries is the pane's.
    event->setAccepted(m_pressed.has_value());
}

void FileItemsView::mouseMoveEvent(QMouseEvent *event) {
    // The toolkit would scroll along.
    event->ignore();
    if (!m_pressed || !event->buttons().testFlag(Qt::LeftButton) ||
        (event->pos() - m_pressedAt).manhattanLength() < QApplication::startDragDistance())
        return;
    const auto pressed = std::exchange(m_pressed, std::nullopt); // nothing will have been clicked
    if (targetAt(m_pressedAt) == pressed)
        Q_EMIT dragged(FileDelegate::entry(indexAt(m_pressedAt)).item);
}

void FileItemsView::mouseReleaseEvent(QMouseEvent *event) {
    QAbstractItemView::mouseReleaseEvent(event);
    const auto pressed = std::exchange(m_pressed, std::nullopt);
    if (!pressed || event->button() != Qt::LeftButton || targetAt(event->pos()) != pressed)
        return;
    m_clicked = pressed;
    click(*pressed, FileDelegate::entry(indexAt(event->pos())).item, event->modifiers());
}

/// The toolkit makes a first click of a double click whose first one hit something else; here it is none.
void FileItemsView::mouseDoubleClickEvent(QMouseEvent *event) {
    const auto target = targetAt(event->pos());
    const auto clicked = std::exchange(m_clicked, std::nullopt);
    if (event->button() != Qt::LeftButton || !target) {
        event->ignore();
        return;
    }
    // The first click may have put another folder here: that one was not clicked twice.
    if (!clicked || clicked->id != target->id)
        return;
    const FileItem item = FileDelegate::entry(indexAt(event->pos())).item;
    // Every click on a mark counts; the body is selected already.
    if (target->part == FileEntry::Part::mark)
        click(*target, item, {});
    Q_EMIT opened(item);
}

void FileItemsView::contextMenuEvent(QContextMenuEvent *event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKey ? focusedIndex() : indexAt(event->pos());
    if (!index.isValid()) {
        event->ignore();
        return;
    }
    const QPoint position = byKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos();
    Q_EMIT contextMenuRequested(FileDelegate::entry(index).item, position);
}

// -- Keyboard

QModelIndex FileItemsView::focusedIndex() const {
    return m_showsFocus ? currentIndex() : QModelIndex();
}

void FileItemsView::keyPressEvent(QKeyEvent *event) {
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool isRange = modifiers == Qt::ShiftModifier;
    const bool isMovement = event->key() >= Qt::Key_Home && event->key() <= Qt::Key_PageDown;
    const bool isText = !event->text().isEmpty() && event->text().front().isPrint();
    const bool isOpening = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isMenu = event->key() == Qt::Key_F10 && isRange; // the toolkit knows the menu key alone
    // A blank is one of the letters, soon enough after another.
    const bool isTyping = m_typing.isValid() && !m_typing.hasExpired(QApplication::keyboardInputInterval());
    if ((modifiers && !isRange) || !(isMovement || isText || isOpening || isMenu) ||
        model()->rowCount() == 0) {
        event->ignore();
        return;
    }
    if (!focusedIndex().isValid())
        showFocus();
    const QModelIndex from = currentIndex();
    if (isOpening) {
        if (!event->isAutoRepeat())
            Q_EMIT opened(FileDelegate::entry(from).item);
    } else if (isMenu) {
        Q_EMIT contextMenuRequested(FileDelegate::entry(from).item,
                                    viewport()->mapToGlobal(visualRect(from).center()));
    } else if (event->key() == Qt::Key_Space && !isTyping) {
        m_anchor = from;
        m_rangeEnd.reset();
        Q_EMIT toggled(FileDelegate::entry(from).item);
    } else if (isText) {
        m_typing.start();
        m_anchor = QModelIndex();
        keyboardSearch(event->text());
    } else {
        QAbstractItemView::keyPressEvent(event);
        if (!isRange) {
            m_anchor = QModelIndex();
            return;
        }
        if (!m_anchor.isValid()) {
            m_anchor = from;
            m_rangeEnd.reset();
        }
        extendTo(currentIndex().row());
    }
}

QModelIndex FileItemsView::moveCursor(CursorAction action, Qt::KeyboardModifiers) {
    const int count = model()->rowCount();
    const int row = std::max(0, currentIndex().row());
    const int line = row / columns();
    const int lastLine = std::max(0, count - 1) / columns();
    const auto inLine = [&](int to) { return std::clamp(to, 0, lastLine) * columns() + row % columns(); };
    const auto page = [&](int by) { return lineAt(rectOf(row).top() + by * viewport()->height()); };
    const int onward = isRightToLeft() ? -1 : 1;
    int to = row;
    switch (action) {
    case MoveUp:
        to = inLine(line - 1);
        break;
    case MoveDown:
        to = inLine(line + 1);
        break;
    case MovePageUp:
        to = inLine(std::min(line - 1, page(-1)));
        break;
    case MovePageDown:
        to = inLine(std::max(line + 1, page(1)));
        break;
    case MoveHome:
        to = 0;
        break;
    case MoveEnd:
        to = count - 1;
        break;
    case MoveLeft: // on from the beginning of a line to the end of the one before
        to = columns() > 1 ? row - onward : row;
        break;
    case MoveRight:
        to = columns() > 1 ? row + onward : row;
        break;
    case MoveNext:
        ++to;
        break;
    case MovePrevious:
        --to;
        break;
    }
    return model()->index(std::clamp(to, 0, std::max(0, count - 1)), 0);
}

void FileItemsView::currentChanged(const QModelIndex &current, const QModelIndex &previous) {
    if (isVisible())
        Q_EMIT placeChanged();
    // Without a ring there is nothing to paint, to scroll to or to tell.
    if (!m_showsFocus)
        return;
    announceFocus();
    QAbstractItemView::currentChanged(current, previous);
}

void FileItemsView::announceFocus() {
    if (!hasFocus() || !focusedIndex().isValid())
        return;
    QAccessibleEvent event(this, QAccessible::Focus);
    event.setChild(focusedIndex().row());
    QAccessible::updateAccessibility(&event);
}

void FileItemsView::showFocus() {
    m_showsFocus = true;
    const auto [first, last] = rowsInSight();
    const int row = currentIndex().row();
    if (row < first || row > last)
        setCurrentIndex(model()->index(first, 0));
    if (currentIndex().isValid())
        currentChanged(currentIndex(), {});
    else
        viewport()->update();
}

void FileItemsView::hideFocus() {
    if (!std::exchange(m_showsFocus, false))
        return;
    if (currentIndex().isValid())
        update(currentIndex());
    else
        viewport()->update();
}

void FileItemsView::focusInEvent(QFocusEvent *event) {
    const Qt::FocusReason reason = event->reason();
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason)
        showFocus();
    else if (m_showsFocus)
        viewport()->update();
}

void FileItemsView::focusOutEvent(QFocusEvent *event) {
    // A menu that is open over the entry belongs to it.
    // It is here again when the menu has closed or the window comes back.
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason)
        viewport()->update();
    else
        hideFocus();
}

void focusEntries(const QWidget *window) {
    const auto views = window->findChildren<FileItemsView *>();
    const auto shown = std::find_if(views.begin(), views.end(), std::mem_fn(&QWidget::isVisible));
    if (shown != views.end())
        (*shown)->takeFocus();
}

} // namespace vantrel
