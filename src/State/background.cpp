#include "State/background.h"

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

} // namespace vantrel::Background
