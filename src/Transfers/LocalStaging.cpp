#include "Transfers/LocalStaging.h"

#include "ADB/AndroidPath.h"
#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

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

/// When a file was changed, as exactly as the system knows it.
timespec timeOf(const struct stat &facts) {
#ifdef Q_OS_MACOS
    return facts.st_mtimespec;
#else
    return facts.st_mtim;
#endif
}

/// An open file.
class Descriptor {
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0)
            ::close(m_number);
    }
    Q_DISABLE_COPY_MOVE(Descriptor)
    [[nodiscard]] int get() const { return m_number; }

private:
    int m_number;
};

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

tl::expected<LocalStaging, QString> LocalStaging::create(const QString &folder, const QString &name) {
    LocalStaging staging;
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

bool isWithin(const QString &folder, const QString &other) {
    struct stat outer {};
    if (::stat(QFile::encodeName(other).constData(), &outer) != 0)
        return false;
    std::error_code ignored;
    std::filesystem::path path = std::filesystem::canonical(nativePath(folder), ignored);
    for (; !path.empty(); path = path.parent_path()) {
        struct stat facts {};
        if (::stat(path.c_str(), &facts) == 0 && facts.st_dev == outer.st_dev && facts.st_ino == outer.st_ino)
            return true;
        if (path == path.root_path())
            break;
    }
    return false;
}

tl::expected<void, QString> copy(const QString &source, const QString &copied, qint64 from,
                                 const std::stop_token &stop,
                                 const std::function<void(qint64 bytes, qint64 size)> &onBytes) {
    constexpr std::size_t blockSize = 1 << 20;
    const auto failed = [](const char *what, const QString &path) {
        const QString reason = systemText(errno);
        return tl::make_unexpected(QString(QStringLiteral("cannot %1 '").arg(QLatin1String(what)) % path %
                                           QStringLiteral("': ") % reason));
    };
    // Opening a pipe that took the file's place would wait for a writer.
    const Descriptor in(::open(QFile::encodeName(source).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat facts {};
    if (in.get() < 0 || ::fstat(in.get(), &facts) != 0 || ::lseek(in.get(), from, SEEK_SET) != from)
        return failed("open", source);
    const Descriptor out(::open(QFile::encodeName(copied).constData(),
                                O_WRONLY | O_APPEND | O_CLOEXEC | (from > 0 ? 0 : O_CREAT | O_TRUNC), 0600));
    if (out.get() < 0)
        return failed("create", copied);
    std::vector<char> block(blockSize);
    for (qint64 done = from; done < facts.st_size && !stop.stop_requested();) {
        const auto wanted = std::min<qint64>(blockSize, facts.st_size - done);
        const ssize_t got = ::read(in.get(), block.data(), std::size_t(wanted));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return failed("read", source);
        if (got == 0)
            break; // it has become shorter
        for (ssize_t written = 0; written < got;) {
            const ssize_t now = ::write(out.get(), block.data() + written, std::size_t(got - written));
            if (now < 0 && errno != EINTR)
                return failed("write", copied);
            written += std::max<ssize_t>(now, 0);
        }
        done += got;
        onBytes(done, facts.st_size);
    }
    const std::array<timespec, 2> times{timeOf(facts), timeOf(facts)};
    if (!stop.stop_requested() && ::futimens(out.get(), times.data()) != 0)
        return failed("write", copied);
    return {};
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
