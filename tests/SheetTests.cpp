// What hangs in the window: driven by keys and mouse as the window system would, and seen by assistive
// technology.

#include "support/AccessibleTree.h"
#include "support/ExifPhoto.h"
#include "support/Files.h"
#include "support/MainWindowFixture.h"

#include "App/Sheets/AboutView.h"
#include "App/Sheets/DetailsView.h"
#include "App/Sheets/KeyboardTable.h"
#include "App/Sheets/KeyboardView.h"
#include "App/Sheets/TextPrompt.h"
#include "App/Sheets/UpdateView.h"
#include "App/Sheets/WirelessView.h"
#include "Kit/AppStyle.h"
#include "Kit/ReadOnlyText.h"
#include "Kit/ScrollPane.h"
#include "Kit/TextLabel.h"
#include "support/Processes.h"

#include <QtWidgets>

#include <map>

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class SheetTests : public MainWindowFixture {
protected:
    SheetTests() {
        phone.write(u"a"_s, "x");
        AppStyle::setReducedMotion(true);
        window = showWindow();
        model = &window->state();
        EXPECT_TRUE(waitFor([&] { return model->androidItems().size() == 1; }));
        EXPECT_TRUE(waitFor([&] { return QApplication::activeWindow() == window; }));
        model->selectAllVisible(BrowserSide::android);
    }
    ~SheetTests() override { AppStyle::setReducedMotion(false); }

    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window->windowHandle(), which, modifiers);
    }
    void click(QPoint at) { QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, at); }
    [[nodiscard]] QPoint middleOf(const char *name) const {
        const auto *widget = child<QWidget>(name);
        return widget->mapTo(window, widget->rect().center());
    }
    template <class View>
    [[nodiscard]] View *shown() const {
        auto *found = window->findChild<View *>();
        return found && found->isVisible() ? found : nullptr;
    }
    /// One of each kind, opened.
    void openEach(const std::function<void(Sheet *)> &look) {
        QFuture<std::optional<QString>> answer;
        const std::function<void()> sheets[] = {
            [&] { window->showAbout(); },
            [&] { window->showKeyboard(); },
            [&] { window->showWireless(); },
            [&] { answer = ask(); },
            [&] { (new UpdateView(window, UpdateResult(), AppVersion()))->open(); },
            [&] { model->pane(BrowserSide::android).showDetails(model->androidItems()); },
            [&] {
                phone.set(u"hang"_s, "on");
                model->selectAllVisible(BrowserSide::android);
                model->transferAndroidToMac();
                window->close(); // which asks
            },
        };
        for (const auto &open : sheets) {
            SCOPED_TRACE(&open - sheets);
            open();
            const QPointer<Sheet> sheet = shown<Sheet>();
            ASSERT_NE(sheet, nullptr);
            settle();
            look(sheet);
            sheet->reject();
            ASSERT_TRUE(waitFor([&] { return !shown<Sheet>(); }));
            delete sheet.data();
        }
        phone.set(u"hang"_s, "off");
        model->clearQueue();
    }
    QFuture<std::optional<QString>> ask() {
        return askForText({u"New Folder"_s, u"Name:"_s, u"Create"_s, u"Cancel"_s, u"New"_s}, window);
    }
    /// Types into the sheet and presses Return.
    void connectTo(const QString &address, const QString &port = {}, const QString &code = {}) {
        child<QLineEdit>("wireless.address")->setText(address);
        child<QLineEdit>("wireless.pairingPort")->setText(port);
        child<QLineEdit>("wireless.code")->setText(code);
        key(Qt::Key_Return);
    }
    bool sheetSays(const QString &words) {
        return waitFor([&] { return child<TextLabel>("wireless.message")->text().contains(words); });
    }
    static QWidget *card(const Sheet &sheet) { return sheet.findChild<QWidget *>(u"sheet.card"_s); }

    MainWindow *window = nullptr;
    AppState *model = nullptr;
};

TEST_F(SheetTests, keepsTheKeyboardAndGivesItBack) {
    auto *search = child<QLineEdit>("searchField");
    for (QWidget *before : {static_cast<QWidget *>(nullptr), static_cast<QWidget *>(search)}) {
        if (before)
            before->setFocus();
        click(middleOf("toolbar.about"));
        const auto *about = shown<AboutView>();
        ASSERT_NE(about, nullptr);
        EXPECT_EQ(QApplication::focusWidget(), about) << "no control is preselected";
        QSet<QString> reached;
        for (const auto &[which, modifiers] :
             {std::pair(Qt::Key_Tab, Qt::NoModifier), {Qt::Key_Backtab, Qt::ShiftModifier}}) {
            for (int press = 0; press < 12; ++press) {
                key(which, modifiers);
                ASSERT_TRUE(about->isAncestorOf(QApplication::focusWidget()))
                    << QApplication::focusWidget()->objectName().toStdString();
                reached.insert(QApplication::focusWidget()->objectName());
            }
        }
        EXPECT_EQ(reached, QSet<QString>({u"about.website"_s, u"about.feedback"_s, u"about.close"_s}));

        // Nothing behind it can take the keyboard, and the keys of the panes are not heard.
        QWidget *focused = QApplication::focusWidget();
        search->setFocus();
        EXPECT_EQ(QApplication::focusWidget(), focused);
        focused->clearFocus();
        EXPECT_EQ(QApplication::focusWidget(), focused);
        key(Qt::Key_A, Qt::ControlModifier);
        EXPECT_TRUE(model->macSelectedIDs().isEmpty());
        key(Qt::Key_Escape);
        EXPECT_FALSE(shown<AboutView>());
        EXPECT_EQ(model->androidSelectedIDs().size(), 1) << "it closed the sheet and did nothing else";
        EXPECT_EQ(QApplication::focusWidget(), before);
    }
}

TEST_F(SheetTests, keepsTheMouseFromTheContentAndLeavesTheTitleBarInUse) {
    const auto future = ask();
    const auto *prompt = shown<TextPrompt>();
    ASSERT_NE(prompt, nullptr);
    for (const char *behind : {"searchField", "toolbar.appearance", "transferToMac"}) {
        click(middleOf(behind));
        EXPECT_TRUE(QApplication::focusWidget() == prompt->findChild<QLineEdit *>()) << behind;
    }
    EXPECT_EQ(AppTheme::scheme(), ColorScheme::dark) << "a button of the title bar";
    EXPECT_TRUE(model->queue().isEmpty()) << "the arrow is on, and was not pressed";

    // The window is moved, resized and zoomed, and the sheet stays in its middle.
    const auto isInPlace = [&] {
        const QRect place(card(*prompt)->mapTo(window, QPoint()), card(*prompt)->size());
        const QRect bar(child<QWidget>("titleBar")->mapTo(window, QPoint()),
                        child<QWidget>("titleBar")->size());
        return qAbs(place.center().x() - window->rect().center().x()) <= 1 &&
               place.top() == bar.bottom() + 1 + 24 &&
               prompt->rect().bottom() + prompt->y() == window->contentsRect().bottom();
    };
    EXPECT_TRUE(isInPlace());
    const QPoint before = window->pos();
    QWindow *native = window->windowHandle();
    QTest::mousePress(native, Qt::LeftButton, {}, {400, 20});
    QTest::mouseMove(native, {415, 30});
    QTest::mouseMove(native, {430, 40});
    QTest::mouseRelease(native, Qt::LeftButton, {}, {430, 40});
    EXPECT_NE(window->pos(), before);
    click(middleOf("window.zoom"));
    ASSERT_TRUE(waitFor([&] { return window->isMaximized() && isInPlace(); }));
    click(middleOf("window.zoom"));
    ASSERT_TRUE(waitFor([&] { return !window->isMaximized() && isInPlace(); }));
    EXPECT_FALSE(future.isFinished());
    click(middleOf("window.close"));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(SheetTests, comesOneAtATime) {
    const auto first = ask();
    const auto second = ask();
    window->showAbout();
    window->showAbout();
    ASSERT_EQ(window->findChildren<TextPrompt *>().size(), 2);
    for (const auto &future : {first, second}) {
        qsizetype visible = 0;
        for (const Sheet *sheet : window->findChildren<Sheet *>())
            visible += sheet->isVisible();
        EXPECT_EQ(visible, 1);
        EXPECT_FALSE(shown<AboutView>());
        EXPECT_FALSE(future.isFinished());
        key(Qt::Key_Return);
        EXPECT_TRUE(future.isFinished()) << "the first comes first";
    }
    ASSERT_TRUE(shown<AboutView>());
    key(Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return window->findChildren<Sheet *>().isEmpty(); }))
        << "About was asked for twice and is not opened twice";
}

TEST_F(SheetTests, isADialogToAssistiveTechnology) {
    const auto future = ask();
    auto *prompt = shown<TextPrompt>();
    const QAccessibleInterface *dialog = accessible(prompt);
    EXPECT_EQ(dialog->role(), QAccessible::Dialog);
    EXPECT_EQ(dialog->text(QAccessible::Name), u"New Folder"_s);
    EXPECT_TRUE(dialog->state().modal);
    EXPECT_EQ(dialog->parent()->object(), window);
    QAccessibleInterface *field = accessible(prompt->findChild<QLineEdit *>());
    EXPECT_TRUE(field->state().focused);
    field->editableTextInterface()->replaceText(0, 3, u"Lisbon"_s);
    accessible(prompt->findChild<QWidget *>(u"textPrompt.accept"_s))
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_TRUE(waitFor([&] { return future.isFinished(); }));
    EXPECT_EQ(future.result(), u"Lisbon"_s);
}

TEST_F(SheetTests, slidesFromUnderTheTitleBarUnlessMotionIsReduced) {
    window->showAbout();
    EXPECT_EQ(card(*shown<AboutView>())->y(), 24) << "at once";
    shown<AboutView>()->close();
    AppStyle::setReducedMotion(false);
    const auto future = ask();
    const QWidget *sliding = card(*shown<TextPrompt>());
    EXPECT_LT(sliding->y(), -sliding->height() / 2);
    ASSERT_TRUE(waitFor([&] { return sliding->y() == 24; }));
    window->hide();
    window->show();
    EXPECT_EQ(sliding->y(), 24) << "it was there all the time";
    EXPECT_TRUE(shown<TextPrompt>()->isAncestorOf(window->focusWidget()));
    shown<TextPrompt>()->reject();
    EXPECT_TRUE(future.isFinished());
}

TEST_F(SheetTests, aPhoneOnTheNetworkIsConnectedRememberedAndForgotten) {
    const QString address = u"192.168.1.20:37123"_s;
    phone.set(u"wireless"_s, address);
    window->showWireless();
    auto *sheet = shown<WirelessView>();
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(accessible(child<QLineEdit>("wireless.address"))->text(QAccessible::Name),
              u"Address and port"_s);
    EXPECT_TRUE(child<QLineEdit>("wireless.address")->hasFocus());
    connectTo(u"no address"_s);
    EXPECT_TRUE(sheetSays(u"This is no address."_s));
    connectTo(u"192.168.1.21"_s);
    EXPECT_TRUE(sheetSays(u"failed to connect to '192.168.1.21:5555': Connection refused"_s));
    EXPECT_TRUE(card(*sheet)->rect().contains(child<QWidget>("wireless.connect")->geometry()));
    ASSERT_TRUE(waitFor([&] { return !child<QLineEdit>("wireless.code")->isEnabled(); }))
        << "adb 29 cannot pair";
    connectTo(address, u"41234"_s, u"123456"_s);
    EXPECT_TRUE(sheetSays(u"Pairing needs adb 30 or later; this one is 29."_s));

    connectTo(address);
    ASSERT_TRUE(waitFor([&] { return !shown<WirelessView>(); }));
    ASSERT_TRUE(waitFor([&] { return model->device().id == address && !model->isLoadingAndroid(); }))
        << "shown at once, though another is ready";
    window->close();
    phone.setOther(address, u"none"_s);
    window = showWindow();
    model = &window->state();
    ASSERT_TRUE(waitFor([&] { return model->phones().phones().size() == 2; }))
        << "connected again at the start";

    window->showWireless();
    QTest::mouseClick(child<QAbstractButton>("wireless.forget"), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return model->phones().phones().size() == 1; }));
    EXPECT_EQ(window->findChild<QWidget *>(u"wireless.forget"_s), nullptr);
    EXPECT_TRUE(waitFor([&] { return Settings(settingsPath()).wirelessPhones().isEmpty(); }));
}

TEST_F(SheetTests, aHostThatNeverAnswersIsGivenUp) {
    const auto isAsked = [] {
        const auto children = processes::children();
        return std::any_of(children.begin(), children.end(),
                           [](const auto &child) { return child.commandLine.contains("connect"); });
    };
    phone.set(u"connect.hang"_s, "on");
    ADBClient::setPatience(400ms);
    window->showWireless();
    connectTo(u"10.0.0.1:5555"_s);
    ASSERT_TRUE(waitFor(isAsked));
    EXPECT_TRUE(sheetSays(u"Nothing answers at 10.0.0.1:5555."_s));
    EXPECT_TRUE(waitFor([&] { return !isAsked(); }));
    ADBClient::setPatience(15s);
    connectTo(u"10.0.0.1:5555"_s);
    ASSERT_TRUE(waitFor(isAsked));
    key(Qt::Key_Escape);
    EXPECT_EQ(shown<WirelessView>(), nullptr);
    EXPECT_TRUE(waitFor([&] { return !isAsked(); })) << "its process is left running";
    EXPECT_EQ(Settings(settingsPath()).wirelessPhones(), QStringList());

    // With an adb that can, the two are paired first.
    phone.reset(u"connect.hang"_s);
    phone.set(u"version"_s, "34.0.1");
    window->showWireless();
    ASSERT_TRUE(waitFor([&] { return child<QLineEdit>("wireless.code")->isEnabled(); }));
    phone.set(u"wireless"_s, "10.0.0.2:40001");
    connectTo(u"10.0.0.2:5555"_s, u"40009"_s, u"123456"_s);
    EXPECT_TRUE(sheetSays(u"Failed: Wrong code"_s));
    connectTo(u"10.0.0.2:5555"_s, u"40001"_s, u"12 34"_s);
    EXPECT_TRUE(sheetSays(u"The pairing code is the number"_s));
    phone.set(u"wireless"_s, "10.0.0.2:5555");
    connectTo(u"10.0.0.2:5555"_s, u"40001"_s, u"123456"_s);
    EXPECT_TRUE(waitFor([&] { return model->device().id == u"10.0.0.2:5555"_s; }));
}

/// What the window did for the keys of a command, and what it would not do while a sheet is open.
TEST_F(SheetTests, theKeysOfTheTableAct) {
    phone.write(u"folder/b"_s, "x");
    model->clearSelection(BrowserSide::android);
    model->browseAndroid(u"/sdcard/folder"_s);
    ASSERT_TRUE(waitFor([&] { return !model->isLoadingAndroid() && model->androidItems().size() == 1; }));
    child<QWidget>("androidPane")
        ->findChild<QAbstractItemView *>(u"fileList"_s)
        ->setFocus(Qt::TabFocusReason);
    const auto focusIsIn = [&](const char *pane, const QString &name) {
        const QWidget *focused = QApplication::focusWidget();
        return focused && child<QWidget>(pane)->isAncestorOf(focused) && focused->objectName() == name;
    };
    int listings = 0; // which may end before anybody looks
    const QObject listener;
    QObject::connect(model, &AppState::isLoadingAndroidChanged, &listener,
                     [&] { listings += model->isLoadingAndroid() ? 1 : 0; });
    const std::map<WindowCommand, std::function<bool()>> effects{
        {WindowCommand::refresh, [&] { return listings > 0; }},
        {WindowCommand::goUp, [&] { return model->androidCurrentPath() == u"/sdcard"; }},
        {WindowCommand::editPath, [&] { return focusIsIn("androidPane", u"pathField"_s); }},
        {WindowCommand::search, [&] { return focusIsIn("androidPane", u"searchField"_s); }},
        {WindowCommand::switchPanes, [&] { return focusIsIn("macPane", u"fileList"_s); }},
        {WindowCommand::copyToComputer, [&] { return model->queue().size() == 1; }},
        {WindowCommand::copyToPhone, [&] { return model->queue().size() == 2; }},
        {WindowCommand::enlargeTiles, [&] { return model->tileSize() == 168; }},
        {WindowCommand::shrinkTiles, [&] { return model->tileSize() == 120; }},
        {WindowCommand::resetTiles, [&] { return model->tileSize() == TileSize::standard; }},
        {WindowCommand::openMenu, [] { return QApplication::activePopupWidget() != nullptr; }},
        {WindowCommand::toggleFullScreen, [&] { return window->isFullScreen(); }},
        {WindowCommand::showKeyboard, [&] { return shown<KeyboardView>() != nullptr; }},
        {WindowCommand::showDetails, [&] { return shown<DetailsView>() != nullptr; }},
    };
    write(mac.filePath(u"mine"_s), "x");
    for (const KeyboardEntry &entry : keyboardTable()) {
        for (const QKeySequence &sequence : entry.command ? entry.sequences : QList<QKeySequence>()) {
            SCOPED_TRACE(qPrintable(entry.does + u": "_s + sequence.toString()));
            window->setFocus(); // no field has the keyboard
            model->browseAndroid(u"/sdcard/folder"_s);
            model->browseMac(mac.path());
            ASSERT_TRUE(waitFor([&] { return !model->isLoadingAndroid() && !model->isLoadingMac(); }));
            model->setTileSize(144);
            model->setFocusedBrowserSide(BrowserSide::android);
            model->selectAllVisible(BrowserSide::android);
            model->selectItem(model->macItems().last(), BrowserSide::mac);
            listings = 0;
            const auto &acted = effects.at(*entry.command);
            EXPECT_FALSE(acted());
            const QKeyCombination keys = sequence[0];
            const auto press = [&] { key(keys.key(), keys.keyboardModifiers()); };
            window->showAbout();
            press();
            EXPECT_FALSE(acted()) << "behind a sheet";
            shown<AboutView>()->close();
            ASSERT_TRUE(waitFor([&] { return !window->findChild<AboutView *>(); }));
            press();
            EXPECT_TRUE(waitFor(acted));
            if (QWidget *popup = QApplication::activePopupWidget())
                popup->close();
            if (auto *sheet = shown<Sheet>())
                sheet->close();
            window->setWindowState(Qt::WindowNoState);
        }
    }
}

TEST_F(SheetTests, everySheetAndMenuHasARoleANameAStateAndNoMarkup) {
    openEach([&](Sheet *) { EXPECT_TRUE(expectAccessible(window).contains(QAccessible::Dialog)); });
    for (const auto &open : {std::function<void()>([&] { key(Qt::Key_F10); }), std::function<void()>([&] {
                                 child<QWidget>("fileList")->setFocus(Qt::TabFocusReason);
                                 key(Qt::Key_F10, Qt::ShiftModifier);
                             })}) {
        open();
        QWidget *menu = QApplication::activePopupWidget();
        ASSERT_NE(menu, nullptr);
        EXPECT_TRUE(expectAccessible(menu).contains(QAccessible::MenuItem));
        menu->close();
    }
}

TEST_F(SheetTests, fitsALowWindowAndLargeTexts) {
    const auto make = [&](double scale, QSize size) {
        AppStyle::setTextScale(scale);
        settle(); // which gives it its own minimum
        window->setMinimumSize(1, 1);
        window->resize(size);
        settle();
        ASSERT_EQ(window->size(), size);
    };
    for (const auto &[scale, size] :
         {std::pair(1.0, QSize(1024, 600)), {2.0, QSize(1024, 600)}, {2.0, QSize(1024, 400)}}) {
        make(scale, size);
        int scrolling = 0;
        openEach([&](Sheet *sheet) {
            EXPECT_TRUE(sheet->rect().contains(card(*sheet)->geometry()));
            const auto *pane = sheet->findChild<ScrollPane *>();
            scrolling += pane->scrolls();
            EXPECT_EQ(QApplication::focusWidget() == pane,
                      pane->scrolls() && !sheet->findChild<QLineEdit *>())
                << "the keys scroll it at once";
            for (const QWidget *part : card(*sheet)->findChildren<QWidget *>()) {
                const auto *label = qobject_cast<const TextLabel *>(part);
                const bool isButton = qobject_cast<const QAbstractButton *>(part);
                const QRect room(QPoint(), card(*sheet)->size());
                if (!part->isVisible() || (!label && !isButton))
                    continue;
                const QRect place(part->mapTo(card(*sheet), QPoint()), part->size());
                const std::string what = part->accessibleName().toStdString();
                EXPECT_TRUE(place.left() >= 0 && place.right() < room.right()) << what;
                EXPECT_TRUE(pane->isAncestorOf(part) || room.contains(place)) << what;
                EXPECT_FALSE(label && label->isElided()) << what;
                EXPECT_GE(part->height(),
                          label ? label->heightForWidth(part->width()) : part->sizeHint().height())
                    << what;
            }
        });
        EXPECT_GE(scrolling, scale == 1 ? 1 : 2);
    }
    make(1, {1024, 600});
    window->showKeyboard();
    const int low = card(*shown<Sheet>())->height();
    window->resize(1024, 900);
    settle();
    EXPECT_GT(card(*shown<Sheet>())->height(), low) << "it takes the room that there is";
}

TEST_F(SheetTests, detailsTellAllThatIsKnown) {
    const QString folder = mac.filePath(u"here"_s);
    const QString longName = QString(200, u'n') + u"\u202E<b>.jpg"_s;
    write(folder + u"/sub/a/one.bin"_s, QByteArray(1'234'567, 'x'));
    write(folder + u"/sub/.hidden"_s, "12345");
    write(folder + u'/' + longName, QByteArray(999, 'x'));
    QFile::link(u"/nowhere"_s, folder + u"/link"_s);
    const QDateTime date(QDate(2024, 5, 1), QTime(13, 2, 3));
    for (const QString &path : {u"album/x.jpg"_s, u"album/deep/y.jpg"_s, u"z.txt"_s})
        phone.write(path, QByteArray(1'000'000, 'x'), date);
    const QByteArray photo = exifPhoto(jpegOf(QImage(40, 30, QImage::Format_RGB32)), {320, 240}, {}, 6);
    phone.write(u"photo.jpg"_s, photo);
    write(folder + u"/photo.jpg"_s, photo);
    model->browseMac(folder);
    model->browseAndroid(u"/sdcard"_s);
    ASSERT_TRUE(waitFor([&] { return model->macItems().size() == 4 && model->androidItems().size() == 4; }));

    const auto value = [&](const QString &label) {
        const auto *text = window->findChild<ReadOnlyText *>(u"details."_s + label);
        return text && text->isVisible() ? text->toPlainText() : u"(hidden)"_s;
    };
    const auto shows = [&](const QString &label, const QString &text) {
        const bool isShown = waitFor([&] { return value(label) == text; });
        EXPECT_TRUE(isShown) << qPrintable(label) << ": " << qPrintable(value(label));
    };
    const auto open = [&](BrowserSide side, const QStringList &names) {
        QList<FileItem> items;
        for (const FileItem &item : model->pane(side).visibleItems()) {
            if (names.contains(item.name))
                items.append(item);
        }
        ASSERT_EQ(items.size(), names.size());
        model->pane(side).showDetails(items);
        ASSERT_NE(shown<DetailsView>(), nullptr);
    };
    const auto close = [&] {
        key(Qt::Key_Return);
        ASSERT_TRUE(waitFor([&] { return !window->findChild<DetailsView *>(); }));
    };

    open(BrowserSide::mac, {longName});
    shows(u"title"_s, displayText(longName));
    shows(u"Where"_s, folder);
    shows(u"Size"_s, u"999 bytes"_s);
    EXPECT_EQ(value(u"Contents"_s), u"(hidden)");
    ASSERT_TRUE(waitFor([&] { return value(u"Kind"_s) != u"(hidden)"; }));
    const auto *title = child<ReadOnlyText>("details.title");
    EXPECT_GT(title->height(), 2 * QFontMetrics(title->font()).height()) << "it is not shown in full";
    for (int i = 0; i < 3; ++i) { // Tab reaches the texts, and copies what is selected there
        key(Qt::Key_Tab);
        key(Qt::Key_A, Qt::ControlModifier);
        key(Qt::Key_C, Qt::ControlModifier);
        const auto *text = qobject_cast<ReadOnlyText *>(QApplication::focusWidget());
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(QApplication::clipboard()->text(), text->toPlainText());
    }
    QTest::mouseClick(child<QPushButton>("details.copy"), Qt::LeftButton);
    EXPECT_TRUE(desktop.copied.last().contains(u"\nSize: 999 bytes\nModified: "_s))
        << desktop.copied.last().toStdString();
    close();

    open(BrowserSide::mac, {u"sub"_s});
    shows(u"Contents"_s, u"2 files, 1 folder"_s);
    shows(u"Size"_s, u"1.2 MB (1,234,572 bytes)"_s);
    close();
    open(BrowserSide::mac, {u"link"_s});
    shows(u"Leads to"_s, u"/nowhere"_s);
    close();
    open(BrowserSide::mac, {u"sub"_s, longName, u"link"_s});
    shows(u"title"_s, u"3 items"_s);
    shows(u"Selected"_s, u"1 folder, 2 files"_s);
    shows(u"Contents"_s, u"2 files, 1 folder"_s);
    close();
    QFile::remove(folder + u'/' + longName);
    open(BrowserSide::mac, {longName});
    EXPECT_TRUE(
        waitFor([&] { return child<TextLabel>("details.problem")->text() == u"It is no longer there."; }));
    close();

    open(BrowserSide::android, {u"album"_s, u"z.txt"_s});
    shows(u"Contents"_s, u"2 files, 1 folder"_s);
    shows(u"Size"_s, u"3 MB (3,000,000 bytes)"_s);
    shows(u"Where"_s, u"/sdcard"_s);
    close();
    open(BrowserSide::android, {u"z.txt"_s});
    shows(u"Modified"_s, u"May 1, 2024, 13:02:03"_s);
    close();
    for (const BrowserSide side : {BrowserSide::mac, BrowserSide::android}) {
        open(side, {u"photo.jpg"_s});
        shows(u"Dimensions"_s, u"30 × 40"_s); // it lies on its side
        shows(u"Camera"_s, u"Cam"_s);
        close();
    }
    // What takes long is given up with the sheet, and what fails is said.
    phone.set(u"tree.hang"_s, "on");
    open(BrowserSide::android, {u"album"_s});
    ASSERT_TRUE(waitFor([&] { return processes::childrenCalled("%P") == 1; })); // the tree's format
    close();
    EXPECT_TRUE(waitFor([&] { return processes::childrenCalled("%P") == 0; }));
    phone.reset(u"tree.hang"_s);
    const QList<FileItem> gone = model->androidItems();
    phone.unplug();
    model->pane(BrowserSide::android).showDetails(gone.first(1));
    EXPECT_TRUE(waitFor([&] { return !child<TextLabel>("details.problem")->text().isEmpty(); }));
    EXPECT_EQ(value(u"Contents"_s), u"(hidden)");
}

/// docs/keyboard.md says the same.
TEST(KeyboardTableTests, isWhatTheDocumentSays) {
    QString table;
    QString group;
    for (const KeyboardEntry &entry : keyboardTable()) {
        if (std::exchange(group, entry.group) != entry.group)
            table += u"\n## "_s + group + u"\n\n| keys | what they do |\n| --- | --- |\n"_s;
        table += u"| "_s + entry.title() + u" | "_s + entry.does + u" |\n"_s;
    }
    QFile document(QStringLiteral(VANTREL_TEST_DATA "/../../docs/keyboard.md"));
    ASSERT_TRUE(document.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(document.readAll());
    EXPECT_TRUE(text.endsWith(table)) << "it is to end with:\n" << qPrintable(table);
}

} // namespace
} // namespace vantrel
