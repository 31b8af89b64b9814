// The views of a window together, for those who work with keys or a screen reader.

#include "support/AccessibleTree.h"
#include "support/WindowFixture.h"

#include "Kit/IconButton.h"
#include "MacFiles/ThisComputer.h"
#include "Views/DualBrowserView.h"
#include "Views/FileDrag.h"
#include "Views/FileItemsView.h"
#include "Views/FilePaneView.h"
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
        state->refreshDevice(PhoneWatch::Spinner::hidden);
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

TEST_F(WholeWindowTests, everythingHasARoleANameAStateAndNoMarkup) {
    phone.write(u"<b> & more.txt"_s, "x");
    phone.write(u"no.txt"_s, "x");
    phone.makeFolder(u"bare"_s);
    write(mac.filePath(u"folder/note.txt"_s), "another");
    const auto browse = [this] {
        refresh();
        browsePhone(u"/sdcard"_s);
        browseMac(mac.filePath(u"folder"_s));
        ASSERT_EQ(state->androidItems().size(), 5);
    };
    const auto copyAll = [&] {
        browse();
        phone.deny(u"no.txt"_s);
        select(BrowserSide::android);
        state->transferAndroidToMac();
    };
    using Roles = QSet<QAccessible::Role>;
    struct State {
        const char *what;
        std::function<void()> enter;
        Roles shows = {};
    };
    QList<State> states{{"nobody has looked", [] {}}};
    for (const char *trouble : {"none", "unauthorized", "authorizing", "offline", "no permissions (x)",
                                "recovery", "sideload", "bootloader", "host"})
        states.append({trouble, [this, trouble] { phone.set(u"state"_s, trouble), refresh(); }});
    const Roles entries{QAccessible::List, QAccessible::ListItem};
    const Roles progress{QAccessible::ProgressBar, QAccessible::ListItem};
    states += {
        {"a listing", [&] { phone.plug(), browse(); }, entries},
        {"a selection", [this] { select(BrowserSide::android); }, entries},
        {"a grid", [this] { state->setAndroidViewMode(PaneViewMode::grid); }, entries},
        {"a filter", [this] { state->setAndroidSearchText(u"b"_s); }, entries},
        {"no hit", [this] { state->setAndroidSearchText(u"zzz"_s); }},
        {"hits",
         [this] {
             state->setAndroidSearchScope(AndroidSearchScope::everywhere);
             state->setAndroidSearchText(u"photo"_s);
             ASSERT_TRUE(waitFor([this] { return state->displayedAndroidItems().size() == 1; }));
         },
         entries},
        {"an empty folder",
         [this] {
             state->clearAndroidSearch();
             state->setAndroidSearchScope(AndroidSearchScope::thisFolder);
             state->browseAndroid(u"/sdcard/bare"_s);
         }},
        {"a folder that is gone", [this] { state->browseMac(mac.filePath(u"gone"_s)); }},
        {"something is dragged here",
         [this] {
             state->browseMac(mac.filePath(u"folder"_s));
             auto *pane = at(u"macPane"_s)->findChild<FilePaneView *>();
             const DraggedEntries dragged(BrowserSide::android, state->device().id, state->androidItems());
             QDragEnterEvent enter(pane->rect().center(), Qt::CopyAction, &dragged, Qt::LeftButton, {});
             QCoreApplication::sendEvent(pane, &enter);
         }},
        {"copies run",
         [&] {
             phone.set(u"bandwidth"_s, "0.00001");
             copyAll();
             ASSERT_TRUE(waitFor([this] { return state->isTransferring(); }));
         },
         progress},
        {"copies failed, are done and have their names taken",
         [this] {
             phone.reset(u"bandwidth"_s);
             waitForQueue();
             const TransferQueue &queue = state->transfers().queue();
             EXPECT_TRUE(queue.failedCount() > 0 && queue.nameTakenCount() > 0 && queue.completedCount() > 0);
         },
         progress},
        {"at work",
         [this] {
             phone.set(u"hang"_s, "on");
             state->refreshDevice(PhoneWatch::Spinner::shown);
             state->browseAndroid(u"/sdcard/DCIM"_s);
         },
         progress},
    };
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    for (const State &shown : states) {
        SCOPED_TRACE(shown.what);
        shown.enter();
        const bool isAtWork = &shown == &states.last();
        ASSERT_TRUE(
            waitFor([&] { return isAtWork || (!state->isLoadingAndroid() && !state->isLoadingMac()); }));
        settle();
        EXPECT_TRUE(expectAccessible(view.get()).contains(shown.shows));
    }
    phone.set(u"hang"_s, "off");
}

} // namespace
} // namespace vantrel
