#include "Views/BrowserPane.h"

#include "Kit/Spinner.h"
#include "State/AppState.h"
#include "State/FolderCompletion.h"
#include "Views/FileDrag.h"
#include "Views/FilePaneView.h"

#include <QGridLayout>

namespace vantrel {

BrowserPane::BrowserPane(AppState *state, BrowserSide side, ThumbnailStore *pictures, QWidget *parent)
    : QWidget(parent), m_app(state), m_state(state->pane(side)), m_pictures(pictures),
      m_view(new FilePaneView(m_state)),
      m_spinner(new Spinner(Spinner::Size::small, QStringLiteral("Busy"))) {
    auto *overlay = new QGridLayout(this);
    overlay->setContentsMargins(0, 0, 0, 0);
    overlay->addWidget(m_view, 0, 0);
    overlay->addWidget(m_spinner, 0, 0, Qt::AlignCenter);

    m_rendering.watch(&m_state, &PaneState::pathChanged, &PaneState::visibleItemsChanged,
                      &PaneState::selectedIDsChanged, &PaneState::isLoadingChanged,
                      &PaneState::browseErrorChanged, &PaneState::viewModeChanged, &PaneState::orderChanged);
    m_rendering.watch(m_app, &AppState::tileSizeChanged);
    if (m_pictures)
        connect(&m_state, &PaneState::isLoadingChanged, m_pictures, [this] {
            if (!m_state.isLoading() && !m_state.hasFailed())
                m_pictures->hear(place());
        });
}

QString BrowserPane::activity() const {
    return m_state.isLoading() ? QStringLiteral("Loading…") : QString();
}

std::optional<Emptiness> BrowserPane::emptiness() const {
    return m_state.hasFailed() ? EmptyStates::failed(m_state.browseError().value_or(QString()))
                               : EmptyStates::emptyFolder();
}

Arrival BrowserPane::arrivalAt(const QString &path) const {
    const QString above = path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
    return m_state.path().startsWith(above) ? Arrival::back : Arrival::anew;
}

/// All that are selected, if the entry is one of them.
QList<FileItem> BrowserPane::together(const FileItem &item) const {
    return m_state.selectedIDs().contains(item.id) ? m_state.selectedItems() : QList{item};
}

FilePlace BrowserPane::place() const {
    const bool isPhone = m_state.side() == BrowserSide::android && m_app->device().isConnected;
    return {m_state.side(), isPhone ? m_app->device().id : QString()};
}

void BrowserPane::focusSide() const {
    m_app->setFocusedBrowserSide(m_state.side());
}

void BrowserPane::take(const QMimeData &dragged, const QString &folder) {
    const auto *own = qobject_cast<const DraggedEntries *>(&dragged);
    if (own && own->side() == BrowserSide::android) // another phone may be shown by now
        m_app->transfer(TransferDirection::androidToMac, own->items(), folder, own->serial());
    else
        m_app->transferFiles(draggedPaths(dragged), m_state.side(), folder);
}

void BrowserPane::render() {
    FilePane pane;
    pane.onToggle = [this](const FileItem &item) {
        focusSide();
        m_state.toggleSelection(item);
    };
    pane.onSelect = [this](const FileItem &item) {
        focusSide();
        m_state.selectItem(item);
    };
    pane.onSelectRange = [this](const QList<FileItem> &items, bool isSelected) {
        focusSide();
        m_state.setSelected(items, isSelected);
    };
    pane.onToggleSelectAll = [this] {
        focusSide();
        m_state.toggleSelectAllVisible();
    };
    pane.onFocus = [this] { focusSide(); };
    pane.viewMode = {m_state.viewMode(), [this](PaneViewMode mode) { m_state.setViewMode(mode); }};
    pane.tileSize = {m_app->tileSize(), [this](int size) { m_app->setTileSize(size); }};
    pane.pictures = m_pictures;
    pane.place = place();
    pane.order = {m_state.order(), [this](const FileOrder &order) {
                      focusSide();
                      m_state.setOrder(order);
                  }};
    pane.onDetails = [this](const FileItem &item) {
        focusSide();
        m_state.showDetails(together(item));
    };
    pane.placeToken = m_state.placeToken();
    pane.onPlace = [this](const PanePlace &place) { m_state.setPlace(place); };
    pane.onDrag = [this](const FileItem &item) {
        dragEntries(m_view, new DraggedEntries(m_state.side(), m_app->device().id, together(item)));
    };
    pane.dropCount = [this](const QMimeData &dragged, const QString &folder) {
        const auto *own = qobject_cast<const DraggedEntries *>(&dragged);
        const bool needsPhone =
            m_state.side() == BrowserSide::android || (own && own->side() == BrowserSide::android);
        return needsPhone && !m_app->device().isConnected ? 0 : draggedCount(dragged, m_state.side(), folder);
    };
    pane.onDrop = [this](const QMimeData &dragged, const QString &folder) { take(dragged, folder); };
    pane.path.foldersIn = [this](const QString &folder, const auto &show) {
        QCoro::connect(folderPathsIn(*m_app, m_state.side(), folder), this, show);
    };
    fill(pane);
    const QString busy = activity();
    if (!busy.isEmpty())
        pane.footerTrailing = busy;
    else if (m_state.browseError())
        pane.footerTrailing = *m_state.browseError();
    if (busy.isEmpty() && m_state.visibleItems().isEmpty())
        pane.emptiness = emptiness();
    if (!pane.onTryAgain)
        pane.onTryAgain = pane.onRefresh;
    pane.desktop = &m_app->desktop();
    m_view->setPane(pane);
    m_spinner->setVisible(!busy.isEmpty());
}

} // namespace vantrel
