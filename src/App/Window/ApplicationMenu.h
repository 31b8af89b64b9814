#pragma once

#include "App/System/UsageAnalytics.h"

#include <QObject>
#include <QPointer>

class QAction;
class QMainWindow;
class QMenu;
class QWidget;

namespace vantrel {

class Settings;
class UpdateView;
class Updater;
struct UpdateResult;

/// The commands that concern the program as a whole. On the Mac they are in the menu bar, where the system
/// puts them below the program's name; elsewhere behind a button for the title bar. Their shortcuts work
/// either way.
class ApplicationMenu : public QObject {
    Q_OBJECT

public:
    /// "Check for Updates…" follows the updater, the switches follow the settings; there is one for usage
    /// statistics only where `canSendSignals`. Both must outlive the window, this lives as long as it.
    ApplicationMenu(QMainWindow *window, Updater *updater, Settings *settings,
                    bool canSendSignals = hasAnalyticsService());

    /// A new button that opens the menu; null on the Mac.
    [[nodiscard]] QWidget *createButton(QWidget *parent);
    /// Opens the menu below its button.
    void popup();

    [[nodiscard]] QAction *aboutAction() const { return m_about; }
    [[nodiscard]] QAction *wirelessAction() const { return m_wireless; }
    [[nodiscard]] QAction *updateAction() const { return m_update; }
    [[nodiscard]] QAction *quitAction() const { return m_quit; }
    [[nodiscard]] QAction *verifyAction() const { return m_verify; }
    /// The switch for usage statistics; null where none can be sent.
    [[nodiscard]] QAction *analyticsAction() const { return m_analytics; }
    /// Says that the settings cannot be stored; visible while that is so.
    [[nodiscard]] QAction *problemAction() const { return m_problem; }

Q_SIGNALS:
    /// "About Vantrel" was chosen.
    void aboutRequested();
    /// "Keyboard" was chosen.
    void keyboardRequested();
    /// "Connect over Wi-Fi…" was chosen.
    void wirelessRequested();

private:
    void addUpdates(Updater *updater);
    void addVerification(Settings *settings);
    void addAnalytics(Settings *settings);
    void addProblem(Settings *settings);
    /// Shows the outcome of a check, in place of an earlier one.
    void show(const UpdateResult &result, const Updater &updater);

    QMainWindow *m_window;
    QMenu *m_menu;
    QPointer<QWidget> m_button;
    QAction *m_about;
    QAction *m_wireless;
    QAction *m_update;
    QAction *m_verify;
    QAction *m_analytics = nullptr;
    QAction *m_problem;
    QAction *m_quit;
    QPointer<UpdateView> m_outcome; ///< of the latest check, open or waiting for another sheet to close
};

} // namespace vantrel
