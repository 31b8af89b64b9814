#include "Worker/Worker.h"

#include <deque>
#include <mutex>

namespace vantrel::Background {

namespace {

/// Work on its way to another thread, first in, first out. The toolkit carries a mere wake-up: what passes
/// through this lock is seen by ThreadSanitizer, which the toolkit's libraries are not built for.
class Queue {
public:
    void put(Work work) {
        const std::scoped_lock lock(m_mutex);
        m_works.push_back(std::move(work));
    }

    /// There is a put() for every call.
    void runNext() {
        std::unique_lock lock(m_mutex);
        const Work work = std::move(m_works.front());
        m_works.pop_front();
        lock.unlock();
        work();
    }

private:
    std::mutex m_mutex;
    std::deque<Work> m_works;
};

struct MainThread : QObject {
    Queue queue;

protected:
    void customEvent(QEvent * /*wakeUp*/) override { queue.runNext(); }
};

MainThread &mainThread() {
    static MainThread thread;
    return thread;
}

} // namespace

QThreadPool &workers() {
    static QThreadPool pool;
    static const bool isWide = [] {
        constexpr int widest = 64;
        pool.setMaxThreadCount(widest);
        return true;
    }();
    Q_UNUSED(isWide)
    return pool;
}

void onWorker(Work work) {
    static Queue queue;
    static_cast<void>(mainThread()); // made on its thread, before another posts to it
    queue.put(std::move(work));
    workers().start([] { queue.runNext(); });
}

void onMainThread(Work work) {
    mainThread().queue.put(std::move(work));
    QCoreApplication::postEvent(&mainThread(), new QEvent(QEvent::User)); // which deletes it
}

void finish() {
    workers().waitForDone();
    QCoreApplication::sendPostedEvents(&mainThread());
}

void stop(void (*interrupt)()) {
    // What a worker does in several steps begins its next one after the last was interrupted.
    constexpr int pause = 50; // milliseconds
    do {
        interrupt();
    } while (!workers().waitForDone(pause));
    finish();
}

} // namespace vantrel::Background
