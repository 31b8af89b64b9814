#pragma once

#include "support/ModelTest.h"
#include "support/Widgets.h"

#include "Theme/AppTheme.h"

namespace vantrel {

/// A view of the model.
class WindowFixture : public ModelTest {
protected:
    ~WindowFixture() override {
        view.reset();
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
        settle();
    }

    std::unique_ptr<QWidget> view;

private:
    void queueListed() {
        refresh();
        state->browseMac(mac.path());
        browsePhone(QStringLiteral("/sdcard"));
        ASSERT_TRUE(waitFor([&] { return !state->isLoadingMac(); }));
        ASSERT_FALSE(state->androidItems().isEmpty());
        state->selectAllVisible(BrowserSide::android);
        state->transferAndroidToMac();
    }
};

} // namespace vantrel
