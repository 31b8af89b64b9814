#include "Views/FilePaneView.h"

#include "Kit/Accessibility.h"
#include "Kit/Divider.h"
#include "Kit/IconButton.h"
#include "Kit/Shapes.h"
#include "Kit/TextLabel.h"
#include "State/PaneState.h"
#include "Views/FileContextMenu.h"
#include "Views/FileDelegate.h"
#include "Views/FileGridView.h"
#include "Views/FileItemsModel.h"
#include "Views/FileRow.h"
#include "Views/FileSelectionModel.h"
#include "Views/ScopePicker.h"
#include "Views/SelectAllBox.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

namespace vantrel {

namespace {

constexpr double cornerRadius = 10;
constexpr int border = 1;
constexpr int inset = int(FileRowGeometry::inset);
constexpr QSize toolSize(24, 24);
constexpr double toolRadius = 5;

constexpr TextStyle columnStyle{10.5, Weight::semibold};

TextLabel *label(const QString &objectName, const TextStyle &style, const ThemeColor &color) {
    auto *made = new TextLabel(style, color);
    made->setObjectName(objectName);
    return made;
}

/// The sign in front of the search field; assistive technology hears the field's own name.
class SearchGlyph : public QWidget {
public:
    SearchGlyph() { setFixedSize(m_symbol.naturalSize().toSize()); }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        m_symbol.paint(painter, rect(), AppTheme::inkTertiary());
    }

private:
    Symbol m_symbol{QStringLiteral("magnifyingglass"), 12, Weight::semibold};
};

/// A widget with a row of controls in it.
QHBoxLayout *rowOf(QWidget *bar, int vertical, int spacing) {
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(inset, vertical, inset, vertical);
    row->setSpacing(spacing);
    return row;
}

/// A stack of a bar and its line.
QWidget *withDivider(QWidget *bar, Qt::Edge edge) {
    auto *stack = new QWidget;
    auto *column = new QVBoxLayout(stack);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(bar);
    column->insertWidget(edge == Qt::TopEdge ? 0 : 1, new Divider);
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
    m_list = new FileItemsView(m_items, selection, new FileRowDelegate);
    m_list->setObjectName(QStringLiteral("fileList"));
    m_grid = new FileGridView(m_items, selection);
    m_grid->setObjectName(QStringLiteral("fileGrid"));
    m_footer = makeFooter();

    const auto toggle = [this](const FileItem &item) { call(m_pane.onToggle, item); };
    connect(selection, &FileSelectionModel::toggled, this, toggle);
    for (FileItemsView *view : {m_list, m_grid}) {
        connect(view, &FileItemsView::toggled, this, toggle);
        connect(view, &FileItemsView::selected, this, &FilePaneView::select);
        connect(view, &FileItemsView::opened, this, &FilePaneView::open);
        connect(view, &FileItemsView::contextMenuRequested, this, &FilePaneView::showContextMenu);
    }

    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins(border, border, border, border);
    stack->setSpacing(0);
    for (QWidget *section : {m_header, m_searchBar, m_columnHeaders, m_gridBar})
        stack->addWidget(section);
    stack->addWidget(m_list, 1);
    stack->addWidget(m_grid, 1);
    stack->addWidget(m_footer);
}

IconButton *FilePaneView::makeTool(const QString &objectName, const QString &symbol, const QString &help) {
    auto *tool = new IconButton(toolSize, toolRadius);
    tool->setObjectName(objectName);
    tool->setLook({.symbol = {symbol, 11, Weight::semibold}});
    tool->setHelp(help);
    return tool;
}

QWidget *FilePaneView::makeHeader() {
    m_title = label(QStringLiteral("title"), {13, Weight::semibold}, AppTheme::ink());
    m_path = label(QStringLiteral("path"), {11, Weight::medium}, AppTheme::inkTertiary());
    m_back = makeTool(QStringLiteral("back"), QStringLiteral("chevron.left"), QStringLiteral("Go back"));
    m_home = makeTool(QStringLiteral("home"), QStringLiteral("house"), QStringLiteral("Go to Home"));
    m_chooseFolder =
        makeTool(QStringLiteral("chooseFolder"), QStringLiteral("folder"), QStringLiteral("Choose folder"));
    m_newFolder = makeTool(QStringLiteral("newFolder"), QStringLiteral("folder.badge.plus"),
                           QStringLiteral("New folder"));
    m_refresh =
        makeTool(QStringLiteral("refresh"), QStringLiteral("arrow.clockwise"), QStringLiteral("Refresh"));
    m_listTool =
        makeTool(QStringLiteral("listView"), QStringLiteral("list.bullet"), QStringLiteral("List view"));
    m_gridTool =
        makeTool(QStringLiteral("gridView"), QStringLiteral("square.grid.2x2"), QStringLiteral("Grid view"));

    auto *header = new QWidget;
    auto *row = rowOf(header, 10, 8);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(m_title);
    texts->addWidget(m_path);
    row->addLayout(texts, 1);
    for (IconButton *tool : {m_back, m_home, m_chooseFolder, m_newFolder, m_refresh, m_listTool, m_gridTool})
        row->addWidget(tool);

    connect(m_back, &IconButton::clicked, this, [this] { call(m_pane.onBack); });
    connect(m_home, &IconButton::clicked, this, [this] { call(m_pane.onHome); });
    connect(m_chooseFolder, &IconButton::clicked, this, [this] { call(m_pane.onChooseFolder); });
    connect(m_newFolder, &IconButton::clicked, this, [this] { call(m_pane.onNewFolder); });
    connect(m_refresh, &IconButton::clicked, this, [this] { call(m_pane.onRefresh); });
    const auto setMode = [this](PaneViewMode mode) {
        if (m_pane.viewMode)
            call(m_pane.viewMode->set, mode);
    };
    connect(m_listTool, &IconButton::clicked, this, [setMode] { setMode(PaneViewMode::list); });
    connect(m_gridTool, &IconButton::clicked, this, [setMode] { setMode(PaneViewMode::grid); });
    return header;
}

QWidget *FilePaneView::makeSearchBar() {
    auto *bar = new QWidget;
    // Before the field is there: made with another font, it would open that one first.
    bar->setFont(TextStyle{12.5, Weight::medium}.font());
    m_searchField = new QLineEdit(bar);
    m_searchField->setObjectName(QStringLiteral("searchField"));
    m_searchField->setFrame(false);
    m_searchField->setTextMargins(-2, 0, 0, 0); // what the toolkit keeps free before the first letter
    m_scopePicker = new ScopePicker;
    m_scopePicker->setObjectName(QStringLiteral("scopePicker"));
    m_clearSearch = new IconButton({18, 18}, IconButton::circle);
    m_clearSearch->setObjectName(QStringLiteral("clearSearch"));
    m_clearSearch->setLook({.symbol = {QStringLiteral("xmark.circle.fill"), 12, Weight::semibold},
                            .glyph = AppTheme::inkTertiary()});
    m_clearSearch->setHelp(QStringLiteral("Clear search"));

    auto *row = rowOf(bar, 8, 8);
    row->addWidget(new SearchGlyph);
    row->addWidget(m_searchField, 1);
    row->addWidget(m_scopePicker);
    row->addWidget(m_clearSearch);

    connect(m_searchField, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (m_pane.searchText && m_pane.searchText->value != text)
            call(m_pane.searchText->set, text);
    });
    connect(m_scopePicker, &ScopePicker::scopeChosen, this, [this](AndroidSearchScope scope) {
        if (m_pane.searchScope)
            call(m_pane.searchScope->set, scope);
    });
    connect(m_clearSearch, &IconButton::clicked, this, &FilePaneView::clearSearch);
    return withDivider(bar, Qt::BottomEdge);
}

QWidget *FilePaneView::makeColumnHeaders() {
    m_columnSelectAll = new SelectAllBox;
    m_columnSelectAll->setObjectName(QStringLiteral("columnSelectAll"));
    m_nameColumn = label(QStringLiteral("nameColumn"), columnStyle, AppTheme::inkTertiary());
    auto *size = label(QStringLiteral("sizeColumn"), columnStyle, AppTheme::inkTertiary());
    auto *modified = label(QStringLiteral("modifiedColumn"), columnStyle, AppTheme::inkTertiary());
    size->setText(QStringLiteral("Size"));
    modified->setText(QStringLiteral("Modified"));
    size->setFixedWidth(int(FileRowGeometry::sizeWidth));
    modified->setFixedWidth(int(FileRowGeometry::modifiedWidth));
    for (TextLabel *column : {size, modified})
        column->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto *bar = new QWidget;
    auto *row = rowOf(bar, 6, 0);
    row->addWidget(m_columnSelectAll);
    row->addSpacing(int(FileRowGeometry::checkboxWidth) - m_columnSelectAll->width());
    row->addWidget(m_nameColumn, 1);
    row->addWidget(size);
    row->addWidget(modified);
    connect(m_columnSelectAll, &SelectAllBox::clicked, this, &FilePaneView::toggleSelectAll);
    return withDivider(bar, Qt::BottomEdge);
}

QWidget *FilePaneView::makeGridSelectAllBar() {
    m_gridSelectAll = new SelectAllBox;
    m_gridSelectAll->setObjectName(QStringLiteral("gridSelectAll"));
    m_gridSelectAllTitle = label(QStringLiteral("gridSelectAllTitle"), columnStyle, AppTheme::inkTertiary());

    auto *bar = new QWidget;
    auto *row = rowOf(bar, 6, 8);
    row->addWidget(m_gridSelectAll);
    row->addWidget(m_gridSelectAllTitle, 1);
    connect(m_gridSelectAll, &SelectAllBox::clicked, this, &FilePaneView::toggleSelectAll);
    return withDivider(bar, Qt::BottomEdge);
}

QWidget *FilePaneView::makeFooter() {
    constexpr TextStyle style{11, Weight::medium};
    m_footerLeading = label(QStringLiteral("footerLeading"), style, AppTheme::inkSecondary());
    m_footerTrailing = label(QStringLiteral("footerTrailing"), style, AppTheme::inkSecondary());
    m_footerTrailing->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto *bar = new QWidget;
    auto *row = rowOf(bar, 8, 8);
    row->addWidget(m_footerLeading);
    row->addStretch(1);
    row->addWidget(m_footerTrailing);
    return withDivider(bar, Qt::TopEdge);
}

// -- Showing

bool FilePaneView::isGrid() const {
    return m_pane.viewMode && m_pane.viewMode->value == PaneViewMode::grid;
}

void FilePaneView::setPane(const FilePane &pane) {
    const FilePane before = std::exchange(m_pane, pane);
    const bool isFirst = std::exchange(m_isFirst, false);
    const auto searchValue = [](const FilePane &of) {
        return of.searchText ? of.searchText->value : QString();
    };

    if (isFirst || before.title != m_pane.title) {
        m_title->setText(m_pane.title);
        describe(this, QAccessible::Pane, m_pane.title);
        m_list->setAccessibleName(m_pane.title);
        m_grid->setAccessibleName(m_pane.title);
    }
    m_path->setText(m_pane.pathLabel);
    m_footerLeading->setText(m_pane.footerLeading);
    m_footerTrailing->setText(m_pane.footerTrailing);
    m_nameColumn->setText(m_pane.showsItemLocation ? QStringLiteral("Name / Location")
                                                   : QStringLiteral("Name"));
    showTools();
    showSearch();

    m_items->follow(m_pane.showsItemLocation);
    showSelectAll();
    // Another folder or another search is read from its beginning; a folder that is only listed again is not.
    if (before.pathLabel != m_pane.pathLabel || searchValue(before) != searchValue(m_pane)) {
        m_list->startAtTop();
        m_grid->startAtTop();
    }
    showEntries();
    m_columnHeaders->setVisible(!isGrid());
    m_gridBar->setVisible(isGrid() && m_pane.onToggleSelectAll);

    if (!isFirst && before.focusSearchToken != m_pane.focusSearchToken)
        m_searchField->setFocus(Qt::OtherFocusReason);
}

void FilePaneView::showTools() {
    const auto show = [](IconButton *tool, bool isEnabled, bool isActive = false) {
        tool->setEnabled(isEnabled);
        tool->setLook({.symbol = tool->look().symbol,
                       .glyph = isActive ? AppTheme::accent() : AppTheme::inkSecondary(),
                       .fill = isActive ? AppTheme::accentSoft() : AppTheme::surface(),
                       .stroke = isActive ? AppTheme::accent().withOpacity(0.35) : AppTheme::stroke(),
                       .disabledOpacity = 0.45});
    };
    show(m_back, bool(m_pane.onBack));
    show(m_refresh, bool(m_pane.onRefresh));
    show(m_home, bool(m_pane.onHome));
    show(m_chooseFolder, bool(m_pane.onChooseFolder));
    show(m_newFolder, bool(m_pane.onNewFolder));
    const bool hasFolderTools = m_pane.onHome || m_pane.onChooseFolder || m_pane.onNewFolder;
    for (IconButton *tool : {m_home, m_chooseFolder, m_newFolder})
        tool->setVisible(hasFolderTools);

    const bool hasModes = m_pane.viewMode.has_value();
    show(m_listTool, hasModes, hasModes && !isGrid());
    show(m_gridTool, hasModes, hasModes && isGrid());
    for (const auto &[tool, isOn] : {std::pair(m_listTool, !isGrid()), std::pair(m_gridTool, isGrid())}) {
        tool->setCheckable(true);
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
    m_searchField->setAccessibleName(searchPlaceholder(scope));
    if (m_pane.searchText->value.isEmpty() && m_clearSearch->hasFocus())
        m_searchField->setFocus(Qt::OtherFocusReason);
    m_clearSearch->setVisible(!m_pane.searchText->value.isEmpty());
}

void FilePaneView::showEntries() {
    FileItemsView *hidden = isGrid() ? m_list : m_grid;
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

void FilePaneView::showSelectAll() {
    const PaneSelectAllState state = m_state.selectAllState();
    for (SelectAllBox *box : {m_columnSelectAll, m_gridSelectAll}) {
        box->setEnabled(m_pane.onToggleSelectAll && m_items->rowCount() > 0);
        box->setSelection(state);
    }
    m_gridSelectAllTitle->setText(SelectAllBox::title(state));
}

// -- What the user does

void FilePaneView::select(const FileItem &item) {
    call(m_pane.onSelect ? m_pane.onSelect : m_pane.onToggle, item);
}

void FilePaneView::open(const FileItem &item) const {
    call(m_pane.onOpen, item);
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
    auto menu = fileContextMenu(m_pane, item, [this, item] { open(item); });
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

// -- Painting

QSize FilePaneView::sizeHint() const {
    // The same for every pane, whatever it shows: two of them share a width equally.
    return {480, 480};
}

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
    paintCard(painter, rect(), cornerRadius, Qt::transparent, AppTheme::paneStroke());
}

} // namespace vantrel
