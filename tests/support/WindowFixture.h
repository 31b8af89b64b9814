#pragma once

#include "support/DemoPhone.h"
#include "support/FakeDesktop.h"
#include "support/Printers.h"
#include "support/WaitFor.h"

#include "ADB/ADBClient.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"
#include "Worker/Worker.h"

#include <QAccessible>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace vantrel {

inline QAccessibleInterface *accessible(QObject *object) {
    return QAccessible::queryAccessibleInterface(object);
}

/// How many pixels of a row of pixels have that colour, nearly.
inline int pixelsOf(const QColor &color, const QImage &image, int y) {
    int count = 0;
    for (int x = 0; x < image.width(); ++x) {
        const QColor pixel = image.pixelColor(x, y);
        count += qAbs(pixel.red() - color.red()) + qAbs(pixel.green() - color.green()) +
                     qAbs(pixel.blue() - color.blue()) <
                 12;
    }
    return count;
}

/// A model between a demo phone and a temporary folder of this computer. Everything that it started is over
/// when the test ends.
class WindowFixture : public ::testing::Test {
protected:
    WindowFixture() {
        phone.set(QStringLiteral("stderr-progress"), "off");
        qputenv("HOME", QFile::encodeName(mac.path()));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(mac.filePath(QStringLiteral("config"))));
        qputenv("XDG_STATE_HOME", QFile::encodeName(mac.filePath(QStringLiteral("state"))));
        state = AppState::designPreview(desktop);
    }
    ~WindowFixture() override {
        view.reset();
        state.reset();
        Background::stop(&ADBClient::stopRunningTools);
        AppTheme::setScheme(ColorScheme::light);
    }

    /// Shows a view and gives it back; it is destroyed ahead of the model.
    template <class View>
    View *show(View *shown, QSize size) {
        view.reset(shown);
        shown->resize(size);
        shown->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(shown));
        return shown;
    }
    template <class Child>
    [[nodiscard]] Child *child(const char *name) const {
        auto *found = view->findChild<Child *>(QLatin1StringView(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    /// Lets the views render, be laid out and be painted; each asks for the next.
    static void settle() {
        constexpr int passes = 4;
        for (int pass = 0; pass < passes; ++pass)
            QCoreApplication::processEvents();
    }

    void refresh() {
        state->refreshDevice(AppState::Spinner::shown);
        ASSERT_TRUE(waitFor([&] { return !state->isRefreshingDevice(); }));
    }

    /// Copies `count` phone files of that size to the computer; all are in the queue when this returns.
    void queueCopies(int count, const QByteArray &contents = "x") {
        for (int i = 0; i < count; ++i)
            phone.write(QStringLiteral("File %1").arg(i, 5, 10, QLatin1Char('0')), contents);
        queueListed();
    }
    /// The same for files that exist in the phone's listing only: quick to make by the thousand. They cannot
    /// be copied, so pulls should hang.
    void queueGhosts(int count) {
        QByteArray listing;
        for (int i = 0; i < count; ++i)
            listing += "-rw-rw---- 1 root sdcard_rw 5 2024-05-01 10:00 Ghost " + QByteArray::number(i) + '\n';
        phone.set(QStringLiteral("ls.stdout"), listing);
        phone.set(QStringLiteral("facts.hang"), "on"); // what a copy asks first
        queueListed();
    }
    void waitForQueue() {
        ASSERT_TRUE(waitFor([&] { return !state->isTransferring(); }));
    }

    DemoPhone phone;
    QTemporaryDir mac;
    FakeDesktop desktop;
    std::unique_ptr<AppState> state;
    std::unique_ptr<QWidget> view;

private:
    void queueListed() {
        refresh();
        state->browseMac(mac.path());
        state->browseAndroid(QStringLiteral("/sdcard"));
        ASSERT_TRUE(waitFor([&] { return !state->isLoadingAndroid() && !state->isLoadingMac(); }));
        ASSERT_FALSE(state->androidItems().isEmpty());
        state->selectAllVisible(BrowserSide::android);
        state->transferAndroidToMac();
    }
};

} // namespace vantrel
