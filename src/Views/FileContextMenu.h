#pragma once

#include <functional>
#include <memory>

class QMenu;

namespace vantrel {

class Desktop;
struct FileEntry;

/// The context menu that an entry offers, or null. `open` is what opening it in its pane means; the desktop
/// must outlive the menu and may be null for an entry without the computer's commands.
[[nodiscard]] std::unique_ptr<QMenu> fileContextMenu(const FileEntry &entry, std::function<void()> open,
                                                     Desktop *desktop);

} // namespace vantrel
