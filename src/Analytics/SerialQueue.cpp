#include "Analytics/SerialQueue.h"

namespace vantrel {

SerialQueue::SerialQueue(const QString &label) {
    m_thread.setObjectName(label);
    m_target.moveToThread(&m_thread);
    m_thread.start(QThread::LowPriority);
}

SerialQueue::~SerialQueue() {
    async([this] { m_thread.quit(); });
    m_thread.wait();
}

void SerialQueue::async(std::function<void()> work) {
    QMetaObject::invokeMethod(&m_target, std::move(work), Qt::QueuedConnection);
}

void SerialQueue::sync(const std::function<void()> &work) {
    QMetaObject::invokeMethod(&m_target, work, Qt::BlockingQueuedConnection);
}

} // namespace vantrel
