#include "State/FolderCompletion.h"

#include "ADB/ADBClient.h"
#include "MacFiles/MacFileClient.h"
#include "State/AppState.h"
#include "Worker/Worker.h"

namespace vantrel {

namespace {

QStringList folderPaths(const QList<FileItem> &items) {
    QStringList paths;
    for (const FileItem &item : items) {
        if (item.isDirectory && item.isNameExact)
            paths.append(item.path);
    }
    return paths;
}

} // namespace

QCoro::Task<QStringList> folderPathsIn(AppState &state, BrowserSide side, QString folder) {
    if (side == BrowserSide::mac) {
        const auto listing = co_await Background::run(&state, &MacFileClient::listDirectory, folder);
        co_return listing ? folderPaths(*listing) : QStringList();
    }
    if (!state.device().isConnected)
        co_return QStringList();
    const QString serial = state.device().id;
    const auto listing = co_await Background::run(&state, &ADBClient::listDirectory, serial, folder);
    co_return listing ? folderPaths(*listing) : QStringList();
}

} // namespace vantrel
