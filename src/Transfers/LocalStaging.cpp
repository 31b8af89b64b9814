#include "Transfers/LocalStaging.h"

#include "ADB/AndroidPath.h"
#include "Transfers/StagedName.h"

#include <QCryptographicHash>
#include <QFile>

#include <array>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace vantrel {

namespace {

QString systemText(int error) {
    return QString::fromStdString(std::generic_category().message(error));
}

std::filesystem::path nativePath(const QString &path) {
    return QFile::encodeName(path).toStdString();
}

TreeEntry entryOf(const QString &path, const struct stat &facts) {
    const TreeEntry::Kind kind = S_ISDIR(facts.st_mode)   ? TreeEntry::Kind::folder
                                 : S_ISREG(facts.st_mode) ? TreeEntry::Kind::file
                                                          : TreeEntry::Kind::other;
    return {path, kind, kind == TreeEntry::Kind::file ? facts.st_size : 0, facts.st_mtime};
}

/// The names in a folder without "." and "..", as bytes. errno when they cannot be read.
tl::expected<QList<QByteArray>, int> namesIn(const QString &folder) {
    DIR *stream = ::opendir(QFile::encodeName(folder).constData());
    if (!stream)
        return tl::make_unexpected(errno);
    QList<QByteArray> names;
    while (const dirent *entry = ::readdir(stream)) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..")
            names.append(name);
    }
    ::closedir(stream);
    return names;
}

int renameWithoutReplacing(const char *from, const char *to) {
#ifdef Q_OS_MACOS
    return ::renamex_np(from, to, RENAME_EXCL);
#else
    return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
#endif
}

bool isNotKnownHere(int error) {
    return error == EINVAL || error == ENOSYS || error == ENOTSUP || error == EOPNOTSUPP || error == EPERM;
}

} // namespace

tl::expected<LocalStaging, QString> LocalStaging::create(const QString &folder) {
    LocalStaging staging;
    const QString name = StagedName::make();
    const QString path = AndroidPath::join(folder, name);
    if (::mkdir(QFile::encodeName(path).constData(), 0700) != 0) {
        const int error = errno;
        StagedName::release(name);
        return tl::make_unexpected(systemText(error));
    }
    staging.m_path = path;
    // The umask can only be asked for by changing it, which another thread would feel.
    const QByteArray probe = QFile::encodeName(path + QStringLiteral("/mode"));
    const int file = ::open(probe.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    struct stat facts {};
    if (file >= 0 && ::fstat(file, &facts) == 0)
        staging.m_newFileMode = facts.st_mode & 0777U;
    if (file >= 0)
        ::close(file);
    ::unlink(probe.constData());
    return staging;
}

LocalStaging::LocalStaging(LocalStaging &&other) noexcept
    : m_path(std::move(other.m_path)), m_newFileMode(other.m_newFileMode) {
    other.m_path.clear();
}

LocalStaging::~LocalStaging() {
    std::error_code ignored; // the next program sweeps what cannot be removed now
    if (m_path.isEmpty())
        return;
    std::filesystem::remove_all(nativePath(m_path), ignored);
    StagedName::release(AndroidPath::lastComponent(m_path));
}

namespace LocalFiles {

Placing place(const QString &staged, const QString &destination) {
    const QByteArray from = QFile::encodeName(staged);
    const QByteArray to = QFile::encodeName(destination);
    if (renameWithoutReplacing(from.constData(), to.constData()) == 0)
        return Placing::placed;
    if (isNotKnownHere(errno)) {
        if (::link(from.constData(), to.constData()) == 0) {
            ::unlink(from.constData());
            return Placing::placed;
        }
        if (isNotKnownHere(errno)) {
            if (look(destination))
                return Placing::nameTaken;
            return ::rename(from.constData(), to.constData()) == 0 ? Placing::placed : Placing::failed;
        }
    }
    return errno == EEXIST ? Placing::nameTaken : Placing::failed;
}

std::optional<TreeEntry> look(const QString &path) {
    struct stat facts {};
    if (::lstat(QFile::encodeName(path).constData(), &facts) != 0)
        return std::nullopt;
    return entryOf({}, facts);
}

FileTree readTree(const QString &path) {
    FileTree tree;
    struct stat facts {};
    if (::stat(QFile::encodeName(path).constData(), &facts) != 0)
        return tree;
    tree.entries.append(entryOf({}, facts));
    // The list is worked off while it grows: however deep a tree is, nothing is nested.
    for (qsizetype at = 0; at < tree.entries.size(); ++at) {
        if (tree.entries.at(at).kind != TreeEntry::Kind::folder)
            continue;
        const QString below = tree.entries.at(at).path;
        const QString folder = below.isEmpty() ? path : AndroidPath::join(path, below);
        const auto names = namesIn(folder);
        if (!names) {
            tree.unreadable.append({below, systemText(names.error())});
            continue;
        }
        for (const QByteArray &bytes : *names) {
            const QString name = QString::fromUtf8(bytes);
            const QString entry = below.isEmpty() ? name : AndroidPath::join(below, name);
            if (StagedName::isStaged(name))
                continue;
            if (name.toUtf8() != bytes) {
                tree.leftOut.append({entry, QStringLiteral("This name can’t be used on the other side.")});
                continue;
            }
            if (::lstat(QFile::encodeName(AndroidPath::join(folder, name)).constData(), &facts) == 0)
                tree.entries.append(entryOf(entry, facts));
            else
                tree.unreadable.append({entry, systemText(errno)});
        }
    }
    return tree;
}

tl::expected<void, QString> makeFolder(const QString &path) {
    if (::mkdir(QFile::encodeName(path).constData(), 0777) == 0)
        return {};
    const int error = errno;
    const auto there = look(path);
    if (there && there->kind == TreeEntry::Kind::folder)
        return {};
    return tl::make_unexpected(systemText(error));
}

bool setModified(const QString &path, qint64 modified) {
    const std::array<timespec, 2> times{timespec{modified, 0}, timespec{modified, 0}};
    return ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times.data(), 0) == 0;
}

std::optional<QByteArray> sum(const QString &path, const std::stop_token &stop,
                              const std::function<void(qint64 bytes)> &onBytes) {
    constexpr qint64 blockSize = 1'000'000;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    QCryptographicHash hash(QCryptographicHash::Md5);
    while (!stop.stop_requested()) {
        const QByteArray block = file.read(blockSize);
        if (block.isEmpty())
            return file.error() == QFile::NoError ? std::optional(hash.result().toHex()) : std::nullopt;
        hash.addData(block);
        onBytes(file.pos());
    }
    return std::nullopt;
}

QStringList leftOver(const QString &folder) {
    const auto names = namesIn(folder);
    QStringList found;
    for (const QByteArray &bytes : names.value_or(QList<QByteArray>())) {
        if (const QString name = QString::fromUtf8(bytes); StagedName::isLeftOver(name))
            found.append(name);
    }
    return found;
}

void sweep(const QString &folder) {
    for (const QString &name : leftOver(folder)) {
        std::error_code ignored;
        std::filesystem::remove_all(nativePath(AndroidPath::join(folder, name)), ignored);
    }
}

} // namespace LocalFiles

} // namespace vantrel
