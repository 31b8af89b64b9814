#pragma once

#include "Records/QueueItem.h"

#include <QAbstractListModel>
#include <QHash>

#include <optional>

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
    [[nodiscard]] int activeCount() const { return m_activeCount; }
    [[nodiscard]] int waitingCount() const { return m_waitingCount; }

    /// The row of the entry, or -1.
    [[nodiscard]] qsizetype indexOf(const QUuid &id) const;
    /// The entry, or null.
    [[nodiscard]] const QueueItem *find(const QUuid &id) const;

    /// Inserts the block before everything else, in its own order.
    void insertFront(const QList<QueueItem> &block);
    /// Makes the waiting entry nearest the end of the list transferring, and gives its identity.
    std::optional<QUuid> claimNextWaiting();
    /// The waiting entries in the order in which they will be claimed, at most `limit`.
    [[nodiscard]] QList<QueueItem> nextWaiting(qsizetype limit) const;
    /// Replaces the entry's status. Returns its row, or -1 when there is none.
    qsizetype setStatus(const QUuid &id, const QueueItemStatus &status);
    /// Returns whether an entry was removed.
    bool remove(const QUuid &id);
    /// Removes every entry that is not transferring. Returns whether any was.
    bool clear();

private:
    void erase(qsizetype first, qsizetype last);
    void reindex();
    void count(const QueueItemStatus &status, int change);

    QList<QueueItem> m_items;
    QHash<QUuid, qsizetype> m_rows;
    /// Rows at and behind this one hold no waiting entry, so that claiming need not walk past finished ones.
    qsizetype m_waitingEnd = 0;
    int m_activeCount = 0;
    int m_waitingCount = 0;
};

} // namespace vantrel
