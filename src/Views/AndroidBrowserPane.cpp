#include "Views/AndroidBrowserPane.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "State/AppState.h"
#include "Views/FilePane.h"

namespace vantrel {

namespace {

const QString separator = QStringLiteral(" › ");

/// The titles as they are joined. The last is that of the path, each before it that of the folder around.
QList<PathSegment> segmentsOf(QString path, const QStringList &titles) {
    QList<PathSegment> segments;
    qsizetype end = titles.join(separator).size();
    for (auto title = titles.crbegin(); title != titles.crend(); ++title) {
        segments.prepend({end - title->size(), end, path});
        end -= title->size() + separator.size();
        path = path.section(QLatin1Char('/'), 0, -2);
    }
    return segments;
}

} // namespace

AndroidBrowserPane::AndroidBrowserPane(AppState *state, ThumbnailStore *pictures, QWidget *parent)
    : BrowserPane(state, BrowserSide::android, pictures, parent) {
    setObjectName(QStringLiteral("androidPane"));
    connect(state, &AppState::androidSearchTextChanged, this, [state] { state->scheduleAndroidSearch(); });
    connect(state, &AppState::androidSearchScopeChanged, this, [state] { state->scheduleAndroidSearch(); });
    start(&AppState::androidPathSegmentsChanged, &AppState::androidSearchTextChanged,
          &AppState::androidSearchScopeChanged, &AppState::androidSearchResultsChanged,
          &AppState::isSearchingAndroidChanged, &AppState::isOpeningAndroidFileChanged,
          &AppState::androidSearchFocusTokenChanged, &AppState::deviceChanged,
          &AppState::deviceStatusMessageChanged);
    watch(&state->phones(), &PhoneWatch::troubleChanged);
    watch(&state->opening(), &FileOpening::percentChanged);
}

QString AndroidBrowserPane::parentAndroidPath(const QString &path) {
    QString storage = QStringLiteral("/sdcard");
    const QString folder = ADBClient::normalizePath(path);
    QStringList pieces = folder.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (folder == AndroidPath::cardOf(folder))
        return folder;
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
    if (!app().isOpeningAndroidFile())
        return {};
    QString opening = QStringLiteral("Opening…");
    if (const int percent = app().opening().percent()) // before that there is hardly anything to stop
        opening += QLatin1Char(' ') % QString::number(percent) % QStringLiteral(" % • Escape stops it");
    return opening;
}

std::optional<Emptiness> AndroidBrowserPane::emptiness() const {
    const PhoneTrouble trouble = app().phones().trouble();
    if (trouble != PhoneTrouble::none)
        return EmptyStates::ofPhone(trouble, app().deviceStatusMessage().value_or(QString()));
    if (!app().device().isConnected)
        return std::nullopt; // nobody has looked yet
    const QString query = app().androidSearchText().trimmed();
    if (query.isEmpty() || (state().hasFailed() && !app().isAndroidEverywhereSearchActive()))
        return BrowserPane::emptiness();
    if (app().isAndroidEverywhereSearchActive() && state().browseError())
        return EmptyStates::failedSearch(*state().browseError());
    return EmptyStates::noHits(query, app().androidSearchScope());
}

void AndroidBrowserPane::fill(FilePane &pane) {
    AppState *state = &app();
    const bool isSearchActive = state->isAndroidEverywhereSearchActive();
    pane.title = QStringLiteral("Android Device");
    pane.pathLabel =
        isSearchActive ? QStringLiteral("Search results") : state->androidPathSegments().join(separator);
    pane.path.folder = state->androidCurrentPath();
    pane.path.onGoTo = [this](const QString &path) {
        focusSide();
        app().browseAndroid(path, arrivalAt(path));
    };
    if (!isSearchActive)
        pane.path.segments = segmentsOf(state->androidCurrentPath(), state->androidPathSegments());
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
            state->browseAndroid(parentAndroidPath(state->androidCurrentPath()), Arrival::back);
    };
    pane.onRefresh = [state] {
        if (state->isAndroidEverywhereSearchActive())
            state->scheduleAndroidSearch();
        else
            state->browseAndroid(state->androidCurrentPath());
    };
    pane.onNewFolder = [state] { state->createAndroidFolder(); };
    if (state->phones().trouble() != PhoneTrouble::none)
        pane.onTryAgain = [state] { state->refreshDevice(PhoneWatch::Spinner::shown); };
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
