#pragma once

#include "Records/FileOrder.h"
#include "Records/Pane.h"
#include "State/VisitedFolders.h"

#include <QObject>
#include <QProperty>
#include <QSet>

#include <optional>

namespace vantrel {

/// One file pane: the folder it shows, what it shows of it and what of that is selected.
///
/// Main thread only. Assigning a property the value that it holds is silent. Identities of entries that are
/// gone leave the selection; entries that a filter hides stay selected.
class PaneState : public QObject {
    Q_OBJECT

public:
    PaneState(BrowserSide side, const QString &path);

    [[nodiscard]] BrowserSide side() const { return m_side; }
    /// The folder shown, in the normal form of its side.
    [[nodiscard]] const QString &path() const { return m_path.value(); }
    /// The folder's entries.
    [[nodiscard]] const QList<FileItem> &items() const { return m_items; }
    /// What the pane shows: the listing, the filtered listing, or the hits of a search. Cheap to call.
    [[nodiscard]] const QList<FileItem> &visibleItems() const { return m_visibleItems; }
    /// How many bytes these are together. Sizes come from the phone: a sum that does not fit is the largest
    /// number that does.
    [[nodiscard]] qint64 visibleBytes() const { return m_visibleBytes; }
    [[nodiscard]] const QSet<QUuid> &selectedIDs() const { return m_selectedIDs; }
    /// What of visibleItems() is selected, in its order.
    [[nodiscard]] QList<FileItem> selectedItems() const;
    /// Entries of the folder that could not be read, and are not among its items.
    [[nodiscard]] qsizetype unreadableCount() const { return m_unreadableCount; }
    /// Whether a listing is under way.
    [[nodiscard]] bool isLoading() const { return m_isLoading; }
    /// Why the pane could not do what was asked of it last, in words for its footer.
    [[nodiscard]] const std::optional<QString> &browseError() const { return m_browseError.value(); }
    /// Whether the folder could not be listed, or the phone not searched, for the reason that browseError()
    /// is.
    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }
    [[nodiscard]] PaneViewMode viewMode() const { return m_viewMode; }
    /// That of visibleItems().
    [[nodiscard]] FileOrder order() const { return m_order; }
    /// What of the folder is to be in sight, or is.
    [[nodiscard]] const PanePlace &place() const { return m_place; }
    /// A counter; with every change place() is to be shown, whatever is in sight.
    [[nodiscard]] qint64 placeToken() const { return m_placeToken; }

    // -- What the user does
    void toggleSelection(const FileItem &item);
    void selectItem(const FileItem &item);
    /// Adds these to the selection, or takes them out of it.
    void setSelected(const QList<FileItem> &items, bool isSelected);
    /// Adds every visible entry to the selection.
    void selectAllVisible();
    /// The select-all box: takes every visible entry out when all are selected, else adds them.
    void toggleSelectAllVisible();
    void clearSelection();
    [[nodiscard]] PaneSelectAllState selectAllState() const;
    void setViewMode(PaneViewMode mode) { m_viewMode = mode; }
    void setOrder(FileOrder order);
    /// Something else is in sight. Nobody is told. It is of no account while the folder's entries are not
    /// what the pane shows.
    void setPlace(const PanePlace &place);
    /// Asks whoever listens to show what is known of these entries.
    void showDetails(const QList<FileItem> &items) { Q_EMIT detailsRequested(items); }

    // -- What the model fills in

    /// Names the folder, whose listing is asked for now: nothing is selected, no error stands, and a listing
    /// that was asked for earlier will find that isNewest() is false. Returns what stands for this one.
    /// Another folder is shown from its top when it is listed; on the way back as it was left last, as far as
    /// that is still there, or else where one comes from.
    quint64 open(const QString &path, Arrival arrival = Arrival::anew);
    /// Whether no other folder was opened, and the pane not emptied, since open() returned the token. The
    /// path may be the same, the phone not.
    [[nodiscard]] bool isNewest(quint64 token) const { return token == m_token; }
    /// What stands for the listing that open() has asked for last.
    [[nodiscard]] quint64 token() const { return m_token; }
    void setLoading(bool isLoading) { m_isLoading = isLoading; }
    /// The folder's entries, in the order of their names.
    void setItems(const QList<FileItem> &items, qsizetype unreadableCount = 0);
    /// The same folder's entries, listed again: what was there before, by its path, keeps its identity, and
    /// with it stays selected.
    void setItemsAgain(const QList<FileItem> &items, qsizetype unreadableCount = 0);
    void setBrowseError(const std::optional<QString> &error) { m_browseError = error; }
    /// There is nothing to show of what was asked for last, for this reason.
    void fail(const QString &reason);
    /// Empties the pane, because what it lists is gone, and drops the listing that is under way.
    void empty(const std::optional<QString> &error = std::nullopt);
    /// Whose folders these are, by the phone's serial: how those of another one were left is forgotten, since
    /// its paths lead elsewhere. A phone that is back when its cable was moved is the same.
    void setOwner(const QString &serial);

    /// Shows only the entries whose names contain the text, in whatever case; an empty text shows all.
    void setFilter(const QString &text);
    /// Shows these in place of the folder's entries; nothing shows the folder again.
    void setHits(const std::optional<QList<FileItem>> &hits);

Q_SIGNALS:
    void pathChanged();
    void itemsChanged();
    void visibleItemsChanged();
    void selectedIDsChanged();
    void isLoadingChanged();
    void browseErrorChanged();
    void viewModeChanged();
    void orderChanged();
    void detailsRequested(const QList<FileItem> &items);

private:
    void leave(const QString &to);
    [[nodiscard]] bool arrive(const QList<FileItem> &items);
    void replaceItems(const QList<FileItem> &items, qsizetype unreadableCount);
    void updateVisibleItems();
    bool dropGhosts();
    /// What the filter leaves, and the bytes of it.
    struct Filtered {
        QList<FileItem> items = {};
        qint64 bytes = 0;
    };
    [[nodiscard]] Filtered filtered() const;

    const BrowserSide m_side;
    QList<FileItem> m_items;
    qsizetype m_unreadableCount = 0;
    QList<FileItem> m_visibleItems;
    qint64 m_visibleBytes = 0;
    QSet<QUuid> m_selectedIDs;
    QUuid m_justSelected; ///< by itself, as the last change of the selection
    QString m_filter;
    FileOrder m_order;
    std::optional<QList<FileItem>> m_hits;
    quint64 m_token = 0;
    bool m_hasFailed = false;
    bool m_isListed = false; ///< the items are those of the path
    PanePlace m_place;
    qint64 m_placeToken = 0;
    FolderVisit m_wanted; ///< what the folder is to be shown as when it is listed
    QString m_owner;      ///< of what is remembered of folders
    VisitedFolders m_visits;
    Q_OBJECT_BINDABLE_PROPERTY(PaneState, QString, m_path, &PaneState::pathChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PaneState, bool, m_isLoading, false, &PaneState::isLoadingChanged)
    Q_OBJECT_BINDABLE_PROPERTY(PaneState, std::optional<QString>, m_browseError,
                               &PaneState::browseErrorChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(PaneState, PaneViewMode, m_viewMode, PaneViewMode::list,
                                         &PaneState::viewModeChanged)
};

} // namespace vantrel
