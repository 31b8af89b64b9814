#pragma once

#include "Records/Pane.h"
#include "Transfers/CopyRun.h"
#include "Transfers/TransferQueue.h"
#include "Transfers/TransferRate.h"

#include <QCoroTask>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QObject>
#include <QProperty>
#include <QSet>
#include <QTimer>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

namespace vantrel {

class QueueFile;

/// What the copies need of the model that they belong to. Main thread only.
class TransferHost {
public:
    /// The serials of the phones that can be copied from and to, whichever of them is shown.
    [[nodiscard]] virtual QStringList readyPhones() const = 0;
    /// The folder that the pane shows.
    [[nodiscard]] virtual QString shownFolder(BrowserSide side) const = 0;
    /// Whether the pane's folder is being listed for the user.
    [[nodiscard]] virtual bool isListing(BrowserSide side) const = 0;
    /// Lists the folder again that the pane shows, without a sign but what is new in it.
    virtual QCoro::Task<> listAgain(BrowserSide side) = 0;

protected:
    ~TransferHost() = default;
};

/// Runs the queue: three runs of copies at once, of as many small files each as belong together; tells how
/// fast they go, and lists the panes again that received something.
///
/// Main thread only. When the runner is destroyed, what runs is stopped.
class TransferRunner : public QObject {
    Q_OBJECT

public:
    /// Runs at once.
    static constexpr int concurrentCopies = 3;

    /// The host must outlive the runner.
    explicit TransferRunner(TransferHost &host);
    ~TransferRunner() override;

    [[nodiscard]] const TransferQueue &queue() const { return m_queue; }
    [[nodiscard]] QAbstractItemModel *queueModel() { return &m_queue; }
    /// Both texts are "—" while nothing is known.
    [[nodiscard]] const QString &speedLabel() const { return m_speedLabel.value(); }
    [[nodiscard]] const QString &remainingLabel() const { return m_remainingLabel.value(); }
    /// Whether anything runs, or waits for anything but the phone or the end of a pause.
    [[nodiscard]] bool isTransferring() const { return m_isTransferring; }
    [[nodiscard]] bool isPaused() const { return m_isPaused; }
    /// Entries that are being copied at this moment: one for each run.
    [[nodiscard]] int activeCount() const { return std::min(m_queue.activeCount(), concurrentCopies); }
    /// Entries that wait for their turn, or only for the others of their run.
    [[nodiscard]] int waitingCount() const {
        return m_queue.waitingCount() + m_queue.activeCount() - activeCount();
    }
    /// Entries that run, wait or are paused.
    [[nodiscard]] int unfinishedCount() const {
        return m_queue.activeCount() + m_queue.waitingCount() + m_queue.pausedCount();
    }
    /// Why they would be lost if the program ended now, as a sentence; empty when they are remembered.
    [[nodiscard]] const QString &forgetReason() const { return m_forgetReason; }
    /// What the user has to know of how the queue is remembered, as a sentence; empty when all is well.
    [[nodiscard]] const QString &notice() const { return m_notice.value(); }

    /// Keeps what is not finished in a file of this folder from now on, and takes up, paused and behind all
    /// others, what an earlier start has left there. To be called once.
    QCoro::Task<> remember(QString folder);

    /// Puts the entries, which wait, before all others, and runs the queue.
    void enqueue(const QList<QueueItem> &entries);
    /// Removes one entry. A copy that runs for it is stopped within 0.5 s and leaves nothing behind but files
    /// that had arrived whole and got their names.
    void remove(const QUuid &id);
    /// Removes every entry that is not running.
    void clear();
    /// Stops what runs and starts nothing until resume().
    void pause();
    void resume();
    /// Lets a failed entry wait again; of a folder only what is missing is copied.
    void tryAgain(const QUuid &id);
    void tryAllAgain();
    /// Lets an entry whose name is taken be copied beside what is there.
    void keepBoth(const QUuid &id);
    void keepAllBoth();
    /// Whether copies that start from now on are compared with their originals before they take their names.
    void setVerifies(bool verifies) { m_verifies = verifies; }
    /// To be called whenever it is known anew which phones are there.
    void phoneWasAsked();

Q_SIGNALS:
    /// The queue changed in any way; comes after what queueModel() tells of it.
    void queueChanged();
    void speedLabelChanged();
    void remainingLabelChanged();
    void isTransferringChanged();
    void isPausedChanged();
    void noticeChanged();
    /// The phone left while something was copied; what is meant for it waits for phoneWasAsked().
    void phoneLeft();

private:
    /// One run of copies, shared with its worker.
    class Run;
    /// When a pane that receives copies was last listed again, and the listing that is put off.
    struct ReceivingPane {
        bool isBeingListed = false;
        QElapsedTimer sinceListed;
        QTimer listLater;
    };

    [[nodiscard]] bool mayStart(const QueueItem &item, const QStringList &phones) const;
    void fillSlots();
    QCoro::Task<> runSlot(QList<QueueItem> entries);
    void finish(const QUuid &id, const CopyReport &report);
    /// Removes what is kept of copies that will not go on.
    QCoro::Task<> discard(QList<QUuid> entries);
    void letWait(const std::function<bool(const QueueItem &)> &isMeant);
    void refreshReceivingPane(const QueueItem &item);
    QCoro::Task<> browseAgain(BrowserSide side);
    [[nodiscard]] ReceivingPane &receivingPane(BrowserSide side) { return m_receiving.at(size_t(side)); }
    void noteChange();
    QCoro::Task<> save();
    void applyProgress(const std::shared_ptr<Run> &run, const QUuid &id,
                       const QueueItemStatus::Progress &progress);
    void updateStatus(const QUuid &id, const QueueItemStatus &status);
    void renderSpeed();
    void markSilentCopies();
    void forgetSpeed();

    TransferHost &m_host;
    TransferQueue m_queue;
    TransferRate m_rate;
    Q_OBJECT_BINDABLE_PROPERTY(TransferRunner, QString, m_speedLabel, &TransferRunner::speedLabelChanged)
    Q_OBJECT_BINDABLE_PROPERTY(TransferRunner, QString, m_remainingLabel,
                               &TransferRunner::remainingLabelChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(TransferRunner, bool, m_isTransferring, false,
                                         &TransferRunner::isTransferringChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(TransferRunner, bool, m_isPaused, false,
                                         &TransferRunner::isPausedChanged)

    Q_OBJECT_BINDABLE_PROPERTY(TransferRunner, QString, m_notice, &TransferRunner::noticeChanged)

    QTimer m_speedTimer;               ///< a copy that stands still has no reports
    std::shared_ptr<QueueFile> m_file; ///< shared with the worker that writes
    QTimer m_saveTimer;
    QDeadlineTimer m_pauseUntilSave{0};
    QString m_forgetReason;
    quint64 m_saveNumber = 0;
    bool m_isUnsaved = false;
    bool m_isSaving = false;
    QList<std::shared_ptr<Run>> m_runs;
    bool m_isFillingSlots = false;
    bool m_verifies = false;
    /// Phones that left while something was copied, until they are seen again.
    QSet<QString> m_gonePhones;
    /// Where the running copies write, so that two never write to one place.
    QSet<QString> m_destinationsInUse;
    std::array<ReceivingPane, 2> m_receiving; ///< by side
};

} // namespace vantrel
