// Copies through the queue, to be timed as a whole and compared with adb doing the same:
//   copy_bench pull LOCAL_FOLDER REMOTE_FOLDER    copies every entry of the phone's folder to the computer
//   copy_bench push LOCAL_FOLDER REMOTE_FOLDER    copies every entry of the computer's folder to the phone
// Prints the seconds from pressing the arrow to the end of the queue; exits 1 when a copy failed.

#include "ADB/ADBClient.h"
#include "MacFiles/Desktop.h"
#include "State/AppState.h"
#include "Worker/Worker.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextStream>

using namespace vantrel;

namespace {

/// Nothing is opened and nobody asked.
class NoDesktop : public Desktop {
public:
    void openFile(const QString & /*path*/) override {}
    void revealFile(const QString & /*path*/) override {}
    void copyText(const QString & /*text*/) override {}
    QFuture<std::optional<QString>> chooseFolder(const QString & /*message*/, const QString & /*acceptLabel*/,
                                                 const QString & /*startingAt*/) override {
        return {};
    }
    QFuture<std::optional<QString>> askForText(const TextQuestion & /*question*/) override { return {}; }
    void keepAwake(bool /*isOn*/) override {}
};

/// Runs the event loop until the condition holds.
template <class Condition>
void waitFor(Condition condition) {
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        QTextStream(stderr) << "copy_bench pull|push LOCAL_FOLDER REMOTE_FOLDER\n";
        return 2;
    }
    const BrowserSide from =
        arguments.at(1) == QLatin1String("pull") ? BrowserSide::android : BrowserSide::mac;
    NoDesktop desktop;
    auto state = AppState::designPreview(desktop);
    state->refreshDevice(AppState::Spinner::shown);
    waitFor([&] { return !state->isRefreshingDevice(); });
    state->browseMac(arguments.at(2));
    state->browseAndroid(arguments.at(3));
    waitFor([&] { return !state->isLoadingMac() && !state->isLoadingAndroid(); });
    state->selectAllVisible(from);

    QElapsedTimer elapsed;
    elapsed.start();
    from == BrowserSide::android ? state->transferAndroidToMac() : state->transferMacToAndroid();
    waitFor([&] { return !state->isTransferring(); });
    const qint64 milliseconds = elapsed.elapsed();

    int failures = 0;
    for (const QueueItem &item : state->queue()) {
        if (!item.status.is<QueueItemStatus::Completed>()) {
            QTextStream(stderr) << item.name << ": " << item.progressLabel() << '\n';
            ++failures;
        }
    }
    QTextStream(stdout) << static_cast<double>(milliseconds) / 1000 << '\n';
    const bool isComplete = failures == 0 && !state->queue().isEmpty();
    state.reset();
    ADBClient::stopRunningTools();
    Background::finish();
    return isComplete ? 0 : 1;
}
