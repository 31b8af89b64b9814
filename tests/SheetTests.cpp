// What hangs in the window: driven by keys and mouse as the window system would, and seen by assistive
// technology.

#include "support/MainWindowFixture.h"

#include "App/Sheets/AboutView.h"
#include "App/Sheets/TextPrompt.h"
#include "App/Sheets/UpdateView.h"
#include "Kit/AppStyle.h"

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

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
    QFuture<std::optional<QString>> ask() {
        return askForText({u"New Folder"_s, u"Name:"_s, u"Create"_s, u"Cancel"_s, u"New"_s}, window);
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

} // namespace
} // namespace vantrel
