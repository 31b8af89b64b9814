#include "Transfers/TransferQueue.h"

#include <algorithm>

namespace vantrel {

namespace {

/// What is started together: as much as a user who stops it is ready to lose.
constexpr qint64 mostBytesTogether = 16'000'000;

/// What an entry adds to the sums: a phone may claim any size, and a million such sizes must fit 64 bits.
qint64 counted(qint64 bytes) {
    constexpr qint64 largest = qint64(1) << 42;
    return std::clamp<qint64>(bytes, 0, largest);
}

/// Whether two entries may be copied by one run: files of one phone, one way, into one folder.
bool belongTogether(const QueueItem &a, const QueueItem &b) {
    return !a.isDirectory && !b.isDirectory && a.direction == b.direction && a.serial == b.serial &&
           a.destinationFolder == b.destinationFolder;
}

} // namespace

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

QList<int> TransferQueue::activeRows() const {
    QList<int> rows;
    for (const QUuid &id : m_activeIDs)
        rows.append(int(indexOf(id)));
    return rows;
}

QList<QueueItem> TransferQueue::unfinished() const {
    QList<QueueItem> entries;
    std::copy_if(m_items.begin(), m_items.end(), std::back_inserter(entries),
                 [](const QueueItem &item) { return !item.status.is<QueueItemStatus::Completed>(); });
    return entries;
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

void TransferQueue::insertBack(const QList<QueueItem> &block) {
    if (block.isEmpty())
        return;
    beginInsertRows({}, int(m_items.size()), int(m_items.size() + block.size()) - 1);
    m_items += block;
    reindex();
    endInsertRows();
}

QList<QueueItem> TransferQueue::claim(qsizetype most,
                                      const std::function<bool(const QueueItem &)> &mayStart) {
    const auto isWaiting = [this](qsizetype row) {
        const auto *waiting = m_items.at(row).status.as<QueueItemStatus::Waiting>();
        return waiting && !waiting->isClaimed;
    };
    while (m_waitingEnd > 0 && !isWaiting(m_waitingEnd - 1))
        --m_waitingEnd;
    qsizetype row = m_waitingEnd - 1;
    while (row >= 0 && !(isWaiting(row) && mayStart(m_items.at(row))))
        --row;
    QList<QueueItem> claimed;
    qint64 bytes = 0;
    for (; row >= 0 && claimed.size() < most; --row) {
        const QueueItem &item = m_items.at(row);
        bytes += counted(item.totalBytes);
        const bool isFirst = claimed.isEmpty();
        if (!isFirst && !(isWaiting(row) && mayStart(item) && belongTogether(claimed.first(), item) &&
                          bytes <= mostBytesTogether))
            break;
        QueueItemStatus::Transferring started;
        started.totalBytes = std::max<qint64>(item.totalBytes, 0);
        claimed.append(item);
        setStatus(item.id, isFirst ? QueueItemStatus(started)
                                   : QueueItemStatus(QueueItemStatus::Waiting{false, true}));
    }
    return claimed;
}

qsizetype TransferQueue::setStatus(const QUuid &id, const QueueItemStatus &status) {
    const qsizetype row = indexOf(id);
    if (row < 0)
        return row;
    count(m_items.at(row), -1);
    m_items[row].status = status;
    count(m_items.at(row), +1);
    if (const auto *waiting = status.as<QueueItemStatus::Waiting>(); waiting && !waiting->isClaimed)
        m_waitingEnd = std::max(m_waitingEnd, row + 1);
    const QModelIndex changed = index(int(row));
    Q_EMIT dataChanged(changed, changed);
    return row;
}

bool TransferQueue::setStatuses(const std::function<QueueItemStatus(const QueueItem &)> &statusOf) {
    bool isChanged = false;
    for (qsizetype row = 0; row < m_items.size(); ++row) {
        QueueItemStatus status = statusOf(m_items.at(row));
        if (status == m_items.at(row).status)
            continue;
        setStatus(m_items.at(row).id, status);
        isChanged = true;
    }
    return isChanged;
}

void TransferQueue::setWhenTaken(const QUuid &id, WhenTaken whenTaken) {
    if (const qsizetype row = indexOf(id); row >= 0)
        m_items[row].whenTaken = whenTaken;
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
    if (m_items.isEmpty()) { // what a long queue took is given back
        m_items.squeeze();
        m_rows.squeeze();
    }
    m_rows.reserve(m_items.size());
    m_activeIDs.clear();
    m_waitingCount = m_completedCount = m_failedCount = m_nameTakenCount = m_pausedCount = m_unclaimedCount =
        0;
    m_totalBytes = m_doneBytes = 0;
    for (qsizetype row = 0; row < m_items.size(); ++row) {
        m_rows.insert(m_items.at(row).id, row);
        count(m_items.at(row), +1);
    }
    m_waitingEnd = m_items.size();
}

void TransferQueue::count(const QueueItem &item, int change) {
    const QueueItemStatus &status = item.status;
    if (status.is<QueueItemStatus::Transferring>())
        change > 0 ? (void)m_activeIDs.insert(item.id) : (void)m_activeIDs.remove(item.id);
    m_pausedCount += status.is<QueueItemStatus::Paused>() ? change : 0;
    m_failedCount += status.is<QueueItemStatus::Failed>() ? change : 0;
    m_nameTakenCount += status.is<QueueItemStatus::NameTaken>() ? change : 0;
    if (const auto *waiting = status.as<QueueItemStatus::Waiting>()) {
        m_waitingCount += change;
        m_unclaimedCount += waiting->isClaimed ? 0 : change;
        m_totalBytes += change * counted(item.totalBytes);
    } else if (const auto *progress = status.progress()) {
        m_totalBytes += change * counted(progress->totalBytes);
        m_doneBytes += change * counted(progress->transferredBytes);
    } else if (const auto *completed = status.as<QueueItemStatus::Completed>()) {
        m_completedCount += change;
        m_totalBytes += change * counted(completed->totalBytes);
        m_doneBytes += change * counted(completed->totalBytes);
    }
}

} // namespace vantrel
