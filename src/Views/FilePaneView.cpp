#include "Views/FilePaneView.h"

#include "Kit/Accessibility.h"
#include "Kit/Boxes.h"
#include "Kit/Canvas.h"
#include "Kit/Focus.h"
#include "Kit/IconButton.h"
#include "Kit/Shapes.h"
#include "Kit/TextField.h"
#include "Kit/TextLabel.h"
#include "MacFiles/Desktop.h"
#include "State/PaneState.h"
#include "Views/ColumnButton.h"
#include "Views/EmptinessView.h"
#include "Views/FileContextMenu.h"
#include "Views/FileGridView.h"
#include "Views/FileItemsModel.h"
#include "Views/FileListView.h"
#include "Views/FileRow.h"
#include "Views/PathBar.h"
#include "Views/ScopePicker.h"
#include "Views/SelectAllBox.h"

#include <QDragMoveEvent>
#include <QGridLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QSlider>

namespace vantrel {

namespace {

constexpr double cornerRadius = 10;
constexpr int border = 1;
constexpr int inset = int(FileRowGeometry::inset);
constexpr QSize toolSize(24, 24);
constexpr double toolRadius = 5;

constexpr TextStyle columnStyle{10.5, Weight::semibold};

IconButton::Look toolLook(const QString &symbol) {
    return {.symbol = {symbol, 11, Weight::semibold}};
}

/// The sign in front of the search field; assistive technology hears the field's own name.
QWidget *searchGlyph() {
    const Symbol symbol{QStringLiteral("magnifyingglass"), 12, Weight::semibold};
    auto *glyph = new Canvas([symbol](QPainter &painter, const QRectF &rect) {
        symbol.paint(painter, rect, AppTheme::inkTertiary());
    });
    glyph->setFixedSize(symbol.naturalSize().toSize());
    return glyph;
}

/// A widget with a row of controls in it.
QWidget *barOf(int vertical, int spacing, std::initializer_list<BoxItem> controls) {
    auto *bar = new QWidget;
    bar->setLayout(rowOf(spacing, controls, {inset, vertical, inset, vertical}));
    return bar;
}

/// A bar and its line, one below the other.
QWidget *stackOf(QWidget *upper, QWidget *lower) {
    auto *stack = new QWidget;
    stack->setLayout(columnOf(0, {upper, lower}));
    return stack;
}

template <typename... Arguments>
void call(const std::function<void(Arguments...)> &callback,
          const std::type_identity_t<Arguments> &...arguments) {
    // A copy: what is called may give the pane other callbacks.
    if (const auto action = callback)
        action(arguments...);
}

} // namespace

// -- Building

FilePaneView::FilePaneView(const PaneState &state, QWidget *parent)
    : QWidget(parent), m_state(state), m_items(new FileItemsModel(state, this)) {
    auto *selection = new FileSelectionModel(m_items, this);
    m_header = makeHeader();
    m_searchBar = makeSearchBar();
    m_columnHeaders = makeColumnHeaders();
    m_gridBar = makeGridSelectAllBar();
    m_list = named(QStringLiteral("fileList"), new FileListView(m_items, selection));
    m_grid = named(QStringLiteral("fileGrid"), new FileGridView(m_items, selection));
    m_emptiness = new EmptinessView;
    connect(m_emptiness, &EmptinessView::acted, this, [this] {
        if (const QString command = m_emptiness->emptiness().command; !command.isEmpty())
            m_pane.desktop->copyText(command);
        else
            call(m_pane.onTryAgain);
    });
    m_footer = makeFooter();
    m_list->viewport()->installEventFilter(this);

    const auto toggle = [this](const FileItem &item) { call(m_pane.onToggle, item); };
    connect(selection, &FileSelectionModel::toggled, this, toggle);
    connect(m_grid, &FileGridView::tileSizeStepped, this, [this](int steps) {
        if (m_pane.tileSize)
            setTileSize(m_pane.tileSize->value + steps * TileSize::step);
    });
    for (FileItemsView *view : {m_list, static_cast<FileItemsView *>(m_grid)}) {
        connect(view, &FileItemsView::toggled, this, toggle);
        connect(view, &FileItemsView::selected, this, &FilePaneView::select);
        connect(view, &FileItemsView::ranged, this, [this](const QList<FileItem> &items, bool isSelected) {
            call(m_pane.onSelectRange, items, isSelected);
        });
        connect(view, &FileItemsView::opened, this, &FilePaneView::open);
        connect(view, &FileItemsView::dragged, this,
                [this](const FileItem &item) { call(m_pane.onDrag, item); });
        connect(view, &FileItemsView::contextMenuRequested, this, &FilePaneView::showContextMenu);
        connect(view, &FileItemsView::placeChanged, this,
                [this, view] { call(m_pane.onPlace, view->place()); });
    }

    setAcceptDrops(true);
    // Tab comes to the entries first, which is where people want to go, and then to what is around them.
    for (QWidget *first : std::initializer_list<QWidget *>{m_list, m_grid, m_emptiness})
        first->setParent(this);
    auto *place = new QGridLayout;
    for (QWidget *shown : std::initializer_list<QWidget *>{m_list, m_grid, m_emptiness})
        place->addWidget(shown, 0, 0);
    setLayout(columnOf(0, {m_header, m_searchBar, m_columnHeaders, m_gridBar, {place, 1}, m_footer},
                       {border, border, border, border}));
}

QWidget *FilePaneView::makeHeader() {
    m_title = named(QStringLiteral("title"), new TextLabel({13, Weight::semibold}, AppTheme::ink()));
    m_path = new PathBar;
    connect(m_path, &PathBar::edited, this, &FilePaneView::takeFocus);
    const auto makeTool = [this](const char *name, const QString &symbol, const char *help, auto action) {
        auto *tool = named(QLatin1String(name), new IconButton(toolSize, toolRadius));
        tool->setLook(toolLook(symbol));
        tool->setHelp(QLatin1String(help));
        connect(tool, &IconButton::clicked, this, action);
        return tool;
    };
    using Action = std::function<void()> FilePane::*;
    const auto action = [&](const char *name, const QString &symbol, const char *help, Action act) {
        auto *tool = makeTool(name, symbol, help, [this, act] { call(m_pane.*act); });
        m_actions.append({tool, act});
        return tool;
    };
    const auto mode = [&](const char *name, const QString &symbol, const char *help, PaneViewMode shown) {
        auto *tool = makeTool(name, symbol, help, [this, shown] {
            if (m_pane.viewMode)
                call(m_pane.viewMode->set, shown);
        });
        tool->setCheckable(true);
        tool->setHelp(QLatin1String(help), QAccessible::RadioButton);
        return tool;
    };
    auto *back = m_back = action("back", backChevron(), "Go back", &FilePane::onBack);
    auto *home = action("home", QStringLiteral("house"), "Go to Home", &FilePane::onHome);
    auto *choose =
        action("chooseFolder", QStringLiteral("folder"), "Choose folder", &FilePane::onChooseFolder);
    auto *create =
        action("newFolder", QStringLiteral("folder.badge.plus"), "New folder", &FilePane::onNewFolder);
    auto *refresh = action("refresh", QStringLiteral("arrow.clockwise"), "Refresh", &FilePane::onRefresh);
    m_placeTools = {home, choose};
    m_newFolder = create;
    m_listTool = mode("listView", QStringLiteral("list.bullet"), "List view", PaneViewMode::list);
    m_gridTool = mode("gridView", QStringLiteral("square.grid.2x2"), "Grid view", PaneViewMode::grid);
    m_tileSlider = makeTileSlider();
    return barOf(10, 8,
                 {{columnOf(2, {m_title, m_path}), 1},
                  back,
                  home,
                  choose,
                  create,
                  refresh,
                  m_tileSlider,
                  m_listTool,
                  m_gridTool});
}

QSlider *FilePaneView::makeTileSlider() {
    constexpr int width = 56;
    auto *slider = named(QStringLiteral("tileSize"), new QSlider(Qt::Horizontal));
    slider->setFixedSize(width, toolSize.height());
    slider->setRange(TileSize::least, TileSize::most);
    slider->setSingleStep(TileSize::step);
    slider->setPageStep(TileSize::step);
    slider->setFocusPolicy(Qt::TabFocus);
    slider->setToolTip(QStringLiteral("Size of the tiles"));
    setAccessibleTexts(slider, QStringLiteral("Size of the tiles"),
                       QStringLiteral("How large pictures are in the grid"));
    connect(slider, &QSlider::valueChanged, this, [this, slider](int size) {
        slider->setValue(TileSize::nearest(size)); // from step to step, also while it is dragged
        setTileSize(slider->value());
    });
    return slider;
}

void FilePaneView::setTileSize(int size) {
    const int nearest = TileSize::nearest(size);
    if (m_pane.tileSize && m_pane.tileSize->value != nearest)
        call(m_pane.tileSize->set, nearest);
}

QWidget *FilePaneView::makeSearchBar() {
    auto *bar = new QWidget;
    // Before the field is there: made with another font, it would open that one first.
    constexpr TextStyle style{12.5, Weight::medium};
    bar->setFont(style.font());
    m_searchField = named(QStringLiteral("searchField"), new TextField(style, bar));
    m_scopePicker = named(QStringLiteral("scopePicker"), new ScopePicker);
    m_clearSearch = named(QStringLiteral("clearSearch"), new IconButton({18, 18}, IconButton::circle));
    m_clearSearch->setLook({.symbol = {QStringLiteral("xmark.circle.fill"), 12, Weight::semibold},
                            .glyph = AppTheme::inkTertiary()});
    m_clearSearch->setHelp(QStringLiteral("Clear search"));
    bar->setLayout(
        rowOf(8, {searchGlyph(), {m_searchField, 1}, m_scopePicker, m_clearSearch}, {inset, 8, inset, 8}));

    connect(m_searchField, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (m_pane.searchText && m_pane.searchText->value != text)
            call(m_pane.searchText->set, text);
    });
    connect(m_scopePicker, &ScopePicker::scopeChosen, this, [this](AndroidSearchScope scope) {
        if (m_pane.searchScope)
            call(m_pane.searchScope->set, scope);
    });
    connect(m_clearSearch, &IconButton::clicked, this, &FilePaneView::clearSearch);
    return stackOf(bar, new Divider);
}

ColumnButton *FilePaneView::makeColumn(const QString &name, FileSortKey key) {
    auto *column = named(name, new ColumnButton(key));
    connect(column, &ColumnButton::clicked, this, [this, key] {
        if (m_pane.order)
            call(m_pane.order->set, orderAfterClick(m_pane.order->value, key));
    });
    m_columns.append(column);
    return column;
}

QWidget *FilePaneView::makeColumnHeaders() {
    const auto number = [this](const QString &name, FileSortKey key, double width) {
        ColumnButton *column = makeColumn(name, key);
        column->setFixedWidth(int(width));
        column->setAlignment(Qt::AlignRight);
        return column;
    };
    m_columnSelectAll = named(QStringLiteral("columnSelectAll"), new SelectAllBox);
    connect(m_columnSelectAll, &SelectAllBox::clicked, this, &FilePaneView::toggleSelectAll);
    using Row = FileRowGeometry;
    return stackOf(
        barOf(6, 0,
              {m_columnSelectAll,
               BoxItem::gap(int(Row::checkboxWidth) - m_columnSelectAll->width()),
               {makeColumn(QStringLiteral("nameColumn"), FileSortKey::name), 1},
               number(QStringLiteral("sizeColumn"), FileSortKey::size, Row::sizeWidth()),
               number(QStringLiteral("modifiedColumn"), FileSortKey::modified, Row::modifiedWidth())}),
        new Divider);
}

QWidget *FilePaneView::makeGridSelectAllBar() {
    m_gridSelectAll = named(QStringLiteral("gridSelectAll"), new SelectAllBox);
    m_gridSelectAllTitle =
        named(QStringLiteral("gridSelectAllTitle"), new TextLabel(columnStyle, AppTheme::inkTertiary()));
    connect(m_gridSelectAll, &SelectAllBox::clicked, this, &FilePaneView::toggleSelectAll);
    return stackOf(barOf(6, 8,
                         {m_gridSelectAll,
                          {m_gridSelectAllTitle, 1},
                          makeColumn(QStringLiteral("gridName"), FileSortKey::name),
                          makeColumn(QStringLiteral("gridSize"), FileSortKey::size),
                          makeColumn(QStringLiteral("gridModified"), FileSortKey::modified)}),
                   new Divider);
}

QWidget *FilePaneView::makeFooter() {
    constexpr TextStyle style{11, Weight::medium};
    m_footerLeading = named(QStringLiteral("footerLeading"), new TextLabel(style, AppTheme::inkSecondary()));
    m_footerTrailing =
        named(QStringLiteral("footerTrailing"), new TextLabel(style, AppTheme::inkSecondary()));
    m_footerTrailing->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // The summary of the selection stays beside an error. That has its reason at its end.
    constexpr int summaryWidth = 180;
    m_footerLeading->setKeptWidth(summaryWidth);
    m_footerTrailing->setElision(Elision::middle);
    return stackOf(new Divider, barOf(8, 8, {m_footerLeading, BoxItem::room(1), m_footerTrailing}));
}

// -- Showing

FileItemsView *FilePaneView::entries() const {
    return isGrid() ? m_grid : m_list;
}

bool FilePaneView::isGrid() const {
    return m_pane.viewMode && m_pane.viewMode->value == PaneViewMode::grid;
}

void FilePaneView::setPane(const FilePane &pane) {
    const FilePane before = std::exchange(m_pane, pane);
    const bool isFirst = std::exchange(m_isFirst, false);
    const PanePlace place = m_state.place(); // before what moves below changes it
    const auto searchValue = [](const FilePane &of) {
        return of.searchText ? of.searchText->value : QString();
    };

    if (isFirst || before.title != m_pane.title) {
        m_title->setText(m_pane.title);
        describe(this, QAccessible::Pane, m_pane.title);
    }
    m_path->show(m_pane.pathLabel, m_pane.path);
    m_footerLeading->setText(m_pane.footerLeading);
    showFooter();
    showTools();
    showSearch();

    m_grid->setTileSize(m_pane.tileSize ? m_pane.tileSize->value : TileSize::standard);
    m_items->follow(m_pane.showsItemLocation);
    m_items->setPictures(m_pane.pictures, m_pane.place);
    showSelectAll();
    showOrder();
    // Another folder, search or order is read from its beginning; a folder that is only listed again is not.
    const auto orderValue = [](const FilePane &of) { return of.order ? of.order->value : FileOrder(); };
    if (before.pathLabel != m_pane.pathLabel || searchValue(before) != searchValue(m_pane) ||
        orderValue(before) != orderValue(m_pane)) {
        m_list->startAtTop();
        m_grid->startAtTop();
    }
    showEntries();
    const auto modeValue = [](const FilePane &of) {
        return of.viewMode ? of.viewMode->value : PaneViewMode::list;
    };
    if (before.placeToken != m_pane.placeToken || modeValue(before) != modeValue(m_pane))
        entries()->showPlace(place);
    const auto heir = [this] { entries()->takeFocus(); };
    showWithHeir(m_columnHeaders, !isGrid(), heir);
    showWithHeir(m_gridBar, isGrid() && m_pane.onToggleSelectAll, heir);
    if (m_pane.emptiness)
        m_emptiness->setEmptiness(*m_pane.emptiness);
    showWithHeir(m_emptiness, m_pane.emptiness.has_value(), heir);
    announceEntries();

    if (!isFirst && before.focusSearchToken != m_pane.focusSearchToken)
        m_searchField->setFocus(Qt::OtherFocusReason);
}

void FilePaneView::showTools() {
    const auto heir = [this] { entries()->takeFocus(); };
    const auto show = [&](IconButton *tool, bool isEnabled, bool isActive = false) {
        enableWithHeir(tool, isEnabled, heir);
        tool->setLook({.symbol = tool->look().symbol,
                       .glyph = isActive ? AppTheme::accent() : AppTheme::inkSecondary(),
                       .fill = isActive ? AppTheme::accentSoft() : AppTheme::surface(),
                       .stroke = isActive ? AppTheme::accent().withOpacity(0.35) : AppTheme::stroke(),
                       .disabledOpacity = 0.45});
    };
    for (const auto &[tool, action] : m_actions)
        show(tool, bool(m_pane.*action));
    for (IconButton *tool : m_placeTools)
        showWithHeir(tool, m_pane.onHome || m_pane.onChooseFolder, heir);
    showWithHeir(m_newFolder, m_pane.onHome || m_pane.onChooseFolder || m_pane.onNewFolder, heir);
    if (m_pane.tileSize)
        m_tileSlider->setValue(m_pane.tileSize->value);
    showWithHeir(m_tileSlider, isGrid() && m_pane.tileSize, heir);
    const bool hasModes = m_pane.viewMode.has_value();
    for (const auto &[tool, isOn] : {std::pair(m_listTool, !isGrid()), std::pair(m_gridTool, isGrid())}) {
        show(tool, hasModes, hasModes && isOn);
        tool->setChecked(hasModes && isOn);
    }
}

void FilePaneView::showSearch() {
    m_searchBar->setVisible(m_pane.searchText.has_value());
    m_scopePicker->setVisible(m_pane.searchScope.has_value());
    if (m_pane.searchScope)
        m_scopePicker->setScope(m_pane.searchScope->value);
    if (!m_pane.searchText)
        return;
    // Setting it moves the caret, so not while the user types.
    if (m_searchField->text() != m_pane.searchText->value)
        m_searchField->setText(m_pane.searchText->value);
    const AndroidSearchScope scope =
        m_pane.searchScope ? m_pane.searchScope->value : AndroidSearchScope::thisFolder;
    m_searchField->setPlaceholderText(searchPlaceholder(scope));
    setAccessibleTexts(m_searchField, searchPlaceholder(scope),
                       QStringLiteral("Shows what has this text in its name"));
    showWithHeir(m_clearSearch, !m_pane.searchText->value.isEmpty(),
                 [this] { m_searchField->setFocus(Qt::OtherFocusReason); });
}

void FilePaneView::showEntries() {
    FileItemsView *hidden = isGrid() ? m_list : static_cast<FileItemsView *>(m_grid);
    const bool hadFocus = hidden->hasFocus();
    const bool hadRing = hidden->focusedIndex().isValid();
    // Hidden with the focus, it would hand it to the next control in line, which may be the other pane's.
    if (hadFocus)
        hidden->clearFocus();
    hidden->hide();
    entries()->show();
    if (hadFocus)
        entries()->setFocus(hadRing ? Qt::TabFocusReason : Qt::OtherFocusReason);
}

/// To those who do not see that another folder is here, once all of it is.
void FilePaneView::announceEntries() {
    const QString before = entries()->accessibleDescription();
    const int count = m_items->rowCount();
    const QString number = m_pane.emptiness ? QString(QStringLiteral(", ") % m_pane.emptiness->heading)
                           : count == 1     ? QStringLiteral(", 1 item")
                                            : QStringLiteral(", %L1 items").arg(count);
    const QString now = m_state.isLoading() ? before : QString(displayText(m_pane.pathLabel) % number);
    setAccessibleTexts(entries(), m_pane.title, now);
    if (now != before)
        entries()->announceFocus();
}

void FilePaneView::showSelectAll() {
    const PaneSelectAllState state = m_state.selectAllState();
    for (SelectAllBox *box : {m_columnSelectAll, m_gridSelectAll}) {
        enableWithHeir(box, m_pane.onToggleSelectAll && m_items->rowCount() > 0,
                       [this] { entries()->takeFocus(); });
        box->setSelection(state);
    }
    m_gridSelectAllTitle->setText(SelectAllBox::title(state));
}

void FilePaneView::showOrder() {
    const auto title = [this](const ColumnButton *column) {
        switch (column->column()) {
        case FileSortKey::size:
            return QStringLiteral("Size");
        case FileSortKey::modified:
            return QStringLiteral("Modified");
        case FileSortKey::name:
            break;
        }
        const bool isOverLocations = m_pane.showsItemLocation && m_columnHeaders->isAncestorOf(column);
        return isOverLocations ? QStringLiteral("Name / Location") : QStringLiteral("Name");
    };
    for (ColumnButton *column : m_columns) {
        enableWithHeir(column, m_pane.order.has_value(), [this] { entries()->takeFocus(); });
        column->show(title(column), m_pane.order ? m_pane.order->value : FileOrder());
    }
}

// -- What the user does

void FilePaneView::select(const FileItem &item) {
    call(m_pane.onSelect ? m_pane.onSelect : m_pane.onToggle, item);
}

void FilePaneView::open(const FileItem &item) const {
    call(m_pane.onOpen, item);
}

void FilePaneView::takeFocus() {
    entries()->takeFocus();
}

void FilePaneView::editPath() {
    m_path->edit();
}

void FilePaneView::showDetails() {
    const QModelIndex focused = entries()->focusedIndex();
    const QList<FileItem> selected = m_state.selectedItems();
    if (focused.isValid())
        call(m_pane.onDetails, m_items->items().at(focused.row()));
    else if (!selected.isEmpty())
        call(m_pane.onDetails, selected.first());
}

void FilePaneView::clearSearch() {
    if (m_pane.onClearSearch)
        call(m_pane.onClearSearch);
    else if (m_pane.searchText)
        call(m_pane.searchText->set, QString());
}

void FilePaneView::toggleSelectAll() const {
    const auto toggle = m_pane.onToggleSelectAll;
    call(m_pane.onFocus);
    call(toggle);
}

void FilePaneView::showContextMenu(const FileItem &item, const QPoint &position) {
    auto menu = fileContextMenu(
        m_pane, item, [this, item] { open(item); }, [this, item] { call(m_pane.onDetails, item); });
    if (!menu)
        return;
    menu->setParent(this, menu->windowFlags());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu.release()->popup(position);
}

void FilePaneView::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    // The caret leaves the search field, so that the keys of the selection work.
    entries()->setFocus(Qt::MouseFocusReason);
    call(m_pane.onFocus);
}

/// What a drop would do has all of the footer.
void FilePaneView::showFooter() {
    const bool isDrop = !m_dropText.isEmpty();
    m_footerLeading->setVisible(!isDrop);
    m_footerTrailing->setText(isDrop ? m_dropText : m_pane.footerTrailing);
}

// -- What is dropped

/// The folder of the entry at the place; null where there is none, and the folder shown is meant.
const FileItem *FilePaneView::folderAt(const QPointF &place) const {
    const QWidget *viewport = entries()->viewport();
    const QPoint point = viewport->mapFrom(this, place.toPoint());
    const QModelIndex index = viewport->rect().contains(point) ? entries()->indexAt(point) : QModelIndex();
    const FileItem *item = index.isValid() ? &m_items->items().at(index.row()) : nullptr;
    return item && item->isDirectory && item->isNameExact ? item : nullptr;
}

/// What a drop there would do, or nothing.
void FilePaneView::showDrop(const QDropEvent *event) {
    const FileItem *folder = event ? folderAt(event->position()) : nullptr;
    const QString path = folder ? folder->path : m_pane.path.folder;
    const qsizetype count = event && m_pane.dropCount ? m_pane.dropCount(*event->mimeData(), path) : 0;
    const QString name = path.section(QLatin1Char('/'), -1);
    const QString what = count == 1 ? QStringLiteral("1 item") : QStringLiteral("%L1 items").arg(count);
    m_dropText = count > 0 ? QStringLiteral("Copy %1 to “%2”").arg(what, name) : QString();
    showFooter();
    entries()->setDropTarget(folder && count > 0 ? m_items->index(int(folder - m_items->items().constData()))
                                                 : QModelIndex());
    update();
}

void FilePaneView::dragEnterEvent(QDragEnterEvent *event) {
    dragMoveEvent(event);
}

void FilePaneView::dragMoveEvent(QDragMoveEvent *event) {
    showDrop(event);
    if (m_dropText.isEmpty()) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction); // whatever the other program would like better
    event->accept();
}

void FilePaneView::dragLeaveEvent(QDragLeaveEvent *) {
    showDrop(nullptr);
}

void FilePaneView::dropEvent(QDropEvent *event) {
    showDrop(event);
    const bool isTaken = !m_dropText.isEmpty();
    const FileItem *folder = folderAt(event->position());
    const QString path = folder ? folder->path : m_pane.path.folder;
    showDrop(nullptr);
    if (!isTaken)
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (const auto drop = m_pane.onDrop)
        drop(*event->mimeData(), path);
}

void FilePaneView::fitColumns() {
    const struct {
        FileSortKey key;
        double width;
    } fixed[] = {{FileSortKey::size, FileRowGeometry::sizeWidth()},
                 {FileSortKey::modified, FileRowGeometry::modifiedWidth()}};
    // A list that is not shown keeps the width that it had.
    const int rowWidth = m_list->isVisibleTo(this) ? m_list->viewport()->width() : width() - 2 * border;
    for (ColumnButton *column : std::as_const(m_columns)) {
        for (const auto &[key, width] : fixed) {
            if (column->column() == key && m_columnHeaders->isAncestorOf(column))
                column->setFixedWidth(int(width));
        }
        if (column->column() == FileSortKey::modified && m_columnHeaders->isAncestorOf(column))
            showWithHeir(column, FileRowGeometry::showsModified(rowWidth),
                         [this] { entries()->takeFocus(); });
    }
}

void FilePaneView::resizeEvent(QResizeEvent *) {
    fitColumns();
}

bool FilePaneView::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_list->viewport() && event->type() == QEvent::Resize)
        fitColumns();
    return QWidget::eventFilter(watched, event);
}

void FilePaneView::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) // texts appear in another size
        fitColumns();
    if (event->type() == QEvent::LayoutDirectionChange && m_back)
        m_back->setLook(toolLook(backChevron()));
}

// -- Painting

QSize FilePaneView::minimumSizeHint() const {
    // Beside the fixed columns and the tools there is room for the beginning of a name.
    constexpr int narrowest = 320;
    const QSize hint = QWidget::minimumSizeHint();
    return {qMax(narrowest, hint.width()), hint.height()};
}

void FilePaneView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath shape = roundedRect(rect(), cornerRadius);
    painter.fillPath(shape, QColor(AppTheme::surface()));
    const auto tint = [&](const QWidget *section, double opacity) {
        painter.setClipRect(
            QRectF(0, section->y(), width(), section->height())
                .adjusted(0, section == m_header ? -border : 0, 0, section == m_footer ? border : 0));
        painter.fillPath(shape, QColor(AppTheme::canvas().withOpacity(opacity)));
    };
    tint(m_header, 0.65);
    tint(m_footer, 0.55);
    painter.setClipping(false);
    paintCard(painter, rect(), cornerRadius, Qt::transparent,
              m_dropText.isEmpty() ? AppTheme::paneStroke() : AppTheme::accent());
}

} // namespace vantrel
