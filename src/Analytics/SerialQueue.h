#pragma once

#include <QThread>

#include <functional>

namespace vantrel {

/// A thread with an event loop that runs the work it is given one piece after another, in order.
class SerialQueue {
public:
    /// `label` names the thread.
    explicit SerialQueue(const QString &label);
    /// Runs everything that has been posted, then ends the thread. Never from the queue itself.
    ~SerialQueue();
    Q_DISABLE_COPY_MOVE(SerialQueue)

    /// Posts the work and returns at once. Any thread. The work must not throw.
    void async(std::function<void()> work);
    /// Runs the work on the queue and returns when it is done. Any thread but the queue's own.
    void sync(const std::function<void()> &work);

private:
    QThread m_thread;
    QObject m_target; // lives on m_thread; what is posted to it runs there
};

} // namespace vantrel
