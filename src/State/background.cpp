#include "State/background.h"

#include "ADB/ADBClient.h"

namespace vantrel::Background {

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
    QCoreApplication::sendPostedEvents(QCoreApplication::instance());
}

void stop() {
    // What a worker does in several steps starts its next tool after the last one was stopped.
    constexpr int pause = 50; // milliseconds
    do {
        ADBClient::stopRunningTools();
    } while (!workers().waitForDone(pause));
    finish();
}

} // namespace vantrel::Background
