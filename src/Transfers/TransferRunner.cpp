#include "Transfers/TransferRunner.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "Records/FileSizeFormat.h"
#include "Records/TransferFormat.h"
#include "Transfers/CopyText.h"
#include "Transfers/KeptParts.h"
#include "Transfers/QueueFile.h"
#include "Worker/Worker.h"

#include <QPointer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>

namespace vantrel {

namespace {

/// One key for all spellings of one place: shared storage and the Mac ignore case, so such copies go one
/// after the other, and the file system says whether they are two.
QString destinationKey(const QueueItem &item) {
    return (item.direction == TransferDirection::macToAndroid ? QString(item.serial % QLatin1Char(':'))
                                                              : QStringLiteral("mac:")) +
           item.destinationPath().toCaseFolded();
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

    void noteLife() { m_lastLife = now(); }
    /// For how long nothing has come, in milliseconds.
    [[nodiscard]] qint64 silence() const { return now() - m_lastLife; }

    // -- Main thread only

    /// How many bytes more the cable has carried when that many more were reported. A push runs ahead of it
    /// by what the sockets hold, which no cable has carried yet.
    qint64 carriedOf(qint64 reported) {
        m_reported += reported;
        const qint64 carried = std::max(m_carried, m_reported - m_heldBySockets);
        return carried - std::exchange(m_carried, carried);
    }
    /// What is left when the run has ended: then everything has been carried.
    qint64 rest() {
        m_heldBySockets = 0;
        return carriedOf(0);
    }
    void pushes() { m_heldBySockets = 4 << 20; }

private:
    static qint64 now() {
        const auto time = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
    }

    std::atomic<qint64> m_lastLife{now()};
    qint64 m_reported = 0;
    qint64 m_carried = 0;
    qint64 m_heldBySockets = 0;
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
    m_speedTimer.setInterval(500);
    connect(&m_speedTimer, &QTimer::timeout, this, &TransferRunner::renderSpeed);
    connect(&m_speedTimer, &QTimer::timeout, this, &TransferRunner::markSilentCopies);
    m_saveTimer.setSingleShot(true);
    connect(&m_saveTimer, &QTimer::timeout, this, &TransferRunner::save);
}

TransferRunner::~TransferRunner() {
    for (const auto &run : std::as_const(m_runs))
        run->stop();
    if (m_file && (m_isUnsaved || m_isSaving))
        m_file->write(m_queue.unfinished(), ++m_saveNumber);
}

void TransferRunner::enqueue(const QList<QueueItem> &entries) {
    if (!m_isTransferring)
        forgetSpeed();
    m_queue.insertFront(entries);
    noteChange();
    Q_EMIT queueChanged();
    fillSlots();
}

void TransferRunner::remove(const QUuid &id) {
    for (const auto &run : std::as_const(m_runs))
        run->drop(id);
    discard({id});
    if (!m_queue.remove(id))
        return;
    noteChange();
    Q_EMIT queueChanged();
    fillSlots();
}

void TransferRunner::clear() {
    QList<QUuid> removed;
    for (const QueueItem &item : m_queue.items()) {
        if (item.status.is<QueueItemStatus::Transferring>())
            continue;
        removed.append(item.id);
        for (const auto &run : std::as_const(m_runs)) // one whose turn was fixed
            run->drop(item.id);
    }
    discard(removed);
    m_notice = QString(); // it has been read
    if (m_queue.clear()) {
        noteChange();
        Q_EMIT queueChanged();
    }
    fillSlots();
}

QCoro::Task<> TransferRunner::discard(QList<QUuid> entries) {
    co_await Background::run(this, &KeptParts::discard, entries);
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
    noteChange();
    letWait([id](const QueueItem &item) { return item.id == id && item.canKeepBoth(); });
}

void TransferRunner::keepAllBoth() {
    for (const QueueItem &item : m_queue.items()) {
        if (item.canKeepBoth())
            m_queue.setWhenTaken(item.id, WhenTaken::keepBoth);
    }
    noteChange();
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
    const QStringList phones = m_host.readyPhones();
    for (const QString &serial : phones)
        m_gonePhones.remove(serial);
    const bool isChanged = m_queue.setStatuses([&](const QueueItem &item) {
        const auto *waiting = item.status.as<QueueItemStatus::Waiting>();
        if (!waiting || waiting->isClaimed)
            return item.status;
        return QueueItemStatus(
            QueueItemStatus::Waiting{needsPhone(item.direction) && !phones.contains(item.serial)});
    });
    if (isChanged)
        Q_EMIT queueChanged();
    fillSlots();
}

bool TransferRunner::mayStart(const QueueItem &item, const QStringList &phones) const {
    const bool isReachable =
        !needsPhone(item.direction) || (phones.contains(item.serial) && !m_gonePhones.contains(item.serial));
    return isReachable && !m_destinationsInUse.contains(destinationKey(item));
}

/// Starts copies until all slots are taken or nothing may start, and ends the run when nothing is left: both
/// in one step on the main thread, so that nothing that is queued meanwhile is left waiting.
void TransferRunner::fillSlots() {
    constexpr qsizetype mostTogether = 1000;
    constexpr qsizetype few = qsizetype{4} * concurrentCopies;
    if (m_isFillingSlots)
        return;
    m_isFillingSlots = true;
    const QStringList phones = m_host.readyPhones();
    // A run of adb costs the time of many small files: unless few wait, the free slots share them.
    const bool areFew = m_queue.unclaimedCount() < few;
    while (m_runs.size() < concurrentCopies && !m_isPaused) {
        QSet<QString> places; // of this claim
        const auto isFree = [&](const QueueItem &item) {
            return mayStart(item, phones) && !places.contains(destinationKey(item)) &&
                   (places.insert(destinationKey(item)), true);
        };
        const qsizetype share =
            areFew ? 1 : m_queue.unclaimedCount() / (concurrentCopies - m_runs.size()) + 1;
        const QList<QueueItem> claimed = m_queue.claim(std::min(share, mostTogether), isFree);
        if (claimed.isEmpty())
            break;
        for (const QueueItem &item : claimed)
            m_destinationsInUse.insert(destinationKey(item));
        if (!m_speedTimer.isActive())
            m_speedTimer.start();
        m_isTransferring = true;
        Q_EMIT queueChanged();
        runSlot(claimed);
    }
    m_isFillingSlots = false;
    if (!m_runs.isEmpty())
        return;
    m_speedTimer.stop();
    forgetSpeed();
    m_isTransferring = false; // whoever is told may queue more
}

QCoro::Task<> TransferRunner::runSlot(QList<QueueItem> entries) {
    const auto run = std::make_shared<Run>(entries);
    if (entries.first().direction == TransferDirection::macToAndroid)
        run->pushes();
    m_runs.append(run);
    CopyJob job;
    job.direction = entries.first().direction;
    job.serial = entries.first().serial;
    job.folder = entries.first().destinationFolder;
    job.verifies = m_verifies;
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
    watcher.onProgress = [self, run](const QUuid &id, const QueueItemStatus::Progress &progress) {
        Background::post([self, run, id, progress] {
            if (self)
                self->applyProgress(run, id, progress);
        });
    };
    watcher.onLife = [run] { run->noteLife(); };
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
    m_rate.add(run->rest());
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
        if (status.is<QueueItemStatus::Completed>())
            noteChange();
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
        item.direction == TransferDirection::macToAndroid ? BrowserSide::android : BrowserSide::mac;
    if (m_host.shownFolder(side) != item.destinationFolder)
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
    if (pane.isBeingListed ||
        m_host.isListing(side)) { // one listing at a time, the next when the last has ended
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

void TransferRunner::applyProgress(const std::shared_ptr<Run> &run, const QUuid &id,
                                   const QueueItemStatus::Progress &progress) {
    const QueueItem *entry = m_queue.find(id);
    if (!entry ||
        !(entry->status.is<QueueItemStatus::Transferring>() || entry->status.is<QueueItemStatus::Waiting>()))
        return;
    const auto *before = entry->status.progress();
    m_rate.add(run->carriedOf(progress.carriedBytes - (before ? before->carriedBytes : 0)));
    QueueItemStatus::Transferring now;
    static_cast<QueueItemStatus::Progress &>(now) = progress;
    updateStatus(id, now);
    renderSpeed();
}

void TransferRunner::renderSpeed() {
    const auto speed = m_rate.bytesPerSecond();
    const auto left = static_cast<double>(m_queue.totalBytes() - m_queue.doneBytes());
    m_speedLabel = speed ? formatTransferRate(*speed) : unknownLabel();
    m_remainingLabel = speed ? formatDuration(left / *speed) : unknownLabel();
}

/// A copy is never ended for its silence: its owner may be asked something. But it says so.
void TransferRunner::markSilentCopies() {
    const qint64 longestSilence = (2 * ADBClient::patience()).count();
    const QList<QueueItem> items = m_queue.items();
    for (const QueueItem &item : items) {
        const auto *running = item.status.as<QueueItemStatus::Transferring>();
        const auto run = std::find_if(m_runs.begin(), m_runs.end(),
                                      [&](const auto &one) { return running && one->isWanted(item.id); });
        if (run == m_runs.end() || running->isSilent == ((*run)->silence() > longestSilence))
            continue;
        QueueItemStatus::Transferring now = *running;
        now.isSilent = !now.isSilent;
        updateStatus(item.id, now);
    }
}

void TransferRunner::forgetSpeed() {
    m_rate.forget();
    m_speedLabel = unknownLabel();
    m_remainingLabel = unknownLabel();
}

QCoro::Task<> TransferRunner::remember(QString folder) {
    const auto file = std::make_shared<QueueFile>(folder);
    const QueueFile::Contents kept = co_await Background::run(this, &QueueFile::openOn, file);
    m_file = file;
    m_notice = kept.problem;
    m_forgetReason = kept.mayWrite ? QString() : kept.problem;
    m_queue.insertBack(kept.entries);
    if (m_isUnsaved || !kept.entries.isEmpty())
        noteChange();
    if (!kept.entries.isEmpty())
        Q_EMIT queueChanged();
}

/// The list of what is not finished has changed: it is written at once, and then at most once a second; less
/// often where that takes long. How far a copy has come is not kept: what is there already is not copied
/// again.
void TransferRunner::noteChange() {
    m_isUnsaved = true;
    if (m_file && !m_isSaving && !m_saveTimer.isActive())
        m_saveTimer.start(int(std::max<qint64>(m_pauseUntilSave.remainingTime(), 0)));
}

QCoro::Task<> TransferRunner::save() {
    constexpr qint64 shortestPause = 1000;
    constexpr qint64 pausePerDuration = 10;
    m_isSaving = true;
    m_isUnsaved = false;
    QElapsedTimer duration;
    duration.start();
    const QList<QueueItem> unfinished = m_queue.unfinished();
    const quint64 number = ++m_saveNumber;
    const QString problem = co_await Background::run(this, &QueueFile::writeOn, m_file, unfinished, number);
    if (problem != m_forgetReason) // what was found at the start stays until something else is to be said
        m_notice = problem;
    m_forgetReason = problem;
    m_pauseUntilSave.setRemainingTime(std::max(shortestPause, pausePerDuration * duration.elapsed()));
    m_isSaving = false;
    if (m_isUnsaved)
        noteChange();
}

void TransferRunner::updateStatus(const QUuid &id, const QueueItemStatus &status) {
    if (m_queue.setStatus(id, status) >= 0)
        Q_EMIT queueChanged();
}

} // namespace vantrel
