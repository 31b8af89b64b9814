#include "Views/QueueListView.h"

#include "Kit/Accessibility.h"
#include "Kit/IconButton.h"
#include "Kit/Shapes.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"
#include "Views/QueueRowView.h"

#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int dividerHeight = 1;

/// From the top of one row to the top of the next.
int pitch() {
    return QueueRowView::rowHeight() + dividerHeight;
}

} // namespace

QueueListView::QueueListView(AppState *state, double radius, QWidget *parent)
    : QAbstractScrollArea(parent), m_state(state), m_radius(radius) {
    setObjectName(QStringLiteral("queue.list"));
    describe(this, QAccessible::List, QStringLiteral("Transfers"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
}

int QueueListView::heightOfRows(qsizetype count) {
    // A queue of a million rows would still fit; beyond that the panel is as high as it can get anyway.
    constexpr qsizetype enough = 1'000'000;
    return count < 1 ? 0 : int(std::min(count, enough)) * pitch() - dividerHeight;
}

QueueRowView *QueueListView::rowView(const QUuid &id) const {
    const auto row = std::find_if(m_rows.begin(), m_rows.end(),
                                  [&id](const Row &candidate) { return candidate.view->item().id == id; });
    return row == m_rows.end() ? nullptr : row->view;
}

void QueueListView::render() {
    fitScrollBar();
    arrange();
    // The dividers are all that the list paints by itself; a change of one row leaves them alone.
    if (m_dividedRows != m_state->queue().size()) {
        m_dividedRows = m_state->queue().size();
        viewport()->update();
    }
}

void QueueListView::fitScrollBar() {
    QScrollBar *bar = verticalScrollBar();
    bar->setRange(0, std::max(0, heightOfRows(m_state->queue().size()) - viewport()->height()));
    bar->setPageStep(viewport()->height());
    bar->setSingleStep(pitch() / 3);
}

const QueueListView::Row *QueueListView::focusedRow() const {
    const auto row = std::find_if(m_rows.begin(), m_rows.end(), [](const Row &candidate) {
        return candidate.view->removeButton()->hasFocus();
    });
    return row == m_rows.end() ? nullptr : &*row;
}

void QueueListView::arrange() {
    const QList<QueueItem> &queue = m_state->queue();
    const qsizetype count = queue.size();
    const int offset = verticalScrollBar()->value();
    const qsizetype first = std::max(0, offset / pitch() - 1);
    const qsizetype last = std::min<qsizetype>(count - 1, (offset + viewport()->height()) / pitch() + 1);

    QList<qsizetype> wanted;
    for (qsizetype index = first; index <= last; ++index)
        wanted.append(index);
    // The keyboard stays where it is while the list is scrolled with the wheel, and goes to the neighbour of
    // a row that is removed.
    qsizetype focused = -1;
    if (const Row *row = focusedRow()) {
        const auto entry = std::find_if(queue.begin(), queue.end(), [row](const QueueItem &item) {
            return item.id == row->view->item().id;
        });
        focused = entry != queue.end() ? entry - queue.begin() : std::min(row->index, count - 1);
        if (focused >= 0 && focused < first)
            wanted.prepend(focused);
        else if (focused > last)
            wanted.append(focused);
    }

    // An entry keeps its view, so that nothing of it is repainted.
    QList<Row> rows;
    QList<Row> old = m_rows;
    for (const qsizetype index : std::as_const(wanted)) {
        const auto known = std::find_if(old.begin(), old.end(), [&](const Row &row) {
            return row.view->item().id == queue.at(index).id;
        });
        rows.append({index, known != old.end() ? known->view : nullptr});
        if (known != old.end())
            old.erase(known);
    }
    for (const Row &row : std::as_const(old))
        m_spare.append(row.view);
    for (Row &row : rows) {
        if (!row.view)
            row.view = m_spare.isEmpty() ? newRowView() : m_spare.takeLast();
    }
    m_rows = rows;

    QWidget *before = this;
    for (const Row &row : std::as_const(m_rows)) {
        row.view->setItem(queue.at(row.index));
        row.view->setGeometry(0, int(row.index) * pitch() - offset, viewport()->width(),
                              QueueRowView::rowHeight());
        row.view->show();
        setTabOrder(before, row.view->removeButton());
        before = row.view->removeButton();
        if (row.index == focused && !row.view->removeButton()->hasFocus())
            row.view->removeButton()->setFocus(Qt::OtherFocusReason);
    }
    for (QueueRowView *view : std::as_const(m_spare))
        view->hide();
}

QueueRowView *QueueListView::newRowView() {
    auto *view = new QueueRowView(viewport());
    view->removeButton()->installEventFilter(this);
    connect(view, &QueueRowView::removeRequested, m_state, &AppState::removeQueueItem);
    return view;
}

void QueueListView::ensureVisible(qsizetype index) {
    const int top = int(index) * pitch();
    const int bottom = top + QueueRowView::rowHeight();
    QScrollBar *bar = verticalScrollBar();
    if (top < bar->value())
        bar->setValue(top);
    else if (bottom > bar->value() + viewport()->height())
        bar->setValue(bottom - viewport()->height());
}

bool QueueListView::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::FocusIn) {
        const auto row = std::find_if(m_rows.begin(), m_rows.end(), [watched](const Row &candidate) {
            return candidate.view->removeButton() == watched;
        });
        if (row != m_rows.end())
            ensureVisible(row->index);
    }
    return QAbstractScrollArea::eventFilter(watched, event);
}

void QueueListView::resizeEvent(QResizeEvent *) {
    fitScrollBar();
    arrange();
}

void QueueListView::scrollContentsBy(int, int) {
    arrange();
    viewport()->update();
}

bool QueueListView::viewportEvent(QEvent *event) {
    if (event->type() == QEvent::Paint) {
        paintDividers();
        return true;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void QueueListView::paintDividers() {
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(roundedRect(viewport()->rect(), m_radius));
    for (const Row &row : std::as_const(m_rows)) {
        if (row.index + 1 < m_state->queue().size())
            painter.fillRect(QRect(0, row.view->geometry().bottom() + 1, viewport()->width(), dividerHeight),
                             AppTheme::stroke());
    }
}

} // namespace vantrel
