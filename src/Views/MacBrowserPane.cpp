#include "Views/MacBrowserPane.h"

#include "MacFiles/MacFileClient.h"
#include "MacFiles/ThisComputer.h"
#include "State/AppState.h"
#include "Views/FilePane.h"

#include <QDir>

namespace vantrel {

namespace {

/// The names of a path, and the root, which is its first separator.
QList<PathSegment> segmentsOf(const QString &path) {
    QList<PathSegment> segments{{0, 1, QStringLiteral("/")}};
    for (qsizetype start = 1; start < path.size();) {
        const qsizetype slash = path.indexOf(QLatin1Char('/'), start);
        const qsizetype end = slash < 0 ? path.size() : slash;
        segments.append({start, end, path.left(end)});
        start = end + 1;
    }
    return segments;
}

} // namespace

MacBrowserPane::MacBrowserPane(AppState *state, ThumbnailStore *pictures, QWidget *parent)
    : BrowserPane(state, BrowserSide::mac, pictures, parent) {
    setObjectName(QStringLiteral("macPane"));
    start(&AppState::macAvailableLabelChanged);
}

void MacBrowserPane::fill(FilePane &pane) {
    AppState *state = &app();
    pane.title = thisComputer();
    pane.pathLabel = state->macPath();
    pane.path.folder = state->macPath();
    pane.path.segments = segmentsOf(state->macPath());
    pane.path.onGoTo = [this](const QString &path) {
        focusSide();
        app().browseMac(path, arrivalAt(path));
    };
    pane.footerLeading = state->macSelectionSummary();
    pane.footerTrailing = state->macAvailableLabel();
    pane.onOpen = [this](const FileItem &item) {
        focusSide();
        if (item.isDirectory)
            app().browseMac(item.path);
    };
    pane.onBack = [state] { state->browseMac(MacFileClient::parentPath(state->macPath()), Arrival::back); };
    pane.onRefresh = [state] { state->browseMac(state->macPath()); };
    pane.onChooseFolder = [state] {
        MacFileClient::chooseFolder(state->desktop(), state->macPath())
            .then(state, [state](const std::optional<QString> &folder) {
                if (folder)
                    state->browseMac(*folder);
            });
    };
    pane.onNewFolder = [state] { state->createMacFolder(); };
    pane.onHome = [state] { state->browseMac(QDir::homePath()); };
    pane.showsMacContextMenu = true;
}

} // namespace vantrel
