#pragma once

#include <QCoreApplication>
#include <QCoroFuture>
#include <QPointer>
#include <QThreadPool>
#include <QtConcurrentRun>

/// How the model waits without blocking. `co_await Background::run(this, &ADBClient::listDirectory, serial,
/// path)` calls the function on a worker and goes on, on the main thread, with its result.
namespace vantrel {

/// Thrown into a coroutine whose owner was destroyed while it waited, so that it unwinds without another
/// step. It is caught by the task and seen by nobody.
struct OwnerGone {};

namespace Background {

/// Makes what this thread wrote known to ThreadSanitizer's picture of the thread that calls this next: the
/// toolkit passes it on under locks of its own, but its libraries are not built for ThreadSanitizer. To be
/// called after writing, and before reading.
void handOver();

/// The pool of the model's blocking calls. Wide enough for the copies, listings, searches and refreshes that
/// can hang on a phone at once; they wait and cost no processor.
[[nodiscard]] QThreadPool &workers();

/// What run() and answer() give back, to be awaited on the main thread. It suspends even when the answer is
/// there already: what the worker posted before is delivered first.
template <class Result>
class [[nodiscard]] Answer {
public:
    Answer(QObject *owner, QFuture<Result> future) : m_owner(owner), m_future(std::move(future)) {}

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> coroutine) { m_finished.await_suspend(coroutine); }
    Result await_resume() {
        if (!m_owner)
            throw OwnerGone();
        handOver();
        return m_future.resultCount() > 0 ? m_future.takeResult() : Result();
    }

private:
    QPointer<QObject> m_owner;
    QFuture<Result> m_future;
    QCoro::detail::awaiter_type<QFuture<void>>::type m_finished{QFuture<void>(m_future)};
};

/// Waits for an answer of the desktop. A future that was given up gives the default value.
template <class Result>
[[nodiscard]] auto answer(QObject *owner, QFuture<Result> future) {
    return Answer<Result>(owner, std::move(future));
}

/// Calls the function with the arguments on a worker; they are copied before. Main thread. It takes a
/// function and values and nothing else on purpose: with g++ 12 a capturing lambda or a braced temporary
/// inside a co_await expression is destroyed twice.
template <class Result, class... Parameters, class... Arguments>
[[nodiscard]] auto run(QObject *owner, Result (*function)(Parameters...), Arguments &&...arguments) {
    constexpr auto call = [](Result (*called)(Parameters...), const std::decay_t<Arguments> &...values) {
        handOver();
        Result result = called(values...);
        handOver();
        return result;
    };
    handOver();
    return answer(owner,
                  QtConcurrent::run(&workers(), call, function, std::forward<Arguments>(arguments)...));
}

/// Runs the work on the main thread, in the order of the calls. Any thread.
template <class Work>
void post(Work work) {
    handOver();
    const auto received = [work = std::move(work)] {
        handOver();
        work();
    };
    QMetaObject::invokeMethod(QCoreApplication::instance(), received, Qt::QueuedConnection);
}

/// Waits until no worker is busy and delivers what they have posted. To be called on the main thread after
/// the model is gone and its tools were stopped: nothing of it is left afterwards.
void finish();

/// Calls `interrupt`, which ends what the workers wait for, until none is busy; then finishes. For quitting,
/// under the same conditions.
void stop(void (*interrupt)());

} // namespace Background

} // namespace vantrel
