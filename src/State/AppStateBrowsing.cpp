#include "State/AppState.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "MacFiles/Desktop.h"
#include "MacFiles/MacFileClient.h"
#include "Records/FileSizeFormat.h"
#include "State/AppStateAssign.h"
#include "State/FilePreview.h"
#include "Worker/Worker.h"

#include <algorithm>

namespace vantrel {

QCoro::Task<> AppState::refreshDevice(Spinner spinner) {
    if (spinner == Spinner::shown) {
        if (m_isRefreshingDevice)
            co_return;
        assign(m_isRefreshingDevice, true, &AppState::isRefreshingDeviceChanged);
    }
    const AndroidDevice known = m_device;
    const auto found = co_await onWorker(this, &ADBClient::fetchPrimaryDevice);
    if (found) {
        assign(m_device, *found, &AppState::deviceChanged);
        assign(m_deviceStatusMessage, std::nullopt, &AppState::deviceStatusMessageChanged);
        // Another phone in the old one's place is new, too: its folders are not those that the pane shows.
        if (!known.isConnected || known.id != found->id) {
            const auto shortcut =
                std::find_if(m_shortcuts.begin(), m_shortcuts.end(), [this](const StorageShortcut &entry) {
                    return entry.id == m_selectedShortcutID;
                });
            const QString folder = shortcut != m_shortcuts.end() ? shortcut->path : QStringLiteral("/sdcard");
            co_await browseAndroid(folder);
        }
    } else {
        assign(m_device, AndroidDevice(), &AppState::deviceChanged);
        assign(m_deviceStatusMessage, found.error().errorDescription(),
               &AppState::deviceStatusMessageChanged);
        // A listing that is still under way belongs to the phone that is gone.
        m_androidPane.empty();
    }
    if (spinner == Spinner::shown)
        assign(m_isRefreshingDevice, false, &AppState::isRefreshingDeviceChanged);
}

QCoro::Task<> AppState::browseAndroid(QString path) {
    const QString folder = ADBClient::normalizePath(path);
    const quint64 token = m_androidPane.open(folder);
    assign(m_androidPathSegments, AndroidPath::segments(folder), &AppState::androidPathSegmentsChanged);

    cancelAndroidSearch();
    assign(m_androidSearchText, {}, &AppState::androidSearchTextChanged);
    assign(m_androidSearchResults, {}, &AppState::androidSearchResultsChanged);
    assign(m_isSearchingAndroid, false, &AppState::isSearchingAndroidChanged);
    showFilterOrHits();

    for (const StorageShortcut &shortcut : m_shortcuts) {
        if (ADBClient::normalizePath(shortcut.path) == folder) {
            setSelectedShortcutID(shortcut.id);
            break;
        }
    }

    if (!m_device.isConnected) {
        m_androidPane.empty(QStringLiteral("Connect an Android device to browse storage."));
        co_return;
    }

    m_androidPane.setLoading(true);
    auto listing = co_await onWorker(this, &ADBClient::listDirectory, m_device.id, folder);
    if (!m_androidPane.isNewest(token))
        co_return;
    if (!listing)
        m_androidPane.setBrowseError(listing.error().errorDescription());
    m_androidPane.setItems(std::move(listing).value_or(QList<FileItem>()));
    m_androidPane.setLoading(false);
}

QCoro::Task<> AppState::browseMac(QString path) {
    const QString folder = MacFileClient::standardizedPath(path);
    const quint64 token = m_macPane.open(folder);
    m_macPane.setLoading(true);

    auto listing = co_await onWorker(this, &MacFileClient::listDirectory, folder);
    std::optional<qint64> available;
    if (listing && m_macPane.isNewest(token))
        available = co_await onWorker(this, &MacFileClient::availableBytes, folder);
    if (!m_macPane.isNewest(token))
        co_return;
    if (!listing)
        m_macPane.setBrowseError(listing.error().errorDescription());
    m_macPane.setItems(std::move(listing).value_or(QList<FileItem>()));
    assign(m_macAvailableLabel,
           available ? formatFileSize(*available) + QStringLiteral(" available") : unknownLabel(),
           &AppState::macAvailableLabelChanged);
    m_macPane.setLoading(false);
}

QCoro::Task<> AppState::openAndroidFile(FileItem item) {
    if (item.isDirectory)
        co_return;
    if (!m_device.isConnected) {
        m_androidPane.setBrowseError(QStringLiteral("Connect an Android device to open files."));
        co_return;
    }
    if (m_isOpeningAndroidFile)
        co_return;
    assign(m_isOpeningAndroidFile, true, &AppState::isOpeningAndroidFileChanged);
    m_androidPane.setBrowseError(std::nullopt);

    const auto local = co_await onWorker(this, &FilePreview::fetch, m_device.id, item.path, item.name);
    if (local)
        MacFileClient::open(m_desktop, *local);
    else
        m_androidPane.setBrowseError(local.error());
    assign(m_isOpeningAndroidFile, false, &AppState::isOpeningAndroidFileChanged);
}

QCoro::Task<> AppState::createMacFolder() {
    const Desktop::TextQuestion question{
        QStringLiteral("New Folder"), QStringLiteral("Enter a name for the new folder:"),
        QStringLiteral("Create"), QStringLiteral("Cancel"), QStringLiteral("New Folder")};
    const auto answer = co_await onAnswer(this, m_desktop.askForText(question));
    const QString name = answer.value_or(QString()).trimmed();
    if (name.isEmpty())
        co_return;
    const auto created = co_await onWorker(this, &MacFileClient::createFolder, name, m_macPane.path());
    if (created)
        co_await browseMac(m_macPane.path());
    else
        m_macPane.setBrowseError(created.error());
}

} // namespace vantrel
