#include "support/WindowFixture.h"

#include "Kit/IconButton.h"
#include "Kit/Spinner.h"
#include "Kit/TextLabel.h"
#include "MacFiles/ThisComputer.h"
#include "Records/Identity.h"
#include "Views/AndroidBrowserPane.h"
#include "Views/ColumnButton.h"
#include "Views/DualBrowserView.h"
#include "Views/EmptinessView.h"
#include "Views/FileDrag.h"
#include "Views/FileGridCell.h"
#include "Views/FileGridView.h"
#include "Views/FileItemsModel.h"
#include "Views/FilePaneView.h"
#include "Views/FileRow.h"
#include "Views/ScopePicker.h"
#include "Views/SelectAllBox.h"

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using ::testing::ElementsAre;

FileItem fileNamed(const QString &name, bool isDirectory = false) {
    FileItem item;
    item.id = newIdentity();
    item.name = name;
    item.path = u"/home/me/"_s + name;
    item.isDirectory = isDirectory;
    item.sizeBytes = 1000;
    return item;
}

QList<FileItem> someFiles(int count) {
    QList<FileItem> items;
    items.reserve(count);
    for (int i = 0; i < count; ++i)
        items.append(fileNamed(u"file %1.txt"_s.arg(i)));
    return items;
}

template <typename Control>
Control *control(QWidget &view, const QString &name) {
    auto *found = view.findChild<Control *>(name);
    EXPECT_NE(found, nullptr) << qPrintable(name);
    return found;
}

QString text(QWidget &view, const QString &label) {
    return control<TextLabel>(view, label)->text();
}

FileItemsView *entriesOf(QWidget &view) {
    auto *list = view.findChild<FileItemsView *>(u"fileList"_s);
    return list->isVisibleTo(&view) ? list : view.findChild<FileItemsView *>(u"fileGrid"_s);
}

QRect rectOf(const FileItemsView *entries, int row) {
    return entries->visualRect(entries->model()->index(row, 0));
}

/// The middle of an entry's mark, and a point of its body.
QPoint markOf(const FileItemsView *entries, int row) {
    const QRect rect = rectOf(entries, row);
    return entries->objectName() == u"fileList" ? rect.topLeft() + QPoint(20, 15)
                                                : rect.topRight() + QPoint(-15, 15);
}
QPoint bodyOf(const FileItemsView *entries, int row) {
    return rectOf(entries, row).topLeft() + QPoint(50, 20);
}

/// What the toolkit sends for a quick second click at the same place.
void doubleClick(QWidget *viewport, const QPoint &point) {
    click(viewport, point);
    const QPointF global = viewport->mapToGlobal(point);
    for (const auto &[type, buttons] : {std::pair(QEvent::MouseButtonDblClick, Qt::LeftButton),
                                        std::pair(QEvent::MouseButtonRelease, Qt::NoButton)}) {
        QMouseEvent event(type, point, global, Qt::LeftButton, buttons, {});
        QCoreApplication::sendEvent(viewport, &event);
    }
}

/// Opens an entry's context menu, if it has one.
QMenu *menuAt(FileItemsView *entries, const QPoint &point) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, entries->viewport()->mapToGlobal(point));
    QCoreApplication::sendEvent(entries->viewport(), &event);
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

void choose(QMenu *menu, const QString &title) {
    const QPointer<QMenu> watched(menu);
    for (QAction *action : menu->actions()) {
        if (action->text() == title)
            action->trigger();
    }
    menu->close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return watched.isNull(); })) << "the menu stays behind";
}

/// What the menu at an entry offers; nothing where there is none.
QStringList menuTitles(FileItemsView *entries, const QPoint &point) {
    QMenu *menu = menuAt(entries, point);
    if (!menu)
        return {};
    QStringList titles;
    for (const QAction *action : menu->actions())
        titles += action->isSeparator() ? u"-"_s : action->text();
    choose(menu, {});
    return titles;
}

// -- The file pane alone

/// A file pane on values, whose callbacks write down that they were called.
class FilePaneTests : public ::testing::Test {
protected:
    FilePaneTests() {
        pane.title = u"Title"_s;
        pane.pathLabel = u"Path"_s;
        state.setItems(someFiles(6));
        const auto note = [this](const QString &what) { return [this, what] { calls.append(what); }; };
        const auto noteItem = [this](const QString &what) {
            return [this, what](const FileItem &item) { calls.append(what + u' ' + item.name); };
        };
        pane.onToggle = noteItem(u"toggle"_s);
        pane.onSelect = noteItem(u"select"_s);
        pane.onOpen = noteItem(u"open"_s);
        pane.onToggleSelectAll = note(u"toggleSelectAll"_s);
        pane.onFocus = note(u"focus"_s);
        pane.onBack = note(u"back"_s);
        pane.onRefresh = note(u"refresh"_s);
        pane.onChooseFolder = note(u"chooseFolder"_s);
        pane.onNewFolder = note(u"newFolder"_s);
        pane.onHome = note(u"home"_s);
        pane.onClearSearch = note(u"clearSearch"_s);
        pane.searchText = {{}, [this](const QString &value) {
                               calls.append(u"search "_s + value);
                               pane.searchText->value = value;
                               show();
                           }};
        pane.searchScope = {{}, [this](AndroidSearchScope scope) {
                                pane.searchScope->value = scope;
                                show();
                            }};
        pane.viewMode = {PaneViewMode::list, [this](PaneViewMode mode) { showAs(mode); }};
        pane.desktop = &desktop;
        view.resize(480, 480);
        show();
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    }

    void show() { view.setPane(pane); }
    void show(const QList<FileItem> &items) {
        state.setItems(items);
        show();
    }
    void select(const QList<FileItem> &items) {
        state.clearSelection();
        for (const FileItem &item : items)
            state.selectItem(item);
        show();
    }
    [[nodiscard]] const FileItem &item(qsizetype row) const { return state.items().at(row); }
    void showAs(PaneViewMode mode) {
        pane.viewMode->value = mode;
        show();
    }
    FileItemsView *entries() { return entriesOf(view); }
    QMenu *menu(int row) { return menuAt(entries(), bodyOf(entries(), row)); }
    /// The calls since the last look.
    QStringList taken() { return std::exchange(calls, {}); }

    FakeDesktop desktop;
    PaneState state{BrowserSide::mac, u"/home/me"_s};
    FilePane pane;
    QStringList calls;
    FilePaneView view{state};
};

/// The same once as a list and once as a grid.
class PaneLayoutTests : public FilePaneTests, public ::testing::WithParamInterface<PaneViewMode> {
protected:
    PaneLayoutTests() { showAs(GetParam()); }
    const bool isList = GetParam() == PaneViewMode::list;
};
INSTANTIATE_TEST_SUITE_P(AsListAndGrid, PaneLayoutTests, ::testing::ValuesIn(allPaneViewModes));

TEST_P(PaneLayoutTests, clicksBecomeCallbacks) {
    QWidget *viewport = entries()->viewport();
    click(viewport, bodyOf(entries(), 1));
    EXPECT_THAT(taken(), ElementsAre(u"select file 1.txt"_s));
    click(viewport, markOf(entries(), 2));
    EXPECT_THAT(taken(), ElementsAre(u"toggle file 2.txt"_s));
    doubleClick(viewport, bodyOf(entries(), 3));
    EXPECT_THAT(taken(), ElementsAre(u"select file 3.txt"_s, u"open file 3.txt"_s));
    // Every click on a mark counts, and two quick ones open wherever they are.
    doubleClick(viewport, markOf(entries(), 4));
    EXPECT_THAT(taken(), ElementsAre(u"toggle file 4.txt"_s, u"toggle file 4.txt"_s, u"open file 4.txt"_s));
    // Pressed on one entry and released on another: nothing was clicked.
    QTest::mousePress(viewport, Qt::LeftButton, {}, bodyOf(entries(), 0));
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, bodyOf(entries(), 1));
    QTest::mouseClick(viewport, Qt::RightButton, {}, bodyOf(entries(), 1));
    EXPECT_THAT(taken(), ElementsAre());
    click(viewport, QPoint(300, viewport->height() - 5));
    EXPECT_THAT(taken(), ElementsAre(u"focus"_s)) << "below the last entry";

    pane.onSelect = [this](const FileItem &) { show(someFiles(6)); };
    show();
    doubleClick(entries()->viewport(), bodyOf(entries(), 0));
    EXPECT_THAT(taken(), ElementsAre()) << "opened an entry that was not there at the first click";
}

TEST_F(FilePaneTests, aClickBesideTheControlsFocusesThePane) {
    auto *field = control<QLineEdit>(view, u"searchField"_s);
    for (const QString &name : {u""_s, u"title"_s, u"path"_s, u"footerLeading"_s}) {
        QWidget *place = name.isEmpty() ? &view : control<QWidget>(view, name);
        field->setFocus();
        ASSERT_TRUE(field->hasFocus());
        click(place, place == &view ? QPoint(3, 200) : place->rect().center());
        EXPECT_THAT(taken(), ElementsAre(u"focus"_s)) << qPrintable(name);
        EXPECT_FALSE(field->hasFocus()) << "the selection's keys would still go to the field";
    }
}

TEST_F(FilePaneTests, aBandSelectsWhatItCoversAndGivesItBack) {
    showAs(PaneViewMode::grid);
    show(someFiles(8));
    const QList<FileItem> all = state.items();
    select({all.at(1)});
    pane.onSelectRange = [this](const QList<FileItem> &items, bool isSelected) {
        state.setSelected(items, isSelected);
        show();
    };
    show();
    const auto selected = [this] { return namesOf(state.selectedItems()).join(u' '); };
    QWidget *viewport = entries()->viewport();
    const auto move = [&](const QPoint &to) { // in the way of a window system: with the button down
        QMouseEvent event(QEvent::MouseMove, to, viewport->mapToGlobal(QPointF(to)), Qt::NoButton,
                          Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport, &event);
    };
    QTest::mousePress(viewport, Qt::LeftButton, {}, QPoint(3, 3));
    move(rectOf(entries(), 5).center());
    EXPECT_EQ(selected(), u"file 0.txt file 1.txt file 4.txt file 5.txt");
    move(rectOf(entries(), 0).center());
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, rectOf(entries(), 0).center());
    EXPECT_EQ(selected(), u"file 0.txt file 1.txt") << "what was selected before stays";
    move(rectOf(entries(), 5).center());
    EXPECT_EQ(selected(), u"file 0.txt file 1.txt") << "the button is up";
}

TEST_P(PaneLayoutTests, entriesAreDraggedAndDroppedOnAFolderOrThePane) {
    FileItem folder = fileNamed(u"sub"_s);
    folder.isDirectory = true;
    folder.path = u"/home/me/sub"_s;
    show({folder, fileNamed(u"file"_s)});
    pane.path.folder = u"/home/me"_s;
    pane.onDrag = [this](const FileItem &item) { calls.append(u"drag "_s + item.name); };
    pane.dropCount = [](const QMimeData &dragged, const QString & /*into*/) { return dragged.text().size(); };
    pane.onDrop = [this](const QMimeData &dragged, const QString &into) {
        calls.append(dragged.text() + u" into "_s + into);
    };
    show();
    QWidget *viewport = entries()->viewport();
    const auto dragTo = [&](int x) {
        const QPointF to = bodyOf(entries(), 1) + QPoint(x, 0);
        QTest::mousePress(viewport, Qt::LeftButton, {}, bodyOf(entries(), 1));
        QMouseEvent event(QEvent::MouseMove, to, viewport->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport, &event);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, to.toPoint());
        return taken();
    };
    EXPECT_THAT(dragTo(2), ElementsAre(u"select file"_s)) << "a hand is not that steady";
    EXPECT_THAT(dragTo(30), ElementsAre(u"drag file"_s));

    QMimeData data;
    const auto drop = [&](const QString &text, const QPoint &place) {
        data.setText(text);
        const QPoint at = viewport->mapTo(&view, place);
        QDragEnterEvent enter(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&view, &enter);
        QStringList seen{enter.isAccepted() ? ::vantrel::text(view, u"footerTrailing"_s) : u"refused"_s};
        EXPECT_TRUE(!enter.isAccepted() || enter.dropAction() == Qt::CopyAction) << "nothing is ever moved";
        const auto *summary = control<TextLabel>(view, u"footerLeading"_s);
        EXPECT_NE(summary->isVisible(), enter.isAccepted()) << "what a drop does is not cut off for it";
        if (enter.isAccepted()) {
            QDropEvent dropped(at, Qt::CopyAction, &data, Qt::LeftButton, {});
            QCoreApplication::sendEvent(&view, &dropped);
        }
        EXPECT_EQ(::vantrel::text(view, u"footerTrailing"_s), pane.footerTrailing);
        EXPECT_TRUE(summary->isVisible());
        return seen + taken();
    };
    EXPECT_THAT(drop(u"ab"_s, bodyOf(entries(), 0)),
                ElementsAre(u"Copy 2 items to “sub”"_s, u"ab into /home/me/sub"_s));
    EXPECT_THAT(drop(u"a"_s, bodyOf(entries(), 1)),
                ElementsAre(u"Copy 1 item to “me”"_s, u"a into /home/me"_s));
    EXPECT_THAT(drop({}, bodyOf(entries(), 0)), ElementsAre(u"refused"_s));
}

TEST_F(FilePaneTests, thePathLeadsElsewhere) {
    pane.pathLabel = u"/home/me"_s;
    pane.path = {u"/home/me"_s,
                 {{0, 1, u"/"_s}, {1, 5, u"/home"_s}, {6, 8, u"/home/me"_s}},
                 [this](const QString &path) { calls.append(u"go "_s + path); },
                 [this](const QString &folder, const auto &show) {
                     calls.append(u"ask "_s + folder);
                     show({folder + u"mine"_s, folder + u"music"_s});
                 }};
    show();
    auto *label = control<TextLabel>(view, u"path"_s);
    click(label, QPoint(label->width() - 2, 5));
    click(label, QPoint(int(TextStyle{11, Weight::medium}.width(u"/ho"_s)), 5));
    EXPECT_THAT(taken(), ElementsAre(u"focus"_s, u"go /home"_s));

    auto *field = control<QLineEdit>(view, u"pathField"_s);
    view.editPath();
    EXPECT_TRUE(field->hasFocus());
    EXPECT_EQ(field->selectedText(), u"/home/me");
    QTest::keyClicks(field, u"/home/m"_s);
    EXPECT_THAT(taken(), ElementsAre(u"ask /"_s, u"ask /home/"_s)) << "not once a letter";
    QWidget *offers = QApplication::activePopupWidget();
    ASSERT_NE(offers, nullptr);
    QTest::keyClick(offers, Qt::Key_Down);
    QTest::keyClick(offers, Qt::Key_Return);
    EXPECT_EQ(field->text(), u"/home/mine");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_THAT(taken(), ElementsAre(u"go /home/mine"_s));
    EXPECT_TRUE(entries()->hasFocus() && label->isVisible() && !field->isVisible());

    view.editPath();
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_TRUE(entries()->hasFocus() && label->isVisible());
    view.editPath();
    control<QLineEdit>(view, u"searchField"_s)->setFocus();
    EXPECT_TRUE(label->isVisible());
    EXPECT_TRUE(control<QLineEdit>(view, u"searchField"_s)->hasFocus()) << "the keyboard was taken back";
    EXPECT_THAT(taken(), ElementsAre());
}

TEST_F(FilePaneTests, anAbsentCallbackDisablesOrHidesItsControl) {
    const auto namesWhere = [this](bool (QWidget::*is)() const) {
        QStringList names;
        for (const QString &name :
             u"back home chooseFolder newFolder refresh listView gridView searchField "
             "scopePicker columnSelectAll gridSelectAll fileList fileGrid"_s.split(u' '))
            if ((control<QWidget>(view, name)->*is)())
                names.append(name);
        return names.join(u' ');
    };
    const auto shown = [&] { return show(), namesWhere(&QWidget::isVisible); };
    pane.onHome = pane.onNewFolder = {};
    EXPECT_EQ(shown(), u"back home chooseFolder newFolder refresh listView gridView searchField scopePicker "
                       "columnSelectAll fileList");
    EXPECT_FALSE(control<QWidget>(view, u"home"_s)->isEnabled());
    EXPECT_FALSE(control<QWidget>(view, u"newFolder"_s)->isEnabled());

    auto *back = control<IconButton>(view, u"back"_s);
    back->setFocus(Qt::TabFocusReason);
    pane.onChooseFolder = pane.onBack = pane.onRefresh = {};
    pane.viewMode.reset();
    EXPECT_EQ(shown(), u"back refresh listView gridView searchField scopePicker columnSelectAll fileList");
    for (const QString &name : {u"back"_s, u"refresh"_s, u"listView"_s, u"gridView"_s})
        EXPECT_FALSE(control<QWidget>(view, name)->isEnabled()) << qPrintable(name);
    EXPECT_TRUE(entries()->hasFocus()) << "the keyboard has left the pane";
    EXPECT_EQ(back->look().glyph, AppTheme::inkSecondary()) << "looks active";

    pane.searchScope.reset();
    EXPECT_EQ(shown(), u"back refresh listView gridView searchField columnSelectAll fileList");
    pane.searchText.reset();
    pane.onToggleSelectAll = {};
    pane.viewMode = {PaneViewMode::grid, [](PaneViewMode) {}};
    EXPECT_EQ(shown(), u"back refresh listView gridView fileGrid");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    EXPECT_EQ(entries()->mapTo(&view, QPoint()).y(),
              control<QWidget>(view, u"title"_s)->parentWidget()->geometry().bottom() + 1)
        << "something is left between header and grid";
}

TEST_P(PaneLayoutTests, selectAllShowsHowMuchIsSelected) {
    auto *box = control<SelectAllBox>(view, isList ? u"columnSelectAll"_s : u"gridSelectAll"_s);
    for (const int count : {0, 1, 6}) {
        SCOPED_TRACE(count);
        select(state.items().first(count));
        const auto mark = count == 0 ? Qt::Unchecked : count == 6 ? Qt::Checked : Qt::PartiallyChecked;
        const QString title = count == 6 ? u"Deselect all"_s : u"Select all"_s;
        EXPECT_EQ(box->checkState(), mark);
        EXPECT_TRUE(box->toolTip().contains(title));
        EXPECT_EQ(accessible(box)->text(QAccessible::Name), title);
        EXPECT_EQ(text(view, u"gridSelectAllTitle"_s), title);
        click(box);
        EXPECT_THAT(taken(), ElementsAre(u"focus"_s, u"toggleSelectAll"_s));
        EXPECT_EQ(box->checkState(), mark) << "a click alone changes nothing";
    }
    if (!isList)
        return; // without a callback it is hidden
    show({});
    EXPECT_FALSE(box->isEnabled());
    EXPECT_EQ(box->checkState(), Qt::Unchecked);
    pane.onToggleSelectAll = {};
    show(someFiles(1));
    EXPECT_FALSE(box->isEnabled());
}

TEST_F(FilePaneTests, searchTextAndScopeAreBound) {
    auto *field = control<QLineEdit>(view, u"searchField"_s);
    auto *clear = control<IconButton>(view, u"clearSearch"_s);
    auto *picker = control<ScopePicker>(view, u"scopePicker"_s);
    EXPECT_EQ(field->placeholderText(), u"Search this folder");
    EXPECT_FALSE(clear->isVisible());
    QTest::keyClicks(field, u"ab"_s);
    EXPECT_THAT(taken(), ElementsAre(u"search a"_s, u"search ab"_s));
    QTest::keyClick(field, Qt::Key_Left);
    show();
    EXPECT_EQ(field->cursorPosition(), 1) << "the caret stays where the user put it";
    click(clear);
    EXPECT_THAT(taken(), ElementsAre(u"clearSearch"_s));
    EXPECT_EQ(field->text(), u"ab") << "clearing is the owner's business";
    pane.onClearSearch = {};
    show();
    click(clear);
    EXPECT_THAT(taken(), ElementsAre(u"search "_s));
    EXPECT_FALSE(clear->isVisible());

    EXPECT_EQ(accessible(picker)->role(), QAccessible::ComboBox);
    EXPECT_EQ(accessible(picker)->text(QAccessible::Description), u"Scope");
    EXPECT_EQ(accessible(picker)->childCount(), 0) << "what it offers is not seen while it is closed";
    accessible(picker)->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_TRUE(accessible(picker)->state().expanded);
    ASSERT_EQ(accessible(picker)->childCount(), 1);
    EXPECT_EQ(accessible(picker)->child(0)->childCount(), 2);
    EXPECT_EQ(accessible(picker)->child(0)->parent(), accessible(picker));
    picker->hidePopup();
    QTest::keyClick(picker, Qt::Key_Down);
    EXPECT_EQ(accessible(picker)->text(QAccessible::Value), u"Everywhere");
    EXPECT_EQ(accessible(field)->text(QAccessible::Name), u"Search entire device");
    pane.searchScope.reset();
    show();
    EXPECT_EQ(field->placeholderText(), u"Search this folder");
}

TEST_F(FilePaneTests, contextMenusFollowTheFlags) {
    show({fileNamed(u"folder"_s, true), fileNamed(u"file"_s)});
    const auto titles = [&](int row) { return menuTitles(entries(), bodyOf(entries(), row)); };
    EXPECT_THAT(titles(0), ElementsAre()) << "no flag, no menu";
    pane.showsOpenContextMenu = true;
    show();
    EXPECT_THAT(titles(1), ElementsAre(u"Open"_s));
    EXPECT_EQ(menuAt(entries(), QPoint(200, entries()->viewport()->height() - 5)), nullptr) << "no entry";
    pane.showsMacContextMenu = true;
    show();
    EXPECT_THAT(titles(1), ElementsAre(u"Open"_s, revealTitle(), u"-"_s, u"Copy Path"_s));
    pane.onDetails = [this](const FileItem &item) { calls.append(u"details "_s + item.name); };
    show();
    EXPECT_THAT(titles(1),
                ElementsAre(u"Open"_s, revealTitle(), u"-"_s, u"Copy Path"_s, u"-"_s, u"Details…"_s));
    choose(menu(0), u"Details…"_s);
    EXPECT_THAT(taken(), ElementsAre(u"details folder"_s));
    choose(menu(1), u"Open"_s);
    choose(menu(1), revealTitle());
    choose(menu(0), u"Copy Path"_s);
    choose(menu(0), u"Open"_s);
    EXPECT_THAT(taken(), ElementsAre(u"open folder"_s));
    EXPECT_THAT(desktop.opened + desktop.revealed + desktop.copied,
                ElementsAre(u"/home/me/file"_s, u"/home/me/file"_s, u"/home/me/folder"_s));
}

TEST_P(PaneLayoutTests, aColumnSortsAndThenReverses) {
    const auto click = [this](const QString &inList, const QString &inGrid) {
        ::vantrel::click(control<ColumnButton>(view, isList ? inList : inGrid));
    };
    pane.order = {FileOrder(), [this](const FileOrder &order) {
                      calls.append(rawValue(order));
                      pane.order->value = order;
                      state.setOrder(order);
                      show();
                  }};
    show();
    entries()->verticalScrollBar()->setValue(20);
    click(u"modifiedColumn"_s, u"gridModified"_s);
    click(u"modifiedColumn"_s, u"gridModified"_s);
    click(u"sizeColumn"_s, u"gridSize"_s);
    click(u"nameColumn"_s, u"gridName"_s);
    click(u"nameColumn"_s, u"gridName"_s);
    EXPECT_THAT(taken(), ElementsAre(u"modified descending"_s, u"modified ascending"_s, u"size descending"_s,
                                     u"name ascending"_s, u"name descending"_s));
    EXPECT_EQ(entries()->verticalScrollBar()->value(), 0) << "another order is read from its beginning";
    EXPECT_EQ(entries()->model()->index(0, 0).data(), item(5).name);
    QAccessibleInterface *name =
        accessible(control<ColumnButton>(view, isList ? u"nameColumn"_s : u"gridName"_s));
    EXPECT_EQ(name->text(QAccessible::Name), u"Name");
    EXPECT_EQ(name->text(QAccessible::Description), u"From Z to A");
}

TEST_F(FilePaneTests, headersStandAboveTheirColumns) {
    const auto left = [this](const QWidget *widget) { return widget->mapTo(&view, QPoint()).x(); };
    show(someFiles(500));
    for (const int width : {view.minimumSizeHint().width(), 400, 777}) {
        view.resize(width, 300);
        const QWidget *viewport = entries()->viewport();
        const FileRowGeometry row(QRectF(left(viewport), 0, viewport->width(), 30), false);
        for (const auto &[name, x] :
             {std::pair(u"columnSelectAll"_s, row.checkbox.left()),
              std::pair(u"nameColumn"_s, row.checkbox.right()), std::pair(u"sizeColumn"_s, row.size.left()),
              std::pair(u"modifiedColumn"_s, row.modified.left())})
            EXPECT_EQ(left(control<QWidget>(view, name)), x) << qPrintable(name) << ' ' << width;
    }
}

TEST_F(FilePaneTests, geometryOfTheGridIsCentredColumnsOfTilesWithNamesOfOneLineOrTwo) {
    showAs(PaneViewMode::grid);
    QList<FileItem> items = someFiles(100);
    for (int row = 40; row < 60; row += 7)
        items[row].name = u"a name that takes two lines %1.txt"_s.arg(row);
    items[50].name = u"two words of Ελλάδα"_s; // one line or two, as wide as a column is
    show(items);
    const auto linesOf = [](const QString &name, int width) {
        return int(wrappedLines(name, {11, Weight::semibold}, width, 2).size());
    };
    const auto expectPlaces = [&](const QList<FileItem> &shown) {
        const FileGridGeometry grid(entries()->viewport()->width());
        int top = 12;
        for (int row = 0; row < shown.size(); ++row) {
            const int first = row - row % grid.columns;
            int lines = 1;
            for (int other = first; other < std::min(first + grid.columns, int(shown.size())); ++other)
                lines = std::max(lines, linesOf(shown[other].name, grid.columnWidth));
            const QSize cell(grid.columnWidth, FileGridCellGeometry::height(72, lines));
            const QPoint place(grid.left + (row - first) * (grid.columnWidth + 10), top);
            ASSERT_EQ(rectOf(entries(), row), QRect(place, cell)) << row;
            top += row - first == grid.columns - 1 ? cell.height() + 10 : 0;
        }
    };
    QSet<int> ofTheFiftieth;
    for (const int width : {view.minimumSizeHint().width(), 333, 334, 400, 440, 777, 1500}) {
        SCOPED_TRACE(width);
        view.resize(width, 400);
        FileItemsView *tiles = entries();
        const QWidget *viewport = tiles->viewport();
        const FileGridGeometry grid(viewport->width());
        ofTheFiftieth.insert(linesOf(items[50].name, grid.columnWidth));
        expectPlaces(items);
        EXPECT_EQ(tiles->indexAt(rectOf(tiles, 4).center()).row(), 4);
        EXPECT_FALSE(tiles->indexAt(rectOf(tiles, 0).bottomRight() + QPoint(5, 0)).isValid()) << "a gap";
        tiles->verticalScrollBar()->setValue(tiles->verticalScrollBar()->maximum());
        EXPECT_EQ(rectOf(tiles, 99).bottom() + 1, viewport->height() - 12);
        EXPECT_EQ(tiles->rowsInSight().second, 99);
        tiles->scrollTo(tiles->model()->index(1, 0));
        EXPECT_EQ(tiles->verticalScrollBar()->value(), 0) << "with what is above the first line";
    }
    EXPECT_EQ(ofTheFiftieth, QSet({1, 2}));

    // Some leave and come, others take their places; names of one length are not of one width.
    for (const int row : {3, 4, 70})
        items[row].name = QString(30, row == 4 ? u'i' : u'W');
    QList<FileItem> some;
    for (int row = 0; row < 100; row += 1 + row % 3)
        some.append(items[row]);
    QList<FileItem> others = some;
    others[2].name = QString(30, u'W');
    others.swapItemsAt(0, 3);
    for (const QList<FileItem> &shown : {items, some, others, items, others, some})
        expectPlaces((show(shown), shown));
    show(someFiles(3));
    EXPECT_EQ(entries()->verticalScrollBar()->maximum(), 0);
}

TEST_F(FilePaneTests, theTilesSizeFollowsTheSliderAndTheWheel) {
    auto *slider = control<QSlider>(view, u"tileSize"_s);
    showAs(PaneViewMode::grid);
    EXPECT_FALSE(slider->isVisible()) << "nothing to bind it to";
    pane.tileSize = {TileSize::standard, [this](int size) {
                         calls.append(u"size %1"_s.arg(size));
                         pane.tileSize->value = size;
                         show();
                     }};
    show(someFiles(400));
    ASSERT_TRUE(slider->isVisible());
    QAccessibleInterface *heard = accessible(slider);
    EXPECT_EQ(heard->role(), QAccessible::Slider);
    EXPECT_EQ(heard->text(QAccessible::Name), u"Size of the tiles");
    EXPECT_EQ(heard->valueInterface()->currentValue(), 96);

    entries()->verticalScrollBar()->setValue(2000);
    const auto firstRow = [this] {
        return entries()->indexAt(QPoint(60, 40)).isValid() ? entries()->indexAt(QPoint(60, 40)).row()
                                                            : entries()->indexAt(QPoint(60, 90)).row();
    };
    const int before = firstRow();
    const auto turn = [this](Qt::KeyboardModifiers modifiers, int angle) {
        const QPointF place(50, 50);
        QWheelEvent wheel(place, entries()->viewport()->mapToGlobal(place), {}, {0, angle}, {}, modifiers,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(entries()->viewport(), &wheel);
    };
    turn(Qt::ControlModifier, 60); // half a notch, as of a fine wheel
    turn(Qt::ControlModifier, 60);
    EXPECT_THAT(taken(), ElementsAre(u"size 120"_s));
    EXPECT_EQ(slider->value(), 120);
    EXPECT_EQ(rectOf(entries(), 0).width(),
              FileGridGeometry(entries()->viewport()->width(), 120).columnWidth);
    EXPECT_EQ(rectOf(entries(), 0).height(), FileGridCellGeometry::height(90, 1));
    EXPECT_LE(qAbs(firstRow() - before), 4) << "what was in sight stays there";
    slider->setValue(230);
    EXPECT_THAT(taken(), ElementsAre(u"size 240"_s));
    turn(Qt::ControlModifier, 120);
    turn(Qt::NoModifier, 120);
    EXPECT_THAT(taken(), ElementsAre()) << "there is no larger one";
    showAs(PaneViewMode::list);
    EXPECT_FALSE(slider->isVisible());
}

/// The entries that were painted since the last call, once everything that was due has been.
QList<int> rowsIn(PaintedRegion &painted, const FileItemsView *entries) {
    QTest::qWait(0);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    const QRegion region = std::exchange(painted.region, {});
    QList<int> rows;
    for (int row = 0; row < entries->model()->rowCount(); ++row) {
        // The strip below the scroll bar is painted with the bar.
        if (region.intersects(rectOf(entries, row).adjusted(0, 0, -entries->verticalScrollBar()->width(), 0)))
            rows.append(row);
    }
    return rows;
}

TEST_P(PaneLayoutTests, exactlyTheEntriesThatLookDifferentAreRepainted) {
    show(someFiles(200));
    PaintedRegion region(entries()->viewport());
    const auto painted = [&] { return rowsIn(region, entries()); };
    painted();

    show();
    EXPECT_THAT(painted(), ElementsAre()) << "nothing changed";
    select({item(1), item(3), item(150)});
    EXPECT_THAT(painted(), ElementsAre(1, 3));
    select({item(1)});
    EXPECT_THAT(painted(), ElementsAre(3));

    // The same entries with another value: only the list shows dates.
    QList<FileItem> items = state.items();
    items[2].sizeBytes = 7;
    items[4].modifiedAt = QDateTime::currentDateTime();
    items[0].path += u"x"_s;
    show(items);
    EXPECT_EQ(painted(), isList ? QList<int>({2, 4}) : QList<int>({2}));

    pane.footerTrailing += u"!"_s;
    pane.searchScope->value = AndroidSearchScope::everywhere;
    show();
    EXPECT_THAT(painted(), ElementsAre()) << "other parts of the pane changed";

    items.removeAt(4); // those after it move up, those before it stay
    show(items);
    EXPECT_EQ(painted().value(0), 4);

    select(items);
    const QList<int> screen = painted();
    EXPECT_LT(screen.size(), 40) << "what is out of sight was painted";
    EXPECT_FALSE(screen.contains(1)) << "it was selected already";
    EXPECT_TRUE(screen.contains(0) && screen.contains(2));

    // Listed again, with other identities.
    select({});
    painted();
    for (FileItem &listed : items)
        listed.id = newIdentity();
    items.last().name += u'x';
    show(items);
    EXPECT_THAT(painted(), ElementsAre()) << "it looks as before";
    show(items.first(7));
    painted();
    items[3].sizeBytes = 8;
    show(items.first(9));
    EXPECT_THAT(painted(), ElementsAre(3, 7, 8)) << "two more, and one is another";
    click(entries()->viewport(), bodyOf(entries(), 5));
    click(entries()->viewport(), bodyOf(entries(), 2));
    EXPECT_THAT(painted(), ElementsAre()) << "a click alone changes nothing";
}

TEST_F(FilePaneTests, anEntryThatVanishesIsWipedOut) {
    show(someFiles(3));
    select({item(2)});
    const QRect third = rectOf(entries(), 2);
    const auto isPlain = [&] {
        const QImage image = entries()->viewport()->grab(third).toImage();
        return image.pixelColor(3, 10).rgba() == QColor(AppTheme::surface()).rgba();
    };
    EXPECT_FALSE(isPlain());
    PaintedRegion painted(entries()->viewport());
    show(state.items().first(2));
    EXPECT_TRUE(waitFor([&] { return QRegion(third).subtracted(painted.region).isEmpty(); }));
    EXPECT_THAT(rowsIn(painted, entries()), ElementsAre()) << "of those that stay";
    EXPECT_TRUE(isPlain());
    EXPECT_FALSE(entries()->indexAt(third.center()).isValid());
}

TEST_P(PaneLayoutTests, anotherFolderStartsAtItsTopAndARefreshDoesNot) {
    show(someFiles(300));
    QScrollBar *bar = entries()->verticalScrollBar();
    const auto scrolledAfter = [&](const QList<FileItem> &items) {
        bar->setValue(500);
        show(items);
        return bar->value();
    };
    EXPECT_EQ(scrolledAfter(someFiles(301)), 500);
    pane.pathLabel += u"/sub"_s;
    EXPECT_EQ(scrolledAfter(state.items()), 0);
    pane.searchText->value += u'a';
    EXPECT_EQ(scrolledAfter(state.items()), 0);
    EXPECT_EQ(scrolledAfter(someFiles(3)), 0);
}

TEST_P(PaneLayoutTests, theKeyboardMovesARingAndSpaceToggles) {
    show(someFiles(100));
    FileItemsView *list = entries();
    list->scrollToTop();
    const int line = isList ? 1 : FileGridGeometry(list->viewport()->width()).columns;
    const auto press = [&](Qt::Key key, int times = 1) {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(list, key);
        return list->focusedIndex().row();
    };
    // After a click they go on from there.
    click(list->viewport(), bodyOf(list, 0));
    ASSERT_TRUE(list->hasFocus());
    EXPECT_EQ(list->focusedIndex().row(), -1) << "the mouse has no ring";
    EXPECT_EQ(press(Qt::Key_Down), line);
    EXPECT_THAT(taken(), ElementsAre(u"select file 0.txt"_s));

    press(Qt::Key_Home);
    list->clearFocus();
    list->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(list->focusedIndex().row(), 0);
    EXPECT_EQ(press(Qt::Key_Up), 0);
    EXPECT_EQ(press(Qt::Key_Down), line);
    EXPECT_EQ(press(Qt::Key_Space), line);
    EXPECT_EQ(press(Qt::Key_Return), line);
    EXPECT_EQ(press(Qt::Key_Delete), line);
    EXPECT_THAT(taken(), ElementsAre(u"toggle file %1.txt"_s.arg(line), u"open file %1.txt"_s.arg(line)));
    EXPECT_EQ(press(Qt::Key_End), 99);
    EXPECT_TRUE(list->viewport()->rect().contains(rectOf(list, 99)));
    EXPECT_LT(press(Qt::Key_PageUp), 99 - line);
    EXPECT_EQ(press(Qt::Key_Home), 0);
    EXPECT_EQ(press(Qt::Key_Right, line + 1), isList ? 0 : line + 1) << "over the edge";
    EXPECT_EQ(press(Qt::Key_Left, 2), isList ? 0 : line - 1);
    QTest::keyClicks(list, u"FILE 4"_s);
    EXPECT_EQ(list->focusedIndex().row(), 4) << "letters lead to a name";
    EXPECT_THAT(taken(), ElementsAre()) << "a blank in a name toggles nothing";
    list->clearFocus();
    EXPECT_EQ(list->focusedIndex().row(), -1);
}

TEST_P(PaneLayoutTests, rangesGrowAndShrinkAndAClickWithControlToggles) {
    state.setItems(someFiles(30));
    pane.onSelectRange = [this](const QList<FileItem> &items, bool isSelected) {
        state.setSelected(items, isSelected);
        show();
    };
    pane.onToggle = [this](const FileItem &item) { state.toggleSelection(item); };
    pane.onSelect = [this](const FileItem &item) { state.selectItem(item); };
    show();
    const auto selected = [this] {
        QList<int> rows;
        for (int row = 0; row < state.items().size(); ++row) {
            if (state.selectedIDs().contains(item(row).id))
                rows.append(row);
        }
        return rows;
    };
    const auto clickRow = [this](int row, Qt::KeyboardModifiers modifiers) {
        QTest::mouseClick(entries()->viewport(), Qt::LeftButton, modifiers, bodyOf(entries(), row));
    };
    clickRow(1, {});
    clickRow(3, Qt::ShiftModifier);
    EXPECT_THAT(selected(), ElementsAre(1, 2, 3));
    clickRow(0, Qt::ShiftModifier);
    EXPECT_THAT(selected(), ElementsAre(0, 1)) << "the other side of where the range began";
    clickRow(4, Qt::ControlModifier);
    clickRow(0, Qt::ControlModifier);
    EXPECT_THAT(selected(), ElementsAre(1, 4));
    const Qt::Key on = isList ? Qt::Key_Down : Qt::Key_Right;
    const Qt::Key back = isList ? Qt::Key_Up : Qt::Key_Left;
    clickRow(1, {});
    for (const Qt::Key key : {on, on, back})
        QTest::keyClick(entries(), key, Qt::ShiftModifier);
    EXPECT_THAT(selected(), ElementsAre(1, 2, 4));
    QTest::keyClick(entries(), Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(selected().size(), 29);
    show(someFiles(2)); // the range began in what is gone
    QTest::keyClick(entries(), back, Qt::ShiftModifier);
    EXPECT_LE(selected().size(), 2);
}

TEST_P(PaneLayoutTests, aCutNameShowsInFullUnderTheMouse) {
    const QString longName = QString(80, u'w') + u"<b>.txt"_s;
    show({fileNamed(longName), fileNamed(u"short"_s)});
    EXPECT_EQ(toolTipAt(entries(), bodyOf(entries(), 0)), longName);
    (void)toolTipAt(entries(), bodyOf(entries(), 1));
    EXPECT_TRUE(waitFor([] { return ToolTips::text().isEmpty(); })) << "it sticks to another entry";
}

TEST_F(FilePaneTests, tabReachesTheEntriesAndThenEveryControlInReadingOrder) {
    pane.searchText->value = u"x"_s;
    show();
    QStringList reached;
    entries()->setFocus(Qt::TabFocusReason);
    for (int i = 0; i < 12; ++i) {
        reached.append(accessible(QApplication::focusWidget())->text(QAccessible::Name));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(reached,
                ElementsAre(u"Title"_s, u"Go back"_s, u"Go to Home"_s, u"Choose folder"_s, u"New folder"_s,
                            u"Refresh"_s, u"List view"_s, u"Grid view"_s, u"Search this folder"_s, testing::_,
                            u"Clear search"_s, u"Select all"_s));
}

TEST_P(PaneLayoutTests, assistiveTechnologyFindsAHundredThousandEntries) {
    show(someFiles(100'000));
    select({item(70'000)});
    QAccessibleInterface *list = accessible(entries());
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->childCount(), 100'000);
    EXPECT_EQ(list->child(100'000), nullptr);

    QAccessibleInterface *entry = list->child(70'000);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->text(QAccessible::Name), u"file 70000.txt");
    EXPECT_EQ(entry->text(QAccessible::Description), u"1 KB, —");
    const QAccessible::State of = entry->state();
    EXPECT_TRUE(of.checkable && of.checked && of.offscreen && of.selectable && of.selected);
    EXPECT_EQ(list->indexOfChild(entry), 70'000);
    EXPECT_EQ(list->child(70'000), entry) << "made twice";

    QAccessibleInterface *first = list->child(0);
    EXPECT_FALSE(first->state().checked || first->state().selected || first->state().offscreen);
    EXPECT_EQ(list->childAt(first->rect().center().x(), first->rect().center().y()), first);
    EXPECT_EQ(first->rect().topLeft(), entries()->viewport()->mapToGlobal(rectOf(entries(), 0).topLeft()));
    first->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    entry->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(entry->state().selected) << "the pane decides";
    entry->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(calls,
                ElementsAre(u"toggle file 0.txt"_s, u"toggle file 70000.txt"_s, u"open file 70000.txt"_s));

    entries()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(entries(), Qt::Key_End);
    EXPECT_TRUE(list->child(99'999)->state().focused);
    EXPECT_FALSE(list->child(99'999)->state().offscreen);
    EXPECT_EQ(list->focusChild(), list->child(99'999));
    QTest::keyClick(entries(), Qt::Key_Home);
    // An entry that is gone says so.
    QAccessibleInterface *last = list->child(99'999);
    show(someFiles(2));
    EXPECT_FALSE(last->isValid());
}

/// No visible control reaches out of its parent or into a sibling.
void expectNothingOverlaps(QWidget &view) {
    for (QWidget *widget : view.findChildren<QWidget *>()) {
        // The scroll bar lies over the entries, the spinner and the words for nothing over the pane, on
        // purpose.
        const auto isOverlay = [](const QWidget *w) {
            return w->findChild<const QScrollBar *>(QString(), Qt::FindDirectChildrenOnly) ||
                   qobject_cast<const Spinner *>(w) || w->objectName() == u"emptiness"_s;
        };
        if (!widget->isVisible() || isOverlay(widget))
            continue;
        const QWidget *parent = widget->parentWidget();
        EXPECT_TRUE(parent->rect().contains(widget->geometry()))
            << qPrintable(widget->objectName()) << " in " << qPrintable(parent->objectName());
        for (const QWidget *sibling : parent->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
            if (sibling == widget || !sibling->isVisible() || isOverlay(sibling) ||
                sibling->size().isEmpty() || widget->size().isEmpty())
                continue;
            EXPECT_FALSE(widget->geometry().intersects(sibling->geometry()))
                << qPrintable(widget->objectName()) << " and " << qPrintable(sibling->objectName());
        }
    }
}

TEST_F(FilePaneTests, geometryHoldsWithAnyText) {
    pane.tileSize = {TileSize::standard, [](int) {}};
    showAs(PaneViewMode::grid); // with its slider
    const QSize smallest = view.minimumSizeHint();
    const QSize hint = view.sizeHint();
    EXPECT_LE(smallest.width(), 390) << "two panes must fit into the smallest window";
    EXPECT_LE(smallest.height(), 320);
    for (const QString &text : {QString(255, u'w'), u"😀"_s.repeated(60), u"שלום עולם.pdf"_s,
                                u"/a/very/long/path"_s.repeated(40), u"line of an error\n"_s.repeated(10)}) {
        for (const PaneViewMode mode : allPaneViewModes) {
            SCOPED_TRACE(qPrintable(text.left(10) + rawValue(mode)));
            state.setItems({fileNamed(text), fileNamed(text, true)});
            pane.pathLabel = pane.footerLeading = pane.footerTrailing = text;
            pane.searchText->value = text.left(100);
            pane.showsItemLocation = true;
            showAs(mode);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
            EXPECT_EQ(view.minimumSizeHint(), smallest) << "a text makes the pane wider";
            EXPECT_EQ(view.sizeHint(), hint);
            for (const QSize size : {smallest, QSize(700, 400)}) {
                view.resize(size);
                EXPECT_EQ(view.size(), size);
                expectNothingOverlaps(view);
            }
        }
    }
    pane.footerLeading = u"2 selected (12.4 MB)"_s;
    show();
    view.resize(smallest);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    EXPECT_FALSE(control<TextLabel>(view, u"footerLeading"_s)->isElided()) << "short beside long";
    EXPECT_GT(control<TextLabel>(view, u"footerTrailing"_s)->width(), 60);
}

// -- Both panes on a model

class DualBrowserTests : public WindowFixture {
protected:
    DualBrowserTests() {
        phone.write(u"DCIM/Camera/IMG_1.jpg"_s, QByteArray(1000, 'x'));
        phone.write(u"DCIM/Camera/IMG_2.jpg"_s, QByteArray(2000, 'x'));
        phone.write(u"note.txt"_s, "hello");
        QDir(folder).mkpath(u"sub/deeper"_s);
        write(here(u"local.txt"_s), "local");
        show(new DualBrowserView(state.get()), {1000, 500});
    }

    /// Shows the phone's storage and the local folder.
    void connectPhone() {
        refresh();
        browseMac(folder);
        ASSERT_TRUE(lists(android(), {u"DCIM"_s, u"note.txt"_s}));
        ASSERT_TRUE(lists(mac(), {u"sub"_s, u"local.txt"_s}));
    }
    [[nodiscard]] QString here(const QString &name) const { return folder + u'/' + name; }

    QWidget &android() { return *control<QWidget>(*view, u"androidPane"_s); }
    QWidget &mac() { return *control<QWidget>(*view, u"macPane"_s); }
    static QList<FileItem> itemsOf(QWidget &pane) {
        return static_cast<FileItemsModel *>(entriesOf(pane)->model())->items();
    }
    static bool lists(QWidget &pane, const QStringList &names) {
        return waitFor([&] { return namesOf(itemsOf(pane)) == names; });
    }
    static bool says(QWidget &pane, const QString &label, const QString &words) {
        return waitFor([&] { return text(pane, label) == words; });
    }
    static bool footerSays(QWidget &pane, const QString &words) {
        return says(pane, u"footerTrailing"_s, words);
    }
    static void press(QWidget &pane, const QString &tool) { click(control<IconButton>(pane, tool)); }
    static void clickEntry(QWidget &pane, int row) {
        click(entriesOf(pane)->viewport(), bodyOf(entriesOf(pane), row));
    }
    static void doubleClickEntry(QWidget &pane, int row) {
        doubleClick(entriesOf(pane)->viewport(), bodyOf(entriesOf(pane), row));
    }

    const QString folder = WindowFixture::mac.filePath(u"folder"_s);
};

TEST_F(DualBrowserTests, nothingToListIsSaidInTheListsPlace) {
    const auto said = [&](QWidget &pane) {
        auto *place = pane.findChild<EmptinessView *>();
        return place->isVisible() ? place->emptiness() : Emptiness{.heading = u"(hidden)"_s};
    };
    const auto says = [&](QWidget &pane, const QString &heading, const QString &words = {}) {
        return waitFor(
            [&] { return said(pane).heading == heading && said(pane).steps.join(u' ').contains(words); });
    };
    struct Case {
        const char *state;
        QString heading, words;
    };
    const Case cases[] = {
        {"none", u"Connect your phone"_s, u"USB debugging"_s},
        {"unauthorized", u"The phone asks whether you may"_s, u"Unlock the phone and tap Allow."_s},
        {"authorizing", u"Connecting to the phone…"_s, u"tap Allow"_s},
        {"offline", u"The phone is offline"_s, u"Unlock"_s},
        {"no permissions (x)", u"You may not use this phone yet"_s, u"udev"_s},
        {"recovery", u"The phone is in recovery mode"_s, u"Reboot"_s},
        {"sideload", u"The phone waits for an update by cable"_s, u"sideload"_s},
        {"bootloader", u"The phone is in its bootloader"_s, u"Start"_s},
        {"device", u"(hidden)"_s, {}},
    };
    for (const Case &c : cases) {
        phone.set(u"state"_s, c.state);
        refresh();
        EXPECT_TRUE(says(android(), c.heading, c.words))
            << c.state << ": " << said(android()).heading.toStdString();
        expectNothingOverlaps(*view);
    }
    phone.makeFolder(u"bare"_s);
    state->browseAndroid(u"/sdcard/bare"_s);
    EXPECT_TRUE(says(android(), u"This folder is empty"_s));
    EXPECT_EQ(accessible(entriesOf(android()))->text(QAccessible::Description),
              u"Internal Storage › bare, This folder is empty"_s);
    state->browseAndroid(u"/sdcard"_s);
    EXPECT_TRUE(says(android(), u"(hidden)"_s));
    state->setAndroidSearchText(u"zz"_s);
    EXPECT_TRUE(says(android(), u"Nothing found"_s, u"“zz”"_s));
    state->setAndroidSearchScope(AndroidSearchScope::everywhere);
    EXPECT_TRUE(says(android(), u"Nothing found"_s, u"Nothing on the phone"_s));
    phone.makeFolder(u"secret"_s);
    phone.deny(u"secret"_s);
    state->browseAndroid(u"/sdcard/secret"_s);
    EXPECT_TRUE(says(android(), u"This folder may not be read"_s, u"Permission denied"_s));

    state->browseMac(here(u"sub/deeper"_s));
    EXPECT_TRUE(says(mac(), u"This folder is empty"_s));
    state->browseMac(here(u"gone"_s));
    EXPECT_TRUE(says(mac(), u"This folder can’t be shown"_s, u"gone"_s));
    QDir(folder).mkpath(u"gone"_s);
    write(here(u"gone/now.txt"_s), "x");
    click(mac().findChild<QPushButton *>(u"emptiness.button"_s));
    EXPECT_TRUE(lists(mac(), {u"now.txt"_s}));
    EXPECT_TRUE(says(mac(), u"(hidden)"_s));
}

TEST(EmptyStatesTests, everyTroubleHasItsPictureAndItsSteps) {
    QSet<QString> headings;
    for (int i = int(PhoneTrouble::noPhone); i <= int(PhoneTrouble::other); ++i) {
        const Emptiness state = EmptyStates::ofPhone(PhoneTrouble(i), u"in words"_s);
        headings.insert(state.heading);
        EXPECT_TRUE(Symbol::exists(state.badge)) << i;
        EXPECT_FALSE(state.steps.isEmpty() || state.steps.contains(QString())) << i;
        EXPECT_FALSE(state.mayTryAgain && !state.command.isEmpty()) << "two buttons: " << i;
    }
    EXPECT_EQ(headings.size(), int(PhoneTrouble::other));
    QFile rules(QStringLiteral(VANTREL_TEST_DATA "/../../src/Resources/desktop/51-vantrel-android.rules"));
    ASSERT_TRUE(rules.open(QIODevice::ReadOnly));
    const QString rule = QString::fromUtf8(rules.readAll()).trimmed().section(u'\n', -1);
    const QString command = EmptyStates::ofPhone(PhoneTrouble::noPermissions, {}).command;
    EXPECT_TRUE(command.startsWith(u"echo '%1' | "_s.arg(rule))) << command.toStdString();
}

TEST_F(DualBrowserTests, theEmptyPaneHelpsWithAButton) {
    auto *button = android().findChild<QPushButton *>(u"emptiness.button"_s);
    phone.set(u"state"_s, "no permissions (x)");
    refresh();
    ASSERT_TRUE(waitFor([&] { return button->isVisible(); }));
    click(button);
    ASSERT_EQ(desktop.copied.size(), 1);
    EXPECT_TRUE(desktop.copied.first().contains(u"/etc/udev/rules.d/"_s));
    EXPECT_EQ(button->text(), u"Copied"_s);

    // A phone that does not answer is asked again, and the keyboard is not left on what is gone.
    ADBClient::setPatience(300ms);
    phone.plug();
    phone.set(u"getprop.hang"_s, "on");
    refresh();
    ASSERT_TRUE(waitFor([&] { return button->text() == u"Try Again"_s && button->isVisible(); }));
    EXPECT_EQ(accessible(android().findChild<QWidget *>(u"emptiness"_s))->text(QAccessible::Name),
              u"The phone does not answer."_s);
    ADBClient::setPatience(15s);
    phone.reset(u"getprop.hang"_s);
    button->setFocus(Qt::TabFocusReason);
    QTest::keyClick(button, Qt::Key_Space);
    ASSERT_TRUE(lists(android(), {u"DCIM"_s, u"note.txt"_s}));
    EXPECT_TRUE(waitFor([&] { return entriesOf(android())->hasFocus(); }));
}

TEST_F(DualBrowserTests, theTwoPanesShareTheWidthEqually) {
    for (const int width : {view->minimumSizeHint().width(), 835, 1401}) {
        view->resize(width, 320);
        const QRect left = android().geometry();
        const QRect right = mac().geometry();
        EXPECT_LE(qAbs(left.width() - right.width()), 1) << width;
        EXPECT_EQ(right.left() - left.right() - 1, 10 + 34 + 10);
        EXPECT_EQ(left.left(), 0);
        EXPECT_EQ(right.right(), view->width() - 1);
        expectNothingOverlaps(*view);
    }
    EXPECT_EQ(view->minimumHeight(), 320);
    EXPECT_EQ(text(android(), u"title"_s), u"Android Device");
    EXPECT_EQ(text(mac(), u"title"_s), thisComputer());
    EXPECT_FALSE(mac().findChild<QLineEdit *>(u"searchField"_s)->isVisible());
    EXPECT_FALSE(android().findChild<IconButton *>(u"home"_s)->isVisible());
}

TEST_F(DualBrowserTests, theCopyButtonsFollowPhoneAndSelection) {
    auto *toMac = control<IconButton>(*view, u"transferToMac"_s);
    auto *toAndroid = control<IconButton>(*view, u"transferToAndroid"_s);
    EXPECT_EQ(accessible(toMac)->text(QAccessible::Name),
              u"Transfer selected Android items to "_s + thisComputer());
    EXPECT_EQ(accessible(toAndroid)->text(QAccessible::Name),
              u"Transfer selected %1 items to Android"_s.arg(thisComputer()));
    connectPhone();
    EXPECT_FALSE(toMac->isEnabled() || toAndroid->isEnabled());
    clickEntry(mac(), 1);
    EXPECT_TRUE(waitFor([&] { return toAndroid->isEnabled(); }));
    EXPECT_FALSE(toMac->isEnabled());
    EXPECT_EQ(toAndroid->look().fill, AppTheme::accent());
    EXPECT_EQ(toMac->look().fill, AppTheme::surface());
    phone.unplug();
    state->refreshDevice(PhoneWatch::Spinner::hidden);
    EXPECT_TRUE(waitFor([&] { return !state->device().isConnected && !toAndroid->isEnabled(); }));
}

TEST_F(DualBrowserTests, theGridShowsPicturesWhenTheyComeAndRepaintsNothingElse) {
    const QColor red(Qt::red);
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(red);
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    image.save(&png, "png");
    phone.write(u"DCIM/Camera/IMG_3.png"_s, png.data());
    phone.set(u"beginnings.hang"_s, "on");
    show(new DualBrowserView(state.get(), new ThumbnailStore(state.get())), {1000, 500});
    state->setAndroidViewMode(PaneViewMode::grid);
    state->setMacViewMode(PaneViewMode::grid);
    connectPhone();
    write(here(u"a.png"_s), png.data());
    browseMac(folder);
    browsePhone(u"/sdcard/DCIM/Camera"_s);
    settle();
    const auto colorOf = [](QWidget &pane, int row) { // above the name, beside the mark
        const FileItemsView *grid = entriesOf(pane);
        return grid->viewport()->grab().toImage().pixelColor(rectOf(grid, row).topLeft() + QPoint(20, 60));
    };
    ASSERT_TRUE(waitFor([&] { return colorOf(mac(), 1) == red; })) << "of this computer: behind the folder";
    EXPECT_NE(colorOf(android(), 2), red);
    settle();
    const PaintedRegion painted(entriesOf(android())->viewport());
    phone.reset(u"beginnings.hang"_s);
    ASSERT_TRUE(waitFor([&] { return !painted.region.isEmpty(); }));
    settle();
    EXPECT_EQ(painted.region.boundingRect(), rectOf(entriesOf(android()), 2));
    EXPECT_EQ(colorOf(android(), 2), red);
}

TEST_F(DualBrowserTests, keysActOnTheFocusedPane) {
    connectPhone();
    using Counts = std::pair<qsizetype, qsizetype>;
    const auto selectedAfter = [this](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        return Counts(state->androidSelectedIDs().size(), state->macSelectedIDs().size());
    };
    clickEntry(mac(), 0);
    EXPECT_EQ(selectedAfter(Qt::Key_A, Qt::ControlModifier), Counts(0, 2));
    clickEntry(android(), 0);
    EXPECT_EQ(state->focusedBrowserSide(), BrowserSide::android);
    EXPECT_EQ(selectedAfter(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier), Counts(2, 2));
    EXPECT_EQ(selectedAfter(Qt::Key_Delete), Counts(2, 2)) << "other keys pass";
    control<QWidget>(mac(), u"refresh"_s)->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(selectedAfter(Qt::Key_Escape), Counts(2, 0)) << "however the keyboard came there";
    control<QWidget>(android(), u"back"_s)->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(selectedAfter(Qt::Key_Escape, Qt::AltModifier), Counts(0, 0));

    // In the search field the keys are the field's, and an open menu keeps Escape for itself.
    clickEntry(android(), 1);
    auto *field = control<QLineEdit>(android(), u"searchField"_s);
    field->setFocus();
    QTest::keyClicks(field, u"note"_s);
    EXPECT_EQ(selectedAfter(Qt::Key_A, Qt::ControlModifier), Counts(1, 0));
    EXPECT_EQ(field->selectedText(), u"note");
    EXPECT_EQ(selectedAfter(Qt::Key_Escape), Counts(1, 0));
    QMenu *menu = menuAt(entriesOf(mac()), bodyOf(entriesOf(mac()), 0));
    ASSERT_NE(menu, nullptr);
    QTest::keyClick(menu, Qt::Key_Escape);
    EXPECT_FALSE(menu->isVisible());
    EXPECT_EQ(state->androidSelectedIDs().size(), 1);
}

TEST_F(DualBrowserTests, keysOfAnyWindowAreHeardWhileTheViewIsShown) {
    connectPhone();
    entriesOf(android())->setFocus();
    for (const auto &[key, outcome] : {std::pair(Qt::Key_A, DualBrowserView::KeyOutcome::consumed),
                                       {Qt::Key_B, DualBrowserView::KeyOutcome::passedOn}})
        EXPECT_EQ(DualBrowserView::handleKeyEvent({QEvent::KeyPress, key, Qt::ControlModifier}, *state),
                  outcome);
    QWidget elsewhere;
    elsewhere.show();
    QTest::keyClick(&elsewhere, Qt::Key_Escape);
    EXPECT_TRUE(state->androidSelectedIDs().isEmpty());
    for (const bool isShown : {false, true}) {
        view->setVisible(isShown);
        QTest::keyClick(&elsewhere, Qt::Key_A, Qt::ControlModifier);
        EXPECT_EQ(state->androidSelectedIDs().size(), isShown ? 2 : 0);
    }
}

TEST_F(DualBrowserTests, thePhonesPaneBrowses) {
    connectPhone();
    EXPECT_TRUE(footerSays(android(), u"2 items • 5 bytes"_s));
    EXPECT_EQ(text(android(), u"footerLeading"_s), u"Nothing selected");
    auto *spinner = android().findChild<Spinner *>();
    EXPECT_FALSE(spinner->isVisible());
    phone.set(u"ls.delay"_s, "0.5");
    doubleClickEntry(android(), 0);
    EXPECT_TRUE(footerSays(android(), u"Loading…"_s));
    EXPECT_TRUE(spinner->isVisible());
    phone.reset(u"ls.delay"_s);
    EXPECT_TRUE(footerSays(android(), u"1 items • Zero KB"_s));
    EXPECT_FALSE(spinner->isVisible());
    EXPECT_EQ(text(android(), u"path"_s), u"Internal Storage › DCIM");
    press(android(), u"back"_s);
    EXPECT_TRUE(lists(android(), {u"DCIM"_s, u"note.txt"_s}));

    phone.set(u"pull.delay"_s, "0.3");
    choose(menuAt(entriesOf(android()), bodyOf(entriesOf(android()), 1)), u"Open"_s);
    EXPECT_TRUE(footerSays(android(), u"Opening…"_s));
    EXPECT_TRUE(waitFor([&] { return desktop.opened.size() == 1; }));
    EXPECT_TRUE(desktop.opened.first().endsWith(u"note.txt"_s));

    phone.set(u"pull.hang"_s, "on");
    doubleClickEntry(android(), 1);
    EXPECT_TRUE(footerSays(android(), u"Opening…"_s));
    state->selectAllVisible(BrowserSide::android);
    QTest::keyClick(entriesOf(android()), Qt::Key_Escape);
    EXPECT_TRUE(footerSays(android(), u"2 items • 5 bytes"_s)) << "it is given up";
    EXPECT_EQ(state->androidSelectedIDs().size(), 2) << "and nothing else";
    EXPECT_EQ(desktop.opened.size(), 1);
    phone.reset(u"pull.hang"_s);
    phone.deny(u"DCIM"_s);
    doubleClickEntry(android(), 0);
    EXPECT_TRUE(footerSays(android(), u"ls: /sdcard/DCIM/: Permission denied"_s));
    EXPECT_TRUE(lists(android(), {}));
}

TEST_F(DualBrowserTests, backGoesToWhereOneWas) {
    constexpr int count = 150;
    const QString there = u"/sdcard/many"_s;
    const QString hostThere = phone.hostPath(there);
    connectPhone();
    for (const QString &many : {hostThere, here(u"many"_s)}) {
        QDir(many).mkpath(u"sub 050/deeper"_s);
        for (int i = 0; i < count; ++i)
            write(many + u"/file %1"_s.arg(i, 3, 10, QLatin1Char('0')), "x");
    }
    struct Case {
        BrowserSide side;
        PaneViewMode mode;
        QString path, host;
    };
    for (const Case &c : {Case{BrowserSide::mac, PaneViewMode::list, here(u"many"_s), here(u"many"_s)},
                          Case{BrowserSide::android, PaneViewMode::grid, there, hostThere}}) {
        SCOPED_TRACE(qPrintable(c.path));
        PaneState &pane = state->pane(c.side);
        QWidget &widget = c.side == BrowserSide::mac ? mac() : android();
        pane.setViewMode(c.mode);
        const auto shows = [&](const QString &path) {
            const bool isListed = waitFor([&] { return pane.path() == path && !pane.isLoading(); });
            settle();
            return isListed;
        };
        const auto browse = [&](const QString &path) {
            c.side == BrowserSide::mac ? state->browseMac(path) : state->browseAndroid(path);
            return shows(path);
        };
        const auto goTo = [&](const QString &path) {
            widget.findChild<FilePaneView *>()->pane().path.onGoTo(path);
            return shows(path);
        };
        const auto bar = [&] { return entriesOf(widget)->verticalScrollBar(); };
        const auto seen = [&] { return itemsOf(widget).value(entriesOf(widget)->rowsInSight().first).name; };
        const auto current = [&] { return entriesOf(widget)->currentIndex().data().toString(); };
        const auto selected = [&] { return namesOf(pane.selectedItems()); };
        const auto openSub = [&] {
            doubleClickEntry(widget, 0);
            EXPECT_TRUE(shows(c.path + u"/sub 050"_s));
            EXPECT_EQ(bar()->value(), 0);
        };

        ASSERT_TRUE(browse(c.path));
        EXPECT_EQ(bar()->value(), 0);
        bar()->setValue(11);
        pane.selectItem(itemsOf(widget).at(3));
        openSub();
        EXPECT_TRUE(pane.selectedIDs().isEmpty());
        press(widget, u"back"_s);
        ASSERT_TRUE(shows(c.path));
        EXPECT_EQ(bar()->value(), 11);
        EXPECT_THAT(selected(), ElementsAre(u"file 002"_s)) << "the folder was opened, not chosen";
        EXPECT_EQ(current(), u"sub 050");

        // Where files have come and gone, it is those that are still there.
        pane.toggleSelection(itemsOf(widget).first());
        bar()->setValue(700);
        const QString top = seen();
        ASSERT_NE(top, itemsOf(widget).first().name);
        EXPECT_TRUE(browse(c.path + u"/sub 050/deeper"_s));
        QFile::remove(c.host + u"/file 002"_s);
        for (int i = 0; i < 40; ++i)
            write(c.host + u"/a %1"_s.arg(i), "x");
        EXPECT_TRUE(goTo(c.path));
        const QStringList listed = namesOf(itemsOf(widget));
        const QRect rect = rectOf(entriesOf(widget), int(listed.indexOf(top)));
        EXPECT_TRUE(rect.top() <= 0 && rect.bottom() + 10 > 0)
            << rect.top() << ", seen " << seen().toStdString();
        EXPECT_THAT(selected(), ElementsAre(u"sub 050"_s));
        QDir(c.host).removeRecursively();
        EXPECT_TRUE(browse(c.path + u"/x"_s));
        QDir(c.host).mkpath(u"x"_s);
        write(c.host + u"/one"_s, "x");
        EXPECT_TRUE(goTo(c.path));
        EXPECT_TRUE(lists(widget, {u"x"_s, u"one"_s})) << "nothing of what was is there";

        // What is opened begins at its top.
        pane.selectAllVisible();
        ASSERT_TRUE(browse(c.path + u"/x"_s));
        ASSERT_TRUE(browse(c.path));
        EXPECT_THAT(selected(), ElementsAre());
    }
    // Not what another phone has under that name.
    state->pane(BrowserSide::android).selectAllVisible();
    browsePhone(u"/sdcard/many/x"_s);
    QDir(phone.otherRoot(u"OTHER"_s)).mkpath(u"many/x"_s);
    phone.setOther(u"OTHER"_s, u"device"_s);
    phone.unplug();
    refresh();
    ASSERT_TRUE(waitFor([&] { return state->device().id == u"OTHER"; }));
    browsePhone(u"/sdcard/many/x"_s);
    press(android(), u"back"_s);
    EXPECT_TRUE(lists(android(), {u"x"_s}));
    EXPECT_TRUE(state->androidSelectedIDs().isEmpty());
}

TEST_F(DualBrowserTests, theSearchFieldFiltersAndSearches) {
    connectPhone();
    auto *field = control<QLineEdit>(android(), u"searchField"_s);
    clickEntry(android(), 0);
    QTest::keyClicks(field, u"NOTE"_s);
    EXPECT_TRUE(lists(android(), {u"note.txt"_s}));
    EXPECT_EQ(text(android(), u"footerTrailing"_s), u"1 of 2 items • 5 bytes");
    press(android(), u"clearSearch"_s);
    EXPECT_TRUE(lists(android(), {u"DCIM"_s, u"note.txt"_s}));
    EXPECT_TRUE(state->androidSelectedIDs().isEmpty()) << "clearing goes through the model";

    QTest::keyClick(control<ScopePicker>(android(), u"scopePicker"_s), Qt::Key_Down);
    QTest::keyClicks(field, u"img"_s);
    EXPECT_TRUE(footerSays(android(), u"Searching device…"_s));
    EXPECT_EQ(text(android(), u"path"_s), u"Search results");
    EXPECT_EQ(control<ColumnButton>(android(), u"nameColumn"_s)->text(), u"Name / Location");
    EXPECT_TRUE(android().findChild<Spinner *>()->isVisible());
    EXPECT_TRUE(footerSays(android(), u"2 results for “img”"_s));
    EXPECT_EQ(FileEntry{itemsOf(android()).first()}.locationLabel(), u"Internal Storage › DCIM › Camera");
    phone.write(u"img"_s, "");
    press(android(), u"refresh"_s);
    EXPECT_TRUE(footerSays(android(), u"3 results for “img”"_s));
    press(android(), u"back"_s);
    EXPECT_TRUE(lists(android(), {u"DCIM"_s, u"note.txt"_s}));
    EXPECT_EQ(field->text(), QString());
    for (const int token : {1, 2}) {
        field->clearFocus();
        state->setAndroidSearchFocusToken(token);
        EXPECT_TRUE(waitFor([&] { return field->hasFocus(); }));
    }
}

TEST_F(DualBrowserTests, theComputersPaneBrowses) {
    connectPhone();
    EXPECT_TRUE(text(mac(), u"footerTrailing"_s).endsWith(u" available"_s));
    const auto shows = [this](const QString &path) {
        return says(mac(), u"path"_s, path) && waitFor([&] { return !state->isLoadingMac(); });
    };
    doubleClickEntry(mac(), 1);
    EXPECT_THAT(desktop.opened, ElementsAre()) << "a file opens from its menu only";
    EXPECT_TRUE(says(mac(), u"footerLeading"_s, u"1 selected"_s));
    doubleClickEntry(mac(), 0);
    EXPECT_TRUE(shows(here(u"sub"_s)));
    press(mac(), u"back"_s);
    EXPECT_TRUE(shows(folder));
    desktop.nextFolder = here(u"sub/deeper"_s);
    press(mac(), u"chooseFolder"_s);
    EXPECT_TRUE(desktop.folderQuestions.value(0).endsWith(folder));
    EXPECT_TRUE(shows(here(u"sub/deeper"_s)));
    desktop.nextText = u"made here"_s;
    press(mac(), u"newFolder"_s);
    EXPECT_TRUE(lists(mac(), {u"made here"_s}));
    press(mac(), u"home"_s);
    EXPECT_TRUE(shows(QDir::homePath()));
    state->browseMac(here(u"not there"_s));
    EXPECT_TRUE(footerSays(mac(), u"Folder not found: "_s + here(u"not there"_s)));
}

TEST_F(DualBrowserTests, whatIsDroppedIsCopied) {
    connectPhone();
    QDir(folder).mkpath(u"into"_s);
    write(here(u"from elsewhere.txt"_s), "text");
    const auto drop = [](QWidget &pane, QMimeData *data, const QString &into) {
        const FilePane &callbacks = pane.findChild<FilePaneView *>()->pane();
        const qsizetype count = callbacks.dropCount(*data, into);
        if (count > 0)
            callbacks.onDrop(*data, into);
        return count;
    };
    QMimeData elsewhere;
    elsewhere.setUrls({QUrl::fromLocalFile(here(u"from elsewhere.txt"_s)), QUrl(u"https://example.org/x"_s)});
    EXPECT_EQ(drop(android(), &elsewhere, u"/sdcard/DCIM"_s), 1) << "an address is no file";
    EXPECT_EQ(drop(mac(), &elsewhere, folder), 0) << "it is there already";
    DraggedEntries note(BrowserSide::android, state->device().id, {fileNamed(u"note.txt"_s)});
    EXPECT_EQ(drop(android(), &note, u"/sdcard/DCIM"_s), 0) << "the phone's own";
    EXPECT_FALSE(note.hasUrls()) << "no other program reaches it";
    FileItem item = fileNamed(u"note.txt"_s);
    item.path = u"/sdcard/note.txt"_s;
    DraggedEntries reachable(BrowserSide::android, state->device().id, {item});
    EXPECT_EQ(drop(mac(), &reachable, here(u"into"_s)), 1);
    EXPECT_TRUE(waitFor([&] { return state->queue().size() == 2 && !state->isTransferring(); }));
    EXPECT_EQ(contents(here(u"into/note.txt"_s)), "hello");
    EXPECT_EQ(phone.read(u"DCIM/from elsewhere.txt"_s), "text");
    DraggedEntries ofAnother(BrowserSide::android, u"shown before"_s, {item});
    EXPECT_EQ(drop(mac(), &ofAnother, here(u"into"_s)), 1);
    EXPECT_EQ(state->queue().first().serial, u"shown before") << "copied from the phone that is shown now";
    phone.unplug();
    refresh();
    EXPECT_EQ(drop(mac(), &reachable, folder), 0) << "there is no phone";
    FileItem subfolder = fileNamed(u"sub"_s);
    subfolder.path = here(u"sub"_s);
    DraggedEntries own(BrowserSide::mac, {}, {subfolder});
    EXPECT_EQ(drop(mac(), &own, here(u"sub"_s)) + drop(mac(), &own, here(u"sub/deeper"_s)), 0)
        << "into itself";
    EXPECT_EQ(drop(mac(), &own, here(u"into"_s)), 1);
    EXPECT_EQ(drop(mac(), &elsewhere, here(u"into"_s)), 1) << "an address is no file";
    EXPECT_TRUE(waitFor([&] { return state->queue().size() == 5 && !state->isTransferring(); }));
    EXPECT_TRUE(QFileInfo(here(u"into/sub/deeper"_s)).isDir());
    EXPECT_EQ(contents(here(u"into/from elsewhere.txt"_s)), "text");
}

TEST(AndroidBrowserPaneTests, backNeverLeavesTheSharedStorage) {
    for (const QString &both :
         u"/sdcard/DCIM/Camera>/sdcard/DCIM /sdcard/DCIM/>/sdcard /sdcard>/sdcard >/sdcard "
         "/>/sdcard /data>/sdcard /storage/emulated/0/Music>/storage/emulated/0 "
         "/storage/emulated/0>/sdcard /storage//1234-ABCD//x>/storage/1234-ABCD"_s.split(u' '))
        EXPECT_EQ(AndroidBrowserPane::parentAndroidPath(both.section(u'>', 0, 0)), both.section(u'>', 1))
            << qPrintable(both);
}

} // namespace
} // namespace vantrel
