#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

#include <optional>

namespace vantrel {

/// What the window does for a key, wherever the keyboard is in it.
enum class WindowCommand {
    search,
    editPath,
    goUp,
    refresh,
    switchPanes,
    copyToComputer,
    copyToPhone,
    enlargeTiles,
    shrinkTiles,
    resetTiles,
    openMenu,
    toggleFullScreen,
    showKeyboard,
    showDetails,
};

/// Keys and what they do: the window's shortcuts are made from this, and the help that shows them.
struct KeyboardEntry {
    QString group;
    QString keys; ///< as people read them: "Shift with the arrow keys"; empty for those of `sequences`
    QString does;
    QList<QKeySequence> sequences = {};
    std::optional<WindowCommand> command =
        {}; ///< absent: what has the keyboard, or the system, knows the key

    /// `keys`, or the sequences as the desktop writes them.
    [[nodiscard]] QString title() const;
};

[[nodiscard]] const QList<KeyboardEntry> &keyboardTable();

} // namespace vantrel
