#include "State/FilePreview.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "MacFiles/MacFileClient.h"
#include "Records/FileSizeFormat.h"
#include "Transfers/CopyText.h"
#include "Transfers/LocalStaging.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <mutex>

namespace vantrel::FilePreview {

namespace {

constexpr QFileDevice::Permissions forItsReader = QFileDevice::ReadOwner;
constexpr QFileDevice::Permissions ownerOnlyFolder =
    QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;

/// Held while an empty folder must stay.
std::mutex &foldersMutex() {
    static std::mutex mutex;
    return mutex;
}

/// Makes a real folder at the path, whose parent is one already; a link that stands there is taken away.
bool makeOwnFolder(const QString &path) {
    if (QFileInfo(path).isSymLink())
        QFile::remove(path);
    return QDir().mkpath(path) && QFile::setPermissions(path, ownerOnlyFolder);
}

tl::unexpected<QString> cannotWrite(const QString &path) {
    return tl::make_unexpected(QString(QStringLiteral("Can’t write to the cache folder: ") + path));
}

} // namespace

QString cacheFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/vantrelapp/previews");
}

QString folderName(const QString &remotePath) {
    QString name = remotePath;
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    while (name.startsWith(QLatin1Char('_')))
        name.remove(0, 1);
    while (name.endsWith(QLatin1Char('_')))
        name.chop(1);
    if (!AndroidPath::isSafeName(name))
        return QStringLiteral("root");
    // A path may be longer than a file name may be.
    constexpr qsizetype longestName = 255;
    if (QFile::encodeName(name).size() <= longestName)
        return name;
    const QByteArray hash = QCryptographicHash::hash(remotePath.toUtf8(), QCryptographicHash::Sha256).toHex();
    return QString::fromLatin1(hash);
}

tl::expected<QString, QString> fetch(const Request &request, const std::function<void(int)> &onPercent,
                                     const std::stop_token &stop) {
    const auto &[serial, remotePath, name, size] = request;
    if (!AndroidPath::isSafeName(name))
        return tl::make_unexpected(QStringLiteral("This file’s name can’t be used on this computer."));
    const QString base = cacheFolder();
    const QString folder = base + QLatin1Char('/') + folderName(remotePath);
    const QString application = QFileInfo(base).path();
    std::unique_lock folders(foldersMutex());
    if (!QDir().mkpath(QFileInfo(application).path()) || !makeOwnFolder(application) ||
        !makeOwnFolder(base) || !makeOwnFolder(folder))
        return cannotWrite(folder);
    const QString local = folder + QLatin1Char('/') + name;
    const QFileInfo earlier(local);
    const bool isFolder = earlier.isDir() && !earlier.isSymLink();
    if ((earlier.exists() || earlier.isSymLink()) &&
        !(isFolder ? QDir(local).removeRecursively() : QFile::remove(local)))
        return cannotWrite(local);

    LocalFiles::sweep(folder);
    if (const auto available = MacFileClient::availableBytes(folder); available && size > *available)
        return tl::make_unexpected(QString(QStringLiteral("Opening this file takes ") + formatFileSize(size) +
                                           QStringLiteral(" on this computer, and ") +
                                           formatFileSize(*available) + QStringLiteral(" are free.")));
    const auto staging = LocalStaging::create(folder);
    if (!staging)
        return cannotWrite(folder);
    folders.unlock();
    const QString staged = AndroidPath::join(staging->path(), name);
    const auto report = [&onPercent](double fraction, qint64, qint64) { onPercent(int(fraction * 100)); };
    const auto copied =
        ADBClient::runTransfer({QStringLiteral("-s"), serial, QStringLiteral("pull"), remotePath, staged},
                               size, staged, report, stop);
    if (!copied)
        return tl::make_unexpected(explainedCopyError(copied.error().errorDescription()));
    const QFileInfo fetched(staged);
    if (fetched.isDir()) // the phone's link to a folder looks like a file in its listing
        return tl::make_unexpected(QStringLiteral("This is a folder. Only files can be opened."));
    if (!fetched.isFile() || !QFile::setPermissions(staged, forItsReader) ||
        LocalFiles::place(staged, local) != LocalFiles::Placing::placed)
        return cannotWrite(local);
    return local;
}

int sweep(const QDateTime &before) {
    const std::scoped_lock lock(foldersMutex());
    const QFileInfo base(cacheFolder());
    if (base.isSymLink())
        return 0;
    constexpr QDir::Filters folders = QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot;
    constexpr QDir::Filters files = QDir::Files | QDir::Hidden;
    int left = 0;
    for (const QFileInfo &folder : QDir(base.filePath()).entryInfoList(folders)) {
        LocalFiles::sweep(folder.filePath());
        for (const QFileInfo &file : QDir(folder.filePath()).entryInfoList(files)) {
            // What somebody has written to is somebody's work.
            const bool isAsFetched = !file.permission(QFileDevice::WriteOwner);
            const bool isOld = file.metadataChangeTime() < before;
            if (!isAsFetched || !isOld || !QFile::remove(file.filePath()))
                ++left;
        }
        QDir().rmdir(folder.filePath());
    }
    return left;
}

} // namespace vantrel::FilePreview
