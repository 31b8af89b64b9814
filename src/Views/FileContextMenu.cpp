#include "Views/FileContextMenu.h"

#include "MacFiles/MacFileClient.h"
#include "MacFiles/ThisComputer.h"
#include "Theme/AppTheme.h"
#include "Views/FilePane.h"

#include <QMenu>

namespace vantrel {

namespace {

void add(QMenu &menu, const QString &title, std::function<void()> action) {
    QObject::connect(menu.addAction(title), &QAction::triggered, &menu, std::move(action));
}

} // namespace

std::unique_ptr<QMenu> fileContextMenu(const FilePane &pane, const FileItem &item, std::function<void()> open,
                                       std::function<void()> showDetails) {
    if (!pane.showsMacContextMenu && !pane.showsOpenContextMenu)
        return nullptr;
    auto menu = std::make_unique<QMenu>();
    menu->setObjectName(QStringLiteral("fileMenu"));
    menu->setPalette(AppTheme::palette());
    Desktop *desktop = pane.desktop;
    const QString path = item.path;
    if (pane.showsMacContextMenu && !item.isDirectory)
        open = [=] { MacFileClient::open(*desktop, path); };
    add(*menu, QStringLiteral("Open"), std::move(open));
    if (pane.showsMacContextMenu) {
        add(*menu, revealTitle(), [=] { MacFileClient::revealInFinder(*desktop, path); });
        menu->addSeparator();
        add(*menu, QStringLiteral("Copy Path"), [=] { MacFileClient::copyPath(*desktop, path); });
    }
    if (pane.onDetails) {
        menu->addSeparator();
        add(*menu, QStringLiteral("Details…"), std::move(showDetails));
    }
    return menu;
}

} // namespace vantrel
