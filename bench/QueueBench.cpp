// The list of copies: from what changes in the queue to the painted frame. Offscreen.

#include "Records/Identity.h"
#include "Transfers/TransferQueue.h"
#include "Views/QueueListView.h"

#include <QApplication>
#include <QPaintEvent>

#include <benchmark/benchmark.h>

#include <ctime>
#include <memory>

namespace {

using namespace vantrel;

/// The list in a window of its own.
class ShownQueue : public QObject {
public:
    explicit ShownQueue(qsizetype rows) {
        list.resize(816, 400);
        list.viewport()->installEventFilter(this);
        list.show();
        insert(rows);
    }

    bool eventFilter(QObject *, QEvent *event) override {
        isPainted |= event->type() == QEvent::Paint;
        return false;
    }

    void insert(qsizetype rows) {
        QList<QueueItem> items;
        for (qsizetype i = 0; i < rows; ++i) {
            QueueItem item;
            item.id = newIdentity();
            item.name = QStringLiteral("IMG_%1.jpg").arg(i);
            item.sourcePath = QStringLiteral("/sdcard/DCIM/Camera/") + item.name;
            item.destinationFolder = QStringLiteral("/home/sam/Pictures");
            items.append(item);
        }
        isPainted = false;
        queue.insertFront(items);
        paint();
    }

    /// One report for a row in sight.
    void report() {
        QueueItemStatus::Transferring progress;
        progress.totalBytes = 1'000'000'000;
        progress.transferredBytes = ++m_reports;
        progress.fraction = double(m_reports % 1000) / 1000;
        isPainted = false;
        queue.setStatus(queue.items().at(2).id, progress);
        paint();
    }

    TransferQueue queue;
    QueueListView list{&queue, 10};
    bool isPainted = false;

private:
    void paint() {
        while (!isPainted)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    qint64 m_reports = 0;
};

void report(benchmark::State &state) {
    static double ticksOfTen = 0;
    ShownQueue shown(state.range(0));
    const std::clock_t start = std::clock();
    for (auto _ : state)
        shown.report();
    const double ticks = double(std::clock() - start) / double(state.iterations());
    if (state.range(0) == 10)
        ticksOfTen = ticks;
    else
        state.SetLabel(QStringLiteral("x %1 of 10 rows").arg(ticks / ticksOfTen, 0, 'f', 2).toStdString());
}
BENCHMARK(report)->Arg(10)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);

void insertBlock(benchmark::State &state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto shown = std::make_unique<ShownQueue>(10);
        state.ResumeTiming();
        shown->insert(state.range(0));
        state.PauseTiming();
        shown.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(insertBlock)->Arg(10'000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
