// Pictures of the phone's photos, as a grid asks for them:
//   thumbnail_bench SERIAL FOLDER COUNT    shows those of the first files of the phone's folder
// Prints the seconds until the first one and all of them were there; exits 1 when a file has none.

#include "ADB/ADBClient.h"
#include "Thumbnails/ThumbnailStore.h"
#include "Worker/Worker.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTimer>

#include <cstdio>

using namespace vantrel;

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList words = QGuiApplication::arguments();
    const FilePlace place{BrowserSide::android, words.value(1)};
    const auto listing = ADBClient::listDirectory(place.serial, words.value(2));
    const int count = words.value(3).toInt();
    if (!listing || count < 1 || listing->size() < count) {
        std::fputs("thumbnail_bench SERIAL FOLDER COUNT\n", stderr);
        return 2;
    }
    const QList<FileItem> items = listing->mid(0, count);
    int status = 1;
    {
        ThumbnailStore store;
        QElapsedTimer clock;
        qsizetype arrived = 0;
        QObject::connect(&store, &ThumbnailStore::arrived, &store,
                         [&](const FilePlace &, const QSet<QString> &paths) {
                             if (arrived == 0)
                                 std::printf("%.2f ", double(clock.elapsed()) / 1000);
                             arrived += paths.size();
                             if (arrived < count)
                                 return;
                             std::printf("%.2f\n", double(clock.elapsed()) / 1000);
                             status = 0;
                             QGuiApplication::quit();
                         });
        QTimer::singleShot(std::chrono::seconds(60), &application, &QGuiApplication::quit);
        QObject viewer;
        clock.start();
        store.look(&viewer, place, items, 256);
        QGuiApplication::exec();
    }
    Background::stop(&ADBClient::stopRunningTools);
    return status;
}
