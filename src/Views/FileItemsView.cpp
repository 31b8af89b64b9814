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
    : QListView(parent), m_delegate(delegate) {
    makeFileItemsAccessible();
    delegate->setParent(this);
    setItemDelegate(delegate);
    setModel(model);
    setSelectionModel(selection);
    // After the toolkit's own slots, which have done with the rows by then.
    connect(model, &FileItemsModel::rowsRemoved, this, &FileItemsView::layOutRows);

    setFrameShape(QFrame::NoFrame);
    setUniformItemSizes(true);
    setVerticalScrollMode(ScrollPerPixel);
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
    const int place = verticalScrollBar()->value();
    const int first = firstVisibleRow();
    const int count = end - start + 1;
    const bool isAbove = place > 0 && start <= first && count < model()->rowCount();
    QListView::rowsInserted(parent, start, end);
    layOutRows();
    if (isAbove) // what is in sight stays there
        verticalScrollBar()->setValue(place + ((first + count) / columns() - first / columns()) * pitch());
    updateRows(start, end);
}

void FileItemsView::rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end) {
    updateRows(start, end);
    QListView::rowsAboutToBeRemoved(parent, start, end);
}

/// After a change of their number, which is one at the end: those before it stay as they are painted.
void FileItemsView::layOutRows() {
    // Out of sight, the layout waits until the view is shown.
    if (!isVisible())
        return;
    const int place = verticalScrollBar()->value();
    viewport()->setAttribute(Qt::WA_UpdatesDisabled);
    executeDelayedItemsLayout();
    viewport()->setAttribute(Qt::WA_UpdatesDisabled, false);
    if (verticalScrollBar()->value() != place)
        viewport()->update();
}

void FileItemsView::updateRows(int first, int last) {
    if (!isVisible())
        return;
    for (int row = std::max(first, firstVisibleRow()); row <= last; ++row) {
        const QRect rect = visualRect(model()->index(row, 0));
        if (rect.top() >= viewport()->height())
            break;
        viewport()->update(rect);
    }
}

// -- Layout

int FileItemsView::pitch() const {
    return std::max(1, sizeHintForIndex(model()->index(0, 0)).height());
}

int FileItemsView::firstVisibleRow() const {
    return std::max(0, verticalOffset()) / pitch() * columns();
}

void FileItemsView::updateGeometries() {
    QListView::updateGeometries();
    verticalScrollBar()->setSingleStep(std::min(pitch(), 36));
}

// -- Painting

void FileItemsView::paintEvent(QPaintEvent *event) {
    QListView::paintEvent(event);
    QPainter painter(viewport());
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
    QListView::mousePressEvent(event);
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
    QListView::mouseReleaseEvent(event);
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
        QListView::keyPressEvent(event);
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

QModelIndex FileItemsView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    const int page = std::max(1, viewport()->height() / pitch()) * columns();
    int row = currentIndex().row();
    if (action == MovePageUp)
        row -= page;
    else if (action == MovePageDown)
        row += page;
    else if (columns() > 1 && action == MoveLeft)
        --row; // on from the beginning of a line to the end of the one before
    else if (columns() > 1 && action == MoveRight)
        ++row;
    else
        return QListView::moveCursor(action, modifiers);
    return model()->index(std::clamp(row, 0, std::max(0, model()->rowCount() - 1)), 0);
}

void FileItemsView::currentChanged(const QModelIndex &current, const QModelIndex &previous) {
    // Without a ring there is nothing to paint, to scroll to or to tell.
    if (m_showsFocus)
        QListView::currentChanged(current, previous);
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
    const int lines = viewport()->height() / pitch();
    const int first = firstVisibleRow();
    const int row = currentIndex().row();
    if (row < first || row >= first + (lines + 1) * columns())
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
