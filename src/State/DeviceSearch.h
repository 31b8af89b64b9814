#pragma once

#include "Records/FileItem.h"
#include "Records/Pane.h"

#include <QCoroTask>
#include <QObject>
#include <QProperty>

#include <optional>

namespace vantrel {

class PaneState;

/// The phone pane's search field: a filter of the folder, or a search of the whole phone whose hits the pane
/// shows in the folder's place. Main thread only.
class DeviceSearch : public QObject {
    Q_OBJECT

public:
    /// A search of the phone takes at least this many characters and gives at most this many hits.
    static constexpr qsizetype shortestQuery = 2;
    static constexpr int resultLimit = 200;

    /// The pane, which must outlive the search, is told what to show.
    explicit DeviceSearch(PaneState &pane);

    [[nodiscard]] const QString &text() const { return m_text.value(); }
    void setText(const QString &text) { m_text = text; }
    /// The text without the white space around it.
    [[nodiscard]] QString query() const { return text().trimmed(); }
    [[nodiscard]] AndroidSearchScope scope() const { return m_scope; }
    void setScope(AndroidSearchScope scope) { m_scope = scope; }
    [[nodiscard]] const QList<FileItem> &results() const { return m_results.value(); }
    /// True from the moment a search of the phone is scheduled until it ends or is given up.
    [[nodiscard]] bool isSearching() const { return m_isSearching; }
    /// A counter; every change asks for the caret in the search field.
    [[nodiscard]] qint64 focusToken() const { return m_focusToken; }
    void setFocusToken(qint64 token) { m_focusToken = token; }
    /// Whether the pane shows hits of the whole phone in place of a folder.
    [[nodiscard]] bool isEverywhereActive() const;

    /// Searches the phone with this serial, below these folders, 0.4 s later, unless called again before;
    /// only in the everywhere scope and for a query that is long enough. Without a phone the pane says that
    /// one is needed.
    void schedule(const std::optional<QString> &serial, const QStringList &roots);
    /// Gives up the text, the hits and the selection.
    void clear();

Q_SIGNALS:
    void textChanged();
    void scopeChanged();
    void resultsChanged();
    void isSearchingChanged();
    void focusTokenChanged();

private:
    void showInPane();
    QCoro::Task<> run(QString serial, QStringList roots, QString query, quint64 token);

    PaneState &m_pane;
    Q_OBJECT_BINDABLE_PROPERTY(DeviceSearch, QString, m_text, &DeviceSearch::textChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(DeviceSearch, AndroidSearchScope, m_scope,
                                         AndroidSearchScope::thisFolder, &DeviceSearch::scopeChanged)
    Q_OBJECT_BINDABLE_PROPERTY(DeviceSearch, QList<FileItem>, m_results, &DeviceSearch::resultsChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(DeviceSearch, bool, m_isSearching, false,
                                         &DeviceSearch::isSearchingChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(DeviceSearch, qint64, m_focusToken, 0,
                                         &DeviceSearch::focusTokenChanged)
    /// The newest search; whatever carries an older token is dropped.
    quint64 m_token = 0;
};

} // namespace vantrel
