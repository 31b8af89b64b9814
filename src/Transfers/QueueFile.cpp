#include "Transfers/QueueFile.h"

#include "ADB/AndroidPath.h"
#include "Records/Identity.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <optional>
#include <utility>

namespace vantrel {

namespace {

constexpr int version = 1;
/// Programs of one user at the same time, on as many screens, that remember.
constexpr int mostPrograms = 8;

const QString programName = QStringLiteral("vantrel");
/// How each way of a copy is called in the file.
const std::pair<TransferDirection, QString> ways[] = {
    {TransferDirection::androidToMac, QStringLiteral("pull")},
    {TransferDirection::macToAndroid, QStringLiteral("push")},
    {TransferDirection::withinMac, QStringLiteral("here")}};

QString nameOf(TransferDirection direction) {
    return std::find_if(std::begin(ways), std::end(ways),
                        [&](const auto &way) { return way.first == direction; })
        ->second;
}

/// The destination is kept as a folder and a name, so that an entry never leads out of its folder.
QJsonObject toJson(const QueueItem &item) {
    return {{QStringLiteral("phone"), item.serial},
            {QStringLiteral("way"), nameOf(item.direction)},
            {QStringLiteral("source"), item.sourcePath},
            {QStringLiteral("folder"), item.destinationFolder},
            {QStringLiteral("name"), item.name},
            {QStringLiteral("isFolder"), item.isDirectory},
            {QStringLiteral("bytes"), item.totalBytes},
            {QStringLiteral("keepBoth"), item.whenTaken == WhenTaken::keepBoth}};
}

/// Whether a path is absolute and leads nowhere else than its text says.
bool isPlainPath(const QString &path) {
    return path.startsWith(QLatin1Char('/')) && !path.contains(QChar(u'\0')) && QDir::cleanPath(path) == path;
}

/// The entry, if it is one that the program can have written; `before` is the folder of the one before it.
std::optional<QueueItem> fromJson(const QJsonObject &json, const QString &before) {
    const auto text = [&](const char *key) { return json.value(QLatin1String(key)).toString(); };
    const auto *const way = std::find_if(std::begin(ways), std::end(ways),
                                         [&](const auto &known) { return known.second == text("way"); });
    if (way == std::end(ways))
        return std::nullopt;
    QueueItem item;
    item.id = newIdentity();
    item.serial = text("phone");
    item.direction = way->first;
    item.sourcePath = text("source");
    item.name = text("name");
    item.destinationFolder = text("folder");
    if (item.destinationFolder == before) // one text for all that go there, as when they were queued
        item.destinationFolder = before;
    item.isDirectory = json.value(QLatin1String("isFolder")).toBool();
    item.totalBytes = std::max<qint64>(json.value(QLatin1String("bytes")).toInteger(), 0);
    item.whenTaken = json.value(QLatin1String("keepBoth")).toBool() ? WhenTaken::keepBoth : WhenTaken::ask;
    item.status = QueueItemStatus::Paused{{.totalBytes = item.totalBytes}};
    const bool isOne = item.serial.isEmpty() != needsPhone(item.direction) &&
                       AndroidPath::isSafeName(item.name) && isPlainPath(item.destinationPath()) &&
                       isPlainPath(item.sourcePath);
    return isOne ? std::optional(item) : std::nullopt;
}

} // namespace

QString QueueFile::userFolder() {
#ifdef Q_OS_MACOS
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Vantrel");
#else
    const QString state = qEnvironmentVariable("XDG_STATE_HOME"); // must be absolute to count
    return (QDir::isAbsolutePath(state) ? state : QDir::homePath() + QStringLiteral("/.local/state")) +
           QStringLiteral("/vantrel");
#endif
}

QueueFile::QueueFile(QString folder) : m_folder(std::move(folder)) {}

QueueFile::~QueueFile() = default;

QueueFile::Contents QueueFile::open() {
    const std::scoped_lock guard(m_guard);
    Contents contents;
    QDir().mkpath(m_folder);
    QFile::setPermissions(m_folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    for (int number = 1; number <= mostPrograms; ++number) {
        const QString path = m_folder % QStringLiteral("/transfers") %
                             (number > 1 ? QStringLiteral("-%1").arg(number) : QString()) %
                             QStringLiteral(".json");
        if (!m_path.isEmpty() && !QFile::exists(path))
            continue;
        auto lock = std::make_unique<QLockFile>(path + QStringLiteral(".lock"));
        lock->setStaleLockTime(0); // a lock is as old as its program; only a dead one's lock is stale
        if (!lock->tryLock(0)) {
            if (lock->error() != QLockFile::LockFailedError)
                break; // nothing can be written there
            continue;
        }
        m_locks.push_back(std::move(lock));
        if (m_path.isEmpty())
            m_path = path;
        else
            m_takenOver.append(path);
        read(path, contents);
    }
    if (m_path.isEmpty())
        contents.problem =
            QStringLiteral("Unfinished copies will not be remembered: “%1” can’t be used.").arg(m_folder);
    contents.mayWrite = !m_path.isEmpty() && !m_isUnreadable;
    if (!contents.mayWrite)
        m_problem = contents.problem;
    return contents;
}

void QueueFile::read(const QString &path, Contents &contents) {
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink())
        return;
    QFile file(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly)) { // opening a pipe would wait for a writer
        m_isUnreadable = m_isUnreadable || path == m_path;
        m_takenOver.removeOne(path);
        contents.problem = QStringLiteral("The list of unfinished copies can’t be read: “%1”.").arg(path);
        return;
    }
    const QByteArray bytes = file.read(largestFile + 1);
    const QJsonObject json =
        bytes.size() > largestFile ? QJsonObject() : QJsonDocument::fromJson(bytes).object();
    if (json.value(QLatin1String("program")).toString() != programName) {
        m_isUnreadable |= !putAside(path, QStringLiteral("is damaged"), contents);
        return;
    }
    if (json.value(QLatin1String("version")).toInt() != version) {
        m_isUnreadable |= !putAside(path, QStringLiteral("is of another version"), contents);
        return;
    }
    const QJsonArray entries = json.value(QLatin1String("unfinished")).toArray();
    bool areAllUnderstood = entries.size() <= mostEntries;
    for (const auto &entry : entries) {
        const QString before =
            contents.entries.isEmpty() ? QString() : contents.entries.last().destinationFolder;
        if (const auto item = fromJson(entry.toObject(), before);
            item && contents.entries.size() < mostEntries)
            contents.entries.append(*item);
        else
            areAllUnderstood = false;
    }
    if (!areAllUnderstood)
        m_isUnreadable |= !putAside(path, QStringLiteral("is damaged in part"), contents);
}

/// Returns whether the place is free now.
bool QueueFile::putAside(const QString &path, const QString &what, Contents &contents) {
    const QString aside = path + QStringLiteral(".aside");
    QFile::remove(aside);
    const bool isAside = QFile::rename(path, aside);
    contents.problem =
        isAside
            ? QStringLiteral("The list of unfinished copies %1. It was put aside as “%2”.").arg(what, aside)
            : QStringLiteral("The list of unfinished copies %1, and can’t be put aside: “%2”.")
                  .arg(what, path);
    return isAside;
}

QString QueueFile::write(const QList<QueueItem> &unfinished, quint64 number) {
    const std::scoped_lock guard(m_guard);
    if (!m_problem.isEmpty() || number < m_newest)
        return m_problem;
    m_newest = number;
    const auto removeTakenOver = [this] {
        for (const QString &path : std::exchange(m_takenOver, {}))
            QFile::remove(path);
    };
    if (unfinished.isEmpty()) {
        QFile::remove(m_path);
        removeTakenOver();
        return {};
    }
    QJsonArray entries;
    // Copies start from the end of the list: those are kept that come first.
    for (const QueueItem &item : unfinished.last(std::min(mostEntries, unfinished.size())))
        entries.append(toJson(item));
    const QByteArray bytes = QJsonDocument({{QStringLiteral("program"), programName},
                                            {QStringLiteral("version"), version},
                                            {QStringLiteral("unfinished"), entries}})
                                 .toJson(QJsonDocument::Compact);
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) ||
        !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) ||
        file.write(bytes) != bytes.size() || !file.flush() || !file.commit())
        return QStringLiteral("Unfinished copies can’t be remembered: %1.").arg(file.errorString());
    removeTakenOver();
    if (unfinished.size() > mostEntries)
        return QStringLiteral("Only the next %L1 unfinished copies will be remembered.").arg(mostEntries);
    return {};
}

} // namespace vantrel
