#include "Transfers/TransferQueue.h"

namespace vantrel {

qsizetype TransferQueue::indexOf(const QUuid &id) const {
    return m_rows.value(id, -1);
}

const QueueItem *TransferQueue::find(const QUuid &id) const {
    const qsizetype row = indexOf(id);
    return row < 0 ? nullptr : &m_items.at(row);
}

void TransferQueue::insertFront(const QList<QueueItem> &block) {
    m_items = block + m_items;
    reindex();
}

std::optional<QUuid> TransferQueue::claimNextWaiting() {
    while (m_waitingEnd > 0 && !m_items.at(m_waitingEnd - 1).status.is<QueueItemStatus::Waiting>())
        --m_waitingEnd;
    if (m_waitingEnd == 0)
        return std::nullopt;
    const QueueItem &item = m_items.at(m_waitingEnd - 1);
    const QUuid id = item.id;
    QueueItemStatus::Transferring started;
    started.totalBytes = std::max<qint64>(item.totalBytes, 0);
    setStatus(id, started);
    return id;
}

QList<QueueItem> TransferQueue::nextWaiting(qsizetype limit) const {
    QList<QueueItem> next;
    for (qsizetype row = m_waitingEnd - 1; row >= 0 && next.size() < limit; --row) {
        if (m_items.at(row).status.is<QueueItemStatus::Waiting>())
            next.append(m_items.at(row));
    }
    return next;
}

qsizetype TransferQueue::setStatus(const QUuid &id, const QueueItemStatus &status) {
    const qsizetype row = indexOf(id);
    if (row < 0)
        return row;
    count(m_items.at(row).status, -1);
    m_items[row].status = status;
    count(status, +1);
    return row;
}

bool TransferQueue::remove(const QUuid &id) {
    const qsizetype row = indexOf(id);
    if (row < 0)
        return false;
    m_items.removeAt(row);
    reindex();
    return true;
}

bool TransferQueue::clear() {
    const auto removed = m_items.removeIf(
        [](const QueueItem &item) { return !item.status.is<QueueItemStatus::Transferring>(); });
    reindex();
    return removed > 0;
}

void TransferQueue::reindex() {
    m_rows.clear();
    m_rows.reserve(m_items.size());
    m_activeCount = 0;
    m_waitingCount = 0;
    for (qsizetype row = 0; row < m_items.size(); ++row) {
        m_rows.insert(m_items.at(row).id, row);
        count(m_items.at(row).status, +1);
    }
    m_waitingEnd = m_items.size();
}

void TransferQueue::count(const QueueItemStatus &status, int change) {
    if (status.is<QueueItemStatus::Transferring>())
        m_activeCount += change;
    else if (status.is<QueueItemStatus::Waiting>())
        m_waitingCount += change;
}

} // namespace vantrel
