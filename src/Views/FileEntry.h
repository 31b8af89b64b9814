#pragma once

#include "Records/FileItem.h"

namespace vantrel {

/// One entry of a pane as a value: what a row and a tile are made of. Two of them look the same when they
/// compare equal; how, FileRow and FileGridCell say.
struct FileEntry {
    FileItem item;
    bool isSelected = false;
    bool showsLocation = false;        ///< the folder, too: for search results
    bool showsMacContextMenu = false;  ///< offers the computer's commands
    bool showsOpenContextMenu = false; ///< offers "Open" alone

    /// What of an entry is under the mouse: the mark toggles the selection, the body selects.
    enum class Part { body, mark };

    /// The folder that the entry lies in, as a breadcrumb of the phone.
    [[nodiscard]] QString locationLabel() const;
    /// What it tells of its second fact in one line: where it is, or how large.
    [[nodiscard]] QString captionLabel() const { return showsLocation ? locationLabel() : item.sizeLabel(); }

protected:
    [[nodiscard]] static bool shareLook(const FileEntry &a, const FileEntry &b);
};

} // namespace vantrel
