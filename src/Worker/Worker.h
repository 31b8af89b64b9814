#pragma once

#include <QCoreApplication>
#include <QFutureWatcher>
#include <QPointer>
#include <QThreadPool>

#include <coroutine>
#include <functional>
#include <memory>
#include <optional>

/// How the model waits without blocking: `co_await onWorker(this, &ADBClient::listDirectory, serial, path)`
/// runs the function on a worker and goes on, on the main thread, with its result.
namespace vantrel {

/// Thrown into a coroutine whose owner was destroyed while it waited, so that it unwinds without another
/// step. It is caught by the task and seen by nobody.
struct OwnerGone {};

namespace Background {

/// The pool of the model's blocking calls. Wide enough for the copies, listings, searches and refreshes that
/// can hang on a phone at once; they wait and cost no processor.
[[nodiscard]] QThreadPool &workers();

using Work = std::function<void()>;

/// Runs the work on a worker. Main thread.
void onWorker(Work work);
/// Runs the work on the main thread, in the order of the calls. Any thread.
void onMainThread(Work work);

/// Waits until no worker is busy and delivers what they have posted. To be called on the main thread after
/// the model is gone and its tools were stopped: nothing of it is left afterwards.
void finish();

/// Calls `interrupt`, which ends what the workers wait for, until none is busy; then finishes. For quitting,
/// under the same conditions.
void stop(void (*interrupt)());

} // namespace Background

/// What onWorker() gives back. It is a function with values bound to it and nothing else on purpose: with g++
/// 12 a capturing lambda or a braced temporary inside a co_await expression is destroyed twice.
template <class Result>
class [[nodiscard]] WorkerCall {
public:
    WorkerCall(QObject *owner, std::function<Result()> call)
        : m_owner(owner), m_shared(std::make_shared<Shared>()) {
        m_shared->call = std::move(call);
    }

    [[nodiscard]] bool await_ready() const noexcept { return false; }

    void await_suspend(std::coroutine_handle<> coroutine) {
        Background::onWorker([shared = m_shared, coroutine]() mutable {
            shared->result.emplace(shared->call());
            shared->call = nullptr;
            shared.reset(); // the coroutine keeps it, and takes it along when it ends
            Background::onMainThread([coroutine] { coroutine.resume(); });
        });
    }

    Result await_resume() {
        if (!m_owner)
            throw OwnerGone();
        return std::move(*m_shared->result);
    }

private:
    struct Shared {
        std::function<Result()> call;
        std::optional<Result> result;
    };
    QPointer<QObject> m_owner;
    std::shared_ptr<Shared> m_shared;
};

/// Calls the function with the arguments on a worker; they are copied before. Main thread.
template <class Result, class... Parameters, class... Arguments>
[[nodiscard]] auto onWorker(QObject *owner, Result (*function)(Parameters...), Arguments &&...arguments) {
    return WorkerCall<Result>(owner,
                              [function, ... bound = std::decay_t<Arguments>(std::forward<Arguments>(
                                             arguments))]() -> Result { return function(bound...); });
}

/// What onAnswer() gives back.
template <class Value>
class [[nodiscard]] PendingAnswer {
public:
    PendingAnswer(QObject *owner, QFuture<Value> future) : m_owner(owner), m_future(std::move(future)) {}

    [[nodiscard]] bool await_ready() const { return m_future.isFinished(); }

    void await_suspend(std::coroutine_handle<> coroutine) {
        auto *watcher = new QFutureWatcher<Value>(QCoreApplication::instance());
        QObject::connect(watcher, &QFutureWatcher<Value>::finished, watcher, [watcher, coroutine] {
            watcher->deleteLater();
            coroutine.resume();
        });
        watcher->setFuture(m_future);
    }

    Value await_resume() {
        if (!m_owner)
            throw OwnerGone();
        return m_future.isValid() && m_future.resultCount() > 0 ? m_future.result() : Value();
    }

private:
    QPointer<QObject> m_owner;
    QFuture<Value> m_future;
};

/// Waits for an answer of the desktop: `co_await onAnswer(this, future)`. A future that was given up gives
/// the default value. Main thread.
template <class Value>
[[nodiscard]] auto onAnswer(QObject *owner, QFuture<Value> future) {
    return PendingAnswer<Value>(owner, std::move(future));
}

} // namespace vantrel
