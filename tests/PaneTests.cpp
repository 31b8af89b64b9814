#include "Kit/IconButton.h"
#include "Kit/Spinner.h"
#include "Kit/TextLabel.h"
#include "Kit/TextStyle.h"
#include "Kit/ToolTips.h"
#include "MacFiles/MacFileClient.h"
#include "MacFiles/ThisComputer.h"
#include "Records/Identity.h"
#include "Views/AndroidBrowserPane.h"
#include "Views/DualBrowserView.h"
#include "Views/EmptinessView.h"
#include "Views/FileGridCell.h"
#include "Views/FileGridView.h"
#include "Views/FileItemsModel.h"
#include "Views/FilePaneView.h"
#include "Views/FileRow.h"
#include "Views/ScopePicker.h"
#include "Views/SelectAllBox.h"
#include "support/Files.h"
#include "support/WindowFixture.h"

#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPaintEvent>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

void click(QWidget *widget, const QPoint &point) {
    QTest::mouseClick(widget, Qt::LeftButton, {}, point);
}
void click(QWidget *control) {
    click(control, control->rect().center());
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
        pane.searchText = {QString(), [this](const QString &value) {
                               calls.append(u"search "_s + value);
                               pane.searchText->value = value;
                               show();
                           }};
        pane.searchScope = {AndroidSearchScope::thisFolder, [this](AndroidSearchScope scope) {
                                calls.append(u"scope "_s + rawValue(scope));
                                pane.searchScope->value = scope;
                                show();
                            }};
        pane.viewMode = {PaneViewMode::list, [this](PaneViewMode mode) {
                             calls.append(u"mode "_s + rawValue(mode));
                             pane.viewMode->value = mode;
                             show();
                         }};
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
}

TEST_F(FilePaneTests, aClickSelectsOnlyWhatTheFirstClickOfADoubleClickHit) {
    pane.onSelect = [this](const FileItem &) { show(someFiles(6)); };
    show();
    doubleClick(entries()->viewport(), bodyOf(entries(), 0));
    EXPECT_THAT(calls, ElementsAre()) << "opened an entry that was not there at the first click";
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

TEST_F(FilePaneTests, toolsCallTheirCallbacks) {
    const std::tuple<QString, QString, QString> tools[] = {
        {u"back"_s, u"Go back"_s, u"back"_s},
        {u"home"_s, u"Go to Home"_s, u"home"_s},
        {u"chooseFolder"_s, u"Choose folder"_s, u"chooseFolder"_s},
        {u"newFolder"_s, u"New folder"_s, u"newFolder"_s},
        {u"refresh"_s, u"Refresh"_s, u"refresh"_s},
        {u"gridView"_s, u"Grid view"_s, u"mode grid"_s},
        {u"listView"_s, u"List view"_s, u"mode list"_s},
    };
    int left = -1;
    for (const auto &[name, help, call] : tools) {
        SCOPED_TRACE(qPrintable(name));
        auto *tool = control<IconButton>(view, name);
        EXPECT_TRUE(tool->isVisible() && tool->isEnabled());
        EXPECT_EQ(tool->size(), QSize(24, 24));
        EXPECT_EQ(accessible(tool)->text(QAccessible::Name), help);
        EXPECT_TRUE(tool->toolTip().contains(help));
        click(tool);
        EXPECT_THAT(taken(), ElementsAre(call));
        if (name != u"gridView" && name != u"listView") {
            EXPECT_GT(tool->x(), left) << "out of order";
            left = tool->x();
        }
    }
}

TEST_F(FilePaneTests, anAbsentCallbackDisablesOrHidesItsControl) {
    const auto expectState = [this](const QString &names, bool isShown, bool isOn) {
        show();
        for (const QString &name : names.split(u' ')) {
            EXPECT_EQ(control<QWidget>(view, name)->isVisible(), isShown) << qPrintable(name);
            EXPECT_EQ(control<QWidget>(view, name)->isEnabled(), isOn) << qPrintable(name);
        }
    };
    pane.onHome = pane.onNewFolder = {};
    expectState(u"home newFolder"_s, true, false);
    expectState(u"chooseFolder fileList columnSelectAll"_s, true, true);

    control<QWidget>(view, u"back"_s)->setFocus(Qt::TabFocusReason);
    pane.onChooseFolder = pane.onBack = pane.onRefresh = {};
    pane.viewMode.reset();
    expectState(u"back refresh listView gridView"_s, true, false);
    expectState(u"fileList columnSelectAll"_s, true, true);
    EXPECT_TRUE(entries()->hasFocus()) << "the keyboard has left the pane";
    EXPECT_EQ(control<IconButton>(view, u"back"_s)->look().glyph, AppTheme::inkSecondary()) << "looks active";
    EXPECT_EQ(control<IconButton>(view, u"back"_s)->look().disabledOpacity, 0.45);
    for (const QString &name : {u"home"_s, u"chooseFolder"_s, u"newFolder"_s})
        EXPECT_FALSE(control<QWidget>(view, name)->isVisible()) << qPrintable(name);

    pane.searchScope.reset();
    expectState(u"searchField"_s, true, true);
    EXPECT_FALSE(control<QWidget>(view, u"scopePicker"_s)->isVisible());
    pane.searchText.reset();
    pane.onToggleSelectAll = {};
    pane.viewMode = {PaneViewMode::grid, [](PaneViewMode) {}};
    expectState(u"fileGrid"_s, true, true);
    for (const QString &name : {u"searchField"_s, u"gridSelectAll"_s, u"fileList"_s})
        EXPECT_FALSE(control<QWidget>(view, name)->isVisible()) << qPrintable(name);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    EXPECT_EQ(entries()->mapTo(&view, QPoint()).y(),
              control<QWidget>(view, u"title"_s)->parentWidget()->geometry().bottom() + 1)
        << "something is left between header and grid";
}

TEST_P(PaneLayoutTests, selectAllShowsHowMuchIsSelected) {
    const QList<FileItem> all = state.items();
    const FileItem elsewhere = fileNamed(u"elsewhere"_s);
    const std::tuple<const char *, QList<FileItem>, Qt::CheckState> cases[] = {
        {"none", {}, Qt::Unchecked},
        {"not among the items", {elsewhere}, Qt::Unchecked},
        {"the last", {all.last()}, Qt::PartiallyChecked},
        {"the first", {all.first(), elsewhere}, Qt::PartiallyChecked},
        {"all", all, Qt::Checked},
        {"all and more", all + QList{elsewhere}, Qt::Checked},
    };
    auto *box = control<SelectAllBox>(view, isList ? u"columnSelectAll"_s : u"gridSelectAll"_s);
    for (const auto &[what, selected, mark] : cases) {
        SCOPED_TRACE(what);
        select(selected);
        const QString title = mark == Qt::Checked ? u"Deselect all"_s : u"Select all"_s;
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
    EXPECT_TRUE(clear->isVisible());

    // The caret stays where the user put it when the same text is shown again.
    QTest::keyClick(field, Qt::Key_Left);
    show();
    EXPECT_EQ(field->cursorPosition(), 1);

    click(clear);
    EXPECT_THAT(taken(), ElementsAre(u"clearSearch"_s));
    EXPECT_EQ(field->text(), u"ab") << "clearing is the owner's business";
    pane.onClearSearch = {};
    show();
    click(clear);
    EXPECT_THAT(taken(), ElementsAre(u"search "_s));
    EXPECT_EQ(field->text(), QString());
    EXPECT_FALSE(clear->isVisible());

    EXPECT_EQ(accessible(picker)->role(), QAccessible::ComboBox);
    EXPECT_EQ(accessible(picker)->text(QAccessible::Value), u"This folder");
    EXPECT_EQ(accessible(picker)->text(QAccessible::Description), u"Scope");
    QTest::keyClick(picker, Qt::Key_Down);
    EXPECT_THAT(taken(), ElementsAre(u"scope everywhere"_s));
    EXPECT_EQ(accessible(picker)->text(QAccessible::Value), u"Everywhere");
    EXPECT_EQ(field->placeholderText(), u"Search entire device");
    EXPECT_EQ(accessible(field)->text(QAccessible::Name), u"Search entire device");
    pane.searchScope.reset();
    show();
    EXPECT_EQ(field->placeholderText(), u"Search this folder");
}

TEST_F(FilePaneTests, everyChangeOfTheTokenFocusesTheSearchField) {
    auto *field = control<QLineEdit>(view, u"searchField"_s);
    entries()->setFocus();
    show();
    EXPECT_FALSE(field->hasFocus()) << "the first value asks for nothing";
    for (int i = 0; i < 2; ++i) {
        ++pane.focusSearchToken;
        show();
        EXPECT_TRUE(field->hasFocus());
        entries()->setFocus();
        show();
        EXPECT_FALSE(field->hasFocus());
    }
}

TEST_F(FilePaneTests, contextMenusFollowTheFlags) {
    show({fileNamed(u"folder"_s, true), fileNamed(u"file"_s)});
    const auto titles = [&](int row) { return menuTitles(entries(), bodyOf(entries(), row)); };
    EXPECT_THAT(titles(0), ElementsAre()) << "no flag, no menu";

    pane.showsOpenContextMenu = true;
    show();
    EXPECT_THAT(titles(1), ElementsAre(u"Open"_s));
    EXPECT_EQ(menuAt(entries(), QPoint(200, entries()->viewport()->height() - 5)), nullptr) << "no entry";
    choose(menu(1), u"Open"_s);
    EXPECT_THAT(taken(), ElementsAre(u"open file"_s));

    pane.showsMacContextMenu = true;
    show();
    EXPECT_THAT(titles(1), ElementsAre(u"Open"_s, revealTitle(), u"-"_s, u"Copy Path"_s));
    choose(menu(1), u"Open"_s);
    choose(menu(1), revealTitle());
    choose(menu(0), u"Copy Path"_s);
    EXPECT_THAT(taken(), ElementsAre());
    choose(menu(0), u"Open"_s);
    EXPECT_THAT(taken(), ElementsAre(u"open folder"_s));
    EXPECT_THAT(desktop.opened, ElementsAre(u"/home/me/file"_s));
    EXPECT_THAT(desktop.revealed, ElementsAre(u"/home/me/file"_s));
    EXPECT_THAT(desktop.copied, ElementsAre(u"/home/me/folder"_s));
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

TEST_F(FilePaneTests, geometryOfTheGridIsCentredColumns) {
    showAs(PaneViewMode::grid);
    show(someFiles(100));
    const int height = FileGridCellGeometry::height();
    for (const int width : {view.minimumSizeHint().width(), 333, 334, 400, 440, 777, 1500}) {
        SCOPED_TRACE(width);
        view.resize(width, 400);
        const FileItemsView *tiles = entries();
        const QWidget *viewport = tiles->viewport();
        const FileGridGeometry grid(viewport->width());
        const QSize cell(grid.columnWidth, height);
        EXPECT_EQ(rectOf(tiles, 0), QRect(QPoint(grid.left, 12), cell));
        EXPECT_EQ(rectOf(tiles, 1).left(), grid.left + grid.columnWidth + 10);
        EXPECT_EQ(rectOf(tiles, grid.columns - 1).top(), 12);
        EXPECT_EQ(rectOf(tiles, grid.columns), QRect(QPoint(grid.left, 12 + height + 10), cell));
        EXPECT_EQ(tiles->indexAt(rectOf(tiles, 4).center()).row(), 4);
        EXPECT_FALSE(tiles->indexAt(rectOf(tiles, 0).bottomRight() + QPoint(5, 0)).isValid()) << "a gap";
        tiles->verticalScrollBar()->setValue(tiles->verticalScrollBar()->maximum());
        EXPECT_EQ(rectOf(tiles, 99).bottom() + 1, viewport->height() - 12);
        tiles->verticalScrollBar()->setValue(0);
    }
    show(someFiles(3));
    EXPECT_EQ(entries()->verticalScrollBar()->maximum(), 0);
}

/// Notes which entries a view is asked to paint, and where.
class PaintedEntries : public QObject {
public:
    explicit PaintedEntries(FileItemsView *entries) : m_entries(entries) {
        entries->viewport()->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override {
        if (event->type() != QEvent::Paint)
            return false;
        const QRegion region = static_cast<QPaintEvent *>(event)->region();
        m_region += region;
        for (int row = 0; row < m_entries->model()->rowCount(); ++row) {
            // The strip below the scroll bar is painted with the bar.
            if (region.intersects(
                    rectOf(m_entries, row).adjusted(0, 0, -m_entries->verticalScrollBar()->width(), 0)))
                m_painted.insert(row);
        }
        return false;
    }

    /// Those since the last call, once everything that was due has been painted.
    QList<int> take() {
        QTest::qWait(0);
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QList<int> painted(m_painted.begin(), m_painted.end());
        std::sort(painted.begin(), painted.end());
        m_painted.clear();
        m_region = {};
        return painted;
    }
    [[nodiscard]] bool covered(const QRect &rect) const {
        return QRegion(rect).subtracted(m_region).isEmpty();
    }

private:
    FileItemsView *m_entries;
    QRegion m_region;
    QSet<int> m_painted;
};

TEST_P(PaneLayoutTests, exactlyTheEntriesThatLookDifferentAreRepainted) {
    show(someFiles(200));
    PaintedEntries painted(entries());
    painted.take();

    show();
    EXPECT_THAT(painted.take(), ElementsAre()) << "nothing changed";
    select({item(1), item(3), item(150)});
    EXPECT_THAT(painted.take(), ElementsAre(1, 3));
    select({item(1)});
    EXPECT_THAT(painted.take(), ElementsAre(3));

    // The same entries with another value: only the list shows dates.
    QList<FileItem> items = state.items();
    items[2].sizeBytes = 7;
    items[4].modifiedAt = QDateTime::currentDateTime();
    items[0].path += u"x"_s;
    show(items);
    EXPECT_EQ(painted.take(), isList ? QList<int>({2, 4}) : QList<int>({2}));

    pane.footerTrailing += u"!"_s;
    pane.searchScope->value = AndroidSearchScope::everywhere;
    show();
    EXPECT_THAT(painted.take(), ElementsAre()) << "other parts of the pane changed";

    // An entry leaves from the middle: those after it move up, those before it stay.
    items.removeAt(4);
    show(items);
    EXPECT_EQ(painted.take().value(0), 4);
    items.insert(4, fileNamed(u"new"_s));
    show(items);
    EXPECT_EQ(painted.take().value(0), 4);

    select(items);
    const QList<int> screen = painted.take();
    EXPECT_LT(screen.size(), 40) << "what is out of sight was painted";
    EXPECT_FALSE(screen.contains(1)) << "it was selected already";
    EXPECT_TRUE(screen.contains(0) && screen.contains(2));

    // Listed again, with other identities.
    select({});
    painted.take();
    for (FileItem &listed : items)
        listed.id = newIdentity();
    items.last().name += u'x';
    show(items);
    EXPECT_THAT(painted.take(), ElementsAre()) << "it looks as before";
    items.resize(7);
    show(items);
    painted.take();
    items += someFiles(2);
    show(items);
    EXPECT_THAT(painted.take(), ElementsAre(7, 8));
    click(entries()->viewport(), bodyOf(entries(), 5));
    click(entries()->viewport(), bodyOf(entries(), 2));
    EXPECT_THAT(painted.take(), ElementsAre()) << "a click alone changes nothing";
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
    PaintedEntries painted(entries());
    show(state.items().first(2));
    EXPECT_TRUE(waitFor([&] { return painted.covered(third); }));
    EXPECT_THAT(painted.take(), ElementsAre()) << "of those that stay";
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
    // After a click the arrow keys scroll, and Space is nobody's.
    click(list->viewport(), bodyOf(list, 0));
    calls.clear();
    ASSERT_TRUE(list->hasFocus());
    press(Qt::Key_Down);
    EXPECT_GT(list->verticalScrollBar()->value(), 0);
    EXPECT_EQ(press(Qt::Key_Space), -1);
    EXPECT_EQ(press(Qt::Key_Return), -1);
    EXPECT_THAT(calls, ElementsAre());

    list->scrollToTop();
    list->clearFocus();
    list->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(list->focusedIndex().row(), 0);
    EXPECT_EQ(press(Qt::Key_Up), 0);
    EXPECT_EQ(press(Qt::Key_Down), line);
    EXPECT_EQ(press(Qt::Key_Space), line);
    EXPECT_EQ(press(Qt::Key_Return), line);
    EXPECT_EQ(press(Qt::Key_Delete), line);
    EXPECT_THAT(calls, ElementsAre(u"toggle file %1.txt"_s.arg(line)));
    EXPECT_EQ(press(Qt::Key_End), 99);
    EXPECT_TRUE(list->viewport()->rect().contains(rectOf(list, 99)));
    EXPECT_LT(press(Qt::Key_PageUp), 99 - line);
    EXPECT_EQ(press(Qt::Key_Home), 0);
    EXPECT_EQ(press(Qt::Key_Right), isList ? 0 : 1);
    EXPECT_EQ(press(Qt::Key_Right, line), isList ? 0 : line + 1) << "over the edge";
    EXPECT_EQ(press(Qt::Key_Left, 2), isList ? 0 : line - 1);
    list->clearFocus();
    EXPECT_EQ(list->focusedIndex().row(), -1);
}

TEST_F(FilePaneTests, theFocusFollowsIntoTheOtherLayout) {
    entries()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(entries(), Qt::Key_Down);
    for (const PaneViewMode mode : {PaneViewMode::grid, PaneViewMode::list}) {
        showAs(mode);
        EXPECT_TRUE(entries()->hasFocus());
        EXPECT_EQ(entries()->focusedIndex().row(), 1);
    }
    click(entries()->viewport(), bodyOf(entries(), 2));
    showAs(PaneViewMode::grid);
    EXPECT_TRUE(entries()->hasFocus());
    EXPECT_FALSE(entries()->focusedIndex().isValid()) << "the mouse has no ring";
}

TEST_P(PaneLayoutTests, aCutNameShowsInFullUnderTheMouse) {
    const QString longName = QString(80, u'w') + u"<b>.txt"_s;
    show({fileNamed(longName), fileNamed(u"short"_s)});
    QWidget *viewport = entries()->viewport();
    const auto rest = [&](int row) {
        const QPoint point = bodyOf(entries(), row);
        QHelpEvent event(QEvent::ToolTip, point, viewport->mapToGlobal(point));
        QCoreApplication::sendEvent(viewport, &event);
    };
    rest(0);
    EXPECT_EQ(ToolTips::text(), longName);
    rest(1);
    EXPECT_TRUE(waitFor([] { return ToolTips::text().isEmpty(); })) << "it sticks to another entry";
}

TEST_F(FilePaneTests, tabReachesEveryControlInReadingOrder) {
    pane.searchText->value = u"x"_s;
    show();
    QStringList reached;
    control<QWidget>(view, u"back"_s)->setFocus(Qt::TabFocusReason);
    for (int i = 0; i < 12; ++i) {
        reached.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(reached, ElementsAre(u"back"_s, u"home"_s, u"chooseFolder"_s, u"newFolder"_s, u"refresh"_s,
                                     u"listView"_s, u"gridView"_s, u"searchField"_s, u"scopePicker"_s,
                                     u"clearSearch"_s, u"columnSelectAll"_s, u"fileList"_s));
}

TEST_P(PaneLayoutTests, assistiveTechnologyFindsAHundredThousandEntries) {
    show(someFiles(100'000));
    select({item(70'000)});
    QAccessibleInterface *list = accessible(entries());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->role(), QAccessible::List);
    EXPECT_EQ(list->text(QAccessible::Name), u"Title");
    ASSERT_EQ(list->childCount(), 100'000);
    EXPECT_EQ(list->child(100'000), nullptr);

    QAccessibleInterface *entry = list->child(70'000);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->role(), QAccessible::ListItem);
    EXPECT_EQ(entry->text(QAccessible::Name), u"file 70000.txt");
    EXPECT_EQ(entry->text(QAccessible::Description), u"1 KB, —");
    EXPECT_TRUE(entry->state().checkable && entry->state().checked && entry->state().offscreen);
    EXPECT_TRUE(entry->state().selectable && entry->state().selected);
    EXPECT_EQ(list->indexOfChild(entry), 70'000);
    EXPECT_EQ(list->child(70'000), entry) << "made twice";

    QAccessibleInterface *first = list->child(0);
    EXPECT_FALSE(first->state().checked || first->state().selected || first->state().offscreen);
    EXPECT_EQ(list->childAt(first->rect().center().x(), first->rect().center().y()), first);
    EXPECT_EQ(first->rect().topLeft(), entries()->viewport()->mapToGlobal(rectOf(entries(), 0).topLeft()));
    const QString toggle = QAccessibleActionInterface::toggleAction();
    first->actionInterface()->doAction(toggle);
    entry->actionInterface()->doAction(toggle);
    EXPECT_THAT(calls, ElementsAre(u"toggle file 0.txt"_s, u"toggle file 70000.txt"_s));
    EXPECT_TRUE(entry->state().selected) << "the pane decides";
    calls.clear();
    entry->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(calls, ElementsAre(u"open file 70000.txt"_s));

    entries()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(entries(), Qt::Key_End);
    EXPECT_TRUE(list->child(99'999)->state().focused);
    EXPECT_FALSE(list->child(99'999)->state().offscreen);
    EXPECT_EQ(list->focusChild(), list->child(99'999));
    QTest::keyClick(entries(), Qt::Key_Home);
    // An entry that is gone says so.
    QAccessibleInterface *last = accessible(entries())->child(99'999);
    show(someFiles(2));
    EXPECT_EQ(accessible(entries())->childCount(), 2);
    EXPECT_FALSE(last->isValid());
    EXPECT_EQ(accessible(&view)->role(), QAccessible::Pane);
    EXPECT_EQ(accessible(&view)->text(QAccessible::Name), u"Title");
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
    const QString emoji = u"😀"_s.repeated(60);
    const QSize smallest = view.minimumSizeHint();
    const QSize hint = view.sizeHint();
    EXPECT_LE(smallest.width(), 390) << "two panes must fit into the smallest window";
    EXPECT_LE(smallest.height(), 320);
    const QString texts[] = {QString(255, u'w'), emoji, u"שלום עולם.pdf"_s,
                             u"/a/very/long/path"_s.repeated(40), u"line of an error\n"_s.repeated(10)};
    for (const QString &text : texts) {
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
    // A short text beside a long one is shown in full.
    pane.footerLeading = u"2 selected (12.4 MB)"_s;
    show();
    view.resize(smallest);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    EXPECT_FALSE(control<TextLabel>(view, u"footerLeading"_s)->isElided());
    EXPECT_TRUE(control<TextLabel>(view, u"footerTrailing"_s)->isElided());
    EXPECT_GT(control<TextLabel>(view, u"footerTrailing"_s)->width(), 60);
    // Of a long error its end is seen, which is the reason.
    const auto errorFor = [this](const QString &reason) {
        pane.footerTrailing = u"ls: /sdcard/"_s + QString(200, u'p') + u": "_s + reason;
        show();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        return control<TextLabel>(view, u"footerTrailing"_s)->grab().toImage();
    };
    EXPECT_NE(errorFor(u"Permission denied"_s), errorFor(u"Input/output error"_s));
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
        state->browseMac(folder);
        ASSERT_TRUE(lists(android(), {u"DCIM"_s, u"note.txt"_s}));
        ASSERT_TRUE(lists(mac(), {u"sub"_s, u"local.txt"_s}));
        ASSERT_TRUE(waitFor([this] { return !state->isLoadingAndroid() && !state->isLoadingMac(); }));
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
    EXPECT_EQ(accessible(button->parentWidget()->parentWidget())->text(QAccessible::Name),
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
    EXPECT_EQ(toMac->size(), QSize(34, 34));
    EXPECT_EQ(toAndroid->y() - toMac->geometry().bottom() - 1, 10);

    connectPhone();
    EXPECT_FALSE(toMac->isEnabled() || toAndroid->isEnabled());
    clickEntry(mac(), 1);
    EXPECT_TRUE(waitFor([&] { return toAndroid->isEnabled(); }));
    EXPECT_FALSE(toMac->isEnabled());
    EXPECT_EQ(toAndroid->look().fill, AppTheme::accent());
    EXPECT_EQ(toAndroid->look().strokeWidth, 0);
    EXPECT_EQ(toMac->look().fill, AppTheme::surface());
    EXPECT_EQ(toMac->look().strokeWidth, 1);
    clickEntry(android(), 1);
    EXPECT_TRUE(waitFor([&] { return toMac->isEnabled(); }));
    click(toMac);
    EXPECT_TRUE(waitFor([&] { return QFile::exists(here(u"note.txt"_s)) && !state->isTransferring(); }));

    phone.unplug();
    state->refreshDevice(AppState::Spinner::hidden);
    EXPECT_TRUE(waitFor([&] { return !state->device().isConnected && !toAndroid->isEnabled(); }));
}

TEST_F(DualBrowserTests, keysActOnTheFocusedPane) {
    connectPhone();
    using Counts = std::pair<qsizetype, qsizetype>;
    const auto selected = [this] {
        return Counts(state->androidSelectedIDs().size(), state->macSelectedIDs().size());
    };
    const auto press = [](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    };
    clickEntry(mac(), 0);
    EXPECT_EQ(state->focusedBrowserSide(), BrowserSide::mac);
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(selected(), Counts(0, 2));
    clickEntry(android(), 0);
    EXPECT_EQ(state->focusedBrowserSide(), BrowserSide::android);
    press(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(selected(), Counts(2, 2));
    press(Qt::Key_Escape, Qt::AltModifier);
    EXPECT_EQ(selected(), Counts(0, 2));
    press(Qt::Key_A);
    press(Qt::Key_Return);
    EXPECT_EQ(selected(), Counts(0, 2)) << "other keys pass";

    // In the search field the keys are the field's.
    clickEntry(android(), 1);
    auto *field = control<QLineEdit>(android(), u"searchField"_s);
    field->setFocus();
    QTest::keyClicks(field, u"note"_s);
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(field->selectedText(), u"note");
    press(Qt::Key_Escape);
    EXPECT_EQ(selected(), Counts(1, 2));

    // An open menu keeps Escape for itself.
    QMenu *menu = menuAt(entriesOf(mac()), bodyOf(entriesOf(mac()), 0));
    ASSERT_NE(menu, nullptr);
    QTest::keyClick(menu, Qt::Key_Escape);
    EXPECT_FALSE(menu->isVisible());
    EXPECT_EQ(selected(), Counts(1, 2));
}

TEST_F(DualBrowserTests, keysAreConsumedOnlyWhileTheViewIsShown) {
    connectPhone();
    const auto outcome = [this](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        const QKeyEvent event(QEvent::KeyPress, key, modifiers);
        return DualBrowserView::handleKeyEvent(event, *state);
    };
    using Outcome = DualBrowserView::KeyOutcome;
    entriesOf(android())->setFocus();
    EXPECT_EQ(outcome(Qt::Key_Escape), Outcome::consumed) << "with nothing to clear, too";
    EXPECT_EQ(outcome(Qt::Key_A, Qt::ControlModifier), Outcome::consumed);
    EXPECT_EQ(outcome(Qt::Key_B, Qt::ControlModifier), Outcome::passedOn);
    EXPECT_EQ(state->androidSelectedIDs().size(), 2);

    // The filter sees keys of any window, and none once the view is hidden.
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
    EXPECT_LE(
        (spinner->mapTo(&android(), spinner->rect().center()) - android().rect().center()).manhattanLength(),
        2);
    phone.reset(u"ls.delay"_s);
    EXPECT_TRUE(footerSays(android(), u"1 items • Zero KB"_s));
    EXPECT_FALSE(spinner->isVisible());
    EXPECT_EQ(text(android(), u"path"_s), u"Internal Storage › DCIM");

    press(android(), u"back"_s);
    EXPECT_TRUE(lists(android(), {u"DCIM"_s, u"note.txt"_s}));
    press(android(), u"back"_s);
    EXPECT_EQ(state->androidCurrentPath(), u"/sdcard");
    EXPECT_TRUE(waitFor([&] { return !state->isLoadingAndroid(); }));
    phone.write(u"new.txt"_s, "");
    press(android(), u"refresh"_s);
    EXPECT_TRUE(lists(android(), {u"DCIM"_s, u"new.txt"_s, u"note.txt"_s}));

    phone.set(u"pull.delay"_s, "0.3");
    choose(menuAt(entriesOf(android()), bodyOf(entriesOf(android()), 2)), u"Open"_s);
    EXPECT_TRUE(footerSays(android(), u"Opening…"_s));
    EXPECT_TRUE(spinner->isVisible());
    EXPECT_TRUE(waitFor([&] { return desktop.opened.size() == 1; }));
    EXPECT_TRUE(desktop.opened.first().endsWith(u"note.txt"_s));

    phone.deny(u"DCIM"_s);
    doubleClickEntry(android(), 0);
    EXPECT_TRUE(footerSays(android(), u"ls: /sdcard/DCIM/: Permission denied"_s));
    EXPECT_TRUE(lists(android(), {}));
}

TEST_F(DualBrowserTests, theSearchFieldFiltersAndSearches) {
    connectPhone();
    auto *field = control<QLineEdit>(android(), u"searchField"_s);
    clickEntry(android(), 0);
    QTest::keyClicks(field, u"NOTE"_s);
    EXPECT_TRUE(lists(android(), {u"note.txt"_s}));
    EXPECT_EQ(text(android(), u"footerTrailing"_s), u"1 of 2 items • 5 bytes");
    EXPECT_EQ(text(android(), u"path"_s), u"Internal Storage");
    EXPECT_EQ(state->androidSelectedIDs().size(), 1);
    press(android(), u"clearSearch"_s);
    EXPECT_TRUE(lists(android(), {u"DCIM"_s, u"note.txt"_s}));
    EXPECT_TRUE(state->androidSelectedIDs().isEmpty()) << "clearing goes through the model";

    // The model is told of every change of the text and of the scope.
    QTest::keyClick(control<ScopePicker>(android(), u"scopePicker"_s), Qt::Key_Down);
    QTest::keyClicks(field, u"img"_s);
    EXPECT_TRUE(footerSays(android(), u"Searching device…"_s));
    EXPECT_EQ(text(android(), u"path"_s), u"Search results");
    EXPECT_EQ(text(android(), u"nameColumn"_s), u"Name / Location");
    EXPECT_TRUE(android().findChild<Spinner *>()->isVisible());
    EXPECT_TRUE(footerSays(android(), u"2 results for “img”"_s));
    EXPECT_EQ(FileEntry{itemsOf(android()).first()}.locationLabel(), u"Internal Storage › DCIM › Camera");
    phone.write(u"img"_s, "");
    press(android(), u"refresh"_s);
    EXPECT_TRUE(footerSays(android(), u"3 results for “img”"_s));
    press(android(), u"back"_s);
    EXPECT_TRUE(lists(android(), {u"DCIM"_s, u"note.txt"_s}));
    EXPECT_EQ(field->text(), QString());
    EXPECT_EQ(text(android(), u"path"_s), u"Internal Storage");

    field->clearFocus();
    state->setAndroidSearchFocusToken(1);
    EXPECT_TRUE(waitFor([&] { return field->hasFocus(); }));
}

TEST_F(DualBrowserTests, theComputersPaneBrowses) {
    connectPhone();
    EXPECT_TRUE(text(mac(), u"footerTrailing"_s).endsWith(u" available"_s));
    const auto shows = [this](const QString &path) {
        return says(mac(), u"path"_s, path) && waitFor([&] { return !state->isLoadingMac(); });
    };
    EXPECT_TRUE(shows(folder));

    doubleClickEntry(mac(), 1);
    EXPECT_THAT(desktop.opened, ElementsAre()) << "a file opens from its menu only";
    EXPECT_FALSE(state->isLoadingMac());
    EXPECT_TRUE(says(mac(), u"footerLeading"_s, u"1 selected"_s));

    doubleClickEntry(mac(), 0);
    EXPECT_TRUE(shows(here(u"sub"_s)));
    EXPECT_TRUE(lists(mac(), {u"deeper"_s}));
    press(mac(), u"back"_s);
    EXPECT_TRUE(shows(folder));

    press(mac(), u"chooseFolder"_s);
    EXPECT_TRUE(waitFor([&] { return desktop.folderQuestions.size() == 1; }));
    EXPECT_TRUE(desktop.folderQuestions.first().endsWith(folder));
    desktop.nextFolder = here(u"sub/deeper"_s);
    press(mac(), u"chooseFolder"_s);
    EXPECT_TRUE(shows(here(u"sub/deeper"_s)));

    desktop.nextText = u"made here"_s;
    press(mac(), u"newFolder"_s);
    EXPECT_TRUE(lists(mac(), {u"made here"_s}));
    press(mac(), u"home"_s);
    EXPECT_TRUE(shows(QDir::homePath()));

    state->browseMac(here(u"not there"_s));
    EXPECT_TRUE(footerSays(mac(), u"Folder not found: "_s + here(u"not there"_s)));
}

TEST_F(DualBrowserTests, eachPaneHasItsOwnLayoutAndSelection) {
    connectPhone();
    press(mac(), u"gridView"_s);
    EXPECT_TRUE(waitFor([&] { return control<FileItemsView>(mac(), u"fileGrid"_s)->isVisible(); }));
    EXPECT_TRUE(control<FileItemsView>(android(), u"fileList"_s)->isVisible());

    auto *box = control<SelectAllBox>(mac(), u"gridSelectAll"_s);
    click(box);
    EXPECT_EQ(state->focusedBrowserSide(), BrowserSide::mac);
    EXPECT_TRUE(waitFor([&] { return box->checkState() == Qt::Checked; }));
    click(entriesOf(mac())->viewport(), markOf(entriesOf(mac()), 0));
    EXPECT_TRUE(waitFor([&] { return box->checkState() == Qt::PartiallyChecked; }));
    EXPECT_TRUE(state->androidSelectedIDs().isEmpty());

    QWidget *viewport = entriesOf(android())->viewport();
    click(viewport, viewport->rect().bottomLeft() + QPoint(50, -5));
    EXPECT_EQ(state->focusedBrowserSide(), BrowserSide::android);
}

TEST(AndroidBrowserPaneTests, backNeverLeavesTheSharedStorage) {
    const std::pair<QString, QString> cases[] = {
        {u"/sdcard/DCIM/Camera"_s, u"/sdcard/DCIM"_s},
        {u"/sdcard/DCIM/"_s, u"/sdcard"_s},
        {u"/sdcard"_s, u"/sdcard"_s},
        {QString(), u"/sdcard"_s},
        {u"/"_s, u"/sdcard"_s},
        {u"/data"_s, u"/sdcard"_s},
        {u"/storage/emulated/0/Music"_s, u"/storage/emulated/0"_s},
        {u"/storage/emulated/0"_s, u"/sdcard"_s},
        {u"/storage//1234-ABCD//x"_s, u"/storage/1234-ABCD"_s},
    };
    for (const auto &[path, parent] : cases)
        EXPECT_EQ(AndroidBrowserPane::parentAndroidPath(path), parent) << qPrintable(path);
}

} // namespace
} // namespace vantrel
