#include "Transfers/TransferRunner.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "MacFiles/MacFileClient.h"
#include "Records/FileSizeFormat.h"
#include "Records/TransferFormat.h"
#include "Worker/Worker.h"

#include <QDir>
#include <QDirIterator>
#include <QPointer>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

/// What one copy needs on its worker.
struct CopyJob {
    QString serial;
    QueueItem item;
    qint64 expectedBytes = 0;
};

QString alreadyExists(const QueueItem &item) {
    return QStringLiteral("“%1” already exists there. Nothing was overwritten.").arg(item.name);
}

bool isEmptyFolder(const QString &path) {
    return QDir(path).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

/// Whether what adb calls copied is here. It writes on into a file that is deleted meanwhile, and it copies a
/// folder that the phone does not let it read as an empty one; neither makes it fail.
ADBResult<void> checkArrival(const CopyJob &job) {
    const QString &here = job.item.destinationPath;
    if (!MacFileClient::exists(here))
        return tl::make_unexpected(ADBError::executionFailed(
            QStringLiteral("“%1” was removed here while it was copied.").arg(job.item.name)));
    if (!job.item.isDirectory)
        return {};
    QStringList empty;
    if (isEmptyFolder(here))
        empty.append(here);
    QDirIterator folders(here, QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (folders.hasNext()) {
        const QString folder = folders.next();
        if (isEmptyFolder(folder))
            empty.append(folder);
    }
    for (const QString &folder : empty) {
        const auto listing =
            ADBClient::listDirectory(job.serial, job.item.sourcePath + folder.mid(here.size()));
        if (!listing)
            return tl::make_unexpected(listing.error());
    }
    return {};
}

/// Runs on a worker. Neither adb nor the phone asks before it replaces a file, so the destination must be
/// free; for a push the model has asked the phone before.
ADBResult<void> runCopy(const CopyJob &job, const ADBClient::TransferProgress &onProgress) {
    const QueueItem &item = job.item;
    const bool isPull = item.direction == TransferDirection::androidToMac;
    if (isPull && MacFileClient::exists(item.destinationPath))
        return tl::make_unexpected(ADBError::executionFailed(alreadyExists(item)));
    auto copied = ADBClient::runTransfer(
        {QStringLiteral("-s"), job.serial, isPull ? QStringLiteral("pull") : QStringLiteral("push"),
         item.sourcePath, item.destinationPath},
        job.expectedBytes, isPull ? std::optional(item.destinationPath) : std::nullopt, onProgress);
    return copied && isPull ? checkArrival(job) : copied;
}

/// One key for all spellings of one place: shared storage and the Mac ignore case.
QString destinationKey(const QueueItem &item) {
    return (item.direction == TransferDirection::androidToMac ? QStringLiteral("mac:")
                                                              : QStringLiteral("android:")) +
           item.destinationPath.toCaseFolded();
}

} // namespace

double TransferRunner::CopyClock::bytesPerSecond(qint64 bytes) const {
    constexpr double shortest = 0.001;
    const double seconds = std::max(static_cast<double>(start.nsecsElapsed()) / 1e9, shortest);
    return static_cast<double>(bytes) / seconds;
}

TransferRunner::TransferRunner(TransferHost &host) : m_host(host) {
    forgetSpeed();
    for (const BrowserSide side : {BrowserSide::android, BrowserSide::mac}) {
        QTimer &timer = receivingPane(side).listLater;
        timer.setSingleShot(true);
        connect(&timer, &QTimer::timeout, this, [this, side] { browseAgain(side); });
    }
}

void TransferRunner::enqueue(const QList<QueueItem> &entries) {
    forgetSpeed();
    m_queue.insertFront(entries);
    Q_EMIT queueChanged();
    if (m_isTransferring)
        return;
    m_isTransferring = true;
    fillSlots();
}

void TransferRunner::remove(const QUuid &id) {
    if (m_queue.remove(id))
        Q_EMIT queueChanged();
}

void TransferRunner::clear() {
    if (m_queue.clear())
        Q_EMIT queueChanged();
}

/// Starts copies until all slots are taken or nothing waits, and ends the run when nothing is left: both in
/// one step on the main thread, so that nothing that is queued meanwhile is left waiting.
void TransferRunner::fillSlots() {
    if (m_isFillingSlots)
        return;
    m_isFillingSlots = true;
    while (m_runningCopies < concurrentCopies) {
        const auto id = m_queue.claimNextWaiting();
        if (!id)
            break;
        ++m_runningCopies;
        Q_EMIT queueChanged();
        runSlot(*id);
    }
    m_isFillingSlots = false;
    if (m_runningCopies > 0)
        return;

    m_destinationChecks.clear();
    forgetSpeed();
    m_isTransferring = false; // whoever is told may queue more
}

QCoro::Task<> TransferRunner::runSlot(QUuid id) {
    co_await runSingleTransfer(id);
    // The last copy to end does the listing that was put off; it must not surprise the user a second later.
    const bool isLast = m_runningCopies == 1 && m_queue.waitingCount() == 0;
    if (isLast && receivingPane(BrowserSide::android).listLater.isActive())
        co_await browseAgain(BrowserSide::android);
    if (isLast && receivingPane(BrowserSide::mac).listLater.isActive())
        co_await browseAgain(BrowserSide::mac);
    --m_runningCopies;
    fillSlots();
}

QCoro::Task<> TransferRunner::runSingleTransfer(QUuid id) {
    const QueueItem *entry = m_queue.find(id);
    if (!entry)
        co_return;
    const QueueItem item = *entry;
    const QString destination = destinationKey(item);
    CopyClock clock;
    clock.expectedBytes = std::max<qint64>(item.totalBytes, 0);
    clock.start.start();

    std::optional<QString> failure;
    if (!m_host.connectedSerial())
        failure = ADBError::noDevice().errorDescription();
    else if (!AndroidPath::isSafeName(item.name))
        failure = QStringLiteral("This name can’t be used on the other side.");
    else if (m_destinationsInUse.contains(destination))
        failure = alreadyExists(item);
    if (!failure) {
        m_destinationsInUse.insert(destination);
        if (item.direction == TransferDirection::macToAndroid)
            failure = co_await refusalOfPush(item);
        if (!failure) {
            const CopyJob job{m_host.connectedSerial().value_or(QString()), item, clock.expectedBytes};
            const ADBClient::TransferProgress onProgress = [runner = QPointer<TransferRunner>(this), id,
                                                            clock](double fraction, qint64 done,
                                                                   qint64 total) {
                Background::post([runner, id, clock, fraction, done, total] {
                    if (runner)
                        runner->applyProgress(id, clock, fraction, done, total);
                });
            };
            const auto copied = co_await Background::run(this, &runCopy, job, onProgress);
            if (!copied)
                failure = copied.error().errorDescription();
        }
        m_destinationsInUse.remove(destination);
        m_destinationChecks.remove(id);
    }

    if (failure) {
        const QueueItemStatus::Failed failed{*failure};
        updateStatus(id, failed);
        co_return;
    }
    if (clock.expectedBytes >= 1)
        showSpeed(clock.bytesPerSecond(clock.expectedBytes));
    m_remainingLabel = QStringLiteral("00:00:00");
    updateStatus(id, QueueItemStatus::Completed());
    co_await refreshReceivingPane(item.direction == TransferDirection::androidToMac ? BrowserSide::mac
                                                                                    : BrowserSide::android);
}

/// Lists the pane that received a copy again, so that the copy is seen there. Listing a phone's folder takes
/// longer than copying a photo into it; after each of 20,000 photos it would make the whole job several times
/// as long. So while other copies are under way a pane is listed once a second, and the copies of that second
/// share the listing.
QCoro::Task<> TransferRunner::refreshReceivingPane(BrowserSide side) {
    constexpr int pauseMilliseconds = 1000;
    ReceivingPane &pane = receivingPane(side);
    const bool othersAreUnderWay = m_runningCopies > 1 || m_queue.waitingCount() > 0;
    const bool wasJustListed =
        pane.isBeingListed || (pane.sinceListed.isValid() && pane.sinceListed.elapsed() < pauseMilliseconds);
    if (!othersAreUnderWay || !wasJustListed)
        co_await browseAgain(side);
    else if (!pane.listLater.isActive())
        pane.listLater.start(pauseMilliseconds);
}

QCoro::Task<> TransferRunner::browseAgain(BrowserSide side) {
    ReceivingPane &pane = receivingPane(side);
    pane.listLater.stop();
    pane.isBeingListed = true;
    co_await m_host.listAgain(side);
    pane.isBeingListed = false;
    pane.sinceListed.start();
}

/// Why a push must not start: something stands at its destination, or the phone did not say. The phone is
/// asked for many waiting pushes at once, since every question is a run of adb, and ahead of time, so that
/// short copies need not wait for it.
QCoro::Task<std::optional<QString>> TransferRunner::refusalOfPush(QueueItem item) {
    while (!hasFreshCheck(item.id)) {
        const auto serial = m_host.connectedSerial();
        if (!serial) // gone while it was asked
            co_return ADBError::noDevice().errorDescription();
        if (!m_runningDestinationCheck)
            m_runningDestinationCheck = checkDestinations(*serial, pushesToAskFor(item));
        co_await *m_runningDestinationCheck;
    }
    askAhead();
    const DestinationCheck check = m_destinationChecks.value(item.id);
    if (check.isTaken)
        co_return alreadyExists(item);
    co_return check.error;
}

bool TransferRunner::hasFreshCheck(const QUuid &id) const {
    constexpr qint64 freshMilliseconds = 2000; // something else may write to the phone
    const auto check = m_destinationChecks.constFind(id);
    return check != m_destinationChecks.constEnd() && check->serial == m_host.connectedSerial() &&
           check->age.elapsed() <= freshMilliseconds;
}

/// Asks for the next pushes when the answers for the nearest are about to run out.
void TransferRunner::askAhead() {
    constexpr auto nearest = static_cast<qsizetype>(4) * concurrentCopies;
    const auto serial = m_host.connectedSerial();
    if (!serial || m_runningDestinationCheck)
        return;
    const QList<QueueItem> next = m_queue.nextWaiting(nearest);
    if (next.isEmpty() || next.last().direction != TransferDirection::macToAndroid ||
        hasFreshCheck(next.last().id))
        return;
    const QList<QueueItem> items = pushesToAskFor(std::nullopt);
    if (!items.isEmpty())
        m_runningDestinationCheck = checkDestinations(*serial, items);
}

/// `first`, then the waiting pushes that are next and have no answer, as many as one question holds.
QList<QueueItem> TransferRunner::pushesToAskFor(const std::optional<QueueItem> &first) const {
    constexpr qsizetype pathsPerQuestion = 40;
    QList<QueueItem> items;
    QSet<QString> keys = m_destinationsInUse;
    if (first)
        items.append(*first);
    for (const QueueItem &item : m_queue.nextWaiting(2 * pathsPerQuestion)) {
        if (items.size() == pathsPerQuestion)
            break;
        // Of two copies to one place the second is asked for when it starts, after the first has ended.
        const QString key = destinationKey(item);
        if (item.direction != TransferDirection::macToAndroid || keys.contains(key))
            continue;
        keys.insert(key);
        if (!hasFreshCheck(item.id))
            items.append(item);
    }
    return items;
}

QCoro::Task<> TransferRunner::checkDestinations(QString serial, QList<QueueItem> items) {
    QStringList paths;
    for (const QueueItem &item : items)
        paths.append(item.destinationPath);

    const auto existing = co_await Background::run(this, &ADBClient::existingPaths, serial, paths);
    for (const QueueItem &item : items) {
        DestinationCheck check;
        check.serial = serial;
        check.isTaken = existing && existing->contains(item.destinationPath);
        if (!existing)
            check.error = existing.error().errorDescription();
        check.age.start();
        m_destinationChecks.insert(item.id, check);
    }
    m_runningDestinationCheck.reset();
}

void TransferRunner::applyProgress(const QUuid &id, const CopyClock &clock, double fraction,
                                   qint64 transferred, qint64 total) {
    const qint64 effective = std::max(total, clock.expectedBytes);
    QueueItemStatus::Transferring progress;
    progress.fraction = fraction;
    progress.transferredBytes = transferred;
    progress.totalBytes = effective;
    updateStatus(id, progress);
    if (transferred < 1)
        return;
    const double speed = clock.bytesPerSecond(transferred);
    showSpeed(speed);
    if (transferred < effective && speed > 0)
        m_remainingLabel = formatDuration(static_cast<double>(effective - transferred) / speed);
}

void TransferRunner::showSpeed(double bytesPerSecond) {
    m_speedLabel = formatTransferRate(bytesPerSecond);
}

void TransferRunner::forgetSpeed() {
    m_speedLabel = unknownLabel();
    m_remainingLabel = unknownLabel();
}

void TransferRunner::updateStatus(const QUuid &id, const QueueItemStatus &status) {
    if (m_queue.setStatus(id, status) >= 0)
        Q_EMIT queueChanged();
}

} // namespace vantrel
