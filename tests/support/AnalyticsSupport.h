#pragma once

#include "Analytics/HttpClient.h"
#include "Analytics/SignalJson.h"
#include "Analytics/TelemetryManager.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutex>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>

#include <deque>

namespace vantrel::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A clock that stands still until it is told to go on. The date and the time since the start move together
/// in advance(); jump() moves the date alone.
class ManualClock final : public Clock {
public:
    QDateTime now() const override {
        const QMutexLocker locker(&m_lock);
        return m_start.addMSecs((m_uptime + m_jump).count());
    }
    std::chrono::milliseconds uptime() const override {
        const QMutexLocker locker(&m_lock);
        return m_uptime;
    }
    std::unique_ptr<QObject> startTimer(std::chrono::milliseconds delay,
                                        std::function<void()> work) override {
        auto timer = std::make_unique<Timer>(*this, std::move(work));
        const QMutexLocker locker(&m_lock);
        m_timers.insert(m_uptime + delay, timer.get());
        if (timer->thread() != qApp->thread())
            m_queueDelays.append(delay / 1s);
        return timer;
    }

    void jump(std::chrono::milliseconds by) {
        const QMutexLocker locker(&m_lock);
        m_jump += by;
    }
    /// Fires what falls due, in order, each on its own thread, and waits for it.
    void advance(std::chrono::milliseconds by) {
        const auto end = uptime() + by;
        while (true) {
            QSemaphore fired;
            {
                const QMutexLocker locker(&m_lock);
                m_uptime = m_timers.isEmpty() ? end : std::min(end, std::max(m_uptime, m_timers.firstKey()));
                if (m_timers.isEmpty() || m_timers.firstKey() > end) {
                    m_uptime = end;
                    return;
                }
                Timer *timer = m_timers.take(m_timers.firstKey());
                // Also released when the timer is cancelled before it could run.
                const auto release = std::make_shared<QSemaphoreReleaser>(fired);
                QMetaObject::invokeMethod(
                    timer,
                    [work = timer->work, release] {
                        work();
                        // What it has posted to its thread, such as the start of its next timer, comes first.
                        QMetaObject::invokeMethod(
                            QAbstractEventDispatcher::instance(), [release] {}, Qt::QueuedConnection);
                    },
                    Qt::QueuedConnection);
            }
            do
                QCoreApplication::processEvents();
            while (!fired.tryAcquire(1, 1));
        }
    }
    /// The delays, in seconds, of the timers started outside the main thread since the last call.
    QList<qint64> takeQueueDelays() {
        const QMutexLocker locker(&m_lock);
        return std::exchange(m_queueDelays, {});
    }

private:
    struct Timer : QObject {
        Timer(ManualClock &owner, std::function<void()> what) : clock(owner), work(std::move(what)) {}
        ~Timer() override {
            const QMutexLocker locker(&clock.m_lock);
            clock.m_timers.removeIf([this](const auto &entry) { return entry.value() == this; });
        }
        ManualClock &clock;
        std::function<void()> work;
    };

    mutable QMutex m_lock;
    const QDateTime m_start = QDateTime(QDate(2024, 5, 31), QTime(12, 0), Qt::UTC);
    std::chrono::milliseconds m_uptime{0};
    std::chrono::milliseconds m_jump{0};
    QMultiMap<std::chrono::milliseconds, Timer *> m_timers;
    QList<qint64> m_queueDelays;
};

class MemoryPreferences final : public PreferencesStore {
public:
    QVariant value(const QString &key) const override {
        const QMutexLocker locker(&m_lock);
        return m_values.value(key);
    }
    void setValue(const QString &key, const QVariant &value) override {
        const QMutexLocker locker(&m_lock);
        m_values.insert(key, value);
    }
    void flush() override {}

private:
    mutable QMutex m_lock;
    QVariantMap m_values;
};

/// Answers at once with the next prepared result, or 200 when there is none; or not at all while held.
class FakeHttpClient final : public HttpClient {
public:
    using Result = tl::expected<HttpResponse, QString>;

    void post(HttpRequest request, Completion completion) override {
        const QMutexLocker locker(&m_lock);
        m_requests.append(request);
        if (m_isHeld)
            return m_held.push_back(completion);
        const Result result = m_answers.isEmpty() ? HttpResponse{200, {}} : m_answers.takeFirst();
        completion(result);
    }
    void answer(const Result &result) {
        const QMutexLocker locker(&m_lock);
        m_answers.append(result);
    }
    void hold() {
        const QMutexLocker locker(&m_lock);
        m_isHeld = true;
    }
    void release(const Result &result) {
        const QMutexLocker locker(&m_lock);
        for (const Completion &completion : std::exchange(m_held, {}))
            completion(result);
        m_isHeld = false;
    }
    QList<HttpRequest> takeRequests() {
        const QMutexLocker locker(&m_lock);
        return std::exchange(m_requests, {});
    }

private:
    QMutex m_lock;
    QList<HttpRequest> m_requests;
    QList<Result> m_answers;
    std::deque<Completion> m_held;
    bool m_isHeld = false;
};

/// The names of the signals in a request's body or a cache file.
inline QStringList typesIn(const QByteArray &json) {
    QStringList types;
    const QJsonArray array = QJsonDocument::fromJson(json).array();
    for (const QJsonValue &value : array)
        types.append(value[u"type"].toString());
    return types;
}

/// A client in a made-up world, configured but not started. Sends no signal of its own unless asked to.
struct AnalyticsWorld {
    AnalyticsWorld() {
        configuration.urlSession = http;
        configuration.sendNewSessionBeganSignal = false;
        configuration.sessionStatsEnabled = false;
        configuration.logHandler =
            LogHandler{LogLevel::Debug, [this](LogLevel level, const QString &message) {
                           const QMutexLocker locker(&logLock);
                           log.append({level, message});
                       }};
        environment.clock = clock;
        environment.preferences = preferences;
        environment.cacheFileURL = QUrl::fromLocalFile(directory.filePath(u"caches/signals"_s));
    }

    /// Starts the client and waits for its first attempt.
    void start() {
        manager = std::make_unique<TelemetryManager>(configuration, environment);
        static_cast<void>(waitForAttempts(1));
        clock->takeQueueDelays();
    }
    void recordMany(int count, const QString &prefix = u"s"_s) {
        for (int i = 1; i <= count; ++i)
            manager->signal(prefix + QString::number(i));
    }
    /// Whether that many attempts have ended, after waiting for them.
    [[nodiscard]] bool waitForAttempts(int count) {
        return QTest::qWaitFor([&] { return manager->signalManager().sendCompletions() >= count; }, 30'000);
    }
    void terminate() { manager.reset(); }

    /// The requests of that time.
    QList<HttpRequest> requestsAfter(std::chrono::seconds delay) {
        for (auto left = delay; left > 0s; left -= 1s) {
            clock->advance(1s);
            static_cast<void>(manager->signalManager().sendCompletions()); // lets the outcome be booked
        }
        return http->takeRequests();
    }
    /// The names of the signals sent in that time, by request.
    QList<QStringList> sentAfter(std::chrono::seconds delay) {
        QList<QStringList> sent;
        for (const HttpRequest &request : requestsAfter(delay))
            sent.append(typesIn(request.json));
        return sent;
    }
    /// The records sent in that time.
    QList<QJsonObject> nextRecords(std::chrono::seconds delay = 10s) {
        QList<QJsonObject> records;
        for (const HttpRequest &request : requestsAfter(delay)) {
            const QJsonArray array = QJsonDocument::fromJson(request.json).array();
            for (const QJsonValue &value : array)
                records.append(value.toObject());
        }
        return records;
    }
    QString cacheFile() const { return environment.cacheFileURL->toLocalFile(); }
    QByteArray cacheFileContents() const {
        QFile file(cacheFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList messages(LogLevel level) const {
        const QMutexLocker locker(&logLock);
        QStringList result;
        for (const auto &[entryLevel, message] : log)
            if (entryLevel == level)
                result.append(message);
        return result;
    }

    QTemporaryDir directory;
    mutable QMutex logLock;
    QList<std::pair<LogLevel, QString>> log;
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    std::shared_ptr<MemoryPreferences> preferences = std::make_shared<MemoryPreferences>();
    std::shared_ptr<FakeHttpClient> http = std::make_shared<FakeHttpClient>();
    TelemetryManagerConfiguration configuration{
        u"3C9A5E21-7B4D-4F08-9E6A-1D2C3B4A5F60"_s, {}, QUrl(u"https://signals.example"_s), u"com.example"_s};
    TelemetryEnvironment environment;
    std::unique_ptr<TelemetryManager> manager; // first to go
};

} // namespace vantrel::test
