#include "Transfers/TransferRunner.h"

#include "ADB/AndroidPath.h"
#include "Records/FileSizeFormat.h"
#include "Records/TransferFormat.h"
#include "Worker/Worker.h"

#include <QPointer>

#include <algorithm>
#include <mutex>

namespace vantrel {

namespace {

/// One key for all spellings of one place: shared storage and the Mac ignore case, so such copies go one
/// after the other, and the file system says whether they are two.
QString destinationKey(const QueueItem &item) {
    return (item.direction == TransferDirection::androidToMac ? QStringLiteral("mac:")
                                                              : QString(item.serial % QLatin1Char(':'))) +
           item.destinationPath.toCaseFolded();
}

QString folderOf(const QString &path) {
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash <= 0 ? QStringLiteral("/") : path.left(slash);
}

} // namespace

/// Any thread.
class TransferRunner::Run {
public:
    explicit Run(const QList<QueueItem> &entries) {
        for (const QueueItem &item : entries)
            m_wanted.insert(item.id);
    }
    [[nodiscard]] bool isWanted(const QUuid &id) const {
        const std::scoped_lock lock(m_guard);
        return m_wanted.contains(id);
    }
    /// Nobody wants the entry any more. When it was the last one, the whole run stops.
    void drop(const QUuid &id) {
        const std::scoped_lock lock(m_guard);
        if (m_wanted.remove(id) && m_wanted.isEmpty())
            m_stop.request_stop();
    }
    void stop() { m_stop.request_stop(); }
    [[nodiscard]] std::stop_token stopToken() const { return m_stop.get_token(); }

private:
    mutable std::mutex m_guard;
    QSet<QUuid> m_wanted;
    std::stop_source m_stop;
};

TransferRunner::TransferRunner(TransferHost &host) : m_host(host) {
    forgetSpeed();
    for (const BrowserSide side : {BrowserSide::android, BrowserSide::mac}) {
        QTimer &timer = receivingPane(side).listLater;
        timer.setSingleShot(true);
        connect(&timer, &QTimer::timeout, this, [this, side] { browseAgain(side); });
    }
}

TransferRunner::~TransferRunner() {
    for (const auto &run : std::as_const(m_runs))
        run->stop();
}

void TransferRunner::enqueue(const QList<QueueItem> &entries) {
    if (!m_isTransferring)
        forgetSpeed();
    m_queue.insertFront(entries);
    Q_EMIT queueChanged();
    fillSlots();
}

void TransferRunner::remove(const QUuid &id) {
    for (const auto &run : std::as_const(m_runs))
        run->drop(id);
    if (!m_queue.remove(id))
        return;
    Q_EMIT queueChanged();
    fillSlots();
}

void TransferRunner::clear() {
    for (const QueueItem &item : m_queue.items()) {
        if (item.status.is<QueueItemStatus::Transferring>())
            continue;
        for (const auto &run : std::as_const(m_runs)) // one whose turn was fixed
            run->drop(item.id);
    }
    if (m_queue.clear())
        Q_EMIT queueChanged();
    fillSlots();
}

void TransferRunner::pause() {
    if (m_isPaused)
        return;
    m_isPaused = true;
    for (const auto &run : std::as_const(m_runs))
        run->stop();
    fillSlots();
}

void TransferRunner::resume() {
    m_isPaused = false;
    letWait([](const QueueItem &item) { return item.status.is<QueueItemStatus::Paused>(); });
}

void TransferRunner::tryAgain(const QUuid &id) {
    letWait([id](const QueueItem &item) { return item.id == id && item.canTryAgain(); });
}

void TransferRunner::tryAllAgain() {
    letWait(&QueueItem::canTryAgain);
}

void TransferRunner::keepBoth(const QUuid &id) {
    m_queue.setWhenTaken(id, WhenTaken::keepBoth);
    letWait([id](const QueueItem &item) { return item.id == id && item.canKeepBoth(); });
}

void TransferRunner::keepAllBoth() {
    for (const QueueItem &item : m_queue.items()) {
        if (item.canKeepBoth())
            m_queue.setWhenTaken(item.id, WhenTaken::keepBoth);
    }
    letWait(&QueueItem::canKeepBoth);
}

void TransferRunner::letWait(const std::function<bool(const QueueItem &)> &isMeant) {
    const bool isChanged = m_queue.setStatuses([&](const QueueItem &item) {
        return isMeant(item) ? QueueItemStatus(QueueItemStatus::Waiting()) : item.status;
    });
    if (isChanged)
        Q_EMIT queueChanged();
    fillSlots();
}

void TransferRunner::phoneWasAsked() {
    const auto serial = m_host.connectedSerial();
    if (serial)
        m_gonePhones.remove(*serial);
    const bool isChanged = m_queue.setStatuses([&](const QueueItem &item) {
        const auto *waiting = item.status.as<QueueItemStatus::Waiting>();
        if (!waiting || waiting->isClaimed)
            return item.status;
        return QueueItemStatus(QueueItemStatus::Waiting{item.serial != serial});
    });
    if (isChanged)
        Q_EMIT queueChanged();
    fillSlots();
}

bool TransferRunner::mayStart(const QueueItem &item) const {
    return m_host.connectedSerial() == item.serial && !m_gonePhones.contains(item.serial) &&
           !m_destinationsInUse.contains(destinationKey(item));
}

/// Starts copies until all slots are taken or nothing may start, and ends the run when nothing is left: both
/// in one step on the main thread, so that nothing that is queued meanwhile is left waiting.
void TransferRunner::fillSlots() {
    constexpr qsizetype mostTogether = 1000;
    constexpr qsizetype few = 4 * concurrentCopies;
    if (m_isFillingSlots)
        return;
    m_isFillingSlots = true;
    while (m_runs.size() < concurrentCopies && !m_isPaused) {
        QSet<QString> places; // of this claim
        const auto isFree = [&](const QueueItem &item) {
            return mayStart(item) && !places.contains(destinationKey(item)) &&
                   (places.insert(destinationKey(item)), true);
        };
        // A run of adb costs the time of many small files: unless few wait, the free slots share them.
        const qsizetype waiting = m_queue.unclaimedCount();
        const qsizetype share = waiting < few ? 1 : waiting / (concurrentCopies - m_runs.size()) + 1;
        const QList<QueueItem> claimed = m_queue.claim(std::min(share, mostTogether), isFree);
        if (claimed.isEmpty())
            break;
        for (const QueueItem &item : claimed)
            m_destinationsInUse.insert(destinationKey(item));
        m_isTransferring = true;
        Q_EMIT queueChanged();
        runSlot(claimed);
    }
    m_isFillingSlots = false;
    if (!m_runs.isEmpty())
        return;
    forgetSpeed();
    m_isTransferring = false; // whoever is told may queue more
}

QCoro::Task<> TransferRunner::runSlot(QList<QueueItem> entries) {
    const auto run = std::make_shared<Run>(entries);
    m_runs.append(run);
    CopyJob job;
    job.direction = entries.first().direction;
    job.serial = entries.first().serial;
    job.folder = folderOf(entries.first().destinationPath);
    for (const QueueItem &item : std::as_const(entries)) {
        if (AndroidPath::isSafeName(item.name)) {
            job.entries.append(item);
            continue;
        }
        CopyReport refused;
        refused.failure = QStringLiteral("This name can’t be used on the other side.");
        finish(item.id, refused);
    }
    const QPointer<TransferRunner> self(this);
    CopyWatcher watcher;
    watcher.isWanted = [run](const QUuid &id) { return run->isWanted(id); };
    watcher.onProgress = [self](const QUuid &id, const QueueItemStatus::Progress &progress) {
        Background::post([self, id, progress] {
            if (self)
                self->applyProgress(id, progress);
        });
    };
    watcher.onEnd = [self](const QUuid &id, const CopyReport &report) {
        Background::post([self, id, report] {
            if (self)
                self->finish(id, report);
        });
    };
    const std::stop_token stop = run->stopToken();
    co_await Background::run(this, &runCopyJob, job, watcher, stop);
    for (const QueueItem &item : std::as_const(entries))
        m_destinationsInUse.remove(destinationKey(item));
    m_runs.removeOne(run);
    fillSlots();
}

void TransferRunner::finish(const QUuid &id, const CopyReport &report) {
    const QueueItem *entry = m_queue.find(id);
    if (!entry)
        return;
    const QueueItem item = *entry;
    const auto *progress = item.status.progress();
    if (report.wasStopped && m_isPaused) {
        QueueItemStatus::Paused paused;
        if (progress)
            static_cast<QueueItemStatus::Progress &>(paused) = *progress;
        updateStatus(id, paused);
    } else if (report.wasStopped) {
        updateStatus(id, QueueItemStatus::Waiting()); // paused and resumed before it had stopped
    } else if (report.isPhoneGone) {
        m_gonePhones.insert(item.serial);
        updateStatus(id, QueueItemStatus::Waiting{true});
        Q_EMIT phoneLeft();
    } else {
        const QueueItemStatus status = statusAfter(item, report);
        updateStatus(id, status);
    }
    if (report.copied > 0)
        refreshReceivingPane(item);
}

/// Lists the pane that received a copy again, if it shows the folder, so that the copy is seen there. Listing
/// a phone's folder takes longer than copying a photo into it; after each of 20,000 photos it would make the
/// whole job several times as long. So a pane is listed once a second, and the copies of that second share
/// the listing.
void TransferRunner::refreshReceivingPane(const QueueItem &item) {
    constexpr int pauseMilliseconds = 1000;
    const BrowserSide side =
        item.direction == TransferDirection::androidToMac ? BrowserSide::mac : BrowserSide::android;
    if (m_host.shownFolder(side) != folderOf(item.destinationPath))
        return;
    ReceivingPane &pane = receivingPane(side);
    const bool isLast = m_queue.activeCount() == 0 && m_queue.waitingCount() == 0;
    const bool wasJustListed = pane.sinceListed.isValid() && pane.sinceListed.elapsed() < pauseMilliseconds;
    if (!pane.isBeingListed && (isLast || !wasJustListed))
        browseAgain(side);
    else if (!pane.listLater.isActive() || isLast)
        pane.listLater.start(isLast ? 0 : pauseMilliseconds);
}

QCoro::Task<> TransferRunner::browseAgain(BrowserSide side) {
    ReceivingPane &pane = receivingPane(side);
    if (pane.isBeingListed) { // one listing at a time, the next when the last has ended
        constexpr int soon = 50;
        pane.listLater.start(soon);
        co_return;
    }
    pane.listLater.stop();
    pane.isBeingListed = true;
    co_await m_host.listAgain(side);
    pane.isBeingListed = false;
    pane.sinceListed.start();
}

void TransferRunner::applyProgress(const QUuid &id, const QueueItemStatus::Progress &progress) {
    const QueueItem *entry = m_queue.find(id);
    if (!entry ||
        !(entry->status.is<QueueItemStatus::Transferring>() || entry->status.is<QueueItemStatus::Waiting>()))
        return;
    const auto *before = entry->status.progress();
    m_rate.add(progress.transferredBytes - (before ? before->transferredBytes : 0));
    QueueItemStatus::Transferring now;
    static_cast<QueueItemStatus::Progress &>(now) = progress;
    updateStatus(id, now);
    const auto speed = m_rate.bytesPerSecond();
    if (!speed)
        return;
    m_speedLabel = formatTransferRate(*speed);
    m_remainingLabel =
        formatDuration(static_cast<double>(m_queue.totalBytes() - m_queue.doneBytes()) / *speed);
}

void TransferRunner::forgetSpeed() {
    m_rate.forget();
    m_speedLabel = unknownLabel();
    m_remainingLabel = unknownLabel();
}

void TransferRunner::updateStatus(const QUuid &id, const QueueItemStatus &status) {
    if (m_queue.setStatus(id, status) >= 0)
        Q_EMIT queueChanged();
}

} // namespace vantrel
