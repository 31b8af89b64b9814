#pragma once

#include "App/Sheets/KeyboardTable.h"

#include <QObject>

class QMainWindow;

namespace vantrel {

class AppState;

/// The window's shortcuts: an action for each of keyboardTable() that has a command.
class WindowCommands : public QObject {
    Q_OBJECT

public:
    /// The state must outlive the window, and this lives as long as that.
    WindowCommands(QMainWindow *window, AppState *state);

    /// Does nothing while a menu or a sheet has the keyboard.
    void perform(WindowCommand command);

Q_SIGNALS:
    void menuRequested();
    void keyboardRequested();

private:
    QMainWindow *m_window;
    AppState *m_state;
};

} // namespace vantrel
