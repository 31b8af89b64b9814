#include "Transfers/TransferQueue.h"

namespace vantrel {

int TransferQueue::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(m_items.size());
}

QVariant TransferQueue::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const QueueItem &item = m_items.at(index.row());
    if (role == Qt::DisplayRole)
        return item.name;
    return role == itemRole ? QVariant::fromValue(item) : QVariant();
}

qsizetype TransferQueue::indexOf(const QUuid &id) const {
    return m_rows.value(id, -1);
}

const QueueItem *TransferQueue::find(const QUuid &id) const {
    const qsizetype row = indexOf(id);
    return row < 0 ? nullptr : &m_items.at(row);
}

void TransferQueue::insertFront(const QList<QueueItem> &block) {
    if (block.isEmpty())
        return;
    beginInsertRows({}, 0, int(block.size()) - 1);
    m_items = block + m_items;
    reindex();
    endInsertRows();
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
    const QModelIndex changed = index(int(row));
    Q_EMIT dataChanged(changed, changed);
    return row;
}

bool TransferQueue::remove(const QUuid &id) {
    const qsizetype row = indexOf(id);
    if (row < 0)
        return false;
    erase(row, row);
    return true;
}

bool TransferQueue::clear() {
    const auto isRunning = [this](qsizetype row) {
        return m_items.at(row).status.is<QueueItemStatus::Transferring>();
    };
    const qsizetype before = m_items.size();
    for (qsizetype first = before - 1; first >= 0; --first) {
        if (isRunning(first))
            continue;
        const qsizetype last = first;
        while (first > 0 && !isRunning(first - 1))
            --first;
        erase(first, last);
    }
    return m_items.size() < before;
}

void TransferQueue::erase(qsizetype first, qsizetype last) {
    beginRemoveRows({}, int(first), int(last));
    m_items.remove(first, last - first + 1);
    reindex();
    endRemoveRows();
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
