#include "Views/AndroidBrowserPane.h"

#include "ADB/ADBClient.h"
#include "State/AppState.h"
#include "Views/FilePane.h"

namespace vantrel {

AndroidBrowserPane::AndroidBrowserPane(AppState *state, QWidget *parent)
    : BrowserPane(state, BrowserSide::android, parent) {
    setObjectName(QStringLiteral("androidPane"));
    connect(state, &AppState::androidSearchTextChanged, this, [state] { state->scheduleAndroidSearch(); });
    connect(state, &AppState::androidSearchScopeChanged, this, [state] { state->scheduleAndroidSearch(); });
    start(&AppState::androidPathSegmentsChanged, &AppState::androidSearchTextChanged,
          &AppState::androidSearchScopeChanged, &AppState::androidSearchResultsChanged,
          &AppState::isSearchingAndroidChanged, &AppState::isOpeningAndroidFileChanged,
          &AppState::androidSearchFocusTokenChanged);
}

QString AndroidBrowserPane::parentAndroidPath(const QString &path) {
    QString storage = QStringLiteral("/sdcard");
    const QString folder = ADBClient::normalizePath(path);
    QStringList pieces = folder.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (folder == storage || folder == QLatin1String("/storage/emulated/0") || pieces.size() < 2)
        return storage;
    pieces.removeLast();
    return QLatin1Char('/') + pieces.join(QLatin1Char('/'));
}

QString AndroidBrowserPane::activity() const {
    if (QString loading = BrowserPane::activity(); !loading.isEmpty())
        return loading;
    if (app().isSearchingAndroid())
        return QStringLiteral("Searching device…");
    return app().isOpeningAndroidFile() ? QStringLiteral("Opening…") : QString();
}

void AndroidBrowserPane::fill(FilePane &pane) {
    AppState *state = &app();
    const bool isSearchActive = state->isAndroidEverywhereSearchActive();
    pane.title = QStringLiteral("Android Device");
    pane.pathLabel = isSearchActive ? QStringLiteral("Search results")
                                    : state->androidPathSegments().join(QStringLiteral(" › "));
    pane.footerLeading = state->androidSelectionSummary();
    pane.footerTrailing = state->androidFooterStats();
    pane.onOpen = [this](const FileItem &item) {
        focusSide();
        if (item.isDirectory && item.isNameExact)
            app().browseAndroid(item.path);
        else
            app().openAndroidFile(item);
    };
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
}

} // namespace vantrel
