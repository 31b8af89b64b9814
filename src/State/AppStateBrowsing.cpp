#include "State/AppState.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "MacFiles/Desktop.h"
#include "MacFiles/MacFileClient.h"
#include "Records/FileSizeFormat.h"
#include "State/FilePreview.h"
#include "Worker/Worker.h"

#include <algorithm>

namespace vantrel {

namespace {

Desktop::TextQuestion newFolderQuestion() {
    return {QStringLiteral("New Folder"), QStringLiteral("Enter a name for the new folder:"),
            QStringLiteral("Create"), QStringLiteral("Cancel"), QStringLiteral("New Folder")};
}

} // namespace

QCoro::Task<> AppState::openPhone() {
    // Nobody waits for this. What is looked at may be open in some program.
    static_cast<void>(Background::run(this, &FilePreview::sweep, QDateTime::currentDateTime().addDays(-1)));
    m_androidPane.setOwner(device().id);
    const auto places = m_shortcuts + m_phones.cards();
    const auto place = std::find_if(places.begin(), places.end(),
                                    [this](const auto &entry) { return entry.id == selectedShortcutID(); });
    return browseAndroid(place != places.end() ? place->path : QStringLiteral("/sdcard"));
}

/// A card that is pulled out takes its folders with it.
QCoro::Task<> AppState::leaveGoneCard() {
    const QString card = AndroidPath::cardOf(androidCurrentPath());
    const auto cards = m_phones.cards();
    if (card.isEmpty() ||
        std::any_of(cards.begin(), cards.end(), [&](const auto &entry) { return entry.path == card; }))
        co_return;
    const QString home = QStringLiteral("/sdcard");
    co_await browseAndroid(home);
    if (androidCurrentPath() == home)
        m_androidPane.setBrowseError(QStringLiteral("“") % AndroidPath::lastComponent(card) %
                                     QStringLiteral("” is no longer in the phone."));
}

void AppState::scheduleAndroidSearch() {
    QStringList roots{QStringLiteral("/sdcard")};
    for (const StorageShortcut &card : m_phones.cards())
        roots.append(card.path);
    m_search.schedule(connectedSerial(), roots);
}

QStringList AppState::androidPathSegments() const {
    return AndroidPath::segments(androidCurrentPath());
}

QCoro::Task<> AppState::browseAndroid(QString path, Arrival arrival) {
    const QString folder = ADBClient::normalizePath(path);
    const quint64 token = m_androidPane.open(folder, arrival);
    m_search.clear();
    for (const StorageShortcut &shortcut : m_shortcuts + m_phones.cards()) {
        if (ADBClient::normalizePath(shortcut.path) == folder) {
            setSelectedShortcutID(shortcut.id);
            break;
        }
    }

    const auto serial = connectedSerial();
    if (!serial) {
        m_androidPane.empty(QStringLiteral("Connect an Android device to browse storage."));
        co_return;
    }

    m_androidPane.setLoading(true);
    auto listing = co_await Background::run(this, &ADBClient::listDirectory, *serial, folder);
    if (!m_androidPane.isNewest(token))
        co_return;
    if (listing)
        m_androidPane.setItems(*listing, listing->unreadableCount);
    else
        m_androidPane.fail(listing.error().errorDescription());
    m_androidPane.setLoading(false);
    if (!listing && !AndroidPath::cardOf(folder).isEmpty())
        m_phones.refreshStorage(); // it may be gone
}

QCoro::Task<> AppState::browseMac(QString path, Arrival arrival) {
    const QString folder = MacFileClient::standardizedPath(path);
    const quint64 token = m_macPane.open(folder, arrival);
    m_macPane.setLoading(true);

    auto listing = co_await Background::run(this, &MacFileClient::listDirectory, folder);
    std::optional<qint64> available;
    if (listing && m_macPane.isNewest(token))
        available = co_await Background::run(this, &MacFileClient::availableBytes, folder);
    if (!m_macPane.isNewest(token))
        co_return;
    if (listing)
        m_macPane.setItems(*listing);
    else
        m_macPane.fail(listing.error().errorDescription());
    showAvailable(available);
    m_macPane.setLoading(false);
}

void AppState::showAvailable(std::optional<qint64> bytes) {
    m_macAvailableLabel =
        bytes ? QString(formatFileSize(*bytes) + QStringLiteral(" available")) : unknownLabel();
}

/// What cannot be listed is left as it was seen last: nobody has asked.
QCoro::Task<> AppState::listAgain(BrowserSide side) {
    PaneState &shown = pane(side);
    const quint64 token = shown.token();
    const QString folder = shown.path();
    if (side == BrowserSide::mac) {
        auto listing = co_await Background::run(this, &MacFileClient::listDirectory, folder);
        const auto available = co_await Background::run(this, &MacFileClient::availableBytes, folder);
        if (!listing || !shown.isNewest(token))
            co_return;
        shown.setItemsAgain(*listing);
        showAvailable(available);
    } else if (const auto serial = connectedSerial()) {
        auto listing = co_await Background::run(this, &ADBClient::listDirectory, *serial, folder);
        if (listing && shown.isNewest(token))
            shown.setItemsAgain(*listing, listing->unreadableCount);
    }
}

QCoro::Task<> AppState::openAndroidFile(FileItem item) {
    if (!item.isNameExact) {
        m_androidPane.setBrowseError(QStringLiteral("“") % item.name %
                                     QStringLiteral("” can’t be opened: its name on the phone is not text."));
        co_return;
    }
    if (item.isDirectory)
        co_return;
    const auto serial = connectedSerial();
    if (!serial) {
        m_androidPane.setBrowseError(QStringLiteral("Connect an Android device to open files."));
        co_return;
    }
    if (m_opening.isUnderWay())
        co_return;
    m_androidPane.setBrowseError(std::nullopt);
    const FilePreview::Request request{*serial, item.path, item.name, item.sizeBytes.value_or(0)};
    const FileOpening::Outcome opened = co_await m_opening.fetch(request);
    if (!opened.path.isEmpty())
        MacFileClient::open(m_desktop, opened.path);
    else if (!opened.reason.isEmpty())
        m_androidPane.setBrowseError(opened.reason);
}

QCoro::Task<> AppState::createAndroidFolder() {
    const auto serial = connectedSerial();
    if (!serial) {
        m_androidPane.setBrowseError(QStringLiteral("Connect an Android device to create folders."));
        co_return;
    }
    const QString parent = androidCurrentPath();
    const auto answer = co_await Background::answer(this, m_desktop.askForText(newFolderQuestion()));
    const QString name = answer.value_or(QString()).trimmed();
    if (name.isEmpty())
        co_return;
    const auto created = co_await Background::run(this, &ADBClient::createFolder, *serial, parent, name);
    if (parent != androidCurrentPath() || serial != connectedSerial())
        co_return; // another folder is looked at by now
    if (created)
        co_await browseAndroid(parent);
    else
        m_androidPane.setBrowseError(created.error().errorDescription());
}

QCoro::Task<> AppState::createMacFolder() {
    const auto answer = co_await Background::answer(this, m_desktop.askForText(newFolderQuestion()));
    const QString name = answer.value_or(QString()).trimmed();
    if (name.isEmpty())
        co_return;
    const auto created = co_await Background::run(this, &MacFileClient::createFolder, name, m_macPane.path());
    if (created)
        co_await browseMac(m_macPane.path());
    else
        m_macPane.setBrowseError(created.error());
}

} // namespace vantrel
