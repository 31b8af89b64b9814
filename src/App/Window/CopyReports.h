#pragma once

#include <QtGlobal>

#ifdef Q_OS_MACOS
#include "App/System/MacReports.h"
#else
#include "App/System/LauncherEntry.h"
#include "App/System/Notification.h"
#endif
#include "App/System/RunSummary.h"

#include <QObject>
#include <QTimer>

#include <chrono>

class QWidget;

namespace vantrel {

class AppState;
class TransferRunner;

/// Tells those who are looking elsewhere how the copies go: the launcher's icon shows how far they are, and
/// a notification says what became of them when a run of copies ends while no window of the program has the
/// keyboard. A click on it brings the window to the front; where the window is in front, it is withdrawn.
///
/// A run that the user pauses is not over, and of one in which nothing came to an end because the user took
/// it all back, nothing is said. Main thread.
class CopyReports : public QObject {
    Q_OBJECT

public:
    /// For how long nothing is copied before a run counts as over: what is queued right after it, or waits
    /// for a phone that is back at once, belongs to it.
    static constexpr std::chrono::milliseconds endOfRun{1500};

    /// Both must outlive this object. `bus` is the one of the session.
    CopyReports(QWidget *window, AppState &state, const SessionBus &bus,
                std::chrono::milliseconds pause = endOfRun);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void count();
    void renderEntry();
    void report();
    [[nodiscard]] RunSummary ended() const;

    QWidget *m_window;
    TransferRunner &m_transfers;
    Notification m_notification;
    LauncherEntry m_entry;
    QTimer m_pause;
    RunSummary m_run;  ///< what has ended since the last report
    RunSummary m_seen; ///< what the queue held when it was looked at last
    bool m_isUrgent = false;
};

} // namespace vantrel
