#pragma once

#include <QObject>

class QAction;
class QMainWindow;
class QMenu;
class QWidget;

namespace vantrel {

class Updater;

/// The commands that concern the program as a whole. On the Mac they are in the menu bar, where the system
/// puts them below the program's name; elsewhere behind a button for the title bar. Their shortcuts work
/// either way.
class ApplicationMenu : public QObject {
    Q_OBJECT

public:
    /// "Check for Updates…" follows the updater. Lives as long as the window.
    ApplicationMenu(QMainWindow *window, Updater *updater);

    /// A new button that opens the menu; null on the Mac.
    [[nodiscard]] QWidget *createButton(QWidget *parent) const;

    [[nodiscard]] QAction *aboutAction() const { return m_about; }
    [[nodiscard]] QAction *updateAction() const { return m_update; }
    [[nodiscard]] QAction *quitAction() const { return m_quit; }

Q_SIGNALS:
    /// "About Vantrel" was chosen.
    void aboutRequested();

private:
    QMenu *m_menu;
    QAction *m_about;
    QAction *m_update;
    QAction *m_quit;
};

} // namespace vantrel
