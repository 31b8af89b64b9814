#pragma once

#include "support/WindowFixture.h"

#include "App/System/Settings.h"
#include "App/Updates/Updater.h"
#include "App/Window/MainWindow.h"

#include <optional>

namespace vantrel {

/// The whole window on a demo phone, with settings of its own.
class MainWindowFixture : public WindowFixture {
protected:
    [[nodiscard]] QString settingsPath() const { return mac.filePath(QStringLiteral("settings.ini")); }
    MainWindow *showWindow() {
        settings.emplace(settingsPath());
        auto *window = new MainWindow(desktop, *settings, updater);
        view.reset(window);
        window->show();
        EXPECT_TRUE(waitFor([&] { return window->isFurnished(); }));
        settle();
        return window;
    }

    Updater updater{Updater::Configuration{}};
    std::optional<Settings> settings;
};

} // namespace vantrel
