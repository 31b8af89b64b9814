#include "State/AppState.h"

#include "ADB/ADBClient.h"
#include "Records/TextLength.h"
#include "State/AppStateAssign.h"
#include "Worker/Worker.h"

namespace vantrel {

bool AppState::isAndroidEverywhereSearchActive() const {
    return m_androidSearchScope == AndroidSearchScope::everywhere && !trimmedSearchText().isEmpty();
}

/// Lets the phone pane show what the search says: the hits, or the entries that match.
void AppState::showFilterOrHits() {
    const bool showsHits = isAndroidEverywhereSearchActive();
    m_androidPane.setFilter(showsHits ? QString() : trimmedSearchText());
    m_androidPane.setHits(showsHits ? std::optional(m_androidSearchResults) : std::nullopt);
}

void AppState::cancelAndroidSearch() {
    ++m_androidSearchToken;
    m_androidSearchDebounce.stop();
}

void AppState::scheduleAndroidSearch() {
    cancelAndroidSearch();
    if (m_androidSearchScope == AndroidSearchScope::everywhere) {
        m_androidPane.clearSelection();
        const QString query = trimmedSearchText();
        if (characterCount(query) >= shortestSearchQuery) {
            if (m_device.isConnected) {
                m_androidSearchRequest = {m_device.id, query, m_androidSearchToken};
                assign(m_isSearchingAndroid, true, &AppState::isSearchingAndroidChanged);
                m_androidSearchDebounce.start();
                return;
            }
            m_androidPane.setBrowseError(QStringLiteral("Connect an Android device to search."));
        }
    }
    assign(m_androidSearchResults, {}, &AppState::androidSearchResultsChanged);
    assign(m_isSearchingAndroid, false, &AppState::isSearchingAndroidChanged);
    showFilterOrHits();
}

QCoro::Task<> AppState::runAndroidSearch(SearchRequest request) {
    const QString root = QStringLiteral("/sdcard");
    const auto found =
        co_await onWorker(this, &ADBClient::search, request.serial, root, request.query, searchResultLimit);
    if (request.token != m_androidSearchToken)
        co_return;
    assign(m_androidSearchResults, found.value_or(QList<FileItem>()), &AppState::androidSearchResultsChanged);
    showFilterOrHits();
    m_androidPane.setBrowseError(found ? std::nullopt : std::optional(found.error().errorDescription()));
    assign(m_isSearchingAndroid, false, &AppState::isSearchingAndroidChanged);
}

void AppState::clearAndroidSearch() {
    cancelAndroidSearch();
    assign(m_androidSearchText, {}, &AppState::androidSearchTextChanged);
    assign(m_androidSearchResults, {}, &AppState::androidSearchResultsChanged);
    assign(m_isSearchingAndroid, false, &AppState::isSearchingAndroidChanged);
    m_androidPane.clearSelection();
    showFilterOrHits();
}

} // namespace vantrel
