#include "Views/FileItemsView.h"

#include "Kit/Shapes.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"
#include "Views/FileItemsAccessibility.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace vantrel {

FileEntry FileItemsContents::entry(qsizetype index) const {
    const FileItem &item = items.at(index);
    return {item, selectedIDs.contains(item.id), showsLocation, showsMacContextMenu, showsOpenContextMenu};
}

FileItemsView::FileItemsView(QWidget *parent) : QAbstractScrollArea(parent) {
    makeFileItemsAccessible();
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
}

// -- Contents

void FileItemsView::setContents(const FileItemsContents &contents) {
    const FileItemsContents before = std::exchange(m_contents, contents);
    const bool sameItems = before.items.isSharedWith(m_contents.items);
    if (!sameItems || before.showsLocation != m_contents.showsLocation) {
        m_current = std::clamp<qsizetype>(m_current, 0, std::max<qsizetype>(0, count() - 1));
        fitScrollBar();
    }
    repaintChanged(before);
}

void FileItemsView::repaintChanged(const FileItemsContents &before) {
    if (before.showsLocation != m_contents.showsLocation) {
        viewport()->update();
        return;
    }
    const Range visible = visibleEntries();
    for (qsizetype index = visible.first; index <= visible.last; ++index) {
        const bool was = index < before.items.size();
        const bool is = index < count();
        if (!was && !is)
            break;
        if (was && is) {
            const FileEntry entry = m_contents.entry(index);
            const FileEntry entryBefore = before.entry(index);
            if (looksSame(entryBefore, entry))
                continue;
            if (QAccessible::isActive() && entry.item.id == entryBefore.item.id)
                announceSelection(this, int(index));
        }
        updateEntry(index);
    }
}

void FileItemsView::updateEntry(qsizetype index) {
    viewport()->update(entryRect(index));
}

void FileItemsView::scrollToTop() {
    m_current = 0;
    verticalScrollBar()->setValue(0);
}

// -- Layout

QRect FileItemsView::entryRect(qsizetype index) const {
    return rectOf(index).translated(0, -verticalScrollBar()->value());
}

FileItemsView::Range FileItemsView::visibleEntries() const {
    const int top = verticalScrollBar()->value();
    return entriesBetween(top, top + viewport()->height() - 1);
}

qsizetype FileItemsView::indexAt(const QPoint &point) const {
    const int y = point.y() + verticalScrollBar()->value();
    const Range line = entriesBetween(y, y);
    for (qsizetype index = line.first; index <= std::min(line.last, count() - 1); ++index) {
        if (entryRect(index).contains(point))
            return index;
    }
    return -1;
}

void FileItemsView::fitScrollBar() {
    QScrollBar *bar = verticalScrollBar();
    bar->setPageStep(viewport()->height());
    bar->setSingleStep(std::min(pitch(), 36));
    bar->setRange(0, std::max(0, contentHeight() - viewport()->height()));
}

void FileItemsView::ensureVisible(qsizetype index) {
    const QRect rect = rectOf(index);
    QScrollBar *bar = verticalScrollBar();
    const int lowest = rect.bottom() + 1 - viewport()->height();
    bar->setValue(std::min(std::max(bar->value(), lowest), rect.top()));
}

void FileItemsView::resizeEvent(QResizeEvent *) {
    fitScrollBar();
}

void FileItemsView::scrollContentsBy(int dx, int dy) {
    viewport()->scroll(dx, dy);
}

// -- Painting

void FileItemsView::paintEvent(QPaintEvent *event) {
    QPainter painter(viewport());
    painter.fillRect(event->rect(), AppTheme::surface());
    const int offset = verticalScrollBar()->value();
    const Range range = entriesBetween(event->rect().top() + offset, event->rect().bottom() + offset);
    for (qsizetype index = range.first; index <= std::min(range.last, count() - 1); ++index) {
        const QRect rect = entryRect(index);
        if (event->region().intersects(rect))
            paintEntry(painter, m_contents.entry(index), rect);
    }
    if (m_showsFocus && hasFocus()) {
        const QRect ring = count() > 0 ? entryRect(m_current) : viewport()->rect();
        paintFocusRing(painter, ring, focusRadius());
    }
}

// -- Mouse

std::optional<FileItemsView::Target> FileItemsView::targetAt(const QPoint &point) const {
    const qsizetype index = indexAt(point);
    if (index < 0)
        return std::nullopt;
    const FileEntry entry = m_contents.entry(index);
    return Target{entry.item.id, partAt(entry, entryRect(index), point)};
}

void FileItemsView::click(FileEntry::Part part, const FileItem &item) {
    if (part == FileEntry::Part::mark)
        Q_EMIT toggled(item);
    else
        Q_EMIT selected(item);
}

void FileItemsView::mousePressEvent(QMouseEvent *event) {
    m_pressed = event->button() == Qt::LeftButton ? targetAt(event->pos()) : std::nullopt;
    hideFocus();
    // A click beside the entries is the pane's.
    event->setAccepted(m_pressed.has_value());
}

void FileItemsView::mouseReleaseEvent(QMouseEvent *event) {
    const auto pressed = std::exchange(m_pressed, std::nullopt);
    if (!pressed || event->button() != Qt::LeftButton || targetAt(event->pos()) != pressed)
        return;
    m_clicked = pressed;
    const FileItem item = m_contents.items.at(indexAt(event->pos()));
    click(pressed->part, item);
}

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
    const FileItem item = m_contents.items.at(indexAt(event->pos()));
    // Every click on a mark counts; the body is selected already.
    if (target->part == FileEntry::Part::mark)
        click(target->part, item);
    Q_EMIT opened(item);
}

void FileItemsView::contextMenuEvent(QContextMenuEvent *event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const qsizetype index = byKey ? focusedIndex() : indexAt(event->pos());
    if (index < 0)
        event->ignore();
    else if (byKey)
        requestContextMenu(index);
    else
        Q_EMIT contextMenuRequested(m_contents.entry(index), event->globalPos());
}

void FileItemsView::requestContextMenu(qsizetype index) {
    const QPoint center = entryRect(index).center();
    Q_EMIT contextMenuRequested(m_contents.entry(index), viewport()->mapToGlobal(center));
}

bool FileItemsView::viewportEvent(QEvent *event) {
    if (event->type() == QEvent::ToolTip) {
        const qsizetype index = indexAt(static_cast<QHelpEvent *>(event)->pos());
        const bool cut = index >= 0 && cutsName(m_contents.entry(index), entryRect(index));
        viewport()->setToolTip(cut ? plainToolTip(m_contents.items.at(index).name) : QString());
    }
    return QAbstractScrollArea::viewportEvent(event);
}

// -- Keyboard

qsizetype FileItemsView::focusedIndex() const {
    return m_showsFocus && count() > 0 ? m_current : -1;
}

void FileItemsView::setFocusedIndex(qsizetype index) {
    if (count() == 0)
        return;
    updateEntry(m_current);
    m_current = std::clamp<qsizetype>(index, 0, count() - 1);
    m_showsFocus = true;
    ensureVisible(m_current);
    updateEntry(m_current);
    announceFocus();
}

void FileItemsView::hideFocus() {
    if (!std::exchange(m_showsFocus, false))
        return;
    if (count() > 0)
        updateEntry(m_current);
    else
        viewport()->update();
}

void FileItemsView::announceFocus() {
    QAccessibleEvent event(this, QAccessible::Focus);
    event.setChild(int(m_current));
    QAccessible::updateAccessibility(&event);
}

void FileItemsView::keyPressEvent(QKeyEvent *event) {
    if (focusedIndex() < 0 || event->modifiers() & ~Qt::KeypadModifier) {
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    const int lineLength = columns();
    const int page = std::max(1, viewport()->height() / pitch()) * lineLength;
    const auto move = [this](qsizetype index) {
        if (index >= 0 && index < count())
            setFocusedIndex(index);
    };
    switch (event->key()) {
    case Qt::Key_Up:
        move(m_current - lineLength);
        break;
    case Qt::Key_Down:
        move(m_current + lineLength);
        break;
    case Qt::Key_Left:
        if (lineLength > 1)
            move(m_current - 1);
        break;
    case Qt::Key_Right:
        if (lineLength > 1)
            move(m_current + 1);
        break;
    case Qt::Key_Home:
        setFocusedIndex(0);
        break;
    case Qt::Key_End:
        setFocusedIndex(count() - 1);
        break;
    case Qt::Key_PageUp:
        setFocusedIndex(m_current - page);
        break;
    case Qt::Key_PageDown:
        setFocusedIndex(m_current + page);
        break;
    case Qt::Key_Space:
        Q_EMIT toggled(FileItem(m_contents.items.at(m_current)));
        break;
    default:
        event->ignore();
    }
}

void FileItemsView::focusInEvent(QFocusEvent *event) {
    const Qt::FocusReason reason = event->reason();
    if (reason != Qt::TabFocusReason && reason != Qt::BacktabFocusReason &&
        reason != Qt::ShortcutFocusReason) {
        if (m_showsFocus)
            viewport()->update();
        return;
    }
    m_showsFocus = true;
    const Range visible = visibleEntries();
    if (m_current < visible.first || m_current > visible.last)
        m_current = visible.first;
    if (count() > 0)
        setFocusedIndex(m_current);
    else
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

} // namespace vantrel
