#include "Transfers/CopySide.h"

#include "ADB/AndroidPath.h"
#include "Transfers/StagedName.h"

#include <QFile>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <utility>

namespace vantrel {

namespace {

using LocalFiles::Placing;

class PhoneSide final : public CopySide {
public:
    explicit PhoneSide(QString serial) : m_serial(std::move(serial)) {}

    [[nodiscard]] bool isPhone() const override { return true; }

    [[nodiscard]] ADBResult<QList<FileTree>> sources(const QList<QueueItem> &entries,
                                                     const std::stop_token &stop) const override {
        QStringList single;
        for (const QueueItem &entry : entries) {
            if (!entry.isDirectory)
                single.append(entry.sourcePath);
        }
        QHash<QString, TreeEntry> facts;
        if (!single.isEmpty()) {
            auto told = ADBClient::fetchFacts(m_serial, single, stop);
            if (!told)
                return tl::make_unexpected(told.error());
            facts = std::move(*told);
        }
        QList<FileTree> trees;
        for (const QueueItem &entry : entries) {
            const auto fact = facts.constFind(entry.sourcePath);
            const bool isFolder =
                entry.isDirectory || (fact != facts.cend() && fact->kind == TreeEntry::Kind::folder);
            if (isFolder) {
                auto tree = ADBClient::fetchTree(m_serial, entry.sourcePath, stop);
                if (!tree)
                    return tl::make_unexpected(tree.error());
                trees.append(std::move(*tree));
                continue;
            }
            FileTree tree;
            if (fact != facts.cend())
                tree.entries.append({{}, fact->kind, fact->sizeBytes, fact->modified});
            trees.append(std::move(tree));
        }
        return trees;
    }

    [[nodiscard]] ADBResult<Sums> sums(const QStringList &paths, const std::stop_token &stop) const override {
        auto found = ADBClient::fetchSums(m_serial, paths, stop);
        if (!found)
            return tl::make_unexpected(found.error());
        return Sums{std::move(found->sums), QStringLiteral("md5sum: ") + found->complaint,
                    found->isUnavailable};
    }

    /// At once for all that stands there.
    [[nodiscard]] ADBResult<void> learn(const QStringList &folders, const QStringList &paths,
                                        const std::stop_token &stop) override {
        for (const QString &path : paths)
            m_there.remove(path);
        for (const QString &folder : folders) {
            const auto tree = ADBClient::fetchTree(m_serial, folder, stop);
            if (!tree)
                return tl::make_unexpected(tree.error());
            for (const TreeEntry &found : tree->entries)
                m_there.insert(found.path.isEmpty() ? folder : AndroidPath::join(folder, found.path), found);
        }
        if (paths.isEmpty())
            return {};
        const auto facts = ADBClient::fetchFacts(m_serial, paths, stop);
        if (!facts)
            return tl::make_unexpected(facts.error());
        m_there.insert(*facts);
        return {};
    }

    [[nodiscard]] std::optional<TreeEntry> look(const QString &path) const override {
        const auto found = m_there.constFind(path);
        return found == m_there.constEnd() ? std::nullopt : std::optional(*found);
    }

    [[nodiscard]] QStringList leftOver(const QString &folder, const std::stop_token &stop) const override {
        // Where it does not answer, it says why at the next question.
        const auto paths = ADBClient::namesBeginningWith(m_serial, folder, StagedName::prefix(), stop);
        QStringList names;
        for (const QString &path : paths.value_or(QStringList())) {
            if (const QString name = AndroidPath::lastComponent(path); StagedName::isLeftOver(name))
                names.append(name);
        }
        return names;
    }

    /// Whether each could be made shows where files are put into it.
    [[nodiscard]] ADBResult<QHash<QString, QString>> makeFolders(const QStringList &paths,
                                                                 const std::stop_token &stop) override {
        if (const auto made = ADBClient::makeFolders(m_serial, paths, stop); !made)
            return tl::make_unexpected(made.error());
        return {};
    }

    [[nodiscard]] ADBResult<void> makeStaging(const QString &folder, const QString &name,
                                              const std::stop_token &stop) override {
        const auto made = ADBClient::makeMarkedFolder(m_serial, AndroidPath::join(folder, name), name, stop);
        if (made)
            return {};
        const QString reason = made.error().errorDescription();
        const QString shown = AndroidPath::lastComponent(folder);
        if (reason == QLatin1String("No such file or directory"))
            return tl::make_unexpected(ADBError::executionFailed(
                QStringLiteral("The folder “%1” is not there any more.").arg(shown)));
        const QLatin1String ofFolder[] = {QLatin1String("ermission denied"), QLatin1String("space left"),
                                          QLatin1String("ead-only")};
        if (std::any_of(std::begin(ofFolder), std::end(ofFolder),
                        [&](QLatin1String known) { return reason.contains(known); }))
            return tl::make_unexpected(ADBError::executionFailed(
                QStringLiteral("Can’t write into “%1” on the phone: %2").arg(shown, reason)));
        return made;
    }

    [[nodiscard]] ADBResult<std::optional<QHash<QString, TreeEntry>>>
    staged(const QString &staging, const QStringList & /*names*/,
           const std::stop_token &stop) const override {
        const auto tree = ADBClient::fetchTree(m_serial, staging, stop);
        if (!tree)
            return tl::make_unexpected(tree.error());
        QHash<QString, TreeEntry> found;
        for (const TreeEntry &entry : tree->entries)
            found.insert(entry.path, entry);
        // adb makes a folder again that is gone, but not the marker in it.
        if (!found.contains(AndroidPath::lastComponent(staging)))
            return std::nullopt;
        return found;
    }

    [[nodiscard]] ADBResult<QList<Placed>> place(const QList<Move> &moves, const QString &staging,
                                                 ADBClient::AfterMoves after,
                                                 const std::stop_token &stop) override {
        if (moves.isEmpty())
            return QList<Placed>();
        QList<ADBClient::PhoneMove> asked;
        for (const Move &move : moves)
            asked.append({move.from, move.to});
        const auto unmoved = ADBClient::moveFiles(m_serial, asked, staging, after, stop);
        if (!unmoved)
            return tl::make_unexpected(unmoved.error());
        QList<Placed> placed;
        for (const Move &move : moves) {
            const auto left = unmoved->constFind(move.from);
            if (left == unmoved->constEnd())
                placed.append(Placed{});
            else if (left->isEmpty())
                placed.append({Placing::nameTaken});
            else
                placed.append({Placing::failed, QStringLiteral("The phone can’t write it: ") + *left});
        }
        return placed;
    }

    [[nodiscard]] ADBResult<void> setModified(const QString &path, qint64 modified,
                                              const std::stop_token &stop) const override {
        return ADBClient::setModified(m_serial, path, modified, stop);
    }

    bool remove(const QStringList &paths) const override {
        return ADBClient::removeOwn(m_serial, paths).has_value();
    }

private:
    QString m_serial;
    QHash<QString, TreeEntry> m_there;
};

class ComputerSide final : public CopySide {
public:
    [[nodiscard]] bool isPhone() const override { return false; }

    [[nodiscard]] ADBResult<QList<FileTree>> sources(const QList<QueueItem> &entries,
                                                     const std::stop_token & /*stop*/) const override {
        QList<FileTree> trees;
        for (const QueueItem &entry : entries)
            trees.append(LocalFiles::readTree(entry.sourcePath));
        return trees;
    }

    [[nodiscard]] ADBResult<Sums> sums(const QStringList &paths, const std::stop_token &stop) const override {
        Sums found;
        for (const QString &path : paths) {
            auto sum = LocalFiles::sum(path, stop, [](qint64) {});
            if (stop.stop_requested())
                return tl::make_unexpected(
                    ADBError::executionFailed(QStringLiteral("The copy was stopped.")));
            if (!sum)
                found.complaint = QStringLiteral("cannot read: ") + qt_error_string(errno);
            found.sums.append(std::move(sum).value_or(QByteArray()));
        }
        return found;
    }

    /// Nothing: it is looked at file by file.
    [[nodiscard]] ADBResult<void> learn(const QStringList & /*folders*/, const QStringList & /*paths*/,
                                        const std::stop_token & /*stop*/) override {
        return {};
    }
    [[nodiscard]] std::optional<TreeEntry> look(const QString &path) const override {
        return LocalFiles::look(path);
    }
    [[nodiscard]] QStringList leftOver(const QString &folder,
                                       const std::stop_token & /*stop*/) const override {
        return LocalFiles::leftOver(folder);
    }

    [[nodiscard]] ADBResult<QHash<QString, QString>> makeFolders(const QStringList &paths,
                                                                 const std::stop_token &stop) override {
        QHash<QString, QString> failed;
        for (const QString &path : paths) {
            if (stop.stop_requested())
                break;
            if (const auto made = LocalFiles::makeFolder(path); !made)
                failed.insert(path, QStringLiteral("This computer can’t make the folder: ") + made.error());
        }
        return failed;
    }

    [[nodiscard]] ADBResult<void> makeStaging(const QString &folder, const QString &name,
                                              const std::stop_token & /*stop*/) override {
        auto made = LocalStaging::create(folder, name);
        if (!made)
            return tl::make_unexpected(
                ADBError::executionFailed(QStringLiteral("Can’t write into “%1”: %2")
                                              .arg(AndroidPath::lastComponent(folder), made.error())));
        m_newFileMode = made->newFileMode();
        made->keep();
        return {};
    }

    [[nodiscard]] ADBResult<std::optional<QHash<QString, TreeEntry>>>
    staged(const QString &staging, const QStringList &names,
           const std::stop_token & /*stop*/) const override {
        if (!LocalFiles::look(staging))
            return std::nullopt;
        QHash<QString, TreeEntry> found;
        for (const QString &name : names) {
            if (const auto entry = LocalFiles::look(AndroidPath::join(staging, name)))
                found.insert(name, *entry);
        }
        return found;
    }

    [[nodiscard]] ADBResult<QList<Placed>> place(const QList<Move> &moves, const QString & /*staging*/,
                                                 ADBClient::AfterMoves /*after*/,
                                                 const std::stop_token & /*stop*/) override {
        QList<Placed> placed;
        for (const Move &move : moves) {
            ::chmod(QFile::encodeName(move.from).constData(), m_newFileMode);
            const Placing outcome = LocalFiles::place(move.from, move.to);
            placed.append(
                {outcome, outcome == Placing::failed
                              ? QStringLiteral("This computer can’t write it: ") + qt_error_string(errno)
                              : QString()});
        }
        return placed;
    }

    [[nodiscard]] ADBResult<void> setModified(const QString &path, qint64 modified,
                                              const std::stop_token & /*stop*/) const override {
        if (LocalFiles::setModified(path, modified))
            return {};
        return tl::make_unexpected(
            ADBError::executionFailed(QStringLiteral("cannot write: ") + qt_error_string(errno)));
    }

    bool remove(const QStringList &paths) const override {
        bool areGone = true;
        for (const QString &path : paths) {
            std::error_code failed;
            std::filesystem::remove_all(QFile::encodeName(path).toStdString(), failed);
            areGone = areGone && !failed;
        }
        return areGone;
    }

private:
    std::atomic<mode_t> m_newFileMode = 0644;
};

std::unique_ptr<CopySide> sideOf(bool isPhone, const QString &serial) {
    if (isPhone)
        return std::make_unique<PhoneSide>(serial);
    return std::make_unique<ComputerSide>();
}

} // namespace

std::unique_ptr<CopySide> sourceSide(TransferDirection direction, const QString &serial) {
    return sideOf(direction == TransferDirection::androidToMac, serial);
}

std::unique_ptr<CopySide> destinationSide(TransferDirection direction, const QString &serial) {
    return sideOf(direction == TransferDirection::macToAndroid, serial);
}

} // namespace vantrel
