#include "State/AppState.h"

#include "ADB/AndroidPath.h"
#include "MacFiles/Desktop.h"
#include "MacFiles/MacFileClient.h"
#include "Records/FileSizeFormat.h"
#include "Records/Identity.h"
#include "Worker/Worker.h"

#include <QDir>

namespace vantrel {

AppState::AppState(Desktop &desktop, QObject *parent)
    : QObject(parent), m_desktop(desktop), m_shortcuts(MockData::shortcuts()),
      m_androidPane(BrowserSide::android, QStringLiteral("/sdcard")),
      m_macPane(BrowserSide::mac, QDir::homePath()), m_macAvailableLabel(unknownLabel()) {
    if (!m_shortcuts.isEmpty())
        m_selectedShortcutID = m_shortcuts.first().id;
    forwardSignals();
    // With the listing that is still under way: it is of the phone that is gone.
    connect(&m_phones, &PhoneWatch::wasLost, this, [this] { m_androidPane.empty(); });
    connect(&m_phones, &PhoneWatch::storageWasTold, this, &AppState::leaveGoneCard);
    connect(&m_phones, &PhoneWatch::wasAsked, &m_transfers, &TransferRunner::phoneWasAsked);
    connect(&m_phones, &PhoneWatch::phonesChanged, &m_transfers, &TransferRunner::phoneWasAsked);
    connect(&m_transfers, &TransferRunner::phoneLeft, &m_phones, &PhoneWatch::doubt);
    connect(this, &AppState::isTransferringChanged, this, [this] {
        if (!isTransferring())
            m_phones.refreshStorage();
    });
}

std::unique_ptr<AppState> AppState::designPreview(Desktop &desktop) {
    return std::make_unique<AppState>(desktop);
}

void AppState::forwardSignals() {
    connect(&m_phones, &PhoneWatch::deviceChanged, this, &AppState::deviceChanged);
    connect(&m_phones, &PhoneWatch::messageChanged, this, &AppState::deviceStatusMessageChanged);
    connect(&m_phones, &PhoneWatch::isRefreshingChanged, this, &AppState::isRefreshingDeviceChanged);
    connect(&m_androidPane, &PaneState::pathChanged, this, &AppState::androidCurrentPathChanged);
    connect(&m_androidPane, &PaneState::pathChanged, this, &AppState::androidPathSegmentsChanged);
    connect(&m_androidPane, &PaneState::itemsChanged, this, &AppState::androidItemsChanged);
    connect(&m_androidPane, &PaneState::selectedIDsChanged, this, &AppState::androidSelectedIDsChanged);
    connect(&m_androidPane, &PaneState::isLoadingChanged, this, &AppState::isLoadingAndroidChanged);
    connect(&m_androidPane, &PaneState::browseErrorChanged, this, &AppState::androidBrowseErrorChanged);
    connect(&m_androidPane, &PaneState::viewModeChanged, this, &AppState::androidViewModeChanged);
    connect(&m_macPane, &PaneState::pathChanged, this, &AppState::macPathChanged);
    connect(&m_macPane, &PaneState::itemsChanged, this, &AppState::macItemsChanged);
    connect(&m_macPane, &PaneState::selectedIDsChanged, this, &AppState::macSelectedIDsChanged);
    connect(&m_macPane, &PaneState::isLoadingChanged, this, &AppState::isLoadingMacChanged);
    connect(&m_macPane, &PaneState::browseErrorChanged, this, &AppState::macBrowseErrorChanged);
    connect(&m_macPane, &PaneState::viewModeChanged, this, &AppState::macViewModeChanged);
    connect(&m_opening, &FileOpening::isUnderWayChanged, this, &AppState::isOpeningAndroidFileChanged);
    connect(&m_search, &DeviceSearch::textChanged, this, &AppState::androidSearchTextChanged);
    connect(&m_search, &DeviceSearch::scopeChanged, this, &AppState::androidSearchScopeChanged);
    connect(&m_search, &DeviceSearch::resultsChanged, this, &AppState::androidSearchResultsChanged);
    connect(&m_search, &DeviceSearch::isSearchingChanged, this, &AppState::isSearchingAndroidChanged);
    connect(&m_search, &DeviceSearch::focusTokenChanged, this, &AppState::androidSearchFocusTokenChanged);
    connect(&m_transfers, &TransferRunner::queueChanged, this, &AppState::queueChanged);
    connect(&m_transfers, &TransferRunner::speedLabelChanged, this, &AppState::transferSpeedLabelChanged);
    connect(&m_transfers, &TransferRunner::remainingLabelChanged, this, &AppState::remainingLabelChanged);
    connect(&m_transfers, &TransferRunner::isTransferringChanged, this, &AppState::isTransferringChanged);
    connect(&m_transfers, &TransferRunner::isTransferringChanged, this,
            [this] { m_desktop.keepAwake(isTransferring()); });
}

AppState::~AppState() {
    m_desktop.keepAwake(false);
}

/// Queues copies of the source pane's selected entries, as far as they are shown, for the other pane's
/// folder.
void AppState::transfer(TransferDirection direction) {
    const auto serial = phoneForTransfer();
    if (!serial)
        return;
    const bool isPull = direction == TransferDirection::androidToMac;
    PaneState &source = isPull ? m_androidPane : m_macPane;
    if (transfer(direction, source.selectedItems(), isPull ? macPath() : androidCurrentPath(), *serial))
        source.clearSelection();
}

PaneState &AppState::pane(BrowserSide side) {
    return side == BrowserSide::mac ? m_macPane : m_androidPane;
}

/// The phone that is shown; without one, says what is missing.
std::optional<QString> AppState::phoneForTransfer() {
    if (!connectedSerial())
        m_phones.setMessage(QStringLiteral("Connect an Android device to transfer."));
    return connectedSerial();
}

bool AppState::transfer(TransferDirection direction, const QList<FileItem> &items, const QString &folder,
                        const QString &serial) {
    QList<QueueItem> entries;
    QStringList nameless; // what these are called, adb cannot be told
    for (const FileItem &item : items) {
        if (!item.isNameExact)
            nameless.append(item.name);
        else
            entries.append({newIdentity(),
                            item.name,
                            item.isDirectory,
                            item.path,
                            folder,
                            direction,
                            {},
                            item.sizeBytes.value_or(0),
                            serial});
    }
    if (!nameless.isEmpty())
        pane(direction == TransferDirection::androidToMac ? BrowserSide::android : BrowserSide::mac)
            .setBrowseError(
                nameless.size() == 1
                    ? QString(QStringLiteral("“") % nameless.first() %
                              QStringLiteral("” can’t be copied: its name on the phone is not text."))
                    : QString(QString::number(nameless.size()) %
                              QStringLiteral(
                                  " entries can’t be copied: their names on the phone are not text.")));
    if (!entries.isEmpty())
        m_transfers.enqueue(entries);
    return !entries.isEmpty();
}

QCoro::Task<> AppState::transferFiles(QStringList paths, BrowserSide to, QString folder) {
    const bool isPush = to == BrowserSide::android;
    const auto serial = isPush ? phoneForTransfer() : QString();
    if (!serial)
        co_return;
    const auto items = co_await Background::run(this, &MacFileClient::entriesAt, paths);
    transfer(isPush ? TransferDirection::macToAndroid : TransferDirection::withinMac, items, folder, *serial);
}

std::optional<QString> AppState::connectedSerial() const {
    return device().isConnected ? std::optional(device().id) : std::nullopt;
}

QStringList AppState::readyPhones() const {
    QStringList serials;
    for (const ListedPhone &phone : m_phones.phones()) {
        if (phone.isReady() && device().isConnected) // what adb lists and cannot ask is not ready
            serials.append(phone.serial);
    }
    return serials;
}

QString AppState::shownFolder(BrowserSide side) const {
    return side == BrowserSide::mac ? macPath() : androidCurrentPath();
}

bool AppState::isListing(BrowserSide side) const {
    return side == BrowserSide::mac ? isLoadingMac() : isLoadingAndroid();
}

} // namespace vantrel
