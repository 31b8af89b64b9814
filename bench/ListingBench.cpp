// A folder of the phone, from opening it to its last row, against adb alone printing the same listing, in
// turns:
//   listing_bench SERIAL FOLDER ENTRIES ROUNDS    prints the medians in milliseconds: the program's, adb's
// Offscreen, with the window's own middle on the real model. Exits 1 when the folder does not hold that many.

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "Kit/AppStyle.h"
#include "State/AppState.h"
#include "Views/DualBrowserView.h"
#include "Views/FileItemsView.h"
#include "support/FakeDesktop.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTextStream>

#include <algorithm>

namespace {

using namespace vantrel;

template <class Condition>
void waitFor(Condition condition) {
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

double median(QList<double> values) {
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// Its output goes nowhere: reading it is the program's work.
bool listAlone(const QString &serial, const QString &folder) {
    QProcess adb;
    adb.setStandardOutputFile(QProcess::nullDevice());
    adb.start(ADBClient::resolveADBPath().value_or(QString()),
              {QStringLiteral("-s"), serial, QStringLiteral("shell"), QStringLiteral("ls"),
               QStringLiteral("-lab"), AndroidPath::quotedForShell(folder + QLatin1Char('/'))});
    return adb.waitForFinished(-1) && adb.exitCode() == 0;
}

int run(const QString &serial, const QString &folder, int entries, int rounds) {
    FakeDesktop desktop;
    AppState model(desktop);
    DualBrowserView view(&model);
    view.resize(1000, 560);
    view.show();
    model.phones().show(serial);
    waitFor([&] { return model.device().id == serial && !model.isLoadingAndroid(); });

    const auto *list = view.findChild<FileItemsView *>(QStringLiteral("fileList"))->model();
    QList<double> alone;
    QList<double> shown;
    QElapsedTimer clock;
    for (int round = 0; round <= rounds; ++round) { // the first one warms up
        clock.start();
        if (!listAlone(serial, folder))
            return 1;
        alone.append(double(clock.nsecsElapsed()) / 1e6);
        clock.start();
        model.browseAndroid(folder);
        waitFor([&] { return !model.isLoadingAndroid(); });
        if (model.androidItems().size() != entries)
            return 1;
        waitFor([&] { return list->rowCount() == entries; });
        shown.append(double(clock.nsecsElapsed()) / 1e6);
        model.browseAndroid(QStringLiteral("/sdcard"));
        waitFor([&] { return !model.isLoadingAndroid() && list->rowCount() != entries; });
    }
    QTextStream(stdout) << median(shown.mid(1)) << ' ' << median(alone.mid(1)) << '\n';
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    AppStyle::install(application, std::chrono::milliseconds(250));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 5)
        return 2;
    return run(arguments.at(1), arguments.at(2), arguments.at(3).toInt(), arguments.at(4).toInt());
}
