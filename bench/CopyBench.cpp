// Copies through the queue, to be timed as a whole and compared with adb doing the same:
//   copy_bench pull LOCAL_FOLDER REMOTE_FOLDER    copies every entry of the phone's folder to the computer
//   copy_bench push LOCAL_FOLDER REMOTE_FOLDER    copies every entry of the computer's folder to the phone
//   copy_bench memory COUNT                       only queues entries, and prints how many MB they take
// Prints the seconds from pressing the arrow to the end of the queue; exits 1 when a copy failed.

#include "ADB/ADBClient.h"
#include "MacFiles/Desktop.h"
#include "Records/Identity.h"
#include "State/AppState.h"
#include "Transfers/TransferQueue.h"
#include "Worker/Worker.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTextStream>

#include <utility>

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

/// What this process holds in memory, in bytes.
qint64 residentBytes() {
    constexpr qint64 pageBytes = 4096;
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLongLong() * pageBytes : 0;
}

int printMemoryOf(int count) {
    const qint64 before = residentBytes();
    TransferQueue queue;
    QList<QueueItem> entries;
    const QString serial = QStringLiteral("demo-phone");
    const QString folder = QString::fromLatin1("/home/sam/Pictures");
    for (int i = 0; i < count; ++i) {
        const QString name = QStringLiteral("IMG_%1.jpg").arg(i);
        entries.append({newIdentity(),
                        name,
                        false,
                        QStringLiteral("/sdcard/DCIM/Camera/") + name,
                        folder,
                        TransferDirection::androidToMac,
                        {},
                        4'000'000,
                        serial});
    }
    queue.insertFront(std::exchange(entries, {}));
    QTextStream(stdout) << (residentBytes() - before) / 1'000'000 << '\n';
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments.at(1) == QLatin1String("memory"))
        return printMemoryOf(arguments.at(2).toInt());
    if (arguments.size() != 4) {
        QTextStream(stderr) << "copy_bench pull|push LOCAL_FOLDER REMOTE_FOLDER, or memory COUNT\n";
        return 2;
    }
    const BrowserSide from =
        arguments.at(1) == QLatin1String("pull") ? BrowserSide::android : BrowserSide::mac;
    NoDesktop desktop;
    auto state = AppState::designPreview(desktop);
    state->refreshDevice(PhoneWatch::Spinner::shown);
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
