#include "Analytics/Clock.h"

#include <QTimer>

namespace vantrel {

namespace {

class SystemClock final : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTimeUtc(); }

    std::chrono::milliseconds uptime() const override {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now().time_since_epoch());
    }

    std::unique_ptr<QObject> startTimer(std::chrono::milliseconds delay,
                                        std::function<void()> work) override {
        auto timer = std::make_unique<QTimer>();
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
        QObject::connect(timer.get(), &QTimer::timeout, timer.get(), std::move(work));
        timer->start(delay);
        return timer;
    }
};

} // namespace

std::shared_ptr<Clock> systemClock() {
    return std::make_shared<SystemClock>();
}

} // namespace vantrel
