#pragma once

#include "support/DemoPhone.h"
#include "support/FakeDesktop.h"
#include "support/Files.h"
#include "support/Printers.h"
#include "support/WaitFor.h"

#include "ADB/ADBClient.h"
#include "State/AppState.h"
#include "Worker/Worker.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vantrel {

/// The model on the demo phone and on a temporary folder of this computer.
class ModelTest : public ::testing::Test {
protected:
    ModelTest() {
        phone.set(QStringLiteral("stderr-progress"), "off");
        qputenv("XDG_CACHE_HOME", QFile::encodeName(mac.filePath(QStringLiteral("cache"))));
    }
    ~ModelTest() override {
        state.reset();
        ADBClient::stopRunningTools();
        Background::finish();
    }

    [[nodiscard]] QString here(const QString &name) const {
        return mac.filePath(QStringLiteral("here/") + name);
    }

    void browseHere() {
        QDir(mac.path()).mkpath(QStringLiteral("here"));
        state->browseMac(mac.filePath(QStringLiteral("here")));
        ASSERT_TRUE(waitFor([&] { return !state->isLoadingMac(); }));
    }
    void connectPhone() {
        state->refreshDevice(AppState::Spinner::shown);
        ASSERT_TRUE(waitFor([&] { return !state->isRefreshingDevice(); }));
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
    std::unique_ptr<AppState> state = AppState::designPreview(desktop);
};

} // namespace vantrel
