#pragma once

#include <QObject>

class QSocketNotifier;

namespace vantrel {

/// Lets the application quit in good order, its tools stopped, when it is interrupted or told to end by a
/// signal (SIGINT, SIGTERM, SIGHUP). One per process, as long as the event loop runs.
class QuitSignals : public QObject {
public:
    QuitSignals();
    ~QuitSignals() override;

private:
    QSocketNotifier *m_notifier = nullptr;
};

} // namespace vantrel
