#include "Views/FileContextMenu.h"

#include "MacFiles/MacFileClient.h"
#include "Theme/AppTheme.h"
#include "Views/FileEntry.h"

#include <QMenu>

namespace vantrel {

namespace {

void add(QMenu &menu, const QString &title, std::function<void()> action) {
    QObject::connect(menu.addAction(title), &QAction::triggered, &menu, std::move(action));
}

} // namespace

std::unique_ptr<QMenu> fileContextMenu(const FileEntry &entry, std::function<void()> open, Desktop *desktop) {
    if (!entry.showsMacContextMenu && !entry.showsOpenContextMenu)
        return nullptr;
    auto menu = std::make_unique<QMenu>();
    menu->setObjectName(QStringLiteral("fileMenu"));
    menu->setPalette(AppTheme::palette());
    if (!entry.showsMacContextMenu) {
        add(*menu, QStringLiteral("Open"), std::move(open));
        return menu;
    }

    const QString path = entry.item.path;
    if (entry.item.isDirectory)
        add(*menu, QStringLiteral("Open"), std::move(open));
    else
        add(*menu, QStringLiteral("Open"), [=] { MacFileClient::open(*desktop, path); });
    add(*menu, QStringLiteral("Reveal in Finder"), [=] { MacFileClient::revealInFinder(*desktop, path); });
    menu->addSeparator();
    add(*menu, QStringLiteral("Copy Path"), [=] { MacFileClient::copyPath(*desktop, path); });
    return menu;
}

} // namespace vantrel
