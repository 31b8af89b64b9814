// The views of a window together, for those who work with keys or a screen reader.

#include "support/WindowFixture.h"

#include "Kit/IconButton.h"
#include "MacFiles/ThisComputer.h"
#include "Views/DualBrowserView.h"
#include "Views/FileItemsView.h"
#include "Views/SelectAllBox.h"
#include "Views/SidebarView.h"
#include "Views/StatusBarView.h"
#include "Views/TransferQueueView.h"

#ifdef VANTREL_HAS_QPA
#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>
#endif

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

class WholeWindowTests : public WindowFixture {
protected:
    WholeWindowTests() {
        phone.write(u"DCIM/photo.jpg"_s, "x");
        phone.write(u"note.txt"_s, "hello");
        QDir(mac.path()).mkpath(u"folder/sub"_s);
        auto *window = new QWidget;
        auto *middle = new QVBoxLayout;
        middle->addWidget(new DualBrowserView(state.get()), 1);
        middle->addWidget(new TransferQueueView(state.get()));
        middle->addWidget(new StatusBarView(state.get()));
        auto *row = new QHBoxLayout(window);
        row->addWidget(new SidebarView(state.get()));
        row->addLayout(middle, 1);
        show(window, {1280, 800});
    }

    /// Shows "DCIM" and "note.txt" of the phone, "sub" of the computer, in the window that is in front.
    void connectPhone() {
        ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
        refresh();
        browsePhone(u"/sdcard"_s);
        browseMac(mac.filePath(u"folder"_s));
        ASSERT_TRUE(
            waitFor([this] { return state->androidItems().size() == 2 && state->macItems().size() == 1; }));
        settle();
    }

    /// A control by its path: "macPane/fileList".
    [[nodiscard]] QWidget *at(const QString &path) const {
        QWidget *found = view.get();
        for (const QString &name : path.split(u'/'))
            found = found ? found->findChild<QWidget *>(name) : nullptr;
        EXPECT_NE(found, nullptr) << qPrintable(path);
        return found;
    }
    /// Where the keyboard is, as such a path.
    [[nodiscard]] static QString focus() {
        const QWidget *widget = QApplication::focusWidget();
        QString path = widget ? widget->objectName() : u"nowhere"_s;
        for (; widget; widget = widget->parentWidget()) {
            if (widget->objectName().endsWith(u"Pane"))
                path.prepend(widget->objectName() + u'/');
        }
        return path;
    }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    void select(BrowserSide side) { state->selectAllVisible(side); }
};

TEST_F(WholeWindowTests, theKeyboardNeverJumpsToAnotherControlByItself) {
    using Act = std::function<void()>;
    struct Case {
        QString control, heir;
        Act act = {};    ///< takes it away; nothing: a press of it does
        Act before = {}; ///< makes the control usable
    };
    const auto copyToMac = [this] {
        select(BrowserSide::android);
        state->transferAndroidToMac();
        waitForQueue();
    };
    // Again, if the folder was listed anew meanwhile because something was copied into it.
    const auto selected = [this](BrowserSide side) {
        return [this, side] {
            const QWidget *arrow =
                at(side == BrowserSide::android ? u"transferToMac"_s : u"transferToAndroid"_s);
            ASSERT_TRUE(waitFor([&] {
                select(side);
                settle();
                return arrow->isEnabled();
            }));
        };
    };
    const Act grid = [&] { state->setMacViewMode(PaneViewMode::grid); };
    const Act list = [&] { state->setMacViewMode(PaneViewMode::list); };
    const Act emptyFolder = [&] { state->browseMac(mac.filePath(u"folder/sub"_s)); };
    const Act unplug = [&] {
        phone.unplug();
        state->refreshDevice(AppState::Spinner::hidden);
    };
    const Act search = [&] { state->setAndroidSearchText(u"note"_s); };
    const Act oneRow = [&] {
        copyToMac();
        while (state->queue().size() > 1)
            state->removeQueueItem(state->queue().first().id);
    };
    const Case cases[] = {{u"sidebar.refresh"_s, u"androidPane/fileList"_s},
                          {u"transferToMac"_s, u"androidPane/fileList"_s, {}, selected(BrowserSide::android)},
                          {u"transferToAndroid"_s, u"macPane/fileList"_s, {}, selected(BrowserSide::mac)},
                          {u"transferToAndroid"_s, u"macPane/fileList"_s, unplug, selected(BrowserSide::mac)},
                          {u"macPane/columnSelectAll"_s, u"macPane/fileGrid"_s, grid},
                          {u"macPane/gridSelectAll"_s, u"macPane/fileList"_s, list, grid},
                          {u"macPane/fileList"_s, u"macPane/fileGrid"_s, grid},
                          {u"macPane/columnSelectAll"_s, u"macPane/fileList"_s, emptyFolder},
                          {u"clearSearch"_s, u"androidPane/searchField"_s, {}, search},
                          {u"queue.clear"_s, u"androidPane/fileList"_s, {}, copyToMac},
                          {u"queue.list"_s, u"androidPane/fileList"_s, {}, oneRow}};
    for (const Case &c : cases) {
        SCOPED_TRACE(qPrintable(c.control));
        phone.plug();
        state->clearQueue();
        state->clearAndroidSearch();
        state->clearSelection(BrowserSide::android);
        state->clearSelection(BrowserSide::mac);
        state->setMacViewMode(PaneViewMode::list);
        QDir(mac.filePath(u"folder"_s)).removeRecursively();
        QDir(mac.path()).mkpath(u"folder/sub"_s);
        QDir(phone.root() + u"/sub"_s).removeRecursively();
        ASSERT_NO_FATAL_FAILURE(connectPhone());
        if (c.before)
            c.before();
        settle();
        QWidget *control = at(c.control);
        control->setFocus(Qt::TabFocusReason);
        ASSERT_TRUE(control->hasFocus());
        c.act ? c.act() : press(Qt::Key_Space);
        ASSERT_TRUE(waitFor([&] { return !control->isEnabled() || !control->isVisible(); }));
        settle();
        EXPECT_EQ(focus(), c.heir);
        if (const auto *entries = qobject_cast<FileItemsView *>(QApplication::focusWidget())) {
            EXPECT_EQ(entries->focusedIndex().isValid(), entries->model()->rowCount() > 0) << "no ring";
        }

        ASSERT_TRUE(waitFor([this] {
            return !state->isRefreshingDevice() && !state->isTransferring() && !state->isLoadingMac() &&
                   !state->isLoadingAndroid();
        }));
        const auto done = [this] {
            return std::tuple(state->androidCurrentPath(), state->macPath(), state->queue().size(),
                              state->isRefreshingDevice());
        };
        const auto before = done();
        if (QApplication::focusWidget())
            press(Qt::Key_Space);
        settle();
        EXPECT_EQ(done(), before) << "the second stroke did something else";
    }
}

// -- Screen readers

#ifdef VANTREL_HAS_QPA

/// What a screen reader is told while one of these lives.
class Told {
public:
    Told() {
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(true);
        told = this;
        QAccessible::installUpdateHandler([](QAccessibleEvent *event) { told->take(event); });
    }
    ~Told() {
        QAccessible::installUpdateHandler(nullptr);
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(false);
    }
    Q_DISABLE_COPY_MOVE(Told)

    /// "what kind: name and description", in order, since the last look.
    QStringList taken() { return std::exchange(m_events, {}); }

private:
    void take(QAccessibleEvent *event) {
        QAccessibleInterface *about = event->accessibleInterface();
        if (!about)
            return;
        const QString name = about->text(QAccessible::Name);
        if (event->type() == QAccessible::StateChanged) {
            const QAccessible::State changed =
                static_cast<QAccessibleStateChangeEvent *>(event)->changedStates();
            if (changed.checked || changed.checkStateMixed)
                m_events.append(name + (about->state().checkStateMixed ? u": partly"_s
                                        : about->state().checked       ? u": on"_s
                                                                       : u": off"_s));
        } else if (event->type() == QAccessible::SelectionAdd ||
                   event->type() == QAccessible::SelectionRemove) {
            m_events.append(name + (about->state().selected ? u": selected"_s : u": not selected"_s));
        } else if (event->type() == QAccessible::DescriptionChanged && about->role() == QAccessible::List) {
            m_events.append(name + u": "_s + about->text(QAccessible::Description));
        } else if (event->type() == QAccessible::Focus && about->role() == QAccessible::ListItem) {
            m_events.append(u"at "_s + name);
        }
    }

    static inline Told *told = nullptr;
    QStringList m_events;
};

TEST_F(WholeWindowTests, everyChangeIsToldOnce) {
    connectPhone();
    at(u"macPane/fileList"_s)->setFocus(Qt::TabFocusReason);
    Told told;
    const auto toldOf = [&](const std::function<void()> &act) {
        told.taken();
        act();
        EXPECT_TRUE(waitFor([this] { return !state->isLoadingAndroid() && !state->isLoadingMac(); }));
        settle();
        return told.taken();
    };
    EXPECT_THAT(toldOf([&] { state->setMacViewMode(PaneViewMode::grid); }),
                testing::IsSupersetOf({u"List view: off"_s, u"Grid view: on"_s}));
    state->setMacViewMode(PaneViewMode::list);
    settle();
    EXPECT_THAT(
        toldOf([&] { state->toggleSelection(state->androidItems().at(1), BrowserSide::android); }),
        UnorderedElementsAre(u"note.txt: selected"_s, u"Select all: partly"_s, u"Select all: partly"_s))
        << "of the list's box and the grid's";
    EXPECT_THAT(toldOf([&] { select(BrowserSide::android); }),
                UnorderedElementsAre(u"DCIM: selected"_s, u"Deselect all: on"_s, u"Deselect all: on"_s));
    EXPECT_THAT(toldOf([&] { state->browseMac(mac.filePath(u"folder"_s)); }), ElementsAre())
        << "nothing is new";
    phone.write(u"DCIM/another.jpg"_s, "x");
    QDir(mac.filePath(u"folder"_s)).mkpath(u"sub/deeper"_s);
    EXPECT_THAT(toldOf([&] { state->browseMac(mac.filePath(u"folder/sub"_s)); }),
                ElementsAre(thisComputer() + u": "_s + mac.filePath(u"folder/sub"_s) + u", 1 item"_s,
                            u"at deeper"_s));
    EXPECT_THAT(
        toldOf([&] { state->browseAndroid(u"/sdcard/DCIM"_s); }),
        testing::IsSupersetOf({u"Browse DCIM: on"_s, u"Android Device: Internal Storage › DCIM, 2 items"_s}));
}

#endif

/// Everything that a screen reader finds below `top` and that is on the screen.
QList<QAccessibleInterface *> treeOf(QAccessibleInterface *top) {
    QList<QAccessibleInterface *> all{top};
    for (int i = 0; i < top->childCount(); ++i) {
        QAccessibleInterface *child = top->child(i);
        if (child && !child->state().invisible)
            all += treeOf(child);
    }
    return all;
}

TEST_F(WholeWindowTests, everythingHasARoleANameAndNoMarkup) {
    phone.write(u"<b> & more.txt"_s, "x");
    const std::function<void()> changes[] = {
        [this] { phone.unplug(), refresh(); },
        [this] { phone.plug(), refresh(); },
        [this] { select(BrowserSide::android); },
        [this] { state->setAndroidViewMode(PaneViewMode::grid); },
        [this] { state->setAndroidSearchText(u"b"_s); },
        [this] {
            state->clearAndroidSearch();
            state->selectAllVisible(BrowserSide::android);
            state->browseMac(mac.path());
            state->transferAndroidToMac();
            waitForQueue();
            // A folder that something was copied into may be listed anew at any time: not again.
            ASSERT_TRUE(waitFor([&] { return !state->isLoadingMac(); }));
            state->browseMac(mac.filePath(u"folder"_s));
        },
        [this] { // at work
            phone.set(u"hang"_s, "on");
            state->refreshDevice(AppState::Spinner::shown);
            state->browseAndroid(u"/sdcard/DCIM"_s);
        },
    };
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    static const QRegularExpression markup(u"</?span|&(amp|lt|gt|quot);"_s);
    for (const auto &change : changes) {
        const bool isLast = &change == std::end(changes) - 1;
        SCOPED_TRACE(&change - changes);
        change();
        ASSERT_TRUE(
            waitFor([&] { return isLast || (!state->isLoadingAndroid() && !state->isLoadingMac()); }));
        settle();
        int spinners = 0;
        for (QAccessibleInterface *node : treeOf(accessible(view.get()))) {
            const QString name = node->text(QAccessible::Name);
            const QAccessible::Role role = node->role();
            const std::string which = name.toStdString() + " of role " + std::to_string(role);
            for (const auto kind :
                 {QAccessible::Name, QAccessible::Description, QAccessible::Help, QAccessible::Value})
                EXPECT_FALSE(node->text(kind).contains(markup)) << which;
            EXPECT_NE(role, QAccessible::NoRole) << which;
            const bool isLeaf = node->childCount() == 0;
            const bool isPicture = role == QAccessible::Graphic || role == QAccessible::Separator;
            EXPECT_FALSE(isLeaf && role == QAccessible::Client) << which;
            if ((isLeaf && !isPicture && role != QAccessible::StaticText) || node->state().focusable) {
                EXPECT_FALSE(name.isEmpty()) << which;
            }
            if (role == QAccessible::Button || role == QAccessible::RadioButton ||
                role == QAccessible::CheckBox) {
                EXPECT_EQ(node->state().checkable, role != QAccessible::Button) << which;
                EXPECT_TRUE(node->actionInterface()) << which;
            }
            for (int i = 0; role == QAccessible::List && i < node->childCount(); ++i)
                EXPECT_EQ(node->child(i)->role(), QAccessible::ListItem) << which;
            spinners += role == QAccessible::ProgressBar && node->state().busy;
        }
        EXPECT_EQ(spinners > 0, isLast);
        const QWidget *focused = QApplication::focusWidget();
        EXPECT_TRUE(!focused || (focused->isVisible() && focused->isEnabled()));
    }
    phone.set(u"hang"_s, "off");
}

} // namespace
} // namespace vantrel
