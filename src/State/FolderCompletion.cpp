#include "State/FolderCompletion.h"

#include "ADB/ADBClient.h"
#include "MacFiles/MacFileClient.h"
#include "State/AppState.h"
#include "Worker/Worker.h"

namespace vantrel {

QCoro::Task<QStringList> folderPathsIn(AppState &state, BrowserSide side, QString folder) {
    QList<FileItem> items;
    if (side == BrowserSide::mac) {
        auto listing = co_await Background::run(&state, &MacFileClient::listDirectory, folder);
        items = std::move(listing).value_or(QList<FileItem>());
    } else if (state.device().isConnected) {
        const QString serial = state.device().id;
        auto listing = co_await Background::run(&state, &ADBClient::listDirectory, serial, folder);
        items = std::move(listing).value_or(ADBClient::Listing());
    }
    QStringList paths;
    for (const FileItem &item : std::as_const(items)) {
        if (item.isDirectory && item.isNameExact)
            paths.append(item.path);
    }
    co_return paths;
}

} // namespace vantrel
