#include "MacFiles/MacFileClient.h"

#include "MacFiles/ThisComputer.h"

#include "MacFiles/Desktop.h"
#include "Records/FileOrder.h"
#include "Records/Identity.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <sys/stat.h>
#include <system_error>

namespace vantrel {

QString MacFileError::errorDescription() const {
    switch (m_kind) {
    case Kind::notFound:
        return QStringLiteral("Folder not found: ") + m_text;
    case Kind::notDirectory:
        return QStringLiteral("Not a folder: ") + m_text;
    case Kind::listFailed:
        break;
    }
    return m_text;
}

namespace MacFileClient {

namespace {

std::filesystem::path nativePath(const QString &path) {
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

QString systemText(const std::error_code &error) {
    return QString::fromLocal8Bit(error.message().c_str());
}

QString pathInFolder(const QString &folder, const QString &name) {
    return folder.endsWith(QLatin1Char('/')) ? QString(folder % name)
                                             : QString(folder % QLatin1Char('/') % name);
}

bool isHidden([[maybe_unused]] const QString &path, const QString &name) {
    if (name.startsWith(QLatin1Char('.')))
        return true;
#ifdef Q_OS_MACOS
    return QFileInfo(path).isHidden(); // the Finder's flag
#else
    return false;
#endif
}

/// The entry by its own properties: a link is not followed.
FileItem describe(const QString &path, const QString &name) {
    FileItem item{newIdentity(), name, path, false, 0, std::nullopt, std::nullopt};
    struct stat facts {};
    if (::lstat(QFile::encodeName(path).constData(), &facts) != 0)
        return item;
    item.isDirectory = S_ISDIR(facts.st_mode);
    item.sizeBytes = item.isDirectory ? std::nullopt : std::optional<qint64>(facts.st_size);
#ifdef Q_OS_MACOS
    const timespec &modified = facts.st_mtimespec;
#else
    const timespec &modified = facts.st_mtim;
#endif
    item.modifiedAt =
        QDateTime::fromMSecsSinceEpoch(qint64{modified.tv_sec} * 1000 + modified.tv_nsec / 1'000'000);
    return item;
}

} // namespace

QString standardizedPath(const QString &path) {
    QString expanded = path;
    if (path == QLatin1String("~") || path.startsWith(QLatin1String("~/")))
        expanded = QDir::homePath() + path.mid(1);
    if (expanded.isEmpty())
        return expanded;
    QString clean = QDir::cleanPath(expanded);
    // Above the root there is only the root; cleanPath leaves those steps in place.
    while (clean == QLatin1String("/..") || clean.startsWith(QLatin1String("/../")))
        clean = clean.size() == 3 ? QStringLiteral("/") : clean.mid(3);
    return clean;
}

QString parentPath(const QString &path) {
    QString standardized = standardizedPath(path);
    const qsizetype slash = standardized.lastIndexOf(QLatin1Char('/'));
    if (slash < 0)
        return standardized;
    return slash == 0 ? QStringLiteral("/") : standardized.left(slash);
}

tl::expected<QList<FileItem>, MacFileError> listDirectory(const QString &path) {
    const QString folder = standardizedPath(path);
    const QFileInfo info(folder);
    if (!info.exists())
        return tl::make_unexpected(MacFileError::notFound(folder));
    if (!info.isDir())
        return tl::make_unexpected(MacFileError::notDirectory(folder));

    QList<FileItem> items;
    std::error_code error;
    std::filesystem::directory_iterator entries(nativePath(folder), error);
    for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
        const QString name =
            QFile::decodeName(QByteArray::fromStdString(entries->path().filename().native()));
        const QString entry = pathInFolder(folder, name);
        if (!isHidden(entry, name))
            items.append(describe(entry, name));
    }
    if (error)
        return tl::make_unexpected(MacFileError::listFailed(systemText(error)));
    sortInFileOrder(items);
    return items;
}

QList<FileItem> entriesAt(const QStringList &paths) {
    QList<FileItem> items;
    for (const QString &path : paths) {
        const QString entry = standardizedPath(path);
        if (exists(entry))
            items.append(describe(entry, entry.section(QLatin1Char('/'), -1)));
    }
    sortInFileOrder(items);
    return items;
}

std::optional<qint64> availableBytes(const QString &path) {
    std::error_code error;
    const auto space = std::filesystem::space(nativePath(standardizedPath(path)), error);
    if (error || space.available > static_cast<std::uintmax_t>(std::numeric_limits<qint64>::max()))
        return std::nullopt;
    return static_cast<qint64>(space.available);
}

tl::expected<QString, QString> createFolder(const QString &name, const QString &parent) {
    if (name.contains(QLatin1Char('/')))
        return tl::make_unexpected(QStringLiteral("A folder’s name can’t contain “/”."));
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..") ||
        name.contains(QChar(u'\0')))
        return tl::make_unexpected(QStringLiteral("This can’t be a folder’s name. Choose another one."));
    const QString path = pathInFolder(standardizedPath(parent), name);
    if (::mkdir(QFile::encodeName(path).constData(), 0777) == 0)
        return path;
    const std::error_code error(errno, std::generic_category());
    if (error == std::errc::filename_too_long)
        return tl::make_unexpected(
            QStringLiteral("This name is too long for a folder here. Choose a shorter one."));
    return tl::make_unexpected(systemText(error));
}

bool exists(const QString &path) {
    std::error_code error;
    const auto status = std::filesystem::symlink_status(nativePath(standardizedPath(path)), error);
    return std::filesystem::exists(status);
}

void open(Desktop &desktop, const QString &path) {
    desktop.openFile(standardizedPath(path));
}

void revealInFinder(Desktop &desktop, const QString &path) {
    desktop.revealFile(standardizedPath(path));
}

void copyPath(Desktop &desktop, const QString &path) {
    desktop.copyText(standardizedPath(path));
}

QFuture<std::optional<QString>> chooseFolder(Desktop &desktop, const QString &startingAt) {
    return desktop.chooseFolder(QStringLiteral("Choose a %1 folder").arg(thisComputer()),
                                QStringLiteral("Choose"),
                                startingAt.isEmpty() ? startingAt : standardizedPath(startingAt));
}

} // namespace MacFileClient

} // namespace vantrel
