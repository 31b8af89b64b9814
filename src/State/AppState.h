#pragma once

#include "Records/StorageShortcut.h"
#include "State/DeviceSearch.h"
#include "State/FileOpening.h"
#include "State/PaneState.h"
#include "State/PhoneWatch.h"
#include "Transfers/TransferRunner.h"

#include <memory>

namespace vantrel {

class Desktop;

/// The observable model behind the window: the phone, both panes, the search and the transfer queue.
///
/// Main thread only; it takes no locks. Every property has a getter of its name and a signal, its name
/// followed by "Changed"; assigning an equal value is silent, a change in place always notifies. Operations
/// that return a task have done their first step when they return and finish later; the task may be dropped,
/// and it ends without effect when the model is destroyed first. Every failure ends as a text in a property.
class AppState : public QObject, private TransferHost {
    Q_OBJECT

public:
    /// The desktop must outlive the model.
    explicit AppState(Desktop &desktop, QObject *parent = nullptr);
    ~AppState() override;
    [[nodiscard]] static std::unique_ptr<AppState> designPreview(Desktop &desktop);
    [[nodiscard]] Desktop &desktop() const { return m_desktop; }

    // -- The phone
    [[nodiscard]] const AndroidDevice &device() const { return m_phones.device(); }
    [[nodiscard]] const std::optional<QString> &deviceStatusMessage() const { return m_phones.message(); }
    [[nodiscard]] bool isRefreshingDevice() const { return m_phones.isRefreshing(); }
    /// All phones; device() is the one of them that is shown.
    [[nodiscard]] PhoneWatch &phones() { return m_phones; }
    /// Looks for the phone. When it was just found, the phone pane opens the highlighted shortcut's folder. A
    /// hidden refresh does nothing while another is asking, a shown one supersedes it.
    QCoro::Task<> refreshDevice(PhoneWatch::Spinner spinner) { return m_phones.refresh(spinner); }

    // -- Both panes
    [[nodiscard]] PaneState &pane(BrowserSide side);
    /// The pane that keyboard commands act on.
    [[nodiscard]] BrowserSide focusedBrowserSide() const { return m_focusedBrowserSide; }
    void setFocusedBrowserSide(BrowserSide side) { m_focusedBrowserSide = side; }
    /// How large the tiles are where a pane shows a grid; a TileSize.
    [[nodiscard]] int tileSize() const { return m_tileSize; }
    void setTileSize(int size) { m_tileSize = TileSize::nearest(size); }
    void toggleSelection(const FileItem &item, BrowserSide side) { pane(side).toggleSelection(item); }
    void selectItem(const FileItem &item, BrowserSide side) { pane(side).selectItem(item); }
    void selectAllVisible(BrowserSide side) { pane(side).selectAllVisible(); }
    void toggleSelectAllVisible(BrowserSide side) { pane(side).toggleSelectAllVisible(); }
    void clearSelection(BrowserSide side) { pane(side).clearSelection(); }
    [[nodiscard]] PaneSelectAllState selectAllState(BrowserSide side) { return pane(side).selectAllState(); }

    // -- The phone pane
    [[nodiscard]] bool isLoadingAndroid() const { return m_androidPane.isLoading(); }
    [[nodiscard]] bool isOpeningAndroidFile() const { return m_opening.isUnderWay(); }
    [[nodiscard]] const auto &androidBrowseError() const { return m_androidPane.browseError(); }
    [[nodiscard]] const QString &androidCurrentPath() const { return m_androidPane.path(); }
    [[nodiscard]] QStringList androidPathSegments() const;
    [[nodiscard]] const QList<FileItem> &androidItems() const { return m_androidPane.items(); }
    [[nodiscard]] const auto &displayedAndroidItems() const { return m_androidPane.visibleItems(); }
    [[nodiscard]] const QSet<QUuid> &androidSelectedIDs() const { return m_androidPane.selectedIDs(); }
    [[nodiscard]] PaneViewMode androidViewMode() const { return m_androidPane.viewMode(); }
    void setAndroidViewMode(PaneViewMode mode) { m_androidPane.setViewMode(mode); }
    [[nodiscard]] QString androidSelectionSummary() const;
    [[nodiscard]] QString androidFooterStats() const;
    [[nodiscard]] const QList<StorageShortcut> &shortcuts() const { return m_shortcuts; }
    [[nodiscard]] const auto &selectedShortcutID() const { return m_selectedShortcutID.value(); }
    void setSelectedShortcutID(const std::optional<QUuid> &id) { m_selectedShortcutID = id; }
    /// Shows a phone folder.
    QCoro::Task<> browseAndroid(QString path, Arrival arrival = Arrival::anew);
    /// Asks for a name and creates a folder in androidCurrentPath.
    QCoro::Task<> createAndroidFolder();
    /// Copies a phone file into the cache and opens it with its default application. Folders are ignored.
    QCoro::Task<> openAndroidFile(FileItem item);
    [[nodiscard]] FileOpening &opening() { return m_opening; }

    // -- The phone pane's search
    [[nodiscard]] const QString &androidSearchText() const { return m_search.text(); }
    void setAndroidSearchText(const QString &text) { m_search.setText(text); }
    [[nodiscard]] AndroidSearchScope androidSearchScope() const { return m_search.scope(); }
    void setAndroidSearchScope(AndroidSearchScope scope) { m_search.setScope(scope); }
    [[nodiscard]] const QList<FileItem> &androidSearchResults() const { return m_search.results(); }
    [[nodiscard]] bool isSearchingAndroid() const { return m_search.isSearching(); }
    /// A counter; every change asks the phone pane to put the caret into its search field.
    [[nodiscard]] qint64 androidSearchFocusToken() const { return m_search.focusToken(); }
    void setAndroidSearchFocusToken(qint64 token) { m_search.setFocusToken(token); }
    /// Whether the phone pane shows hits of the whole phone in place of a folder.
    [[nodiscard]] bool isAndroidEverywhereSearchActive() const { return m_search.isEverywhereActive(); }
    /// To be called whenever the search text or scope has changed.
    void scheduleAndroidSearch();
    void clearAndroidSearch() { m_search.clear(); }

    // -- The computer's pane
    [[nodiscard]] PaneViewMode macViewMode() const { return m_macPane.viewMode(); }
    void setMacViewMode(PaneViewMode mode) { m_macPane.setViewMode(mode); }
    [[nodiscard]] const QString &macPath() const { return m_macPane.path(); }
    [[nodiscard]] const QList<FileItem> &macItems() const { return m_macPane.items(); }
    [[nodiscard]] const QSet<QUuid> &macSelectedIDs() const { return m_macPane.selectedIDs(); }
    [[nodiscard]] bool isLoadingMac() const { return m_macPane.isLoading(); }
    [[nodiscard]] const std::optional<QString> &macBrowseError() const { return m_macPane.browseError(); }
    [[nodiscard]] const QString &macAvailableLabel() const { return m_macAvailableLabel.value(); }
    [[nodiscard]] QString macSelectionSummary() const;
    /// Shows a folder of the computer.
    QCoro::Task<> browseMac(QString path, Arrival arrival = Arrival::anew);
    /// Asks for a name and creates a folder in macPath.
    QCoro::Task<> createMacFolder();

    // -- Transfers
    [[nodiscard]] const QList<QueueItem> &queue() const { return m_transfers.queue().items(); }
    [[nodiscard]] const QString &transferSpeedLabel() const { return m_transfers.speedLabel(); }
    [[nodiscard]] const QString &remainingLabel() const { return m_transfers.remainingLabel(); }
    [[nodiscard]] bool isTransferring() const { return m_transfers.isTransferring(); }
    [[nodiscard]] int activeTransferCount() const { return m_transfers.activeCount(); }
    [[nodiscard]] int waitingCount() const { return m_transfers.waitingCount(); }
    /// Queue the selected entries that one pane shows for the other one's folder, and run the queue.
    void transferAndroidToMac() { transfer(TransferDirection::androidToMac); }
    void transferMacToAndroid() { transfer(TransferDirection::macToAndroid); }
    /// Queues copies into a folder of the side that the direction leads to. Whether it took any. `serial` is
    /// that of the phone, if one takes part.
    bool transfer(TransferDirection direction, const QList<FileItem> &items, const QString &folder,
                  const QString &serial);
    /// The same for files of this computer that come from elsewhere, by their paths.
    QCoro::Task<> transferFiles(QStringList paths, BrowserSide to, QString folder);
    /// Removes one entry; a copy that runs for it is stopped and leaves nothing behind.
    void removeQueueItem(const QUuid &id) { m_transfers.remove(id); }
    /// Removes every entry that is not running.
    void clearQueue() { m_transfers.clear(); }
    /// What runs the queue, for whatever else is to be done with it.
    [[nodiscard]] TransferRunner &transfers() { return m_transfers; }

Q_SIGNALS:
    void deviceChanged();
    void deviceStatusMessageChanged();
    void isRefreshingDeviceChanged();
    void isLoadingAndroidChanged();
    void isOpeningAndroidFileChanged();
    void androidBrowseErrorChanged();
    void androidCurrentPathChanged();
    void selectedShortcutIDChanged();
    void androidPathSegmentsChanged();
    void androidItemsChanged();
    void androidSelectedIDsChanged();
    void androidSearchTextChanged();
    void androidSearchScopeChanged();
    void androidSearchResultsChanged();
    void isSearchingAndroidChanged();
    void androidSearchFocusTokenChanged();
    void androidViewModeChanged();
    void macViewModeChanged();
    void focusedBrowserSideChanged();
    void tileSizeChanged();
    void macPathChanged();
    void macItemsChanged();
    void macSelectedIDsChanged();
    void isLoadingMacChanged();
    void macBrowseErrorChanged();
    void macAvailableLabelChanged();
    /// The queue changed in any way; comes after what queueModel() tells of it.
    void queueChanged();
    void transferSpeedLabelChanged();
    void remainingLabelChanged();
    void isTransferringChanged();

private:
    void forwardSignals();
    void transfer(TransferDirection direction);
    [[nodiscard]] std::optional<QString> phoneForTransfer();
    QCoro::Task<> openPhone();
    QCoro::Task<> leaveGoneCard();
    void showAvailable(std::optional<qint64> bytes);
    [[nodiscard]] std::optional<QString> connectedSerial() const;
    [[nodiscard]] QStringList readyPhones() const override;
    [[nodiscard]] QString shownFolder(BrowserSide side) const override;
    [[nodiscard]] bool isListing(BrowserSide side) const override;
    QCoro::Task<> listAgain(BrowserSide side) override;

    Desktop &m_desktop;
    const QList<StorageShortcut> m_shortcuts;
    PaneState m_androidPane;
    PaneState m_macPane;
    PhoneWatch m_phones{[this] { return openPhone(); }};
    FileOpening m_opening;
    DeviceSearch m_search{m_androidPane};
    TransferRunner m_transfers{*this};

    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<QUuid>, m_selectedShortcutID,
                               &AppState::selectedShortcutIDChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, BrowserSide, m_focusedBrowserSide, BrowserSide::android,
                                         &AppState::focusedBrowserSideChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, int, m_tileSize, TileSize::standard,
                                         &AppState::tileSizeChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QString, m_macAvailableLabel, &AppState::macAvailableLabelChanged)
};

} // namespace vantrel
