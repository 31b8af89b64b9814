// The sidebar on a demo phone.

#include "support/WindowFixture.h"

#include "ADB/ADBError.h"
#include "Kit/IconButton.h"
#include "Kit/Spinner.h"
#include "Kit/TextLabel.h"
#include "Views/PhonePicker.h"
#include "Views/SidebarView.h"

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

class SidebarTests : public WindowFixture {
protected:
    void showSidebar() { show(new SidebarView(state.get()), {SidebarView::columnWidth(), 640}); }
    [[nodiscard]] QString text(const char *name) const {
        const auto *label = child<TextLabel>(name);
        return label->isVisible() ? label->text() : u"(hidden)"_s;
    }
    [[nodiscard]] QProgressBar *storage() const { return child<QProgressBar>("sidebar.storage"); }
};

TEST_F(SidebarTests, showsWhatIsKnownOfThePhone) {
    // Its state, bytes that there are and that are used; how that is said, and how much of the bar is filled.
    const std::tuple<QByteArray, QByteArray, QByteArray, QString, int> cases[] = {
        {"none", "1000000000", "1000000000", u"— / —"_s, 0},
        {"device", "100000000000", "25000000000", u"25 GB / 100 GB"_s, 25},
        {"device", "1000000000", "5000000000", u"5 GB / 1 GB"_s, 100}};
    showSidebar();
    for (const auto &[word, total, used, storageText, percent] : cases) {
        SCOPED_TRACE(used.toStdString());
        phone.set(u"state"_s, word);
        phone.set(u"storage-total"_s, total);
        phone.set(u"storage-used"_s, used);
        refresh();
        const bool isThere = word == "device";
        const QString status = isThere ? u"Connected"_s : u"Disconnected"_s;
        ASSERT_TRUE(waitFor([&] { return text("sidebar.device.status") == status; }));
        EXPECT_EQ(text("sidebar.device.title"), isThere ? u"demo-phone"_s : u"No device"_s);
        EXPECT_EQ(text("sidebar.storage.text"), storageText);
        EXPECT_EQ(text("sidebar.device.model"), isThere ? u"Demo Phone"_s : u"(hidden)"_s);
        EXPECT_EQ(text("sidebar.device.message"),
                  isThere ? u"(hidden)"_s : ADBError::noDevice().errorDescription());
        EXPECT_EQ(storage()->value() * 100 / storage()->maximum(), percent);
        EXPECT_NEAR(pixelsOf(AppTheme::accent(), storage()->grab().toImage(), 3),
                    storage()->width() * percent / 100, 3);
        const QColor dot = isThere ? AppTheme::success() : AppTheme::danger();
        EXPECT_TRUE(pixelsOf(dot, child<QWidget>("sidebar.device.statusDot")->grab().toImage(), 3) > 3);
    }
}

TEST_F(SidebarTests, aRefreshShowsASpinnerInTheColourOfTheLastState) {
    refresh();
    showSidebar();
    auto *button = child<IconButton>("sidebar.refresh");
    auto *spinner = child<Spinner>("sidebar.device.refreshing");
    EXPECT_FALSE(spinner->isVisible());

    phone.set(u"devices.hang"_s, "on");
    click(button);
    ASSERT_TRUE(waitFor([&] { return spinner->isVisible(); }));
    EXPECT_EQ(text("sidebar.device.status"), u"Checking…"_s);
    EXPECT_FALSE(child<QWidget>("sidebar.device.statusDot")->isVisible());
    EXPECT_FALSE(button->isEnabled());

    phone.unplug();
    phone.reset(u"devices.hang"_s);
    ASSERT_TRUE(waitFor([&] { return button->isEnabled(); }));
    EXPECT_FALSE(spinner->isVisible());
    EXPECT_EQ(text("sidebar.device.status"), u"Disconnected"_s);
}

TEST_F(SidebarTests, severalPhonesAreAChoice) {
    refresh();
    showSidebar();
    auto *picker = child<PhonePicker>("sidebar.device.picker");
    EXPECT_FALSE(picker->isVisible());
    const auto titles = [&] {
        QStringList list;
        for (int i = 0; i < picker->count(); ++i)
            list.append(picker->itemText(i));
        return list.join(u'|');
    };
    phone.setOther(u"-s A&1"_s, u"device"_s); // a serial ends at the first blank of the setting
    phone.setOther(u"X2"_s, u"unauthorized"_s);
    phone.setOther(u"B7"_s, u"device"_s, u"Pixel 7"_s);
    refresh();
    ASSERT_TRUE(waitFor([&] { return picker->isVisible() && titles().contains(u"Pixel 7"_s); }));
    EXPECT_EQ(titles(), u"-s · A&1|X2 · Not allowed yet|Pixel 7 · B7 · Connected|Demo Phone · demo-phone · "
                        u"Connected"_s);
    EXPECT_EQ(text("sidebar.device.title"), u"(hidden)"_s);
    EXPECT_EQ(accessible(picker)->role(), QAccessible::ComboBox);
    EXPECT_EQ(accessible(picker)->text(QAccessible::Value), u"Demo Phone · demo-phone · Connected"_s);
    EXPECT_EQ(accessible(picker)->text(QAccessible::Description), u"Phone"_s);
    EXPECT_EQ(picker->width(), child<QWidget>("sidebar.refresh")->x() - picker->x() - 10) << "in its card";

    // With the keyboard, past the one that is not ready.
    picker->setFocus(Qt::TabFocusReason);
    QTest::keyClick(picker, Qt::Key_Up);
    ASSERT_TRUE(waitFor([&] { return state->device().id == u"B7"_s && !state->isRefreshingDevice(); }));
    QTest::keyClick(picker, Qt::Key_Up);
    settle();
    EXPECT_EQ(state->device().id, u"B7"_s) << "nothing above it is ready";
    phone.setOther(u"B7"_s, u"offline"_s);
    refresh();
    ASSERT_TRUE(waitFor([&] { return picker->currentText().startsWith(u"Demo Phone"_s); }));

    for (const QString &gone : {u"-s"_s, u"X2"_s, u"B7"_s})
        phone.setOther(gone, u"none"_s);
    refresh();
    ASSERT_TRUE(waitFor([&] { return !picker->isVisible(); }));
    EXPECT_EQ(text("sidebar.device.title"), u"demo-phone"_s);
}

TEST_F(SidebarTests, cardsStandBelowTheShortcutsWithTheirFreeSpace) {
    showSidebar();
    const auto row = [&] { return view->findChild<QAbstractButton *>(u"sidebar.shortcut.1A2B-3C4D"_s); };
    refresh();
    EXPECT_EQ(row(), nullptr);
    phone.insertCard(u"1A2B-3C4D"_s);
    refresh();
    ASSERT_TRUE(waitFor([&] { return row() && row()->isVisible() && row()->y() > 0; }));
    settle();
    EXPECT_GT(row()->y(), child<QWidget>("sidebar.shortcut.Recordings")->geometry().bottom());
    EXPECT_EQ(accessible(row())->text(QAccessible::Name), u"Browse 1A2B-3C4D"_s);
    EXPECT_EQ(accessible(row())->text(QAccessible::Description), u"97.48 GB free"_s);
    QTest::mouseClick(row(), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return row()->isChecked() && !state->isLoadingAndroid(); }));
    EXPECT_EQ(state->androidCurrentPath(), u"/storage/1A2B-3C4D"_s);
    phone.pullCard(u"1A2B-3C4D"_s);
    refresh();
    EXPECT_TRUE(waitFor([&] { return !row() && state->androidCurrentPath() == u"/sdcard"_s; }));
}

TEST_F(SidebarTests, aLongMessageTakesTwoLinesAndMovesNothingOutOfTheCard) {
    phone.set(u"devices.stderr"_s,
              QString(u"The tool says a great deal. "_s.repeated(20) + u'\n').repeated(10));
    phone.set(u"devices.exit"_s, "1");
    phone.set(u"devices.stdout"_s, "");
    showSidebar();
    refresh();
    auto *message = child<TextLabel>("sidebar.device.message");
    ASSERT_TRUE(waitFor([&] { return message->isVisible(); }));
    settle();
    EXPECT_TRUE(message->isElided());
    const int line = TextStyle{10.5, Weight::medium}.lineHeight();
    EXPECT_TRUE(waitFor([&] { return message->height() == 2 * line; })) << message->height();
    auto *card = child<QWidget>("sidebar.device");
    EXPECT_EQ(card->geometry(), QRect(12, 12, 216, card->height()));
    for (const auto *inside : card->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (inside->isVisible()) {
            EXPECT_TRUE(card->rect().adjusted(12, 12, -12, -12).contains(inside->geometry()))
                << inside->objectName().toStdString();
        }
    }
    EXPECT_GE(storage()->y(), message->geometry().bottom() + 10) << "the storage bar moved down";
}

TEST_F(SidebarTests, aShortcutIsHighlightedAtOnceAndTurnsWhileItsFolderLoads) {
    phone.makeFolder(u"DCIM"_s);
    phone.makeFolder(u"Music"_s);
    refresh();
    showSidebar();
    const auto row = [&](const QString &title) {
        return view->findChild<QAbstractButton *>(QString(u"sidebar.shortcut."_s + title));
    };
    const auto turns = [&](const QString &title) { return row(title)->findChild<Spinner *>()->isVisible(); };
    ASSERT_TRUE(row(u"Internal Storage"_s)->isChecked());
    EXPECT_EQ(accessible(row(u"DCIM"_s))->text(QAccessible::Name), u"Browse DCIM"_s);

    phone.set(u"ls.hang"_s, "on");
    click(row(u"DCIM"_s));
    ASSERT_TRUE(waitFor([&] { return turns(u"DCIM"_s); }));
    row(u"DCIM"_s)->setFocus(Qt::TabFocusReason);
    while (!row(u"Music"_s)->hasFocus() && row(u"Music"_s)->focusPolicy() == Qt::NoFocus)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    QTest::keyClick(row(u"Music"_s), Qt::Key_Space);
    ASSERT_TRUE(waitFor([&] { return turns(u"Music"_s); }));
    for (const StorageShortcut &shortcut : state->shortcuts())
        EXPECT_EQ(row(shortcut.title)->isChecked(), shortcut.title == u"Music"_s)
            << shortcut.title.toStdString();
    EXPECT_FALSE(turns(u"DCIM"_s));
    EXPECT_EQ(state->androidCurrentPath(), u"/sdcard/Music"_s);

    phone.reset(u"ls.hang"_s);
    ASSERT_TRUE(waitFor([&] { return !turns(u"Music"_s); }));
    EXPECT_TRUE(row(u"Music"_s)->isChecked());
}

} // namespace
} // namespace vantrel
