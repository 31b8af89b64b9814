#include "Worker/Worker.h"

#include <mutex>

namespace vantrel::Background {

void handOver() {
    static std::mutex mutex;
    const std::scoped_lock lock(mutex);
}

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

void finish() {
    workers().waitForDone();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
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
