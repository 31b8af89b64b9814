#pragma once

#include "Records/FileItem.h"

#include <initializer_list>

namespace vantrel {

/// One entry of a pane as a value: what a row and a tile are made of.
struct FileEntry {
    FileItem item;
    bool isSelected = false;
    bool showsLocation = false; ///< the folder, too: for search results

    /// What of an entry is under the mouse: the mark toggles the selection, the body selects.
    enum class Part { body, mark };

    /// Whether the name ends with one of these, in large or small letters.
    [[nodiscard]] bool nameEndsWith(std::initializer_list<QLatin1String> suffixes) const;
    /// The folder that the entry lies in, as a breadcrumb of the phone.
    [[nodiscard]] QString locationLabel() const;
    /// What it tells of its second fact in one line: where it is, or how large.
    [[nodiscard]] QString captionLabel() const { return showsLocation ? locationLabel() : item.sizeLabel(); }
};

} // namespace vantrel
