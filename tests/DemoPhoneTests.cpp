#include "support/DemoPhone.h"

#include <QProcess>

#include <gtest/gtest.h>

using namespace vantrel;

namespace {

struct Run {
    int exitStatus = -1; ///< -1 when ended by a signal
    QByteArray standardOutput;
    QByteArray standardError;
};

Run adb(const QStringList &arguments) {
    QProcess process;
    process.start(DemoPhone::adb(), arguments);
    if (!process.waitForFinished(30000))
        process.kill();
    process.waitForFinished();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
}

} // namespace

TEST(DemoPhone, isListedInEachState) {
    DemoPhone phone;
    for (const char *state :
         {"device", "offline", "unauthorized", "authorizing", "recovery",
          "no permissions (user in plugdev group; are your udev rules wrong?); see [http://x]"}) {
        phone.set(QStringLiteral("state"), state);
        const Run run = adb({QStringLiteral("devices")});
        EXPECT_EQ(run.standardOutput, QByteArray("List of devices attached\ndemo-phone\t") + state + "\n\n");
        EXPECT_EQ(run.exitStatus, 0) << state;
    }
    phone.unplug();
    EXPECT_EQ(adb({QStringLiteral("devices")}).standardOutput, "List of devices attached\n\n");
    EXPECT_EQ(phone.commandLines().size(), 7);
}
