#pragma once

#include "App/System/Settings.h"
#include "Records/FileItem.h"
#include "Records/Pane.h"
#include "Theme/AppTheme.h"

#include <QCoroTask>
#include <QMainWindow>
#include <QPointer>

#include <chrono>
#include <memory>
#include <optional>

namespace vantrel {

class AppState;
class Desktop;
class MessageSheet;
class QuitWatch;
class ThumbnailStore;
class ToolbarButton;
class Updater;
class WindowChrome;
class WirelessPhones;

/// The window of the program. It owns the model and looks for the phone for as long as it is open.
///
/// It comes up as its grounds and the window's buttons alone, and is furnished after that first frame:
/// opening fonts and laying out texts takes nearly as long as all that came before, and a window answers the
/// click.
///
/// While copies are unfinished, closing it asks first; when the whole application is told to quit, by a
/// signal or by the end of the session, it does not.
class MainWindow : public QMainWindow {
public:
    static constexpr QSize minimum{1100, 720}; ///< layout pixels, with the title bar; large texts need more
    static constexpr QSize standard{1280, 820};

    /// All of them must outlive the window. It takes the colour scheme from the settings at once.
    MainWindow(Desktop &desktop, Settings &settings, Updater &updater, QWidget *parent = nullptr);
    ~MainWindow() override;

    [[nodiscard]] AppState &state() const { return *m_state; }
    [[nodiscard]] ThumbnailStore &pictures() const { return *m_pictures; }
    /// Whether everything is there: an event-loop pass after the first frame.
    [[nodiscard]] bool isFurnished() const { return m_isFurnished; }

    /// Shows the About window over this one.
    void showAbout();
    /// Shows what the keys do, likewise.
    void showKeyboard();
    /// Asks for a phone on the network over this window.
    void showWireless();
    /// Takes the colour scheme that the desktop prefers, unless the user has ever chosen one here.
    void followDesktop(ColorScheme preferred);
    /// Has the window's own buttons where the desktop's other windows have theirs; see
    /// TitleBar::setButtonLayout().
    void setTitleButtons(const QString &layout);
    /// Changes the colour scheme of everything, for this start and the next ones.
    void setAppearancePreference(ColorScheme scheme);

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void furnish();
    void addToolbarButtons();
    void renderAppearanceButton();
    void fitMinimum();
    void showDetails(BrowserSide side, const QList<FileItem> &items);
    QCoro::Task<> runStartUp();
    /// Whether the question is shown, to which the user's answer closes the window.
    bool asksBeforeClosing();
    void renderQuestion();

    Settings &m_settings;
    Updater &m_updater;
    std::unique_ptr<AppState> m_state;
    ThumbnailStore *m_pictures;
    WirelessPhones *m_wireless;
    WindowChrome *m_chrome = nullptr;
    ToolbarButton *m_appearance = nullptr;
    const QuitWatch *m_quitWatch;
    QPointer<MessageSheet> m_question;          ///< whether to close while copies are unfinished
    std::optional<WindowGeometry> m_openedWith; ///< after the desktop had its say
    bool m_isFurnished = false;
    bool m_isStarted = false;
    bool m_mayClose = false; ///< the user has said so
};

} // namespace vantrel
