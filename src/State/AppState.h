#pragma once

#include "Records/AndroidDevice.h"
#include "Records/AndroidSearchScope.h"
#include "Records/FileItem.h"
#include "Records/Pane.h"
#include "Records/QueueItem.h"
#include "Records/StorageShortcut.h"
#include "Transfers/TransferQueue.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>
#include <optional>

namespace vantrel {

class Desktop;

/// The observable model behind the window: the phone, both panes, the search and the transfer queue.
///
/// Main thread only; it takes no locks. Every property has a getter of its name and a signal, its name
/// followed by "Changed"; assigning an equal value is silent, a change in place always notifies. Operations
/// that return a task have done their first step when they return and finish later; the task may be dropped,
/// and it ends without effect when the model is destroyed first. Every failure ends as a text in a property.
class AppState : public QObject {
    Q_OBJECT

public:
    /// A search of the phone takes at least this many characters and gives at most this many hits.
    static constexpr qsizetype shortestSearchQuery = 2;
    static constexpr int searchResultLimit = 200;
    /// Copies that run at once.
    static constexpr int concurrentCopies = 3;

    /// How loudly a refresh goes about its work: a visible one sets isRefreshingDevice.
    enum class Spinner { hidden, shown };

    /// The desktop must outlive the model.
    explicit AppState(Desktop &desktop, QObject *parent = nullptr);
    ~AppState() override;

    /// A new model with its initial values.
    [[nodiscard]] static std::unique_ptr<AppState> designPreview(Desktop &desktop);

    // -- The phone
    [[nodiscard]] const AndroidDevice &device() const { return m_device; }
    [[nodiscard]] const std::optional<QString> &deviceStatusMessage() const { return m_deviceStatusMessage; }
    [[nodiscard]] bool isRefreshingDevice() const { return m_isRefreshingDevice; }

    // -- The phone pane
    [[nodiscard]] bool isLoadingAndroid() const { return m_isLoadingAndroid; }
    [[nodiscard]] bool isOpeningAndroidFile() const { return m_isOpeningAndroidFile; }
    [[nodiscard]] const std::optional<QString> &androidBrowseError() const { return m_androidBrowseError; }
    [[nodiscard]] const QString &androidCurrentPath() const { return m_androidCurrentPath; }
    [[nodiscard]] const std::optional<QUuid> &selectedShortcutID() const { return m_selectedShortcutID; }
    [[nodiscard]] const QStringList &androidPathSegments() const { return m_androidPathSegments; }
    [[nodiscard]] const QList<FileItem> &androidItems() const { return m_androidItems; }
    [[nodiscard]] const QSet<QUuid> &androidSelectedIDs() const { return m_androidSelectedIDs; }
    [[nodiscard]] const QString &androidSearchText() const { return m_androidSearchText; }
    [[nodiscard]] AndroidSearchScope androidSearchScope() const { return m_androidSearchScope; }
    [[nodiscard]] const QList<FileItem> &androidSearchResults() const { return m_androidSearchResults; }
    [[nodiscard]] bool isSearchingAndroid() const { return m_isSearchingAndroid; }
    /// A counter; every change asks the phone pane to put the caret into its search field.
    [[nodiscard]] qint64 androidSearchFocusToken() const { return m_androidSearchFocusToken; }
    [[nodiscard]] PaneViewMode androidViewMode() const { return m_androidViewMode; }

    // -- The computer's pane
    [[nodiscard]] PaneViewMode macViewMode() const { return m_macViewMode; }
    [[nodiscard]] const QString &macPath() const { return m_macPath; }
    [[nodiscard]] const QList<FileItem> &macItems() const { return m_macItems; }
    [[nodiscard]] const QSet<QUuid> &macSelectedIDs() const { return m_macSelectedIDs; }
    [[nodiscard]] bool isLoadingMac() const { return m_isLoadingMac; }
    [[nodiscard]] const std::optional<QString> &macBrowseError() const { return m_macBrowseError; }
    [[nodiscard]] const QString &macAvailableLabel() const { return m_macAvailableLabel; }

    // -- Both panes
    /// The pane that keyboard commands act on.
    [[nodiscard]] BrowserSide focusedBrowserSide() const { return m_focusedBrowserSide; }
    /// The sidebar's shortcuts; never change.
    [[nodiscard]] const QList<StorageShortcut> &shortcuts() const { return m_shortcuts; }
    [[nodiscard]] Desktop &desktop() const { return m_desktop; }

    // -- The transfer queue
    [[nodiscard]] const QList<QueueItem> &queue() const { return m_queue.items(); }
    /// The queue as an item model, which tells which rows change: a TransferQueue.
    [[nodiscard]] QAbstractItemModel *queueModel() { return &m_queue; }
    [[nodiscard]] const QString &transferSpeedLabel() const { return m_transferSpeedLabel; }
    [[nodiscard]] const QString &remainingLabel() const { return m_remainingLabel; }
    [[nodiscard]] bool isTransferring() const { return m_isTransferring; }
    [[nodiscard]] int activeTransferCount() const { return m_queue.activeCount(); }
    [[nodiscard]] int waitingCount() const { return m_queue.waitingCount(); }

    // -- What the views may assign
    void setSelectedShortcutID(const std::optional<QUuid> &id);
    void setAndroidSearchText(const QString &text);
    void setAndroidSearchScope(AndroidSearchScope scope);
    void setAndroidSearchFocusToken(qint64 token);
    void setAndroidViewMode(PaneViewMode mode);
    void setMacViewMode(PaneViewMode mode);
    void setFocusedBrowserSide(BrowserSide side);

    // -- Device and browsing (AppStateBrowsing.cpp)

    /// Looks for the phone. When it has just been found, the phone pane opens the highlighted shortcut's
    /// folder.
    QCoro::Task<> refreshDevice(Spinner spinner);
    /// Shows a phone folder.
    QCoro::Task<> browseAndroid(QString path);
    /// Shows a folder of the computer.
    QCoro::Task<> browseMac(QString path);
    /// Copies a phone file into the cache and opens it with its default application. Folders are ignored.
    QCoro::Task<> openAndroidFile(FileItem item);
    /// Asks for a name and creates a folder in macPath.
    QCoro::Task<> createMacFolder();

    // -- Selection and summaries (AppStateSelection.cpp)

    /// What the phone pane shows: the listing, the filtered listing, or the hits.
    [[nodiscard]] QList<FileItem> displayedAndroidItems() const;
    /// What a pane shows.
    [[nodiscard]] QList<FileItem> visibleItems(BrowserSide side) const;
    [[nodiscard]] const QSet<QUuid> &selectedIDs(BrowserSide side) const;
    void toggleSelection(const FileItem &item, BrowserSide side);
    void selectItem(const FileItem &item, BrowserSide side);
    void selectAllVisible(BrowserSide side);
    void toggleSelectAllVisible(BrowserSide side);
    void clearSelection(BrowserSide side);
    [[nodiscard]] PaneSelectAllState selectAllState(BrowserSide side) const;
    /// Footer texts.
    [[nodiscard]] QString androidSelectionSummary() const;
    [[nodiscard]] QString macSelectionSummary() const;
    [[nodiscard]] QString androidFooterStats() const;

    // -- Device search (AppStateSearch.cpp)

    /// To be called whenever the search text or scope has changed: searches the phone 0.4 s later in the
    /// everywhere scope, unless called again before.
    void scheduleAndroidSearch();
    void clearAndroidSearch();
    /// Whether the phone pane shows hits of the whole phone in place of a folder.
    [[nodiscard]] bool isAndroidEverywhereSearchActive() const;

    // -- Transfers (AppStateTransfers.cpp)

    /// Queues the selected entries that the phone pane shows for the computer's folder, and runs the queue.
    void transferAndroidToMac();
    /// Queues the computer's selected entries for the phone folder, and runs the queue.
    void transferMacToAndroid();
    /// Removes one entry. A running copy runs on to its end unseen.
    void removeQueueItem(const QUuid &id);
    /// Removes every entry that is not running.
    void clearQueue();
    /// Seconds as "HH:MM:SS"; hours are not wrapped.
    [[nodiscard]] static QString formatDuration(double seconds);

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
    template <class T>
    void assign(T &property, std::type_identity_t<T> value, void (AppState::*changed)());

    [[nodiscard]] QSet<QUuid> &mutableSelectedIDs(BrowserSide side);
    void selectionChanged(BrowserSide side);
    [[nodiscard]] QString trimmedSearchText() const;

    struct SearchRequest {
        QString serial;
        QString query;
        quint64 token = 0;
    };
    void cancelAndroidSearch();
    QCoro::Task<> runAndroidSearch(SearchRequest request);

    struct CopyClock {
        QElapsedTimer start;
        qint64 expectedBytes = 0;
        [[nodiscard]] double bytesPerSecond(qint64 bytes) const;
    };
    /// What stood at the destination of a waiting push when the phone was asked.
    struct DestinationCheck {
        QString serial; ///< of the phone that was asked
        bool isTaken = false;
        std::optional<QString> error;
        QElapsedTimer age;
    };
    /// When a pane that receives copies was last listed again, and the listing that is put off.
    struct ReceivingPane {
        bool isBeingListed = false;
        QElapsedTimer sinceListed;
        QTimer listLater;
    };
    /// Queues copies of the selected entries among the sources.
    void enqueue(const QList<FileItem> &sources, TransferDirection direction);
    void processTransferQueue();
    void fillSlots();
    QCoro::Task<> runSlot(QUuid id);
    QCoro::Task<> runSingleTransfer(QUuid id);
    QCoro::Task<std::optional<QString>> refusalOfPush(QueueItem item);
    [[nodiscard]] bool hasFreshCheck(const QUuid &id) const;
    void askAhead();
    [[nodiscard]] QList<QueueItem> pushesToAskFor(const std::optional<QueueItem> &first) const;
    QCoro::Task<> checkDestinations(QList<QueueItem> items);
    QCoro::Task<> refreshReceivingPane(BrowserSide side);
    QCoro::Task<> browseAgain(BrowserSide side);
    [[nodiscard]] ReceivingPane &receivingPane(BrowserSide side);
    void applyProgress(const QUuid &id, const CopyClock &clock, double fraction, qint64 transferred,
                       qint64 total);
    void updateQueueStatus(const QUuid &id, const QueueItemStatus &status);
    void setTransferSpeed(double bytesPerSecond);

    Desktop &m_desktop;

    AndroidDevice m_device;
    std::optional<QString> m_deviceStatusMessage;
    bool m_isRefreshingDevice = false;

    bool m_isLoadingAndroid = false;
    bool m_isOpeningAndroidFile = false;
    std::optional<QString> m_androidBrowseError;
    QString m_androidCurrentPath = QStringLiteral("/sdcard");
    std::optional<QUuid> m_selectedShortcutID;
    QStringList m_androidPathSegments{QStringLiteral("Internal Storage")};
    QList<FileItem> m_androidItems;
    QSet<QUuid> m_androidSelectedIDs;
    QString m_androidSearchText;
    AndroidSearchScope m_androidSearchScope = AndroidSearchScope::thisFolder;
    QList<FileItem> m_androidSearchResults;
    bool m_isSearchingAndroid = false;
    qint64 m_androidSearchFocusToken = 0;
    PaneViewMode m_androidViewMode = PaneViewMode::list;

    PaneViewMode m_macViewMode = PaneViewMode::list;
    BrowserSide m_focusedBrowserSide = BrowserSide::android;
    QString m_macPath;
    QList<FileItem> m_macItems;
    QSet<QUuid> m_macSelectedIDs;
    bool m_isLoadingMac = false;
    std::optional<QString> m_macBrowseError;
    QString m_macAvailableLabel;

    TransferQueue m_queue;
    QString m_transferSpeedLabel;
    QString m_remainingLabel;
    bool m_isTransferring = false;
    bool m_transferTaskRunning = false;

    int m_runningCopies = 0;
    bool m_isFillingSlots = false;
    /// Where the running copies write, so that two never write to one place.
    QSet<QString> m_destinationsInUse;
    QHash<QUuid, DestinationCheck> m_destinationChecks;
    std::optional<QCoro::Task<>> m_runningDestinationCheck;
    ReceivingPane m_receivingAndroid;
    ReceivingPane m_receivingMac;

    const QList<StorageShortcut> m_shortcuts;

    /// The last filtered listing: several texts of one render are made from it.
    struct FilteredItems {
        QList<FileItem> source;
        QString query;
        QList<FileItem> matches;
    };
    mutable FilteredItems m_filtered;

    /// A listing is applied only while it is the newest one asked for: the path may be the same, the phone
    /// not.
    quint64 m_androidBrowseToken = 0;
    quint64 m_macBrowseToken = 0;
    /// The newest search; an outcome that carries an older token is dropped.
    quint64 m_androidSearchToken = 0;
    SearchRequest m_androidSearchRequest;
    QTimer m_androidSearchDebounce;
};

} // namespace vantrel
