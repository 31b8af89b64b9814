#pragma once

#include "Records/FileOrder.h"
#include "Records/Pane.h"
#include "Thumbnails/ThumbnailStore.h"
#include "Views/Emptiness.h"

#include <functional>
#include <optional>

class QMimeData;

namespace vantrel {

class Desktop;

/// A value that a view shows and may change: what it is now, and how to set it.
template <typename T>
struct Binding {
    T value;
    std::function<void(const T &)> set;
};

/// A name in the label of a path, by its first character and the one after its last, and where it leads.
struct PathSegment {
    qsizetype start;
    qsizetype end;
    QString path;
};

/// The folder of a pane, for going elsewhere from it.
struct PanePath {
    QString folder = {}; ///< in full, as it may be typed
    QList<PathSegment> segments = {};
    std::function<void(const QString &path)> onGoTo = {}; ///< absent: the path is text alone
    /// Asks for the paths of the folders in one, and calls back on the main thread, later or never.
    std::function<void(const QString &folder, std::function<void(const QStringList &)>)> foldersIn = {};
};

/// Everything that a FilePaneView shows and calls beside the entries. An absent callback (an empty function)
/// or binding hides or disables its control.
struct FilePane {
    QString title;
    QString pathLabel;
    PanePath path = {};
    QString footerLeading = {};
    QString footerTrailing = {};
    std::function<void(const FileItem &)> onToggle = {}; ///< never absent
    std::function<void(const FileItem &)> onSelect = {}; ///< absent: a click toggles
    std::function<void(const QList<FileItem> &, bool isSelected)> onSelectRange = {}; ///< absent: no ranges
    std::function<void()> onToggleSelectAll = {};
    std::function<void(const FileItem &)> onOpen = {};
    std::function<void(const FileItem &)> onDetails = {}; ///< absent: no menu offers them
    std::function<void()> onFocus = {};                   ///< the pane was clicked beside its controls
    std::function<void()> onBack = {};
    std::function<void()> onRefresh = {};
    std::function<void()> onChooseFolder = {};
    std::function<void()> onNewFolder = {};
    std::function<void()> onHome = {}; ///< absent as onChooseFolder is: both tools are hidden
    std::optional<Binding<QString>> searchText = {};
    std::optional<Binding<AndroidSearchScope>> searchScope = {};
    std::function<void()> onClearSearch = {}; ///< absent: the text is emptied
    bool showsItemLocation = false;
    qint64 focusSearchToken = 0; ///< every change puts the caret into the search field
    qint64 placeToken = 0;       ///< every change shows the place that the pane's state names
    std::function<void(const PanePlace &)> onPlace = {}; ///< other entries are in sight
    bool showsMacContextMenu = false;                    ///< an entry offers the computer's commands
    bool showsOpenContextMenu = false;                   ///< an entry offers "Open" alone
    std::optional<Binding<PaneViewMode>> viewMode = {};  ///< absent: a list
    std::optional<Binding<int>> tileSize = {};           ///< TileSize; absent: the grid's cannot be changed
    ThumbnailStore *pictures = nullptr;                  ///< of the grid's files; absent: there are none
    FilePlace place = {};                                ///< where the entries are, for their pictures
    std::function<void(const FileItem &)> onDrag = {};   ///< absent: entries cannot be dragged
    /// How many entries a drop of this would copy into the folder of this path; with none it is refused.
    /// Absent: every drop is.
    std::function<qsizetype(const QMimeData &, const QString &folder)> dropCount = {};
    /// Something that dropCount() takes was dropped there.
    std::function<void(const QMimeData &, const QString &folder)> onDrop = {};
    std::optional<Binding<FileOrder>> order = {}; ///< absent: the columns cannot be clicked
    std::optional<Emptiness> emptiness = {};      ///< in the list's place; it is empty then
    std::function<void()> onTryAgain = {};        ///< what its button does, but for copying a command
    Desktop *desktop = nullptr; ///< what the computer's context menu acts on; needed where that is shown
};

} // namespace vantrel
