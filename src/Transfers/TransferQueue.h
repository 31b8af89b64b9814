#pragma once

#include "Records/QueueItem.h"

#include <QAbstractListModel>
#include <QHash>
#include <QSet>

#include <functional>

namespace vantrel {

/// The list of copies and the only place that changes it. Finding, counting and updating an entry cost the
/// same however long the list is; the order is the one the user sees, newest batch first.
///
/// As an item model it announces what it does, row by row, to the view that shows it. Main thread only.
class TransferQueue : public QAbstractListModel {
    Q_OBJECT

public:
    /// An entry as a QueueItem; its name is the display role.
    static constexpr int itemRole = Qt::UserRole;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;

    [[nodiscard]] const QList<QueueItem> &items() const { return m_items; }
    [[nodiscard]] int activeCount() const { return int(m_activeIDs.size()); }
    [[nodiscard]] int waitingCount() const { return m_waitingCount; }
    /// Waiting entries whose turn has not been fixed.
    [[nodiscard]] int unclaimedCount() const { return m_unclaimedCount; }
    /// Entries that are done.
    [[nodiscard]] int completedCount() const { return m_completedCount; }
    [[nodiscard]] int failedCount() const { return m_failedCount; }
    [[nodiscard]] int nameTakenCount() const { return m_nameTakenCount; }
    [[nodiscard]] int pausedCount() const { return m_pausedCount; }
    /// Bytes of the entries that are done, run or wait, as far as they are known.
    [[nodiscard]] qint64 totalBytes() const { return m_totalBytes; }
    [[nodiscard]] qint64 doneBytes() const { return m_doneBytes; }

    /// The rows that are being copied, in no order.
    [[nodiscard]] QList<int> activeRows() const;
    /// The entries that are not done, in the order of the list.
    [[nodiscard]] QList<QueueItem> unfinished() const;

    /// The row of the entry, or -1.
    [[nodiscard]] qsizetype indexOf(const QUuid &id) const;
    /// The entry, or null.
    [[nodiscard]] const QueueItem *find(const QUuid &id) const;

    /// Inserts the block before everything else, in its own order.
    void insertFront(const QList<QueueItem> &block);
    /// The same behind everything else.
    void insertBack(const QList<QueueItem> &block);
    /// Claims waiting entries and gives them: the one nearest the end of the list that may start, which
    /// becomes transferring, and up to `most` altogether with its neighbours that may be copied with it,
    /// small files into one folder, which wait for their turn.
    QList<QueueItem> claim(qsizetype most, const std::function<bool(const QueueItem &)> &mayStart);
    /// Replaces the entry's status. Returns its row, or -1 when there is none.
    qsizetype setStatus(const QUuid &id, const QueueItemStatus &status);
    /// Makes every entry for which the function gives another status have it. Returns whether any has.
    bool setStatuses(const std::function<QueueItemStatus(const QueueItem &)> &statusOf);
    /// Decides for an entry what becomes of it where its name is taken.
    void setWhenTaken(const QUuid &id, WhenTaken whenTaken);
    /// Returns whether an entry was removed.
    bool remove(const QUuid &id);
    /// Removes every entry that is not transferring. Returns whether any was.
    bool clear();

private:
    void erase(qsizetype first, qsizetype last);
    void reindex();
    void count(const QueueItem &item, int change);

    QList<QueueItem> m_items;
    QHash<QUuid, qsizetype> m_rows;
    /// Rows at and behind this one hold no waiting entry, so that claiming need not walk past finished ones.
    qsizetype m_waitingEnd = 0;
    QSet<QUuid> m_activeIDs;
    int m_waitingCount = 0;
    int m_unclaimedCount = 0;
    int m_completedCount = 0;
    int m_failedCount = 0;
    int m_nameTakenCount = 0;
    int m_pausedCount = 0;
    qint64 m_totalBytes = 0;
    qint64 m_doneBytes = 0;
};

} // namespace vantrel
