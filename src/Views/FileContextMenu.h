#pragma once

#include <functional>
#include <memory>

class QMenu;

namespace vantrel {

struct FileItem;
struct FilePane;

/// The context menu that an entry of the pane offers, or null. `open` is what opening it there means, and
/// `showDetails` shows what is known of it. The pane's desktop must outlive the menu.
[[nodiscard]] std::unique_ptr<QMenu> fileContextMenu(const FilePane &pane, const FileItem &item,
                                                     std::function<void()> open,
                                                     std::function<void()> showDetails);

} // namespace vantrel
