#include "Transfers/CopyPlan.h"

#include "ADB/AndroidPath.h"
#include "Transfers/CopyText.h"
#include "Transfers/StagedName.h"

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

/// FAT keeps times in steps of two seconds.
constexpr qint64 timeTolerance = 2;

/// A file of this size is not copied again from its beginning when its copy was interrupted.
constexpr qint64 smallestContinued = 32'000'000;

QString below(const QString &root, const QString &path) {
    return path.isEmpty() ? root : AndroidPath::join(root, path);
}

/// The path with another name at its end.
QString renumbered(const QString &path, int number) {
    const QString name = AndroidPath::lastComponent(path);
    return path.chopped(name.size()) % numberedName(name, number);
}

bool isFolder(const FileTree &tree) {
    return tree.entries.first().kind == TreeEntry::Kind::folder;
}

} // namespace

bool PlannedFile::isLarge() const {
    return sizeBytes >= smallestContinued;
}

bool PlannedFile::isLike(const TreeEntry &there) const {
    return there.kind == TreeEntry::Kind::file && there.sizeBytes == sizeBytes &&
           there.modified <= modified + timeTolerance && modified <= there.modified + timeTolerance;
}

CopyPlan::CopyPlan(const CopyJob &job, const CopySide &destination, CopyTally &tally)
    : m_job(job), m_destination(destination), m_tally(tally) {}

QString CopyPlan::takenReason() {
    return QStringLiteral("Another content stands under this name");
}

CopyPlan::Places CopyPlan::destinationsOf(const CopyJob &job, const QList<FileTree> &sources) {
    constexpr int numbersToTry = 20;
    Places places;
    for (qsizetype entry = 0; entry < sources.size(); ++entry) {
        const QueueItem &copied = job.entries.at(entry);
        if (sources.at(entry).entries.isEmpty())
            continue;
        (isFolder(sources.at(entry)) ? places.folders : places.paths).append(copied.destinationPath());
        for (int number = 2; copied.whenTaken == WhenTaken::keepBoth && number <= numbersToTry; ++number)
            places.paths.append(renumbered(copied.destinationPath(), number));
    }
    return places;
}

void CopyPlan::add(qsizetype entry, const FileTree &source) {
    const QueueItem &copied = m_job.entries.at(entry);
    const QString name = AndroidPath::lastComponent(copied.sourcePath);
    if (source.entries.isEmpty())
        return m_tally.fail(entry, QStringLiteral("“%1” is not there any more.").arg(name));
    if (source.entries.first().kind == TreeEntry::Kind::other)
        return m_tally.fail(
            entry, QStringLiteral("“%1” is neither a file nor a folder and was not copied.").arg(name));
    if (isIntoItself(entry, source))
        return m_tally.fail(entry, QStringLiteral("“%1” can’t be copied into itself.").arg(name));

    m_tally.note(entry, &CopyReport::leftOut, source.leftOut);
    m_tally.note(entry, &CopyReport::failed, source.unreadable);
    QString root = copied.destinationPath();
    const auto there = isFolder(source) ? m_destination.look(root) : std::nullopt;
    if (there && there->kind != TreeEntry::Kind::folder) {
        if (copied.whenTaken == WhenTaken::ask) {
            m_tally.find(entry, 0);
            m_tally.note(entry, &CopyReport::taken, {{AndroidPath::lastComponent(root), takenReason()}});
            return;
        }
        root = freeName(root);
    }
    for (qsizetype i = 0; i < source.unreadable.size(); ++i)
        m_tally.find(entry, 0);
    addTree(entry, source, root);
    m_tally.announce(entry);
}

bool CopyPlan::isIntoItself(qsizetype entry, const FileTree &source) const {
    return !needsPhone(m_job.direction) && isFolder(source) &&
           LocalFiles::isWithin(m_job.folder, m_job.entries.at(entry).sourcePath);
}

void CopyPlan::addTree(qsizetype entry, const FileTree &source, const QString &root) {
    const QString &sourcePath = m_job.entries.at(entry).sourcePath;
    QSet<QString> closed;  // folders below which nothing can be put
    QSet<QString> skipped; // what somebody is copying there at this moment
    for (const TreeEntry &found : source.entries) {
        const QString destination = below(root, found.path);
        const QString shown = found.path.isEmpty() ? AndroidPath::lastComponent(sourcePath) : found.path;
        const QString parent =
            found.path.left(std::max<qsizetype>(found.path.lastIndexOf(QLatin1Char('/')), 0));
        const bool isClosed = closed.contains(parent);
        if (skipped.contains(parent) || StagedName::isStaged(AndroidPath::lastComponent(destination))) {
            skipped.insert(found.path);
            continue;
        }
        if (found.kind == TreeEntry::Kind::other) {
            m_tally.note(entry, &CopyReport::leftOut,
                         {{shown, QStringLiteral("Neither a file nor a folder")}});
        } else if (found.kind == TreeEntry::Kind::folder) {
            const auto there = m_destination.look(destination);
            if (isClosed || (there && there->kind != TreeEntry::Kind::folder))
                closed.insert(found.path);
            else if (!there)
                m_folders.append({entry, {}, destination, found.path, 0, 0});
        } else {
            m_tally.find(entry, found.sizeBytes);
            if (isClosed)
                m_tally.note(entry, &CopyReport::failed,
                             {{shown, QStringLiteral("“%1” is no folder there").arg(parent)}});
            else
                addFile({entry, below(sourcePath, found.path), destination, shown, found.sizeBytes,
                         found.modified});
        }
    }
}

/// Finds out whether the file is missing, there already, or kept from its place by another content.
void CopyPlan::addFile(PlannedFile file) {
    const QString wanted = file.wanted = file.destination;
    const bool keepsBoth = m_job.entries.at(file.entry).whenTaken == WhenTaken::keepBoth;
    for (int number = 2;; ++number) {
        const auto there = m_destination.look(file.destination);
        const bool isPlanned = m_planned.contains(file.destination);
        if (!there && !isPlanned) {
            // The first free name means that no copy of this content stands under the others.
            if (file.destination != wanted && !keepsBoth)
                break;
            m_planned.insert(file.destination);
            m_tally.expect(file.entry);
            m_files.append(std::move(file));
            return;
        }
        if (there && file.isLike(*there) && !m_different.contains(file.destination)) {
            if (m_job.verifies)
                m_alike.append(std::move(file));
            else
                m_tally.countAsThere(file.entry, file.sizeBytes);
            return;
        }
        file.destination = renumbered(wanted, number);
    }
    m_tally.note(file.entry, &CopyReport::taken, {{file.shownPath, takenReason()}});
}

void CopyPlan::addDifferent(PlannedFile file) {
    m_different.insert(file.destination);
    file.destination = file.wanted;
    addFile(std::move(file));
}

QList<PlannedFile> CopyPlan::takeAlike(qsizetype most) {
    const qsizetype count = std::min(most, m_alike.size());
    QList<PlannedFile> some = m_alike.first(count);
    m_alike.remove(0, count);
    return some;
}

QString CopyPlan::freeName(const QString &path) const {
    QString free = path;
    for (int number = 2; m_destination.look(free); ++number)
        free = renumbered(path, number);
    return free;
}

} // namespace vantrel
