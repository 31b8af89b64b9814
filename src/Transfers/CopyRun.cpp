#include "Transfers/CopyRun.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "Records/ByteSum.h"
#include "Records/TransferFormat.h"
#include "Transfers/Carrier.h"
#include "Transfers/CopyBatches.h"
#include "Transfers/CopyPlan.h"
#include "Transfers/CopySide.h"
#include "Transfers/CopyTally.h"
#include "Transfers/CopyText.h"
#include "Transfers/FileComparer.h"
#include "Transfers/KeptParts.h"
#include "Transfers/StagedName.h"
#include "Transfers/StagingPlace.h"

#include <QCryptographicHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <future>
#include <utility>

namespace vantrel {

namespace {

using Outcome = FileComparer::Comparison::Outcome;

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

/// What a tool or the shell of the phone says of a file is a line like those of adb.
ADBResult<QStringList> complaint(const ADBError &error) {
    static const QRegularExpression spoken(
        QStringLiteral("\\A((W: )?(tail|cat|md5sum|\\S*sh): |cannot |It was changed)"));
    const QString text = error.errorDescription();
    if (spoken.match(text).hasMatch())
        return QStringList{text};
    return tl::make_unexpected(error);
}

class CopyRun {
public:
    CopyRun(const CopyJob &job, const CopyWatcher &watcher, const std::stop_token &stop)
        : m_job(job), m_stop(stop), m_from(sourceSide(job.direction, job.serial)),
          m_to(destinationSide(job.direction, job.serial)),
          m_carrier(carrierFor(job.direction, job.serial)), m_place{job.direction, job.serial, job.folder},
          m_tally(job, watcher, stop), m_plan(job, *m_to, m_tally),
          m_comparer(*m_from, *m_to, m_tally, stop) {}

    void run() {
        auto sweeping = std::async(std::launch::async, [this] { return m_place.leftOver(*m_to, m_stop); });
        QList<FileTree> sources = look();
        m_leftOver = sweeping.get();
        plan(std::move(sources));
        compareAlike();
        makeFolders();
        copyMissing();
        removeLeftOver();
        for (qsizetype entry = 0; entry < m_job.entries.size(); ++entry) {
            if (m_tally.hasEndedForGood(entry))
                KeptParts::discard({m_job.entries.at(entry).id});
            m_tally.end(entry);
        }
    }

private:
    /// The phone or its tool ended it for all.
    void failAll(const ADBError &error) {
        if (needsPhone(m_job.direction)) {
            const auto serials = ADBClient::listDeviceSerials();
            if (speaksOfAbsence(error.errorDescription()) ||
                (serials && !serials->contains(m_job.serial))) // what cannot be asked is not known to be gone
                m_tally.losePhone();
        }
        m_tally.failAll(error.errorDescription());
    }

    // -- Planning

    /// What is to be copied, entry by entry; the destination learns what stands there.
    [[nodiscard]] QList<FileTree> look() {
        auto sources = m_from->sources(m_job.entries, m_stop);
        if (!sources) {
            failAll(sources.error());
            return {};
        }
        const auto [folders, paths] = CopyPlan::destinationsOf(m_job, *sources);
        if (const auto learned = m_to->learn(folders, paths, m_stop); !learned)
            failAll(learned.error());
        return std::move(*sources);
    }

    void plan(QList<FileTree> sources) {
        for (qsizetype entry = 0; entry < sources.size(); ++entry) {
            if (!m_tally.hasEnded(entry))
                m_plan.add(entry, sources.at(entry));
            sources[entry] = {}; // a million entries would be a lot to keep
        }
    }

    /// When copies are verified, the same size and time are not enough: what differs all the same is another
    /// content.
    void compareAlike() {
        constexpr qsizetype mostFiles = 1000;
        for (;;) {
            const QList<PlannedFile> some = m_plan.takeAlike(mostFiles);
            if (some.isEmpty())
                return;
            if (m_stop.stop_requested())
                return m_tally.failAll(QStringLiteral("The copy was stopped."));
            QList<FileComparer::Pair> pairs;
            for (const PlannedFile &file : some)
                pairs.append({file, file.destination});
            const auto compared = m_comparer.compare(pairs, CopyTally::Arrival::there);
            if (!compared)
                return failAll(compared.error());
            for (qsizetype i = 0; i < some.size(); ++i) {
                const PlannedFile &file = some.at(i);
                const FileComparer::Comparison &comparison = compared->at(i);
                if (comparison.outcome == Outcome::unreadable) {
                    m_tally.note(file.entry, &CopyReport::failed, {{file.shownPath, comparison.reason}});
                } else if (comparison.outcome == Outcome::different) {
                    m_plan.addDifferent(file);
                } else {
                    m_tally.countAsThere(file.entry, file.sizeBytes);
                    m_tally.countAsCompared(file.entry, comparison.outcome == Outcome::same);
                }
            }
        }
    }

    void makeFolders() {
        QStringList paths;
        for (const PlannedFile &folder : m_plan.folders()) {
            if (!m_tally.isGivenUp(folder.entry))
                paths.append(folder.destination);
        }
        if (paths.isEmpty() || m_stop.stop_requested())
            return;
        const auto refused = m_to->makeFolders(paths, m_stop);
        if (!refused)
            return failAll(refused.error());
        for (const PlannedFile &folder : m_plan.folders()) {
            const auto reason = refused->constFind(folder.destination);
            if (reason == refused->constEnd())
                continue;
            const QString shown = folder.shownPath.isEmpty() ? AndroidPath::lastComponent(folder.destination)
                                                             : folder.shownPath;
            m_tally.note(folder.entry, &CopyReport::failed, {{shown, *reason}});
        }
    }

    // -- Copying

    void copyMissing() {
        for (qsizetype entry = 0; entry < m_job.entries.size(); ++entry)
            m_tally.endIfDone(entry); // what is there already ends at once
        CopyBatches batches(m_plan.files(), m_tally);
        if (batches.isEmpty())
            return;
        std::future<void> other;
        if (batches.areForTwo())
            other = std::async(std::launch::async, [&] { copyBatches(batches, Takeover::no); });
        copyBatches(batches, Takeover::yes);
        if (other.valid())
            other.wait();
        if (m_stop.stop_requested())
            m_tally.failAll(QStringLiteral("The copy was stopped."));
    }

    /// Whether what earlier runs have kept is to be taken over.
    enum class Takeover { no, yes };

    /// Copies what is still to be copied, batch by batch, by way of a staging folder of its own.
    void copyBatches(CopyBatches &batches, Takeover takeover) {
        const QString name = StagedName::make();
        const QString staging = AndroidPath::join(m_job.folder, name);
        if (const auto made = m_to->makeStaging(m_job.folder, name, m_stop); !made) {
            StagedName::release(name);
            return failAll(made.error());
        }
        if (takeover == Takeover::yes)
            adopt(batches.largeFiles(), staging);
        CopyBatch last;
        while (!m_stop.stop_requested()) {
            auto batch = batches.take();
            if (!batch) {
                last.files.clear(); // whole
                break;
            }
            const auto copied = copyAndName(*batch, staging);
            last = *std::move(batch);
            if (!copied) {
                failAll(copied.error());
                break;
            }
        }
        if (last.isStagingGone)
            StagedName::release(name);
        else if (goesOn(last))
            keep(name, last);
        else
            m_place.remove(name);
    }

    /// Copies the batch, and gives their names to those of its files that are whole.
    ADBResult<void> copyAndName(CopyBatch &batch, const QString &staging) {
        const auto errors = copyBatch(batch, staging);
        // What had come to this computer before its phone left is looked at all the same.
        if (!errors && (m_to->isPhone() || batch.isLarge()))
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
            const bool isWhole = there != (*staged)->constEnd() && file.isLike(*there) && !hasChanged(file);
            (isWhole ? whole : lacking).append(file);
        }
        const auto unfit = refused(whole, staging, batch);
        if (!unfit)
            return tl::make_unexpected(errors ? unfit.error() : errors.error());
        QList<CopySide::Move> moves;
        QList<PlannedFile> moved;
        for (const PlannedFile &file : std::as_const(whole)) {
            if (unfit->contains(file.destination) || m_tally.isGivenUp(file.entry))
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
        QSet<QString> useless; // not whole, or not wanted; another file of that name may come
        for (const QString &name : std::as_const(names)) {
            if ((*staged)->contains(name))
                useless.insert(AndroidPath::join(staging, name));
        }
        for (qsizetype i = 0; i < moved.size(); ++i) {
            const CopySide::Placed &outcome = outcomes->at(i);
            if (outcome.outcome == LocalFiles::Placing::placed) {
                useless.remove(moves.at(i).from);
                m_tally.placed(moved.at(i).entry, moved.at(i).sizeBytes);
            } else if (outcome.outcome == LocalFiles::Placing::nameTaken) {
                problem(moved.at(i), &CopyReport::taken, CopyPlan::takenReason());
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

    ADBResult<QStringList> copyBatch(CopyBatch &batch, const QString &staging) {
        QStringList sources;
        qint64 bytes = 0;
        for (const PlannedFile &file : std::as_const(batch.files)) {
            sources.append(file.source);
            bytes = byteSum(bytes, file.sizeBytes);
        }
        int reported = 0;
        const auto onProgress = [&](int ended, double fraction) {
            const auto count = static_cast<int>(batch.files.size());
            for (; reported < std::min(ended, count); ++reported) {
                const PlannedFile &file = batch.files.at(reported);
                m_tally.stage(file.entry, file.sizeBytes, +1);
                m_tally.report(file.entry, 0);
            }
            if (reported < count) {
                const PlannedFile &next = batch.files.at(reported);
                m_tally.report(next.entry, wholeBytes(fraction * static_cast<double>(next.sizeBytes)));
            }
        };
        // A phone that leaves ends adb without a word. When it is back before it is missed, it is tried
        // again.
        constexpr int mostTries = 3;
        ADBResult<QStringList> copied;
        for (int tries = 0; tries < mostTries; ++tries) {
            copied = batch.isLarge()
                         ? copyLarge(batch, AndroidPath::join(staging, stagedName(batch.files.first())))
                         : m_carrier->carry(sources, staging, bytes, m_stop, onProgress);
            if (copied || copied.error().errorDescription() != QLatin1String("adb exited with 1"))
                break;
        }
        for (const PlannedFile &file : std::as_const(batch.files).first(reported))
            m_tally.stage(file.entry, file.sizeBytes, -1);
        return copied;
    }

    /// Whether a source of this computer is another by now. A phone's cannot be told from here: it was read
    /// once.
    [[nodiscard]] bool hasChanged(const PlannedFile &file) const {
        if (m_from->isPhone())
            return false;
        const auto now = LocalFiles::look(file.source); // a link that was followed says nothing
        return now && now->kind == TreeEntry::Kind::file && !file.isLike(*now);
    }

    /// Compares staged files with their sources, when that is wanted. Gives the destinations of those that
    /// must not take their names, and tells why.
    ADBResult<QSet<QString>> refused(const QList<PlannedFile> &arrived, const QString &staging,
                                     const CopyBatch &batch) {
        QSet<QString> names;
        if (!m_job.verifies || arrived.isEmpty())
            return names;
        if (batch.isCompared) { // when it was continued
            m_tally.countAsCompared(arrived.first().entry, true);
            return names;
        }
        QList<FileComparer::Pair> pairs;
        for (const PlannedFile &file : arrived)
            pairs.append({file, AndroidPath::join(staging, stagedName(file))});
        const auto compared = m_comparer.compare(pairs, CopyTally::Arrival::staged);
        if (!compared)
            return tl::make_unexpected(compared.error());
        for (qsizetype i = 0; i < arrived.size(); ++i) {
            const PlannedFile &file = arrived.at(i);
            const auto &[outcome, reason, complaint] = compared->at(i);
            if (outcome == Outcome::same || outcome == Outcome::unavailable) {
                m_tally.countAsCompared(file.entry, outcome == Outcome::same);
                continue;
            }
            names.insert(file.destination);
            problem(file, &CopyReport::failed,
                    outcome == Outcome::different
                        ? QStringLiteral("The copy differs from the original. Try again.")
                        : reason);
        }
        return names;
    }

    /// Why a file of the batch is not to be used.
    void explain(const CopyBatch &batch, const PlannedFile &file, bool hasArrived,
                 const QStringList &errors) {
        QString reason;
        for (const QString &error : errors) {
            // The file is named as it is here or as it is there; no two of a batch have one name.
            if (batch.files.size() == 1 ||
                error.contains(
                    QString(QLatin1Char('/') % AndroidPath::lastComponent(file.source) % QLatin1Char('\''))))
                reason = explainedCopyError(error);
            if (error.contains(QLatin1String("No space left on device")))
                return m_tally.failAll(m_to->isPhone()
                                           ? QStringLiteral("The phone’s storage is full.")
                                           : QStringLiteral("The disk of this computer is full."));
        }
        if (reason.isEmpty())
            reason = hasArrived ? ADBClient::sourceChanged() : QStringLiteral("It did not arrive.");
        problem(file, &CopyReport::failed, reason);
    }

    void problem(const PlannedFile &file, CopyTally::Problems list, const QString &reason) {
        m_tally.problem(file.entry, list, {file.shownPath, reason});
    }

    [[nodiscard]] QString vanished() const {
        return QStringLiteral("The folder “%1” is not there any more.")
            .arg(AndroidPath::lastComponent(m_job.folder));
    }

    // -- Going on

    /// The file's name while it is staged. That of a large one tells of what it is the beginning, and of what
    /// time and size: when the source has changed since, the name is another.
    [[nodiscard]] QString stagedName(const PlannedFile &file) const {
        if (!file.isLarge())
            return AndroidPath::lastComponent(file.source);
        const QString identity = QStringList{m_job.serial, file.source, QString::number(file.sizeBytes),
                                             QString::number(file.modified)}
                                     .join(QChar(u'\0'));
        const QByteArray hash = QCryptographicHash::hash(identity.toUtf8(), QCryptographicHash::Sha256);
        return QString::fromLatin1(hash.toHex().left(32));
    }

    /// Takes over what earlier runs, also of programs that died, have kept of the large files, and removes
    /// the rest of it.
    void adopt(const QList<PlannedFile> &largeFiles, const QString &staging) {
        for (const QueueItem &copied : m_job.entries) {
            for (const KeptParts::Part &part : KeptParts::take(copied.id))
                m_leftOver.append(part.name);
        }
        QList<CopySide::Move> moves;
        for (const PlannedFile &file : largeFiles) {
            for (const QString &name : std::as_const(m_leftOver))
                moves.append({AndroidPath::join(AndroidPath::join(m_job.folder, name), stagedName(file)),
                              AndroidPath::join(staging, stagedName(file))});
        }
        m_wasInterrupted = !moves.isEmpty();
        [[maybe_unused]] const auto ignored = m_to->place(moves, staging, ADBClient::AfterMoves::keepStaging,
                                                          m_stop); // what is missing begins anew
        removeLeftOver();
    }
    void removeLeftOver() {
        for (const QString &name : std::exchange(m_leftOver, {}))
            m_place.remove(name);
    }

    /// Whether the copy that has just ended early is to go on later.
    [[nodiscard]] bool goesOn(const CopyBatch &batch) const {
        return batch.isLarge() && (m_stop.stop_requested() || m_tally.hasLostPhone());
    }
    /// Leaves a staging folder for the run in which its file goes on.
    void keep(const QString &name, const CopyBatch &batch) {
        const qsizetype entry = batch.files.first().entry;
        const QUuid id = m_job.entries.at(entry).id;
        KeptParts::keep({id, m_place, name});
        if (!m_tally.isWanted(entry)) // removed from the queue in between
            KeptParts::discard({id});
    }

    /// Copies the batch, one large file, to `staged`; from where an earlier try has ended, if one has.
    ADBResult<QStringList> copyLarge(CopyBatch &batch, const QString &staged) {
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
            const auto left = m_to->staged(staged.chopped(stagedName(file).size() + 1), {}, m_stop);
            if (!left)
                return tl::make_unexpected(left.error());
            if (!*left)
                return tl::make_unexpected(ADBError::executionFailed(vanished()));
        }
        const auto onProgress = [&](int /*ended*/, double fraction) {
            m_tally.report(file.entry, wholeBytes(fraction * static_cast<double>(file.sizeBytes)));
        };
        return m_carrier->begin(file.source, staged, file.sizeBytes, m_stop, onProgress);
    }

    /// Whether the file, of which so many bytes are there, is whole now and like its source.
    ADBResult<bool> continueLarge(CopyBatch &batch, const QString &staged, qint64 reached) {
        const PlannedFile &file = batch.files.first();
        m_tally.keep(file.entry, reached);
        const auto onBytes = [&](qint64 bytes) { m_tally.report(file.entry, bytes); };
        const auto continued = m_carrier->goOn(file.source, staged, file.sizeBytes, reached, m_stop, onBytes);
        if (!continued)
            return tl::make_unexpected(continued.error());
        if (const auto timed = m_to->setModified(staged, file.modified, m_stop); !timed)
            return tl::make_unexpected(timed.error());
        const auto isSame = isSameAsSource(batch, staged);
        if (isSame && !*isSame)
            m_tally.keep(file.entry, -reached);
        return isSame;
    }

    /// Whether what was continued has its source's content, as far as that can be said.
    [[nodiscard]] ADBResult<bool> isSameAsSource(CopyBatch &batch, const QString &staged) {
        const auto compared = m_comparer.compare({{batch.files.first(), staged}}, CopyTally::Arrival::staged);
        if (!compared)
            return tl::make_unexpected(compared.error());
        if (const QString &complaint = compared->first().complaint; !complaint.isEmpty())
            return tl::make_unexpected(ADBError::executionFailed(complaint));
        batch.isCompared = compared->first().outcome == Outcome::same;
        return batch.isCompared;
    }

    const CopyJob &m_job;
    const std::stop_token m_stop;
    const std::unique_ptr<CopySide> m_from;
    const std::unique_ptr<CopySide> m_to;
    const std::unique_ptr<Carrier> m_carrier;
    const StagingPlace m_place;
    CopyTally m_tally;
    CopyPlan m_plan;
    FileComparer m_comparer;
    QStringList m_leftOver; ///< staging folders that nobody works in
    bool m_wasInterrupted = false;
};

} // namespace

bool runCopyJob(const CopyJob &job, const CopyWatcher &watcher, const std::stop_token &stop) {
    CopyRun(job, watcher, stop).run();
    return !stop.stop_requested();
}

} // namespace vantrel
