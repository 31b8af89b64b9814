#pragma once

#include "support/DemoPhone.h"
#include "support/FakeDesktop.h"
#include "support/Files.h"
#include "support/Printers.h"
#include "support/WaitFor.h"

#include "ADB/ADBClient.h"
#include "State/AppState.h"
#include "Worker/Worker.h"

#include <QtTest>
#include <gmock/gmock.h>

namespace vantrel {

/// The model between the demo phone and a temporary folder of this computer. Everything that it started is
/// over when the test ends.
class ModelTest : public ::testing::Test {
protected:
    ModelTest() {
        phone.set(QStringLiteral("stderr-progress"), "off");
        for (const char *name : {"HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"}) {
            const QString folder = QString::fromLatin1(name).section(QLatin1Char('_'), 1, 1).toLower();
            qputenv(name, QFile::encodeName(mac.filePath(folder)));
        }
        state = AppState::designPreview(desktop);
    }
    ~ModelTest() override {
        state.reset();
        Background::stop(&ADBClient::stopRunningTools);
    }

    [[nodiscard]] QString here(const QString &name) const {
        return mac.filePath(QStringLiteral("here/") + name);
    }

    void browseMac(const QString &path) {
        state->browseMac(path);
        ASSERT_TRUE(waitFor([&] { return !state->isLoadingMac(); }));
    }
    void browseHere() {
        QDir(mac.path()).mkpath(QStringLiteral("here"));
        browseMac(mac.filePath(QStringLiteral("here")));
    }
    void refresh() {
        state->refreshDevice(PhoneWatch::Spinner::shown);
        ASSERT_TRUE(waitFor([&] { return !state->isRefreshingDevice(); }));
    }
    void connectPhone() {
        refresh();
        ASSERT_TRUE(state->device().isConnected)
            << state->deviceStatusMessage().value_or(QString()).toStdString();
        ASSERT_FALSE(state->isLoadingAndroid());
    }
    void browsePhone(const QString &path) {
        state->browseAndroid(path);
        ASSERT_TRUE(waitFor([&] { return !state->isLoadingAndroid(); }));
    }
    void select(BrowserSide side, const QString &name) {
        for (const FileItem &item : state->pane(side).visibleItems()) {
            if (item.name == name)
                return state->selectItem(item, side);
        }
        FAIL() << "no entry " << name.toStdString();
    }
    void searchFor(const QString &text) {
        state->setAndroidSearchText(text);
        state->scheduleAndroidSearch();
    }
    void waitForQueue() {
        ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
    }
    [[nodiscard]] QString statuses() const {
        QStringList list;
        for (const QueueItem &item : state->queue())
            list.append(QString(item.name % QLatin1Char(':') % item.progressLabel()));
        return list.join(QLatin1Char('|'));
    }
    /// The names in the order in which adb was asked to copy them.
    [[nodiscard]] QString copyOrder() const {
        QStringList list;
        for (const QStringList &line : phone.commandLines()) {
            const bool isPull = line.value(2) == QStringLiteral("pull");
            if (!isPull && line.value(2) != QStringLiteral("push"))
                continue;
            const QStringList sources = line.mid(isPull ? 4 : 3); // behind "pull -a" or "push"
            for (const QString &source : sources.mid(0, sources.size() - 1))
                list.append(QFileInfo(source).fileName());
        }
        return list.join(QString());
    }

    DemoPhone phone;
    QTemporaryDir mac;
    FakeDesktop desktop;
    std::unique_ptr<AppState> state;
};

} // namespace vantrel
