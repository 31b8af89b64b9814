#include "State/FilePreview.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "Transfers/CopyText.h"
#include "Transfers/LocalStaging.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace vantrel::FilePreview {

namespace {

constexpr QFileDevice::Permissions ownerOnlyFile = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
constexpr QFileDevice::Permissions ownerOnlyFolder = ownerOnlyFile | QFileDevice::ExeOwner;

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

tl::expected<QString, QString> fetch(const QString &serial, const QString &remotePath, const QString &name) {
    if (!AndroidPath::isSafeName(name))
        return tl::make_unexpected(QStringLiteral("This file’s name can’t be used on this computer."));
    const QString base = cacheFolder();
    const QString folder = base + QLatin1Char('/') + folderName(remotePath);
    const QString application = QFileInfo(base).path();
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
    const auto staging = LocalStaging::create(folder);
    if (!staging)
        return cannotWrite(folder);
    const QString staged = AndroidPath::join(staging->path(), name);
    const auto copied = ADBClient::runTransfer(
        {QStringLiteral("-s"), serial, QStringLiteral("pull"), remotePath, staged}, 0, std::nullopt, nullptr);
    if (!copied)
        return tl::make_unexpected(explainedCopyError(copied.error().errorDescription()));
    const QFileInfo fetched(staged);
    if (fetched.isDir()) // the phone's link to a folder looks like a file in its listing
        return tl::make_unexpected(QStringLiteral("This is a folder. Only files can be opened."));
    if (!fetched.isFile() || !QFile::setPermissions(staged, ownerOnlyFile) ||
        LocalFiles::place(staged, local) != LocalFiles::Placing::placed)
        return cannotWrite(local);
    return local;
}

} // namespace vantrel::FilePreview
