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
          &AppState::androidSearchFocusTokenChanged, &AppState::deviceChanged,
          &AppState::deviceStatusMessageChanged);
    watch(&state->phones(), &PhoneWatch::troubleChanged);
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

QString AndroidBrowserPane::emptiness() const {
    switch (app().phones().trouble()) {
    case PhoneTrouble::none:
        break;
    case PhoneTrouble::noPhone:
        return QStringLiteral(
            "Plug in your phone with a cable that carries data, turn on the developer options, "
            "and in them USB debugging.");
    case PhoneTrouble::unauthorized:
        return QStringLiteral("Unlock the phone and tap Allow.");
    case PhoneTrouble::authorizing:
        return QStringLiteral(
            "The phone and this computer are getting to know each other. If it asks, tap Allow.");
    case PhoneTrouble::offline:
        return QStringLiteral(
            "The phone is plugged in but silent. Unlock it, or unplug it and plug it in again.");
    case PhoneTrouble::noPermissions:
        return QStringLiteral("You may not talk to the phone. Install the udev rules (package "
                              "android-sdk-platform-tools-common) and plug it in again.");
    case PhoneTrouble::recovery:
    case PhoneTrouble::sideload:
    case PhoneTrouble::bootloader:
        return QStringLiteral("The phone is in its maintenance mode. Restart it the usual way.");
    case PhoneTrouble::toolMissing:
        return QStringLiteral("There is no adb. Install your system’s package adb, and refresh.");
    case PhoneTrouble::serverRestarts:
        return QStringLiteral("Another program runs an adb of another version, and the two end each other’s "
                              "server. Close it, and refresh.");
    case PhoneTrouble::portTaken:
        return QStringLiteral(
            "adb’s server cannot start: its port is taken by another program. Close it, and "
            "refresh.");
    case PhoneTrouble::noAnswer:
    case PhoneTrouble::other:
        return app().deviceStatusMessage().value_or(QString());
    }
    if (!state().browseError() && !app().androidSearchText().trimmed().isEmpty())
        return QStringLiteral("Nothing here has that in its name.");
    return app().device().isConnected || state().browseError() ? BrowserPane::emptiness() : QString();
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
