#pragma once

#include <QDateTime>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

namespace vantrel {

/// Time as the analytics client sees it; tests put their own in its place. Any thread.
class Clock {
public:
    virtual ~Clock() = default;

    /// The computer's idea of the date, in UTC. It may jump either way.
    [[nodiscard]] virtual QDateTime now() const = 0;
    /// Time since some fixed moment; never runs backwards and does not follow changes of the date.
    [[nodiscard]] virtual std::chrono::milliseconds uptime() const = 0;
    /// Runs `work` once on the calling thread, which needs an event loop, after `delay`. Destroying the
    /// returned timer, on that same thread, cancels it.
    [[nodiscard]] virtual std::unique_ptr<QObject> startTimer(std::chrono::milliseconds delay,
                                                              std::function<void()> work) = 0;
};

/// The computer's own clock.
[[nodiscard]] std::shared_ptr<Clock> systemClock();

} // namespace vantrel
