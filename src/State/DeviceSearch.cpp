#include "State/DeviceSearch.h"

#include "ADB/ADBClient.h"
#include "Records/TextLength.h"
#include "State/PaneState.h"
#include "Worker/Worker.h"

#include <QTimer>

namespace vantrel {

namespace {

/// How long typing must rest before the phone is searched.
constexpr std::chrono::milliseconds debounce{400};

} // namespace

DeviceSearch::DeviceSearch(PaneState &pane) : m_pane(pane) {
    // Before anybody else is told, so that nobody sees the pane and the search disagree.
    connect(this, &DeviceSearch::textChanged, this, &DeviceSearch::showInPane);
    connect(this, &DeviceSearch::scopeChanged, this, &DeviceSearch::showInPane);
    connect(this, &DeviceSearch::resultsChanged, this, &DeviceSearch::showInPane);
}

bool DeviceSearch::isEverywhereActive() const {
    return scope() == AndroidSearchScope::everywhere && !query().isEmpty();
}

void DeviceSearch::showInPane() {
    const bool showsHits = isEverywhereActive();
    m_pane.setFilter(showsHits ? QString() : query());
    m_pane.setHits(showsHits ? std::optional(results()) : std::nullopt);
}

void DeviceSearch::schedule(const std::optional<QString> &serial, const QStringList &roots) {
    const quint64 token = ++m_token;
    if (scope() == AndroidSearchScope::everywhere) {
        m_pane.clearSelection();
        if (characterCount(query()) >= shortestQuery) {
            if (serial) {
                m_isSearching = true;
                QTimer::singleShot(debounce, this, [this, serial = *serial, roots, query = query(), token] {
                    if (token == m_token)
                        run(serial, roots, query, token);
                });
                return;
            }
            m_pane.setBrowseError(QStringLiteral("Connect an Android device to search."));
        }
    }
    m_results = QList<FileItem>();
    m_isSearching = false;
}

QCoro::Task<> DeviceSearch::run(QString serial, QStringList roots, QString query, quint64 token) {
    const auto found =
        co_await Background::run(this, &ADBClient::searchAll, serial, roots, query, resultLimit);
    if (token != m_token)
        co_return;
    m_results = found.value_or(QList<FileItem>());
    m_pane.setBrowseError(found ? std::nullopt : std::optional(found.error().errorDescription()));
    m_isSearching = false;
}

void DeviceSearch::clear() {
    ++m_token;
    m_text = QString();
    m_results = QList<FileItem>();
    m_isSearching = false;
    m_pane.clearSelection();
}

} // namespace vantrel
