// A pane with 100,000 entries, in the window's own middle on the real model: from what changes in the model
// to the painted frame. The label says how long it may take. Offscreen, on the demo phone.

#include "Kit/AppStyle.h"
#include "State/AppState.h"
#include "Thumbnails/ThumbnailStore.h"
#include "Views/DualBrowserView.h"
#include "Views/FileItemsView.h"
#include "support/DemoPhone.h"
#include "support/ExifPhoto.h"
#include "support/FakeDesktop.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <unistd.h>

namespace {

using namespace vantrel;

constexpr int entries = 100'000;

/// The browser on a phone with one large folder.
class LargeFolder : public QObject {
public:
    LargeFolder() : model(desktop), view(&model) {
        phone.makeFolder(QStringLiteral("DCIM"));
        const QDir folder(phone.hostPath(QStringLiteral("/sdcard/DCIM")));
        const QByteArray photo = aPhoto();
        QByteArray first;
        for (int i = 0; i < entries; ++i) {
            const QByteArray path = QFile::encodeName(
                folder.filePath(QStringLiteral("%1_%2.jpg")
                                    .arg(i % 3 == 0 ? QStringLiteral("PANO") : QStringLiteral("IMG"))
                                    .arg(i, 6, 10, QLatin1Char('0'))));
            constexpr int mostLinks = 30'000; // to one file, which a file system bears
            if (i % mostLinks != 0) {
                if (::link(first.constData(), path.constData()) != 0)
                    qFatal("cannot write the large folder");
                continue;
            }
            first = path;
            QFile file(QFile::decodeName(path));
            if (!file.open(QFile::WriteOnly) || file.write(photo) != photo.size())
                qFatal("cannot write the large folder");
        }
        view.resize(1000, 560);
        for (FileItemsView *items : {list(), grid()})
            items->viewport()->installEventFilter(this);
        view.show();
        model.refreshDevice(PhoneWatch::Spinner::hidden);
        waitFor([this] { return model.device().isConnected && !model.isLoadingAndroid(); });
        browse();
    }

    bool eventFilter(QObject *, QEvent *event) override {
        isPainted |= event->type() == QEvent::Paint;
        return false;
    }

    void browse() {
        model.browseAndroid(QStringLiteral("/sdcard/DCIM"));
        waitFor([this] { return model.androidItems().size() == entries && !model.isLoadingAndroid(); });
        paint();
    }

    /// Handles what is due, up to the next painted frame of the entries.
    void paint() {
        waitFor([this] { return isPainted; });
    }
    void expectFrame() { isPainted = false; }

    FileItemsView *list() { return view.findChild<FileItemsView *>(QStringLiteral("fileList")); }
    FileItemsView *grid() { return view.findChild<FileItemsView *>(QStringLiteral("fileGrid")); }
    FileItemsView *shown() { return model.androidViewMode() == PaneViewMode::grid ? grid() : list(); }

    DemoPhone phone;
    FakeDesktop desktop;
    AppState model;
    DualBrowserView view;
    bool isPainted = false;

    template <typename Condition>
    static void waitFor(Condition condition) {
        while (!condition())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

private:
    static QByteArray aPhoto() {
        const QRadialGradient colors(600, 450, 700);
        QImage image(1200, 900, QImage::Format_RGB32);
        QPainter(&image).fillRect(image.rect(), colors);
        return exifPhoto(jpegOf(image), image.size(), jpegOf(image.scaled(320, 240))) +
               QByteArray(300'000, 'x');
    }
};

LargeFolder *folder = nullptr;

void start(PaneViewMode mode) {
    folder->model.clearSelection(BrowserSide::android);
    folder->model.setAndroidSearchText(QString());
    folder->model.setAndroidViewMode(mode);
    QCoreApplication::processEvents();
    folder->shown()->scrollToTop();
    QCoreApplication::processEvents();
}

void showListing(benchmark::State &state, PaneViewMode mode) {
    start(mode);
    for (auto _ : state) {
        QElapsedTimer clock;
        const auto arrival = QObject::connect(&folder->model, &AppState::androidItemsChanged, folder, [&] {
            folder->expectFrame();
            clock.start();
        });
        folder->model.clearAndroidSearch();
        folder->browse();
        state.SetIterationTime(double(clock.nsecsElapsed()) / 1e9);
        QObject::disconnect(arrival);
    }
    state.SetLabel("at most 150 ms");
}

/// Times `change` up to its frame; `undo` runs between the frames, untimed.
template <typename Change, typename Undo>
void frames(benchmark::State &state, PaneViewMode mode, const char *limit, Change change, Undo undo) {
    start(mode);
    for (auto _ : state) {
        folder->expectFrame();
        change();
        folder->paint();
        state.PauseTiming();
        folder->expectFrame();
        undo();
        folder->paint();
        state.ResumeTiming();
    }
    state.SetLabel(limit);
}

void selectAll(benchmark::State &state, PaneViewMode mode) {
    frames(
        state, mode, "at most 60 ms", [] { folder->model.selectAllVisible(BrowserSide::android); },
        [] { folder->model.clearSelection(BrowserSide::android); });
}

void clearSelection(benchmark::State &state, PaneViewMode mode) {
    start(mode);
    folder->model.selectAllVisible(BrowserSide::android);
    QCoreApplication::processEvents();
    for (auto _ : state) {
        folder->expectFrame();
        folder->model.clearSelection(BrowserSide::android);
        folder->paint();
        state.PauseTiming();
        folder->expectFrame();
        folder->model.selectAllVisible(BrowserSide::android);
        folder->paint();
        state.ResumeTiming();
    }
    state.SetLabel("at most 60 ms");
}

void toggleOneOfAll(benchmark::State &state, PaneViewMode mode) {
    start(mode);
    folder->model.selectAllVisible(BrowserSide::android);
    QCoreApplication::processEvents();
    for (auto _ : state) {
        folder->expectFrame();
        folder->model.toggleSelection(folder->model.androidItems().first(), BrowserSide::android);
        folder->paint();
    }
    state.SetLabel("at most 60 ms");
}

/// A key that a third of the names hold, none of those that are in sight.
void filterFirstKey(benchmark::State &state, PaneViewMode mode) {
    const auto key = [] { folder->model.setAndroidSearchText(QStringLiteral("o")); };
    const auto undo = [] {
        // Another query, or the model would remember the answer.
        folder->model.setAndroidSearchText(QStringLiteral("none"));
        benchmark::DoNotOptimize(folder->model.displayedAndroidItems());
        folder->model.setAndroidSearchText(QString());
    };
    frames(state, mode, "at most 60 ms", key, undo);
}

void scroll(benchmark::State &state, PaneViewMode mode) {
    start(mode);
    QScrollBar *bar = folder->shown()->verticalScrollBar();
    for (auto _ : state) {
        folder->expectFrame();
        bar->setValue((bar->value() + 397) % bar->maximum());
        folder->paint();
    }
    state.SetLabel("at most 8 ms");
}

/// To a place whose pictures have been read, and none of them painted yet.
void scrollToPictures(benchmark::State &state) {
    constexpr int sight = 40; // more than are in sight
    start(PaneViewMode::list);
    ThumbnailStore pictures;
    DualBrowserView view(&folder->model, &pictures);
    auto *grid = view.findChild<FileItemsView *>(QStringLiteral("fileGrid"));
    grid->viewport()->installEventFilter(folder);
    view.resize(folder->view.size());
    folder->view.hide();
    view.show();
    folder->model.setAndroidViewMode(PaneViewMode::grid);
    const FilePlace place{BrowserSide::android, DemoPhone::serial()};
    QObject ahead;
    int row = 0;
    for (auto _ : state) {
        state.PauseTiming();
        row += sight;
        const QList<FileItem> items = folder->model.androidItems().mid(row, sight);
        pictures.look(&ahead, place, items, 200);
        LargeFolder::waitFor([&] {
            return std::none_of(items.begin(), items.end(),
                                [&](const FileItem &item) { return pictures.picture(place, item).isNull(); });
        });
        folder->expectFrame();
        state.ResumeTiming();
        grid->scrollTo(grid->model()->index(row, 0), QAbstractItemView::PositionAtTop);
        folder->paint();
    }
    state.SetLabel("at most 16 ms");
    folder->view.show();
}

void switchLayout(benchmark::State &state, PaneViewMode from) {
    const PaneViewMode to = from == PaneViewMode::list ? PaneViewMode::grid : PaneViewMode::list;
    frames(
        state, from, "at most 60 ms", [to] { folder->model.setAndroidViewMode(to); },
        [from] { folder->model.setAndroidViewMode(from); });
}

#define BOTH_LAYOUTS(function)                                                                               \
    BENCHMARK_CAPTURE(function, list, PaneViewMode::list)->Unit(benchmark::kMillisecond);                    \
    BENCHMARK_CAPTURE(function, grid, PaneViewMode::grid)->Unit(benchmark::kMillisecond)

BENCHMARK_CAPTURE(showListing, list, PaneViewMode::list)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(3);
BENCHMARK_CAPTURE(showListing, grid, PaneViewMode::grid)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(3);
BOTH_LAYOUTS(selectAll);
BOTH_LAYOUTS(clearSelection);
BOTH_LAYOUTS(toggleOneOfAll);
BOTH_LAYOUTS(filterFirstKey);
BOTH_LAYOUTS(scroll);
BENCHMARK(scrollToPictures)->Unit(benchmark::kMillisecond)->Iterations(20);
BOTH_LAYOUTS(switchLayout);

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    AppStyle::install(application, std::chrono::milliseconds(250));
    benchmark::Initialize(&argc, argv);
    LargeFolder large;
    folder = &large;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
