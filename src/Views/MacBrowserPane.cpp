#include "Views/MacBrowserPane.h"

#include "Kit/Spinner.h"
#include "MacFiles/MacFileClient.h"
#include "State/AppState.h"
#include "Views/FilePaneView.h"

#include <QDir>
#include <QGridLayout>

namespace vantrel {

namespace {

void chooseFolder(AppState *state) {
    MacFileClient::chooseFolder(state->desktop(), state->macPath())
        .then(state, [state](const std::optional<QString> &folder) {
            if (folder)
                state->browseMac(*folder);
        });
}

} // namespace

MacBrowserPane::MacBrowserPane(AppState *state, QWidget *parent)
    : QWidget(parent), m_state(state), m_pane(new FilePaneView),
      m_spinner(new Spinner(Spinner::Size::small, QStringLiteral("Busy"))) {
    setObjectName(QStringLiteral("macPane"));
    auto *overlay = new QGridLayout(this);
    overlay->setContentsMargins(0, 0, 0, 0);
    overlay->addWidget(m_pane, 0, 0);
    overlay->addWidget(m_spinner, 0, 0, Qt::AlignCenter);

    m_rendering.watch(state, &AppState::macPathChanged, &AppState::macItemsChanged,
                      &AppState::macSelectedIDsChanged, &AppState::isLoadingMacChanged,
                      &AppState::macBrowseErrorChanged, &AppState::macAvailableLabelChanged,
                      &AppState::macViewModeChanged);
    m_rendering.renderNow();
}

void MacBrowserPane::render() {
    AppState *state = m_state;
    const auto focus = [state] { state->setFocusedBrowserSide(BrowserSide::mac); };

    FilePane pane;
    pane.title = QStringLiteral("Mac");
    pane.pathLabel = state->macPath();
    pane.items = state->macItems();
    pane.selectedIDs = state->macSelectedIDs();
    pane.footerLeading = state->macSelectionSummary();
    if (state->isLoadingMac())
        pane.footerTrailing = QStringLiteral("Loading…");
    else
        pane.footerTrailing = state->macBrowseError().value_or(state->macAvailableLabel());

    pane.onToggle = [=](const FileItem &item) {
        focus();
        state->toggleSelection(item, BrowserSide::mac);
    };
    pane.onSelect = [=](const FileItem &item) {
        focus();
        state->selectItem(item, BrowserSide::mac);
    };
    pane.onToggleSelectAll = [=] {
        focus();
        state->toggleSelectAllVisible(BrowserSide::mac);
    };
    pane.onOpen = [=](const FileItem &item) {
        focus();
        if (item.isDirectory)
            state->browseMac(item.path);
    };
    pane.onFocus = focus;
    pane.onBack = [state] { state->browseMac(MacFileClient::parentPath(state->macPath())); };
    pane.onRefresh = [state] { state->browseMac(state->macPath()); };
    pane.onChooseFolder = [state] { chooseFolder(state); };
    pane.onNewFolder = [state] { state->createMacFolder(); };
    pane.onHome = [state] { state->browseMac(QDir::homePath()); };
    pane.showsMacContextMenu = true;
    pane.viewMode = {state->macViewMode(), [state](PaneViewMode mode) { state->setMacViewMode(mode); }};
    pane.desktop = &state->desktop();
    m_pane->setPane(pane);

    m_spinner->setVisible(state->isLoadingMac());
}

} // namespace vantrel
