#include "App/Window/WindowCommands.h"

#include "State/AppState.h"
#include "Views/DualBrowserView.h"
#include "Views/FilePaneView.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QMainWindow>

#include <algorithm>
#include <functional>

namespace vantrel {

WindowCommands::WindowCommands(QMainWindow *window, AppState *state)
    : QObject(window), m_window(window), m_state(state) {
    for (const KeyboardEntry &entry : keyboardTable()) {
        if (!entry.command)
            continue;
        auto *action = new QAction(entry.does, this);
        action->setShortcuts(entry.sequences);
        action->setAutoRepeat(false);
        connect(action, &QAction::triggered, this, [this, command = *entry.command] { perform(command); });
        window->addAction(action);
    }
}

void WindowCommands::perform(WindowCommand command) {
    const auto *browser = m_window->findChild<DualBrowserView *>(QStringLiteral("browser"));
    const auto dialogs = m_window->findChildren<QDialog *>();
    if (!browser || QApplication::activePopupWidget() ||
        std::any_of(dialogs.begin(), dialogs.end(), std::mem_fn(&QWidget::isVisible)))
        return;
    const auto call = [](const std::function<void()> &action) {
        if (const auto copy = action) // what is called may give the pane other callbacks
            copy();
    };
    switch (command) {
    case WindowCommand::search:
        m_state->setAndroidSearchFocusToken(m_state->androidSearchFocusToken() + 1);
        break;
    case WindowCommand::editPath:
        browser->focusedPane()->editPath();
        break;
    case WindowCommand::goUp:
        call(browser->focusedPane()->pane().onBack);
        break;
    case WindowCommand::refresh:
        call(browser->focusedPane()->pane().onRefresh);
        break;
    case WindowCommand::switchPanes:
        browser->otherPane()->takeFocus();
        break;
    case WindowCommand::copyToComputer:
        m_state->transferAndroidToMac();
        break;
    case WindowCommand::copyToPhone:
        m_state->transferMacToAndroid();
        break;
    case WindowCommand::enlargeTiles:
        m_state->setTileSize(m_state->tileSize() + TileSize::step);
        break;
    case WindowCommand::shrinkTiles:
        m_state->setTileSize(m_state->tileSize() - TileSize::step);
        break;
    case WindowCommand::resetTiles:
        m_state->setTileSize(TileSize::standard);
        break;
    case WindowCommand::openMenu:
        Q_EMIT menuRequested();
        break;
    case WindowCommand::toggleFullScreen:
        m_window->setWindowState(m_window->windowState() ^ Qt::WindowFullScreen);
        break;
    case WindowCommand::showDetails:
        browser->focusedPane()->showDetails();
        break;
    case WindowCommand::showKeyboard:
        Q_EMIT keyboardRequested();
        break;
    }
}

} // namespace vantrel
