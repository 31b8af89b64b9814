#pragma once

#include "Records/Pane.h"
#include "Transfers/TransferQueue.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QObject>
#include <QProperty>
#include <QSet>
#include <QTimer>

#include <array>
#include <optional>

namespace vantrel {

/// What the copies need of the model that they belong to. Main thread only.
class TransferHost {
public:
    /// The serial of the phone in use, or nothing while there is none.
    [[nodiscard]] virtual std::optional<QString> connectedSerial() const = 0;
    /// Lists the folder again that the pane shows.
    virtual QCoro::Task<> listAgain(BrowserSide side) = 0;

protected:
    ~TransferHost() = default;
};

/// Runs the queue: three copies at once, each into a free place; tells how fast they go, and lists the panes
/// again that received something.
///
/// Main thread only. Copies go on without a listener; when the runner is destroyed, those that run end
/// unseen.
class TransferRunner : public QObject {
    Q_OBJECT

public:
    /// Copies that run at once.
    static constexpr int concurrentCopies = 3;

    /// The host must outlive the runner.
    explicit TransferRunner(TransferHost &host);

    [[nodiscard]] const TransferQueue &queue() const { return m_queue; }
    [[nodiscard]] QAbstractItemModel *queueModel() { return &m_queue; }
    /// Both texts are "—" while nothing is known.
    [[nodiscard]] const QString &speedLabel() const { return m_speedLabel.value(); }
    [[nodiscard]] const QString &remainingLabel() const { return m_remainingLabel.value(); }
    /// Whether anything waits or runs.
    [[nodiscard]] bool isTransferring() const { return m_isTransferring; }

    /// Puts the entries, which wait, before all others, and runs the queue.
    void enqueue(const QList<QueueItem> &entries);
    /// Removes one entry. A running copy runs on to its end unseen.
    void remove(const QUuid &id);
    /// Removes every entry that is not running.
    void clear();

Q_SIGNALS:
    /// The queue changed in any way; comes after what queueModel() tells of it.
    void queueChanged();
    void speedLabelChanged();
    void remainingLabelChanged();
    void isTransferringChanged();

private:
    struct CopyClock {
        QElapsedTimer start;
        qint64 expectedBytes = 0;
        [[nodiscard]] double bytesPerSecond(qint64 bytes) const;
    };
    /// What stood at the destination of a waiting push when the phone was asked.
    struct DestinationCheck {
        QString serial; ///< of the phone that was asked
        bool isTaken = false;
        std::optional<QString> error;
        QElapsedTimer age;
    };
    /// When a pane that receives copies was last listed again, and the listing that is put off.
    struct ReceivingPane {
        bool isBeingListed = false;
        QElapsedTimer sinceListed;
        QTimer listLater;
    };

    void fillSlots();
    QCoro::Task<> runSlot(QUuid id);
    QCoro::Task<> runSingleTransfer(QUuid id);
    QCoro::Task<std::optional<QString>> refusalOfPush(QueueItem item);
    [[nodiscard]] bool hasFreshCheck(const QUuid &id) const;
    void askAhead();
    [[nodiscard]] QList<QueueItem> pushesToAskFor(const std::optional<QueueItem> &first) const;
    QCoro::Task<> checkDestinations(QString serial, QList<QueueItem> items);
    QCoro::Task<> refreshReceivingPane(BrowserSide side);
    QCoro::Task<> browseAgain(BrowserSide side);
    [[nodiscard]] ReceivingPane &receivingPane(BrowserSide side) { return m_receiving.at(size_t(side)); }
    void applyProgress(const QUuid &id, const CopyClock &clock, double fraction, qint64 transferred,
                       qint64 total);
    void updateStatus(const QUuid &id, const QueueItemStatus &status);
    void showSpeed(double bytesPerSecond);
    void forgetSpeed();

    TransferHost &m_host;
    TransferQueue m_queue;
    Q_OBJECT_BINDABLE_PROPERTY(TransferRunner, QString, m_speedLabel, &TransferRunner::speedLabelChanged)
    Q_OBJECT_BINDABLE_PROPERTY(TransferRunner, QString, m_remainingLabel,
                               &TransferRunner::remainingLabelChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(TransferRunner, bool, m_isTransferring, false,
                                         &TransferRunner::isTransferringChanged)

    int m_runningCopies = 0;
    bool m_isFillingSlots = false;
    /// Where the running copies write, so that two never write to one place.
    QSet<QString> m_destinationsInUse;
    QHash<QUuid, DestinationCheck> m_destinationChecks;
    std::optional<QCoro::Task<>> m_runningDestinationCheck;
    std::array<ReceivingPane, 2> m_receiving; ///< by side
};

} // namespace vantrel
