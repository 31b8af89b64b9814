#include "App/Window/ApplicationMenu.h"

#include "App/Sheets/UpdateView.h"
#include "App/System/Product.h"
#include "App/Updates/Updater.h"
#include "Kit/IconButton.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace vantrel {

#ifndef Q_OS_MACOS

namespace {

/// The toolkit's own menus know only the palette.
void dress(QMenu *menu) {
    const auto hex = [](const QColor &color) { return color.name(QColor::HexArgb); };
    menu->setFont(TextStyle{.size = 13}.font());
    menu->setStyleSheet(
        QStringLiteral("QMenu { background: %1; color: %2; border: 1px solid %3; padding: 4px; }"
                       "QMenu::item { padding: 5px 22px 5px 12px; border-radius: 4px; }"
                       "QMenu::item:disabled { color: %4; }"
                       "QMenu::item:selected:enabled { background: %5; color: %6; }"
                       "QMenu::separator { height: 1px; background: %7; margin: 4px 8px; }")
            .arg(hex(AppTheme::surface()), hex(AppTheme::ink()), hex(AppTheme::paneStroke()),
                 hex(AppTheme::inkTertiary()), hex(AppTheme::accent()), hex(AppTheme::onAccent()),
                 hex(AppTheme::stroke())));
}

} // namespace

#endif

ApplicationMenu::ApplicationMenu(QMainWindow *window, Updater *updater)
    : QObject(window), m_menu(new QMenu(product::name(), window)) {
    m_about = m_menu->addAction(QStringLiteral("About ") + product::name());
    m_about->setMenuRole(QAction::AboutRole);
    connect(m_about, &QAction::triggered, this, &ApplicationMenu::aboutRequested);

    m_update = m_menu->addAction(QStringLiteral("Check for Updates…"));
    m_update->setMenuRole(QAction::ApplicationSpecificRole);
    m_update->setEnabled(updater->canCheckForUpdates());
    connect(updater, &Updater::canCheckForUpdatesChanged, m_update, &QAction::setEnabled);
    connect(m_update, &QAction::triggered, updater, &Updater::checkForUpdates);
    connect(updater, &Updater::checked, this, [window, updater](const UpdateResult &result) {
        auto *view = new UpdateView(window, result, updater->installedVersion());
        view->setAttribute(Qt::WA_DeleteOnClose);
        view->open();
    });

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

QWidget *ApplicationMenu::createButton(QWidget *parent) const {
#ifdef Q_OS_MACOS
    Q_UNUSED(parent)
    return nullptr;
#else
    auto *button = new IconButton({32, 32}, 7, parent);
    button->setLook(
        {.symbol = {QStringLiteral("line.3.horizontal"), 14, Weight::medium}, .glyph = AppTheme::ink()});
    button->setHelp(QStringLiteral("Menu"));
    button->setObjectName(QStringLiteral("applicationMenu"));
    connect(button, &QAbstractButton::clicked, m_menu, [menu = m_menu, button] {
        dress(menu); // in the scheme of the moment
        const QSize size = menu->sizeHint();
        menu->popup(button->mapToGlobal(QPoint(button->width() - size.width(), button->height() + 2)));
    });
    return button;
#endif
}

} // namespace vantrel
