// The engine's own work, without a phone: reading listings, and keeping the queue.

#include "ADB/ListingText.h"
#include "Records/Identity.h"
#include "Transfers/TransferQueue.h"

#include <benchmark/benchmark.h>

using namespace vantrel;

namespace {

/// A listing as toybox prints it, its names in no order.
QString listing(int entries) {
    QString text = QStringLiteral("total %1\n").arg(entries);
    for (int i = 0; i < entries; ++i) {
        const auto scattered = static_cast<quint32>(i) * 2654435761U;
        text += i % 20 == 0
                    ? QStringLiteral("drwxrwx--- 2 u0_a192 media_rw 3452 2024-05-01 13:07 Folder %1\n")
                          .arg(scattered)
                    : QStringLiteral("-rw-rw---- 1 u0_a192 media_rw %1 2024-%2-%3 13:07 IMG_%4.jpg\n")
                          .arg(scattered)
                          .arg(scattered % 12 + 1, 2, 10, QLatin1Char('0'))
                          .arg(scattered % 28 + 1, 2, 10, QLatin1Char('0'))
                          .arg(scattered);
    }
    return text;
}

/// By a phone that escapes its names, and by one that does not.
void parseAndSortListing(benchmark::State &state,
                         QList<FileItem> (*parse)(const QString &, const QString &)) {
    QString text = listing(static_cast<int>(state.range(0)));
    if (parse == &ADBClient::parseLSLAB)
        text.replace(QStringLiteral("Folder "), QStringLiteral("Folder\\ "));
    for (auto _ : state)
        benchmark::DoNotOptimize(parse(text, QStringLiteral("/sdcard/DCIM")));
    state.SetComplexityN(state.range(0));
}
BENCHMARK_CAPTURE(parseAndSortListing, lsLab, &ADBClient::parseLSLAB)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oNLogN);
BENCHMARK_CAPTURE(parseAndSortListing, lsLa, &ADBClient::parseLSLA)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oNLogN);

/// What one progress report changes, for the first, the middle and the last entry of a queue.
void reportProgress(benchmark::State &state) {
    QList<QueueItem> items;
    for (int64_t i = 0; i < state.range(0); ++i) {
        QueueItem item;
        item.id = newIdentity();
        item.name = QStringLiteral("IMG_%1.jpg").arg(i);
        items.append(item);
    }
    const QList<QUuid> ids{items.first().id, items.at(items.size() / 2).id, items.last().id};
    TransferQueue queue;
    queue.insertFront(items);
    items.clear();
    qint64 bytes = 0;
    for (auto _ : state) {
        QueueItemStatus::Transferring progress;
        progress.transferredBytes = ++bytes;
        benchmark::DoNotOptimize(queue.setStatus(ids.at(bytes % 3), progress));
        benchmark::DoNotOptimize(queue.activeCount());
    }
}
BENCHMARK(reportProgress)->Arg(10)->Arg(10'000);

} // namespace

BENCHMARK_MAIN();
