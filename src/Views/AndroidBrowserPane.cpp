#include "Views/AndroidBrowserPane.h"

#include "ADB/ADBClient.h"
#include "Kit/Spinner.h"
#include "State/AppState.h"
#include "Views/FilePaneView.h"

#include <QGridLayout>

namespace vantrel {

AndroidBrowserPane::AndroidBrowserPane(AppState *state, QWidget *parent)
    : QWidget(parent), m_state(state), m_pane(new FilePaneView),
      m_spinner(new Spinner(Spinner::Size::small, QStringLiteral("Busy"))) {
    setObjectName(QStringLiteral("androidPane"));
    auto *overlay = new QGridLayout(this);
    overlay->setContentsMargins(0, 0, 0, 0);
    overlay->addWidget(m_pane, 0, 0);
    overlay->addWidget(m_spinner, 0, 0, Qt::AlignCenter);

    connect(state, &AppState::androidSearchTextChanged, this, [state] { state->scheduleAndroidSearch(); });
    connect(state, &AppState::androidSearchScopeChanged, this, [state] { state->scheduleAndroidSearch(); });

    m_rendering.watch(state, &AppState::androidPathSegmentsChanged, &AppState::androidCurrentPathChanged,
                      &AppState::androidItemsChanged, &AppState::androidSelectedIDsChanged,
                      &AppState::androidSearchTextChanged, &AppState::androidSearchScopeChanged,
                      &AppState::androidSearchResultsChanged, &AppState::isSearchingAndroidChanged,
                      &AppState::isLoadingAndroidChanged, &AppState::isOpeningAndroidFileChanged,
                      &AppState::androidBrowseErrorChanged, &AppState::androidSearchFocusTokenChanged,
                      &AppState::androidViewModeChanged);
    m_rendering.renderNow();
}

QString AndroidBrowserPane::parentAndroidPath(const QString &path) {
    const QString storage = QStringLiteral("/sdcard");
    const QString folder = ADBClient::normalizePath(path);
    QStringList pieces = folder.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (folder == storage || folder == QLatin1String("/storage/emulated/0") || pieces.size() < 2)
        return storage;
    pieces.removeLast();
    return QLatin1Char('/') + pieces.join(QLatin1Char('/'));
}

void AndroidBrowserPane::render() {
    AppState *state = m_state;
    const auto focus = [state] { state->setFocusedBrowserSide(BrowserSide::android); };
    const bool isSearchActive = state->isAndroidEverywhereSearchActive();

    FilePane pane;
    pane.title = QStringLiteral("Android Device");
    pane.pathLabel = isSearchActive ? QStringLiteral("Search results")
                                    : state->androidPathSegments().join(QStringLiteral(" › "));
    pane.items = state->displayedAndroidItems();
    pane.selectedIDs = state->androidSelectedIDs();
    pane.footerLeading = state->androidSelectionSummary();
    if (state->isLoadingAndroid())
        pane.footerTrailing = QStringLiteral("Loading…");
    else if (state->isSearchingAndroid())
        pane.footerTrailing = QStringLiteral("Searching device…");
    else if (state->isOpeningAndroidFile())
        pane.footerTrailing = QStringLiteral("Opening…");
    else
        pane.footerTrailing = state->androidBrowseError().value_or(state->androidFooterStats());

    pane.onToggle = [=](const FileItem &item) {
        focus();
        state->toggleSelection(item, BrowserSide::android);
    };
    pane.onSelect = [=](const FileItem &item) {
        focus();
        state->selectItem(item, BrowserSide::android);
    };
    pane.onToggleSelectAll = [=] {
        focus();
        state->toggleSelectAllVisible(BrowserSide::android);
    };
    pane.onOpen = [=](const FileItem &item) {
        focus();
        if (item.isDirectory)
            state->browseAndroid(item.path);
        else
            state->openAndroidFile(item);
    };
    pane.onFocus = focus;
    pane.onBack = [state] {
        if (state->isAndroidEverywhereSearchActive())
            state->clearAndroidSearch();
        else
            state->browseAndroid(parentAndroidPath(state->androidCurrentPath()));
    };
    pane.onRefresh = [state] {
        if (state->isAndroidEverywhereSearchActive())
            state->scheduleAndroidSearch();
        else
            state->browseAndroid(state->androidCurrentPath());
    };
    pane.searchText = {state->androidSearchText(),
                       [state](const QString &text) { state->setAndroidSearchText(text); }};
    pane.searchScope = {state->androidSearchScope(),
                        [state](AndroidSearchScope scope) { state->setAndroidSearchScope(scope); }};
    pane.onClearSearch = [state] { state->clearAndroidSearch(); };
    pane.showsItemLocation = isSearchActive;
    pane.focusSearchToken = state->androidSearchFocusToken();
    pane.showsOpenContextMenu = true;
    pane.viewMode = {state->androidViewMode(),
                     [state](PaneViewMode mode) { state->setAndroidViewMode(mode); }};
    m_pane->setPane(pane);

    m_spinner->setVisible(state->isLoadingAndroid() || state->isOpeningAndroidFile() ||
                          state->isSearchingAndroid());
}

} // namespace vantrel
