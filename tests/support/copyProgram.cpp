// The model without a window, for tests that end a program in the middle of its work: copies everything in
// the phone's "out" into the folder's "in" and the other way round, and ends when nothing runs any more.
// With a second folder it remembers there what is not finished, and goes on with what it finds there instead.
//   copyProgram FOLDER [STATE]

#include "FakeDesktop.h"
#include "WaitFor.h"

#include "ADB/ADBClient.h"
#include "State/AppState.h"
#include "Worker/Worker.h"

#include <QCoreApplication>

using namespace vantrel;

namespace {

int copyBothWays(const QString &folder, const QString &remembered) {
    FakeDesktop desktop;
    AppState state(desktop);
    if (!remembered.isEmpty()) {
        const auto remembering = state.transfers().remember(remembered);
        if (!waitFor([&] { return remembering.isReady(); }))
            return 2;
    }
    state.refreshDevice(PhoneWatch::Spinner::shown);
    if (!waitFor([&] { return !state.isRefreshingDevice() && state.device().isConnected; }))
        return 2;
    const auto ends = [&] { return waitFor([&] { return !state.isTransferring(); }) ? 0 : 3; };
    if (!state.queue().isEmpty()) {
        state.transfers().resume();
        return ends();
    }
    const auto show = [&](const char *phoneFolder, const char *here) {
        state.browseAndroid(QString::fromLatin1(phoneFolder));
        state.browseMac(folder + QString::fromLatin1(here));
        return waitFor([&] { return !state.isLoadingAndroid() && !state.isLoadingMac(); });
    };
    if (!show("/sdcard/out", "/in"))
        return 2;
    state.selectAllVisible(BrowserSide::android);
    state.transferAndroidToMac();
    if (!show("/sdcard/in", "/out"))
        return 2;
    state.selectAllVisible(BrowserSide::mac);
    state.transferMacToAndroid();
    return ends();
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    const int status =
        copyBothWays(QCoreApplication::arguments().value(1), QCoreApplication::arguments().value(2));
    Background::stop(&ADBClient::stopRunningTools);
    return status;
}
