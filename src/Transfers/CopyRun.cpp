#include "Transfers/CopyRun.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "Records/TransferFormat.h"
#include "Transfers/Carrier.h"
#include "Transfers/CopySide.h"
#include "Transfers/KeptParts.h"
#include "Transfers/LocalStaging.h"
#include "Transfers/StagedName.h"

#include <QCryptographicHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <atomic>
#include <future>
#include <limits>
#include <mutex>
#include <utility>

namespace vantrel {

namespace {

/// FAT keeps times in steps of two seconds.
constexpr qint64 timeTolerance = 2;

/// A file of this size is not copied again from its beginning when its copy was interrupted.
constexpr qint64 smallestContinued = 32'000'000;

/// One file that is missing on the other side.
struct PlannedFile {
    qsizetype entry = 0;
    QString source;
    QString destination;
    QString shownPath; ///< below the entry; its name for a single file
    qint64 sizeBytes = 0;
    qint64 modified = 0;
    QString wanted = {}; ///< the destination, before a number was added to it
};

/// Two files that should hold the same.
struct ComparedFile {
    qsizetype entry = 0;
    QString read;  ///< by this run, on this computer
    QString asked; ///< of the other side, or read at the same time
    qint64 sizeBytes = 0;
};

/// Files that are copied by one run of adb.
struct Batch {
    QList<PlannedFile> files;
    bool isCompared = false; ///< with its source: one that was continued
    bool isLast = false;     ///< no other is to come
    bool isStagingGone = false;
};

/// What comparing them has come to.
struct Comparison {
    enum class Outcome { same, different, unreadable, unavailable };
    Outcome outcome = Outcome::different;
    QString reason = {};    ///< of what is unreadable
    QString complaint = {}; ///< of the side that was asked, where that could not read it
};

bool isSameContent(const TreeEntry &there, qint64 sizeBytes, qint64 modified) {
    return there.kind == TreeEntry::Kind::file && there.sizeBytes == sizeBytes &&
           there.modified <= modified + timeTolerance && modified <= there.modified + timeTolerance;
}

/// The sum of two sizes; as much as 64 bits hold, since a phone may claim any size.
qint64 sum(qint64 a, qint64 b) {
    return b > std::numeric_limits<qint64>::max() - a ? std::numeric_limits<qint64>::max() : a + b;
}

QString parentOf(const QString &path) {
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash <= 0 ? QStringLiteral("/") : path.left(slash);
}

QString below(const QString &root, const QString &path) {
    return path.isEmpty() ? root : AndroidPath::join(root, path);
}

/// The folders that were swept. Once per run of the program is enough: what is swept are the remains of
/// programs that have ended. Any thread.
class SweptFolders {
public:
    /// Whether the folder has not been visited before.
    [[nodiscard]] bool visit(const QString &place) {
        const std::scoped_lock lock(m_guard);
        const bool isFirst = !m_places.contains(place);
        m_places.insert(place);
        return isFirst;
    }
    /// Something had to be left there.
    void forget(const QString &place) {
        const std::scoped_lock lock(m_guard);
        m_places.remove(place);
    }

private:
    std::mutex m_guard;
    QSet<QString> m_places;
};

SweptFolders &sweptFolders() {
    static SweptFolders folders;
    return folders;
}

/// Where staging folders lie, as the sweeper knows it: a folder, with the phone that it is on.
QString placeOf(TransferDirection direction, const QString &serial, const QString &folder) {
    return direction == TransferDirection::macToAndroid ? QString(serial % QLatin1Char(':') % folder)
                                                        : folder;
}

/// Removes a staging folder. What is on a phone that has left is swept before the next copy.
void removeStaging(TransferDirection direction, const QString &serial, const QString &folder,
                   const QString &name) {
    if (!destinationSide(direction, serial)->remove({AndroidPath::join(folder, name)}))
        sweptFolders().forget(placeOf(direction, serial, folder));
    StagedName::release(name);
}

/// Whether adb's reason is that the phone is not there; it may be back by now.
bool speaksOfAbsence(const QString &reason) {
    const QLatin1String reasons[] = {QLatin1String("device '"),
                                     QLatin1String("device offline"),
                                     QLatin1String("device unauthorized"),
                                     QLatin1String("device still "),
                                     QLatin1String("no devices/emulators found"),
                                     QLatin1String("The phone was disconnected")};
    return std::any_of(std::begin(reasons), std::end(reasons),
                       [&](QLatin1String known) { return reason.contains(known); });
}

class CopyRun {
public:
    CopyRun(const CopyJob &job, const CopyWatcher &watcher, std::stop_token stop)
        : m_job(job), m_watcher(watcher), m_stop(std::move(stop)),
          m_from(sourceSide(job.direction, job.serial)), m_to(destinationSide(job.direction, job.serial)),
          m_carrier(carrierFor(job.direction, job.serial)), m_states(job.entries.size()) {}

    void run() {
        auto sweeping = std::async(std::launch::async, [this] { sweep(); });
        readSources();
        readDestinations();
        sweeping.wait();
        plan();
        compareAlike();
        makeFolders();
        copyMissing();
        removeLeftOver();
        for (qsizetype entry = 0; entry < m_states.size(); ++entry) {
            const CopyReport &report = m_states.at(entry).report;
            if (!report.wasStopped && !report.isPhoneGone)
                discardKeptParts({m_job.entries.at(entry).id});
            end(entry);
        }
    }

private:
    /// What is known of one entry.
    struct State {
        FileTree source;
        CopyReport report;
        QueueItemStatus::Progress progress;
        qsizetype filesLeft = 0; ///< planned files that have not ended
        qint64 stagedBytes = 0;  ///< through, but without their names
        qsizetype stagedFiles = 0;
        qint64 comparedBytes = 0;
        qint64 keptBytes = 0; ///< that had been there before this run
        bool hasEnded = false;
    };

    [[nodiscard]] bool isWanted(qsizetype entry) const {
        return !m_watcher.isWanted || m_watcher.isWanted(m_job.entries.at(entry).id);
    }
    [[nodiscard]] bool isGivenUp(qsizetype entry) const {
        const std::scoped_lock lock(m_guard);
        return m_states.at(entry).hasEnded || m_stop.stop_requested() || !isWanted(entry);
    }

    void end(qsizetype entry) {
        State &state = m_states[entry];
        if (state.hasEnded)
            return;
        state.hasEnded = true;
        if (m_watcher.onEnd && isWanted(entry))
            m_watcher.onEnd(m_job.entries.at(entry).id, state.report);
    }
    void fail(qsizetype entry, const QString &message) {
        if (m_states.at(entry).hasEnded)
            return;
        m_states[entry].report.failure = message;
        m_states[entry].report.isPhoneGone = m_isPhoneGone;
        m_states[entry].report.wasStopped = m_stop.stop_requested();
        end(entry);
    }
    /// The phone or its tool ended it for all.
    void failAll(const ADBError &error) {
        if (needsPhone(m_job.direction)) {
            const auto serials = ADBClient::listDeviceSerials();
            m_isPhoneGone =
                speaksOfAbsence(error.errorDescription()) ||
                (serials && !serials->contains(m_job.serial)); // what cannot be asked is not known to be gone
        }
        failAll(error.errorDescription());
    }
    void failAll(const QString &message) {
        const std::scoped_lock lock(m_guard);
        for (qsizetype entry = 0; entry < m_states.size(); ++entry)
            fail(entry, message);
    }

    // -- Looking

    /// The folder that is written into, with the phone that it is on.
    [[nodiscard]] QString place() const { return placeOf(m_job.direction, m_job.serial, m_job.folder); }

    /// Finds what programs that died have left in the folder that is to be written into.
    void sweep() {
        if (sweptFolders().visit(place()))
            m_leftOver = m_to->leftOver(m_job.folder, m_stop);
    }

    void removeLeftOver() {
        for (const QString &name : std::exchange(m_leftOver, {}))
            removeStaging(m_job.direction, m_job.serial, m_job.folder, name);
    }

    // -- Going on

    [[nodiscard]] static bool isLarge(const PlannedFile &file) { return file.sizeBytes >= smallestContinued; }

    /// The file's name while it is staged. That of a large one tells of what it is the beginning, and of what
    /// time and size: when the source has changed since, the name is another.
    [[nodiscard]] QString stagedName(const PlannedFile &file) const {
        if (!isLarge(file))
            return AndroidPath::lastComponent(file.source);
        const QString identity = QStringList{m_job.serial, file.source, QString::number(file.sizeBytes),
                                             QString::number(file.modified)}
                                     .join(QChar(u'\0'));
        const QByteArray hash = QCryptographicHash::hash(identity.toUtf8(), QCryptographicHash::Sha256);
        return QString::fromLatin1(hash.toHex().left(32));
    }

    /// Takes over what earlier runs, also of programs that died, have kept of the large files, and removes
    /// the rest of it.
    void adopt(const QString &staging) {
        for (const QueueItem &copied : m_job.entries) {
            for (const KeptParts::Part &part : KeptParts::take(copied.id)) {
                m_leftOver.append(part.name);
            }
        }
        QList<CopySide::Move> moves;
        {
            const std::scoped_lock lock(m_guard);
            for (const PlannedFile &file : std::as_const(m_files)) {
                for (const QString &name : std::as_const(m_leftOver)) {
                    if (isLarge(file))
                        moves.append(
                            {AndroidPath::join(AndroidPath::join(m_job.folder, name), stagedName(file)),
                             AndroidPath::join(staging, stagedName(file))});
                }
            }
        }
        m_wasInterrupted = !moves.isEmpty();
        [[maybe_unused]] const auto ignored = m_to->place(moves, staging, ADBClient::AfterMoves::keepStaging,
                                                          m_stop); // what is missing begins anew
        removeLeftOver();
    }

    /// Whether the copy that has just ended early is to go on later.
    [[nodiscard]] bool goesOn(const Batch &batch) const {
        return batch.files.size() == 1 && isLarge(batch.files.first()) &&
               (m_stop.stop_requested() || m_isPhoneGone);
    }
    /// Leaves a staging folder for the run in which its file goes on.
    void keep(const QString &name, const Batch &batch) {
        const qsizetype entry = batch.files.first().entry;
        const QUuid id = m_job.entries.at(entry).id;
        KeptParts::keep({id, m_job.direction, m_job.serial, m_job.folder, name});
        if (!isWanted(entry)) // removed from the queue in between
            discardKeptParts({id});
    }

    /// Whether what was continued has its source's content, as far as that can be said.
    [[nodiscard]] ADBResult<bool> isSameAsSource(Batch &batch, const QString &staged) {
        const auto compared = compare({comparedFile(batch.files.first(), staged)}, Arrival::staged);
        if (!compared)
            return tl::make_unexpected(compared.error());
        if (const QString &complaint = compared->first().complaint; !complaint.isEmpty())
            return tl::make_unexpected(ADBError::executionFailed(complaint));
        batch.isCompared = compared->first().outcome == Comparison::Outcome::same;
        return batch.isCompared;
    }

    /// What a tool or the shell of the phone says of the file is a line like those of adb.
    static ADBResult<QStringList> complaint(const ADBError &error) {
        static const QRegularExpression spoken(
            QStringLiteral("\\A((W: )?(tail|cat|md5sum|\\S*sh): |cannot |It was changed)"));
        const QString text = error.errorDescription();
        if (spoken.match(text).hasMatch())
            return QStringList{text};
        return tl::make_unexpected(error);
    }

    /// Copies the batch, one large file, to `staged`; from where an earlier try has ended, if one has.
    ADBResult<QStringList> copyLarge(Batch &batch, const QString &staged) {
        const PlannedFile &file = batch.files.first();
        // What adb has pushed is gone when the cable is: the second time it is sent so that it stays.
        if (std::exchange(m_wasInterrupted, true) || !m_to->isPhone()) {
            if (const auto learned = m_to->learn({}, {staged}, m_stop); !learned)
                return tl::make_unexpected(learned.error());
            const qint64 reached = m_to->look(staged).value_or(TreeEntry()).sizeBytes;
            if (reached <= file.sizeBytes && (reached > 0 || m_to->isPhone())) {
                const auto continued = continueLarge(batch, staged, reached);
                if (!continued)
                    return complaint(continued.error());
                if (*continued)
                    return QStringList();
            }
            m_to->remove({staged});
            // adb would make the folder again, if it is what has gone.
            const auto left = m_to->staged(parentOf(staged), {}, m_stop);
            if (!left)
                return tl::make_unexpected(left.error());
            if (!*left)
                return tl::make_unexpected(ADBError::executionFailed(vanished()));
        }
        const auto onProgress = [&](int /*ended*/, double fraction) {
            report(file.entry, wholeBytes(fraction * static_cast<double>(file.sizeBytes)));
        };
        return m_carrier->begin(file.source, staged, file.sizeBytes, m_stop, onProgress);
    }

    /// Whether the file, of which so many bytes are there, is whole now and like its source.
    ADBResult<bool> continueLarge(Batch &batch, const QString &staged, qint64 reached) {
        const PlannedFile &file = batch.files.first();
        qint64 &kept = m_states[file.entry].keptBytes;
        kept += reached;
        const auto onBytes = [&](qint64 bytes) { report(file.entry, bytes); };
        const auto continued = m_carrier->goOn(file.source, staged, file.sizeBytes, reached, m_stop, onBytes);
        if (!continued)
            return tl::make_unexpected(continued.error());
        if (const auto timed = m_to->setModified(staged, file.modified, m_stop); !timed)
            return tl::make_unexpected(timed.error());
        const auto isSame = isSameAsSource(batch, staged);
        if (isSame && !*isSame)
            kept -= reached;
        return isSame;
    }

    void readSources() {
        auto trees = m_from->sources(m_job.entries, m_stop);
        if (!trees)
            return failAll(trees.error());
        for (qsizetype entry = 0; entry < m_states.size(); ++entry)
            m_states[entry].source = std::move((*trees)[entry]);
    }

    void readDestinations() {
        constexpr int numbersToTry = 20;
        QStringList folders;
        QStringList single;
        for (qsizetype entry = 0; entry < m_states.size(); ++entry) {
            const QueueItem &copied = m_job.entries.at(entry);
            if (m_states.at(entry).source.entries.isEmpty() || m_states.at(entry).hasEnded)
                continue;
            const bool isFolder = m_states.at(entry).source.entries.first().kind == TreeEntry::Kind::folder;
            (isFolder ? folders : single).append(copied.destinationPath());
            for (int number = 2; copied.whenTaken == WhenTaken::keepBoth && number <= numbersToTry; ++number)
                single.append(AndroidPath::join(
                    m_job.folder,
                    numberedName(AndroidPath::lastComponent(copied.destinationPath()), number)));
        }
        if (const auto learned = m_to->learn(folders, single, m_stop); !learned)
            failAll(learned.error());
    }

    // -- Planning

    void plan() {
        for (qsizetype entry = 0; entry < m_states.size(); ++entry) {
            State &state = m_states[entry];
            if (state.hasEnded)
                continue;
            const QString name = AndroidPath::lastComponent(m_job.entries.at(entry).sourcePath);
            if (state.source.entries.isEmpty())
                fail(entry, QStringLiteral("“%1” is not there any more.").arg(name));
            else if (state.source.entries.first().kind == TreeEntry::Kind::other)
                fail(entry,
                     QStringLiteral("“%1” is neither a file nor a folder and was not copied.").arg(name));
            else if (isIntoItself(entry))
                fail(entry, QStringLiteral("“%1” can’t be copied into itself.").arg(name));
            else
                planEntry(entry);
            state.source.entries.clear(); // a million of them would be a lot to keep
        }
    }

    [[nodiscard]] bool isIntoItself(qsizetype entry) const {
        return !needsPhone(m_job.direction) &&
               m_states.at(entry).source.entries.first().kind == TreeEntry::Kind::folder &&
               LocalFiles::isWithin(m_job.folder, m_job.entries.at(entry).sourcePath);
    }

    void planEntry(qsizetype entry) {
        const QueueItem &copied = m_job.entries.at(entry);
        State &state = m_states[entry];
        state.report.leftOut = state.source.leftOut;
        state.report.failed = state.source.unreadable;
        state.report.fileCount = state.report.failed.size();
        const bool isFolder = state.source.entries.first().kind == TreeEntry::Kind::folder;
        QString root = copied.destinationPath();
        if (isFolder) {
            const auto there = m_to->look(root);
            if (there && there->kind != TreeEntry::Kind::folder) {
                if (copied.whenTaken == WhenTaken::ask) {
                    state.report.fileCount = 1;
                    state.report.taken.append({AndroidPath::lastComponent(root), takenReason()});
                    return;
                }
                root = freeName(root);
            }
        }
        QSet<QString> closed;  // folders below which nothing can be put
        QSet<QString> skipped; // what somebody is copying there at this moment
        for (const TreeEntry &found : std::as_const(state.source.entries)) {
            const QString destination = below(root, found.path);
            const QString shown =
                found.path.isEmpty() ? AndroidPath::lastComponent(copied.sourcePath) : found.path;
            const QString parent =
                found.path.left(std::max<qsizetype>(found.path.lastIndexOf(QLatin1Char('/')), 0));
            const bool isClosed = closed.contains(parent);
            if (skipped.contains(parent) || StagedName::isStaged(AndroidPath::lastComponent(destination))) {
                skipped.insert(found.path);
                continue;
            }
            if (found.kind == TreeEntry::Kind::other) {
                state.report.leftOut.append({shown, QStringLiteral("Neither a file nor a folder")});
            } else if (found.kind == TreeEntry::Kind::folder) {
                const auto there = m_to->look(destination);
                if (isClosed || (there && there->kind != TreeEntry::Kind::folder))
                    closed.insert(found.path);
                else if (!there)
                    m_folders.append({entry, {}, destination, found.path, 0, 0});
            } else {
                ++state.report.fileCount;
                state.progress.totalBytes = sum(state.progress.totalBytes, found.sizeBytes);
                if (isClosed)
                    state.report.failed.append(
                        {shown, QStringLiteral("“%1” is no folder there").arg(parent)});
                else
                    planFile({entry, below(copied.sourcePath, found.path), destination, shown,
                              found.sizeBytes, found.modified});
            }
        }
        state.progress.fileCount = state.report.fileCount;
        state.report.totalBytes = state.progress.totalBytes;
        if (m_watcher.onProgress && m_job.entries.size() == 1) // one of several waits for its turn
            m_watcher.onProgress(copied.id, state.progress);
    }

    /// Whether the file is missing, there already, or kept from its place by another content.
    void planFile(PlannedFile file) {
        State &state = m_states[file.entry];
        const QString wanted = file.wanted = file.destination;
        const bool keepsBoth = m_job.entries.at(file.entry).whenTaken == WhenTaken::keepBoth;
        for (int number = 2;; ++number) {
            const auto there = m_to->look(file.destination);
            const bool isPlanned = m_planned.contains(file.destination);
            if (!there && !isPlanned) {
                // The first free name means that no copy of this content stands under the others.
                if (file.destination != wanted && !keepsBoth)
                    break;
                m_planned.insert(file.destination);
                ++state.filesLeft;
                m_files.append(std::move(file));
                return;
            }
            if (there && isSameContent(*there, file.sizeBytes, file.modified) &&
                !m_different.contains(file.destination)) {
                if (m_job.verifies)
                    m_alike.append(std::move(file));
                else
                    countAsThere(file);
                return;
            }
            file.destination =
                AndroidPath::join(parentOf(wanted), numberedName(AndroidPath::lastComponent(wanted), number));
        }
        state.report.taken.append({file.shownPath, takenReason()});
    }

    void countAsThere(const PlannedFile &file) {
        State &state = m_states[file.entry];
        ++state.report.alreadyThere;
        ++state.progress.files;
        state.progress.transferredBytes = sum(state.progress.transferredBytes, file.sizeBytes);
        state.keptBytes = sum(state.keptBytes, file.sizeBytes);
    }

    [[nodiscard]] QString freeName(const QString &path) const {
        QString free = path;
        for (int number = 2; m_to->look(free); ++number)
            free = AndroidPath::join(parentOf(path), numberedName(AndroidPath::lastComponent(path), number));
        return free;
    }

    static QString takenReason() { return QStringLiteral("Another content stands under this name"); }

    // -- Comparing

    /// Counts a file among those that are through and have no names yet, or no more.
    template <class File>
    void stage(const File &file, int change) {
        qint64 &staged = m_states[file.entry].stagedBytes; // of sizes that a phone may have made up
        staged = std::max<qint64>(sum(staged, change * file.sizeBytes), 0);
        m_states[file.entry].stagedFiles += change;
    }

    /// Whether compared files have come in this run, or stood there before it.
    enum class Arrival { staged, there };

    [[nodiscard]] ComparedFile comparedFile(const PlannedFile &file, const QString &arrived) const {
        return m_to->isPhone() ? ComparedFile{file.entry, file.source, arrived, file.sizeBytes}
                               : ComparedFile{file.entry, arrived, file.source, file.sizeBytes};
    }

    /// Reads the files of both sides, at the same time. An error when the phone left or the run was stopped.
    ADBResult<QList<Comparison>> compare(const QList<ComparedFile> &files, Arrival arrival) {
        using Outcome = Comparison::Outcome;
        const CopySide &other = m_to->isPhone() ? *m_to : *m_from;
        QStringList asked;
        for (const ComparedFile &file : files)
            asked.append(file.asked);
        std::stop_source enough;
        const std::stop_callback stopsBoth(m_stop, [&enough] { enough.request_stop(); });
        auto asking = std::async(std::launch::async, [&] {
            auto answer = other.sums(asked, m_stop);
            if (!answer || answer->isUnavailable)
                enough.request_stop();
            return answer;
        });
        const bool areStaged = arrival == Arrival::staged;
        const auto stageAll = [&](int change) {
            const std::scoped_lock lock(m_guard);
            for (const ComparedFile &file : files)
                stage(file, change);
        };
        if (areStaged)
            stageAll(+1);
        QList<std::optional<QByteArray>> here;
        for (const ComparedFile &file : files) {
            qint64 read = 0;
            const auto onBytes = [&](qint64 bytes) {
                const std::scoped_lock lock(m_guard);
                m_states[file.entry].comparedBytes += bytes - std::exchange(read, bytes);
                report(file.entry, areStaged ? 0 : bytes, arrival);
            };
            here.append(isWanted(file.entry) ? LocalFiles::sum(file.read, enough.get_token(), onBytes)
                                             : std::nullopt);
            const std::scoped_lock lock(m_guard);
            m_states[file.entry].comparedBytes += file.sizeBytes - read;
            if (!areStaged)
                stage(file, +1);
        }
        stageAll(-1);
        const auto there = asking.get();
        if (!there)
            return tl::make_unexpected(there.error());
        QList<Comparison> compared;
        for (qsizetype i = 0; i < files.size(); ++i) {
            const QByteArray &sum = there->sums.at(i);
            if (there->isUnavailable)
                compared.append({Outcome::unavailable});
            else if (sum.isEmpty())
                compared.append(
                    {Outcome::unreadable, explainedCopyError(there->complaint), there->complaint});
            else if (!here.at(i))
                compared.append({Outcome::unreadable, QStringLiteral("This computer can’t read it.")});
            else
                compared.append({*here.at(i) == sum ? Outcome::same : Outcome::different});
        }
        return compared;
    }

    /// When copies are verified, the same size and time are not enough: what differs all the same is another
    /// content.
    void compareAlike() {
        constexpr qsizetype mostFiles = 1000;
        using Outcome = Comparison::Outcome;
        while (!m_alike.isEmpty() && !m_stop.stop_requested()) {
            const QList<PlannedFile> some = m_alike.first(std::min(mostFiles, m_alike.size()));
            m_alike.remove(0, some.size());
            QList<ComparedFile> files;
            for (const PlannedFile &file : some)
                files.append(comparedFile(file, file.destination));
            const auto compared = compare(files, Arrival::there);
            if (!compared)
                return failAll(compared.error());
            for (qsizetype i = 0; i < some.size(); ++i) {
                PlannedFile file = some.at(i);
                CopyReport &report = m_states[file.entry].report;
                const Comparison &comparison = compared->at(i);
                if (comparison.outcome == Outcome::unreadable) {
                    report.failed.append({file.shownPath, comparison.reason});
                } else if (comparison.outcome == Outcome::different) {
                    m_different.insert(file.destination);
                    file.destination = file.wanted;
                    planFile(std::move(file));
                } else {
                    countAsThere(file);
                    ++(comparison.outcome == Outcome::same ? report.verified : report.unverified);
                }
            }
        }
        if (!m_alike.isEmpty())
            failAll(QStringLiteral("The copy was stopped."));
    }

    /// Compares staged files with their sources, when that is wanted. Gives the destinations of those that
    /// must not take their names, and tells why.
    ADBResult<QSet<QString>> refused(const QList<PlannedFile> &arrived, const QString &staging,
                                     const Batch &batch) {
        using Outcome = Comparison::Outcome;
        QSet<QString> names;
        if (!m_job.verifies || arrived.isEmpty())
            return names;
        if (batch.isCompared) { // when it was continued
            ++m_states[arrived.first().entry].report.verified;
            return names;
        }
        QList<ComparedFile> files;
        for (const PlannedFile &file : arrived)
            files.append(comparedFile(file, AndroidPath::join(staging, stagedName(file))));
        const auto compared = compare(files, Arrival::staged);
        if (!compared)
            return tl::make_unexpected(compared.error());
        const std::scoped_lock lock(m_guard);
        for (qsizetype i = 0; i < arrived.size(); ++i) {
            const PlannedFile &file = arrived.at(i);
            CopyReport &report = m_states[file.entry].report;
            const Comparison &comparison = compared->at(i);
            if (comparison.outcome == Outcome::same || comparison.outcome == Outcome::unavailable) {
                ++(comparison.outcome == Outcome::same ? report.verified : report.unverified);
                continue;
            }
            names.insert(file.destination);
            problem(file, &CopyReport::failed,
                    comparison.outcome == Outcome::different
                        ? QStringLiteral("The copy differs from the original. Try again.")
                        : comparison.reason);
        }
        return names;
    }

    // -- Copying

    void makeFolders() {
        QStringList paths;
        for (const PlannedFile &folder : std::as_const(m_folders)) {
            if (!isGivenUp(folder.entry))
                paths.append(folder.destination);
        }
        if (paths.isEmpty() || m_stop.stop_requested())
            return;
        const auto refused = m_to->makeFolders(paths, m_stop);
        if (!refused)
            return failAll(refused.error());
        for (const PlannedFile &folder : std::as_const(m_folders)) {
            if (const auto reason = refused->constFind(folder.destination); reason != refused->constEnd())
                m_states[folder.entry].report.failed.append(
                    {folder.shownPath.isEmpty() ? AndroidPath::lastComponent(folder.destination)
                                                : folder.shownPath,
                     *reason});
        }
    }

    void copyMissing() {
        for (qsizetype entry = 0; entry < m_states.size(); ++entry) {
            if (m_states.at(entry).filesLeft == 0) // what is there already ends at once
                end(entry);
        }
        if (m_files.isEmpty())
            return;
        copyFiles();
        if (m_stop.stop_requested())
            failAll(QStringLiteral("The copy was stopped."));
    }

    void copyFiles() {
        constexpr qsizetype parts = 4;
        constexpr qsizetype fewest = 250;
        std::future<void> other;
        if (areManyAndSmall(2 * fewest)) {
            m_mostTogether = std::clamp(m_files.size() / parts, fewest, m_mostTogether);
            other = std::async(std::launch::async, [this] { copyBatches(Takeover::no); });
        }
        copyBatches(Takeover::yes);
        if (other.valid())
            other.wait();
    }

    /// A run of adb waits for the phone's answer after each small file: two at a time are faster than one,
    /// and while the one's files get their names the other copies.
    [[nodiscard]] bool areManyAndSmall(qsizetype many) const {
        constexpr qint64 small = 256'000;
        return m_job.entries.size() == 1 && m_files.size() >= many &&
               m_states.first().report.totalBytes / m_files.size() < small &&
               std::none_of(m_files.begin(), m_files.end(), &isLarge);
    }

    /// Whether what earlier runs have kept is to be taken over.
    enum class Takeover { no, yes };

    /// Copies what is still to be copied, batch by batch, by way of a staging folder of its own.
    void copyBatches(Takeover takeover) {
        const QString name = StagedName::make();
        const QString staging = AndroidPath::join(m_job.folder, name);
        if (const auto made = m_to->makeStaging(m_job.folder, name, m_stop); !made) {
            StagedName::release(name);
            return failAll(made.error());
        }
        if (takeover == Takeover::yes)
            adopt(staging);
        Batch batch;
        bool isStagingGone = false;
        while (!m_stop.stop_requested() && takeBatch(batch)) {
            if (const auto copied = copyAndName(batch, staging); !copied) {
                failAll(copied.error());
                break;
            }
            isStagingGone = batch.isStagingGone;
        }
        if (isStagingGone)
            StagedName::release(name);
        else if (goesOn(batch))
            keep(name, batch);
        else
            removeStaging(m_job.direction, m_job.serial, m_job.folder, name);
    }

    /// Copies the batch, and gives their names to those of its files that are whole.
    ADBResult<void> copyAndName(Batch &batch, const QString &staging) {
        const auto errors = copyBatch(batch, staging);
        // What had come to this computer before its phone left is looked at all the same.
        if (!errors && (m_to->isPhone() || isLarge(batch.files.first())))
            return tl::make_unexpected(errors.error());
        QStringList names;
        for (const PlannedFile &file : std::as_const(batch.files))
            names.append(stagedName(file));
        const auto staged = m_to->staged(staging, names, m_stop);
        if (!staged)
            return tl::make_unexpected(staged.error());
        if (!*staged)
            return tl::make_unexpected(ADBError::executionFailed(vanished()));

        QList<PlannedFile> whole;
        QList<PlannedFile> lacking;
        for (const PlannedFile &file : std::as_const(batch.files)) {
            const auto there = (*staged)->constFind(stagedName(file));
            if (there == (*staged)->constEnd() || !isSameContent(*there, file.sizeBytes, file.modified) ||
                hasChanged(file))
                lacking.append(file);
            else
                whole.append(file);
        }
        const auto unfit = refused(whole, staging, batch);
        if (!unfit)
            return tl::make_unexpected(errors ? unfit.error() : errors.error());
        QList<CopySide::Move> moves;
        QList<PlannedFile> moved;
        for (const PlannedFile &file : std::as_const(whole)) {
            if (unfit->contains(file.destination) || isGivenUp(file.entry))
                continue;
            moves.append({AndroidPath::join(staging, stagedName(file)), file.destination});
            moved.append(file);
        }
        const auto after =
            batch.isLast ? ADBClient::AfterMoves::removeStaging : ADBClient::AfterMoves::keepStaging;
        const auto outcomes = m_to->place(moves, staging, after, m_stop);
        if (!outcomes)
            return tl::make_unexpected(outcomes.error());
        batch.isStagingGone = batch.isLast && m_to->isPhone() && !moves.isEmpty();
        const std::scoped_lock lock(m_guard);
        QSet<QString> useless; // not whole, or not wanted; another file of that name may come
        for (const QString &name : std::as_const(names)) {
            if ((*staged)->contains(name))
                useless.insert(AndroidPath::join(staging, name));
        }
        for (qsizetype i = 0; i < moved.size(); ++i) {
            const CopySide::Placed &outcome = outcomes->at(i);
            if (outcome.outcome == LocalFiles::Placing::placed) {
                useless.remove(moves.at(i).from);
                placed(moved.at(i));
            } else if (outcome.outcome == LocalFiles::Placing::nameTaken) {
                problem(moved.at(i), &CopyReport::taken, takenReason());
            } else {
                problem(moved.at(i), &CopyReport::failed, outcome.reason);
            }
        }
        if (!errors)
            return tl::make_unexpected(errors.error());
        for (const PlannedFile &file : std::as_const(lacking)) // a full disk ends what has not arrived
            explain(batch, file, (*staged)->contains(stagedName(file)), *errors);
        if (!useless.isEmpty() && !batch.isLast)
            m_to->remove(useless.values());
        return {};
    }

    /// Whether a source of this computer is another by now. A phone's cannot be told from here: it was read
    /// once.
    [[nodiscard]] bool hasChanged(const PlannedFile &file) const {
        if (m_from->isPhone())
            return false;
        const auto now = LocalFiles::look(file.source); // a link that was followed says nothing
        return now && now->kind == TreeEntry::Kind::file &&
               !isSameContent(*now, file.sizeBytes, file.modified);
    }

    /// Fills the batch with the next files that may be copied by one run of adb into one folder: no two of
    /// one name, not more than the command line takes. False when none is left.
    bool takeBatch(Batch &batch) {
        const std::scoped_lock lock(m_guard);
        constexpr qint64 mostBytes = 256'000'000;    // what a killed program has to copy again
        constexpr qsizetype mostPathBytes = 400'000; // macOS takes a command line of 1 MB
        batch = Batch();
        QSet<QString> names;
        qint64 bytes = 0;
        qsizetype pathBytes = 0;
        QList<PlannedFile> sameName;
        for (; m_nextFile < m_files.size() && batch.files.size() < m_mostTogether; ++m_nextFile) {
            const PlannedFile &file = m_files.at(m_nextFile);
            if (isGivenUp(file.entry))
                continue;
            const QString name = AndroidPath::lastComponent(file.source).toCaseFolded();
            if (names.contains(name)) {
                sameName.append(file);
                continue;
            }
            bytes = sum(bytes, file.sizeBytes);
            pathBytes += file.source.toUtf8().size();
            if (!batch.files.isEmpty() && (isLarge(file) || bytes > mostBytes || pathBytes > mostPathBytes))
                break;
            names.insert(name);
            batch.files.append(file);
            if (isLarge(file)) { // for itself, so that it can go on
                ++m_nextFile;
                break;
            }
        }
        m_files += sameName;
        batch.isLast = m_nextFile >= m_files.size();
        return !batch.files.isEmpty();
    }

    ADBResult<QStringList> copyBatch(Batch &batch, const QString &staging) {
        QStringList sources;
        qint64 bytes = 0;
        for (const PlannedFile &file : std::as_const(batch.files)) {
            sources.append(file.source);
            bytes = sum(bytes, file.sizeBytes);
        }
        int reported = 0;
        const auto onProgress = [&](int ended, double fraction) {
            const auto count = static_cast<int>(batch.files.size());
            const std::scoped_lock lock(m_guard);
            for (; reported < std::min(ended, count); ++reported) {
                stage(batch.files.at(reported), +1);
                report(batch.files.at(reported).entry, 0);
            }
            if (reported < count) {
                const PlannedFile &next = batch.files.at(reported);
                const qint64 partly = wholeBytes(fraction * static_cast<double>(next.sizeBytes));
                report(next.entry, partly);
            }
        };
        // A phone that leaves ends adb without a word. When it is back before it is missed, it is tried
        // again.
        constexpr int mostTries = 3;
        ADBResult<QStringList> copied;
        for (int tries = 0; tries < mostTries; ++tries) {
            const QString large = AndroidPath::join(staging, stagedName(batch.files.first()));
            copied = isLarge(batch.files.first())
                         ? copyLarge(batch, large)
                         : m_carrier->carry(sources, staging, bytes, m_stop, onProgress);
            if (copied || copied.error().errorDescription() != QLatin1String("adb exited with 1"))
                break;
        }
        const std::scoped_lock lock(m_guard);
        for (const PlannedFile &file : std::as_const(batch.files).first(reported))
            stage(file, -1);
        return copied;
    }

    // -- Outcomes

    /// Why a file of the batch is not to be used.
    void explain(const Batch &batch, const PlannedFile &file, bool hasArrived, const QStringList &errors) {
        QString reason;
        for (const QString &error : errors) {
            // The file is named as it is here or as it is there; no two of a batch have one name.
            if (batch.files.size() == 1 ||
                error.contains(
                    QString(QLatin1Char('/') % AndroidPath::lastComponent(file.source) % QLatin1Char('\''))))
                reason = explainedCopyError(error);
            if (error.contains(QLatin1String("No space left on device")))
                return failAll(m_to->isPhone() ? QStringLiteral("The phone’s storage is full.")
                                               : QStringLiteral("The disk of this computer is full."));
        }
        if (reason.isEmpty())
            reason = hasArrived ? QStringLiteral("It was changed while it was copied.")
                                : QStringLiteral("It did not arrive.");
        problem(file, &CopyReport::failed, reason);
    }

    void placed(const PlannedFile &file) {
        State &state = m_states[file.entry];
        ++state.report.copied;
        ++state.progress.files;
        state.progress.transferredBytes = sum(state.progress.transferredBytes, file.sizeBytes);
        fileEnded(file.entry);
    }
    void problem(const PlannedFile &file, QList<CopyProblem> CopyReport::*list, const QString &reason) {
        (m_states[file.entry].report.*list).append({file.shownPath, reason});
        fileEnded(file.entry);
    }
    void fileEnded(qsizetype entry) {
        if (--m_states[entry].filesLeft == 0)
            end(entry);
    }

    /// Tells how far an entry has come; `underWay` bytes of its next file are through. Where copies are
    /// verified, comparing is half of the way.
    void report(qsizetype entry, qint64 underWay, std::optional<Arrival> compared = std::nullopt) {
        constexpr double highest = 0.99;
        constexpr double step = 0.001;
        if (m_watcher.onLife)
            m_watcher.onLife();
        const std::scoped_lock lock(m_guard);
        State &state = m_states[entry];
        if (state.hasEnded || !m_watcher.onProgress)
            return;
        QueueItemStatus::Progress now = state.progress;
        now.transferredBytes =
            std::min(sum(sum(now.transferredBytes, state.stagedBytes), underWay), now.totalBytes);
        now.files += state.stagedFiles;
        now.isVerifying = compared.has_value();
        const qint64 kept =
            sum(state.keptBytes, compared == Arrival::there ? sum(state.stagedBytes, underWay) : 0);
        now.carriedBytes = std::max<qint64>(now.transferredBytes - kept, 0);
        double part = 0;
        if (now.totalBytes > 0) {
            part = static_cast<double>(now.transferredBytes) / static_cast<double>(now.totalBytes);
            if (m_job.verifies)
                part =
                    (part + static_cast<double>(state.comparedBytes) / static_cast<double>(now.totalBytes)) /
                    2;
        }
        now.fraction = std::min(highest, part);
        if (now.fraction <= state.progress.fraction + step)
            return;
        state.progress.fraction = now.fraction;
        m_watcher.onProgress(m_job.entries.at(entry).id, now);
    }

    [[nodiscard]] QString vanished() const {
        return QStringLiteral("The folder “%1” is not there any more.")
            .arg(AndroidPath::lastComponent(m_job.folder));
    }

    const CopyJob &m_job;
    const CopyWatcher &m_watcher;
    std::stop_token m_stop;
    /// Two runs of adb may share what follows; what one of them has brought may end an entry, which is told.
    mutable std::recursive_mutex m_guard;
    std::unique_ptr<CopySide> m_from;
    std::unique_ptr<CopySide> m_to;
    std::unique_ptr<Carrier> m_carrier;
    QList<State> m_states;
    QList<PlannedFile> m_folders;
    QList<PlannedFile> m_files;
    QSet<QString> m_planned;    ///< where the files of this run go
    QStringList m_leftOver;     ///< staging folders that nobody works in
    QList<PlannedFile> m_alike; ///< the same size and time stand there; not compared yet
    QSet<QString> m_different;  ///< of what stands there, what was found to hold something else
    bool m_wasInterrupted = false;
    std::atomic<bool> m_isPhoneGone = false;
    qsizetype m_nextFile = 0;
    qsizetype m_mostTogether = 1000; ///< files for one run of adb
};

} // namespace

bool discardKeptParts(const QList<QUuid> &entries) {
    bool hasAny = false;
    for (const QUuid &entry : entries) {
        for (const KeptParts::Part &part : KeptParts::take(entry)) {
            removeStaging(part.direction, part.serial, part.folder, part.name);
            hasAny = true;
        }
    }
    return hasAny;
}

bool runCopyJob(const CopyJob &job, const CopyWatcher &watcher, const std::stop_token &stop) {
    CopyRun(job, watcher, stop).run();
    return !stop.stop_requested();
}

QueueItemStatus statusAfter(const QueueItem &item, const CopyReport &report) {
    if (!report.failure.isEmpty())
        return QueueItemStatus::Failed{report.failure, report.failed};
    const bool isFolder = item.isDirectory;
    if (!report.failed.isEmpty())
        return QueueItemStatus::Failed{isFolder ? QStringLiteral("%1 of %2 could not be copied")
                                                      .arg(report.failed.size())
                                                      .arg(report.fileCount)
                                                : report.failed.first().reason,
                                       report.failed};
    if (!report.taken.isEmpty())
        return QueueItemStatus::NameTaken{
            isFolder && report.fileCount > 1
                ? QStringLiteral("%1 of %2 differ from what is there")
                      .arg(report.taken.size())
                      .arg(report.fileCount)
                : QStringLiteral("Another “%1” is already there.").arg(item.name),
            report.taken};
    QStringList parts;
    if (report.alreadyThere > 0 && report.copied > 0)
        parts.append(QStringLiteral("%1 copied").arg(report.copied));
    if (report.alreadyThere > 0)
        parts.append(report.copied > 0 || report.fileCount > 1 || isFolder
                         ? QStringLiteral("%1 already there").arg(report.alreadyThere)
                         : QStringLiteral("Already there"));
    const bool isFirst = parts.isEmpty();
    if (report.unverified > 0)
        parts.append((isFirst ? QStringLiteral("Not") : QStringLiteral("not")) %
                     QStringLiteral(" verified: this phone has no md5sum"));
    else if (report.verified > 0)
        parts.append(isFirst ? QStringLiteral("Verified") : QStringLiteral("verified"));
    if (!report.leftOut.isEmpty())
        parts.append(QStringLiteral("%1 left out").arg(report.leftOut.size()));
    return QueueItemStatus::Completed{parts.join(QStringLiteral(", ")), report.leftOut, report.totalBytes};
}

QString explainedCopyError(const QString &error) {
    const qsizetype colon = error.lastIndexOf(QLatin1String(": "));
    const QString reason = colon < 0 ? error : error.mid(colon + 2);
    // FAT and exFAT take none of these; their drivers say so in many ways.
    static const QRegularExpression strange(
        QStringLiteral(
            "\\Acannot create [^']*'.*[\"*:<>?\\\\|\\x01-\\x1f][^/]*': (Invalid argument|No such file)"),
        QRegularExpression::DotMatchesEverythingOption);
    if (strange.match(error).hasMatch())
        return QStringLiteral("This name can’t be used on the other side.");
    if (error.contains(QLatin1String("remote open failed")) || error.startsWith(QLatin1String("tail: ")) ||
        error.startsWith(QLatin1String("md5sum: ")))
        return QStringLiteral("The phone can’t read it: ") + reason;
    // It is the shell that opens the file for cat.
    static const QRegularExpression shell(QStringLiteral("\\A(W: )?\\S*sh: .*create"));
    if (error.contains(QLatin1String("remote ")) || error.startsWith(QLatin1String("cat: ")) ||
        shell.match(error).hasMatch())
        return QStringLiteral("The phone can’t write it: ") + reason;
    if (error.startsWith(QLatin1String("cannot create")) || error.startsWith(QLatin1String("cannot write")))
        return QStringLiteral("This computer can’t write it: ") + reason;
    if (error.startsWith(QLatin1String("cannot ")))
        return QStringLiteral("This computer can’t read it: ") + reason;
    return reason;
}

QString numberedName(const QString &name, int number) {
    constexpr qsizetype longest = 255; // bytes
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    const QString ending = QStringLiteral(" %1").arg(number) + (dot > 0 ? name.mid(dot) : QString());
    QString stem = dot > 0 ? name.left(dot) : name;
    while (!stem.isEmpty() && (stem + ending).toUtf8().size() > longest)
        stem.chop(stem.back().isLowSurrogate() ? 2 : 1);
    return stem + ending;
}

} // namespace vantrel
