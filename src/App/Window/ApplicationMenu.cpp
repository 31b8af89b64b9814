#include "App/Window/ApplicationMenu.h"

#include "Analytics/TelemetryDeck.h"
#include "App/Sheets/UpdateView.h"
#include "App/System/Product.h"
#include "App/System/Settings.h"
#include "App/Updates/Updater.h"
#include "Kit/IconButton.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace vantrel {

namespace {

/// Says more about an action, to those who point at it.
void explain(QAction *action, const QString &text) {
    action->setToolTip(text);
    action->setStatusTip(text);
}

/// Says below an action why it is grey: in words of their own, because assistive technology is told of a menu
/// item's name and no more.
void addReason(QMenu *menu, const QString &text) {
    menu->addAction(text)->setEnabled(false);
}

} // namespace

ApplicationMenu::ApplicationMenu(QMainWindow *window, Updater *updater, Settings *settings,
                                 bool canSendSignals)
    : QObject(window), m_window(window), m_menu(new QMenu(product::name(), window)) {
    m_menu->setToolTipsVisible(true);
    m_about = m_menu->addAction(QStringLiteral("About ") + product::name());
    m_about->setMenuRole(QAction::AboutRole);
    connect(m_about, &QAction::triggered, this, &ApplicationMenu::aboutRequested);

    m_wireless = m_menu->addAction(QStringLiteral("Connect over Wi-Fi…"));
    m_wireless->setMenuRole(QAction::ApplicationSpecificRole);
    connect(m_wireless, &QAction::triggered, this, &ApplicationMenu::wirelessRequested);

    // The shortcut is the window's, which says after the tab what it is.
    QAction *keyboard = m_menu->addAction(QStringLiteral("Keyboard\tF1"));
    connect(keyboard, &QAction::triggered, this, &ApplicationMenu::keyboardRequested);

    addUpdates(updater);
    addVerification(settings);
    if (canSendSignals)
        addAnalytics(settings);
    addProblem(settings);

    m_menu->addSeparator();
    m_quit = m_menu->addAction(QStringLiteral("Quit ") + product::name());
    m_quit->setMenuRole(QAction::QuitRole);
    m_quit->setShortcuts(QKeySequence::Quit);
    if (m_quit->shortcut().isEmpty()) // a desktop without a theme of its own names no key
        m_quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(m_quit, &QAction::triggered, window, &QWidget::close);

#ifdef Q_OS_MACOS
    auto *menuBar = new QMenuBar; // without a parent: the system's, for every window
    menuBar->addMenu(m_menu);
    connect(this, &QObject::destroyed, menuBar, &QObject::deleteLater);
#else
    window->addActions(m_menu->actions());
#endif
}

void ApplicationMenu::addUpdates(Updater *updater) {
    m_update = m_menu->addAction(QStringLiteral("Check for Updates…"));
    m_update->setMenuRole(QAction::ApplicationSpecificRole);
    m_update->setEnabled(updater->canCheckForUpdates());
    if (const QString reason = updater->whyNever(); !reason.isEmpty()) {
        explain(m_update, reason);
        addReason(m_menu, reason);
    }
    connect(updater, &Updater::canCheckForUpdatesChanged, m_update, &QAction::setEnabled);
    connect(m_update, &QAction::triggered, updater, &Updater::checkForUpdates);
    connect(updater, &Updater::checked, this,
            [this, updater](const UpdateResult &result) { show(result, *updater); });
}

void ApplicationMenu::addVerification(Settings *settings) {
    m_verify = m_menu->addAction(QStringLiteral("Verify Copies"));
    m_verify->setMenuRole(QAction::ApplicationSpecificRole);
    m_verify->setCheckable(true);
    m_verify->setChecked(settings->verifiesCopies());
    explain(m_verify,
            QStringLiteral("Compares every copy with its original before it gets its name. It takes "
                           "longer; copies that run already are not affected."));
    connect(m_verify, &QAction::triggered, settings, &Settings::setVerifiesCopies);
}

void ApplicationMenu::addAnalytics(Settings *settings) {
    m_analytics = m_menu->addAction(QStringLiteral("Send Anonymous Usage Statistics"));
    m_analytics->setMenuRole(QAction::ApplicationSpecificRole);
    m_analytics->setCheckable(true);
    const bool isDeclined = TelemetryDeck::isDeclinedByEnvironment();
    m_analytics->setChecked(!isDeclined && !settings->analyticsDisabled());
    m_analytics->setEnabled(!isDeclined);
    explain(m_analytics,
            QStringLiteral("Never holds names of files, folders or phones. Turning it off removes "
                           "what was kept for it."));
    if (isDeclined)
        addReason(m_menu, QStringLiteral("Off, because DO_NOT_TRACK is set"));
    connect(m_analytics, &QAction::triggered, settings,
            [settings](bool isOn) { settings->setAnalyticsDisabled(!isOn); });
}

void ApplicationMenu::addProblem(Settings *settings) {
    m_problem = m_menu->addAction(QStringLiteral("Settings Cannot Be Stored"));
    m_problem->setEnabled(false);
    const auto render = [this](const QString &problem) {
        m_problem->setVisible(!problem.isEmpty());
        explain(m_problem, problem);
    };
    render(settings->problem());
    connect(settings, &Settings::problemChanged, this, render);
}

void ApplicationMenu::show(const UpdateResult &result, const Updater &updater) {
    if (m_outcome && m_outcome->isHidden())
        delete m_outcome; // it was still waiting
    else if (m_outcome)
        m_outcome->close();
    m_outcome = new UpdateView(m_window, result, updater.installedVersion());
    m_outcome->setAttribute(Qt::WA_DeleteOnClose);
    m_outcome->open();
}

void ApplicationMenu::popup() {
    if (!m_button)
        return;
    const QSize size = m_menu->sizeHint();
    const int left = m_button->isRightToLeft() ? 0 : m_button->width() - size.width();
    m_menu->popup(m_button->mapToGlobal(QPoint(left, m_button->height() + 2)));
}

QWidget *ApplicationMenu::createButton(QWidget *parent) {
#ifdef Q_OS_MACOS
    Q_UNUSED(parent)
    return nullptr;
#else
    auto *button = new IconButton({32, 32}, 7, parent);
    button->setLook(
        {.symbol = {QStringLiteral("line.3.horizontal"), 14, Weight::medium}, .glyph = AppTheme::ink()});
    button->setHelp(QStringLiteral("Menu"));
    button->setObjectName(QStringLiteral("applicationMenu"));
    connect(button, &QAbstractButton::clicked, this, &ApplicationMenu::popup);
    m_button = button;
    return button;
#endif
}

} // namespace vantrel
