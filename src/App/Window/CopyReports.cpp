#include "App/Window/CopyReports.h"

#include "App/Window/Activation.h"
#include "State/AppState.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

/// How far all copies are: by bytes where they are known.
double progressOf(const TransferQueue &queue) {
    const auto bytes = static_cast<double>(queue.totalBytes());
    return bytes > 0 ? static_cast<double>(queue.doneBytes()) / bytes
                     : queue.completedCount() / std::max(1.0, static_cast<double>(queue.items().size()));
}

} // namespace

CopyReports::CopyReports(QWidget *window, AppState &state, const SessionBus &bus,
                         std::chrono::milliseconds pause)
    : m_window(window), m_transfers(state.transfers()), m_notification(bus), m_entry(bus) {
    m_pause.setSingleShot(true);
    m_pause.setInterval(pause);
    m_pause.callOnTimeout(this, &CopyReports::report);
    m_seen = ended();
    window->installEventFilter(this);
    connect(&m_notification, &Notification::clicked, this,
            [this](const QByteArray &token) { bringToFront(m_window, token); });
    connect(&m_transfers, &TransferRunner::queueChanged, this, &CopyReports::count);
    connect(&m_transfers, &TransferRunner::isTransferringChanged, this, [this] {
        renderEntry();
        m_transfers.isTransferring() ? m_pause.stop() : m_pause.start();
    });
}

RunSummary CopyReports::ended() const {
    const TransferQueue &queue = m_transfers.queue();
    return {queue.completedCount(), queue.failedCount(), queue.nameTakenCount(), queue.waitingCount()};
}

/// Each change of the queue either ends entries or takes them away: what there is more of has ended.
void CopyReports::count() {
    const RunSummary now = ended();
    const auto more = [&](int RunSummary::*number) {
        const int difference = std::max(0, now.*number - m_seen.*number);
        m_run.*number += difference;
        return difference > 0;
    };
    more(&RunSummary::copied);
    more(&RunSummary::undecided);
    if (more(&RunSummary::failed) && !QApplication::activeWindow())
        m_isUrgent = true;
    m_seen = now;
    renderEntry();
}

void CopyReports::renderEntry() {
    LauncherEntry::Look look;
    if (m_transfers.isTransferring())
        look.progress = progressOf(m_transfers.queue());
    look.isUrgent = m_isUrgent;
    m_entry.show(look);
}

void CopyReports::report() {
    if (m_transfers.isTransferring() || m_transfers.isPaused())
        return;
    RunSummary run = std::exchange(m_run, {});
    const RunSummary now = ended();
    run.failed = std::min(run.failed, now.failed); // the others were tried again, or taken back
    run.undecided = std::min(run.undecided, now.undecided);
    run.waiting = now.waiting;
    if (!run.heading().isEmpty() && !QApplication::activeWindow())
        m_notification.show(run.heading(), run.detail());
}

bool CopyReports::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_window && event->type() == QEvent::WindowActivate) {
        m_notification.withdraw();
        m_isUrgent = false;
        renderEntry();
    }
    return false;
}

} // namespace vantrel
