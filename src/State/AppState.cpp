#include "State/AppState.h"

#include "Records/FileSizeFormat.h"
#include "State/AppStateAssign.h"

namespace vantrel {

namespace {

/// How long typing must rest before the phone is searched.
constexpr std::chrono::milliseconds searchDebounce{400};

} // namespace

AppState::AppState(Desktop &desktop, QObject *parent)
    : QObject(parent), m_desktop(desktop), m_macAvailableLabel(unknownLabel()),
      m_transferSpeedLabel(unknownLabel()), m_remainingLabel(unknownLabel()),
      m_shortcuts(MockData::shortcuts()) {
    if (!m_shortcuts.isEmpty())
        m_selectedShortcutID = m_shortcuts.first().id;
    const auto forward = [this](const PaneState &pane, auto... pairs) {
        (connect(&pane, pairs.first, this, pairs.second), ...);
    };
    forward(m_androidPane, std::pair(&PaneState::pathChanged, &AppState::androidCurrentPathChanged),
            std::pair(&PaneState::itemsChanged, &AppState::androidItemsChanged),
            std::pair(&PaneState::selectedIDsChanged, &AppState::androidSelectedIDsChanged),
            std::pair(&PaneState::isLoadingChanged, &AppState::isLoadingAndroidChanged),
            std::pair(&PaneState::browseErrorChanged, &AppState::androidBrowseErrorChanged),
            std::pair(&PaneState::viewModeChanged, &AppState::androidViewModeChanged));
    forward(m_macPane, std::pair(&PaneState::pathChanged, &AppState::macPathChanged),
            std::pair(&PaneState::itemsChanged, &AppState::macItemsChanged),
            std::pair(&PaneState::selectedIDsChanged, &AppState::macSelectedIDsChanged),
            std::pair(&PaneState::isLoadingChanged, &AppState::isLoadingMacChanged),
            std::pair(&PaneState::browseErrorChanged, &AppState::macBrowseErrorChanged),
            std::pair(&PaneState::viewModeChanged, &AppState::macViewModeChanged));
    m_androidSearchDebounce.setSingleShot(true);
    m_androidSearchDebounce.setInterval(searchDebounce);
    for (const BrowserSide side : {BrowserSide::android, BrowserSide::mac}) {
        QTimer &timer = receivingPane(side).listLater;
        timer.setSingleShot(true);
        connect(&timer, &QTimer::timeout, this, [this, side] { browseAgain(side); });
    }
    connect(&m_androidSearchDebounce, &QTimer::timeout, this,
            [this] { runAndroidSearch(m_androidSearchRequest); });
}

AppState::~AppState() = default;

std::unique_ptr<AppState> AppState::designPreview(Desktop &desktop) {
    return std::make_unique<AppState>(desktop);
}

void AppState::setSelectedShortcutID(const std::optional<QUuid> &id) {
    assign(m_selectedShortcutID, id, &AppState::selectedShortcutIDChanged);
}

void AppState::setAndroidSearchText(const QString &text) {
    assign(m_androidSearchText, text, &AppState::androidSearchTextChanged);
    showFilterOrHits();
}

void AppState::setAndroidSearchScope(AndroidSearchScope scope) {
    assign(m_androidSearchScope, scope, &AppState::androidSearchScopeChanged);
    showFilterOrHits();
}

void AppState::setAndroidSearchFocusToken(qint64 token) {
    assign(m_androidSearchFocusToken, token, &AppState::androidSearchFocusTokenChanged);
}

void AppState::setFocusedBrowserSide(BrowserSide side) {
    assign(m_focusedBrowserSide, side, &AppState::focusedBrowserSideChanged);
}

} // namespace vantrel
