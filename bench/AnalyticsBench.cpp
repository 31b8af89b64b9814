// What recording a signal costs its caller, and that the number of signals waiting makes no difference: once
// with one and once with as many as the cache takes, where every further one also gives up the oldest.

#include "Analytics/TelemetryManager.h"

#include <QCoreApplication>
#include <QSemaphore>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using namespace vantrel;

/// Nothing is ever sent, so that the cache stays as full as it was made.
class SilentHttpClient final : public HttpClient {
public:
    void post(HttpRequest, Completion) override {}
};

SignalPostBody waitingSignal() {
    return {QDateTime::currentDateTimeUtc(),
            QStringLiteral("app"),
            QStringLiteral("user"),
            QStringLiteral("id"),
            QStringLiteral("waiting"),
            std::nullopt,
            {},
            QStringLiteral("false")};
}

void recordSignal(benchmark::State &state) {
    const QTemporaryDir directory;
    TelemetryManagerConfiguration configuration(QStringLiteral("app"));
    configuration.urlSession = std::make_shared<SilentHttpClient>();
    configuration.logHandler.reset();
    configuration.transmitInterval = configuration.maxBackoffInterval = 1e6;
    configuration.sessionStatsEnabled = false;
    configuration.defaultUser = QStringLiteral("user");
    TelemetryEnvironment environment;
    environment.cacheFileURL = QUrl::fromLocalFile(directory.filePath(QStringLiteral("cache")));
    TelemetryManager manager(configuration, environment);
    while (manager.signalManager().sendCompletions() < 1)
        QThread::yieldCurrentThread();
    for (qint64 i = 0; i < state.range(0); ++i)
        manager.signalManager().push(waitingSignal());

    for (auto _ : state)
        manager.signal(QStringLiteral("signal"));
}

/// The cache's own part of it: appending, and giving up the oldest once it is full.
void pushIntoCache(benchmark::State &state) {
    TelemetryManagerConfiguration configuration(QStringLiteral("app"));
    configuration.cacheLimit = int(state.range(0));
    configuration.logHandler.reset();
    SignalCache cache(std::make_shared<SharedConfiguration>(configuration), std::nullopt, QString());
    for (qint64 i = 0; i < state.range(0); ++i)
        cache.push({waitingSignal()});
    const SignalPostBody body = waitingSignal();

    for (auto _ : state) {
        for (int i = 0; i < 1000; ++i)
            cache.push({body});
        QSemaphore idle; // without a file, saving only takes its turn
        cache.save([&idle] { idle.release(); });
        idle.acquire();
    }
    state.SetItemsProcessed(state.iterations() * 1000);
}

BENCHMARK(recordSignal)->Arg(1)->Arg(10'000)->UseRealTime();
BENCHMARK(pushIntoCache)->Arg(1)->Arg(10'000)->UseRealTime();

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
