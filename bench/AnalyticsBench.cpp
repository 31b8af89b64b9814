// What recording a signal costs the main thread, and what the client's own thread does for it: the cache with
// one signal waiting and with as many as it takes, where every further one also gives up the oldest; and
// storing the session of now beside a history of others, which happens every half minute.

#include "Analytics/SessionManager.h"
#include "Analytics/SignalCache.h"
#include "Analytics/TelemetryManager.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using namespace vantrel;

TelemetryManagerConfiguration silentConfiguration() {
    TelemetryManagerConfiguration configuration(QStringLiteral("app"));
    // Nothing is ever sent, so that the cache stays as full as it was made.
    configuration.urlSession = [](const HttpRequest &, QObject *, const HttpCompletion &) {};
    configuration.logHandler.reset();
    configuration.transmitInterval = configuration.maxBackoffInterval = 1e6;
    return configuration;
}

void recordSignal(benchmark::State &state) {
    const QTemporaryDir directory;
    TelemetryEnvironment environment;
    environment.preferencesDirectory = environment.cachesDirectory = directory.path();
    TelemetryManager manager(silentConfiguration(), environment);
    for (auto _ : state)
        manager.signal(QStringLiteral("signal"));
    manager.abandon();
}

void pushIntoCache(benchmark::State &state) {
    SignalCache cache(std::make_shared<TelemetryManagerConfiguration>(silentConfiguration()), QString());
    SignalPostBody body;
    body.type = QStringLiteral("waiting");
    for (qint64 i = 0; i < state.range(0); ++i)
        cache.push({body});
    for (auto _ : state)
        cache.push({body});
}

void storeSession(benchmark::State &state) {
    const QTemporaryDir directory;
    PreferencesFile preferences(directory.filePath(QStringLiteral("preferences.ini")));
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    QStringList history;
    for (qint64 i = state.range(0); i > 0; --i)
        history.append(QStringLiteral("{\"startedAt\":%1,\"durationInSeconds\":60}").arg(now - i * 100'000));
    preferences.setValue(QStringLiteral("recentSessions"), u'[' + history.join(u',') + u']');
    Moment moment = Moment::now();
    SessionManager sessions(preferences, [&moment] { return moment; });
    static_cast<void>(sessions.startNewSession());
    for (auto _ : state) {
        moment.uptime += std::chrono::seconds(30);
        sessions.updateSessionDuration();
    }
}

BENCHMARK(recordSignal)->UseRealTime();
BENCHMARK(pushIntoCache)->Arg(1)->Arg(10'000);
BENCHMARK(storeSession)->Arg(1)->Arg(10'000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
