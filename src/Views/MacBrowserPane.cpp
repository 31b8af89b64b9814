#include "Views/MacBrowserPane.h"

#include "MacFiles/MacFileClient.h"
#include "MacFiles/ThisComputer.h"
#include "State/AppState.h"
#include "Views/FilePane.h"

#include <QDir>

namespace vantrel {

MacBrowserPane::MacBrowserPane(AppState *state, QWidget *parent)
    : BrowserPane(state, BrowserSide::mac, parent) {
    setObjectName(QStringLiteral("macPane"));
    start(&AppState::macAvailableLabelChanged);
}

void MacBrowserPane::fill(FilePane &pane) {
    AppState *state = &app();
    pane.title = thisComputer();
    pane.pathLabel = state->macPath();
    pane.footerLeading = state->macSelectionSummary();
    pane.footerTrailing = state->macAvailableLabel();
    pane.onOpen = [this](const FileItem &item) {
        focusSide();
        if (item.isDirectory)
            app().browseMac(item.path);
    };
    pane.onBack = [state] { state->browseMac(MacFileClient::parentPath(state->macPath())); };
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
