#pragma once

#include "ADB/PhoneCopies.h"
#include "Records/FileTree.h"
#include "Records/QueueItem.h"
#include "Transfers/LocalStaging.h"

#include <QHash>
#include <QList>
#include <QStringList>

#include <memory>
#include <optional>
#include <stop_token>

namespace vantrel {

/// One side of a copy, a phone or this computer: what stands there, and how it takes what is copied. All of
/// it blocks; a request to stop ends it within 0.5 s. What is const may be called on any thread meanwhile,
/// and so may makeStaging() and place().
class CopySide {
public:
    CopySide() = default;
    virtual ~CopySide() = default;
    Q_DISABLE_COPY_MOVE(CopySide)

    /// Whether it may leave, and is asked over a cable: little and seldom.
    [[nodiscard]] virtual bool isPhone() const = 0;

    /// What is to be copied for each entry, in their order; empty where nothing stands any more.
    [[nodiscard]] virtual ADBResult<QList<FileTree>> sources(const QList<QueueItem> &entries,
                                                             const std::stop_token &stop) const = 0;
    /// The MD5 sums of files.
    struct Sums {
        QList<QByteArray> sums;     ///< 32 digits for each file in its place; empty where there is none
        QString complaint = {};     ///< why there is none, as explainedCopyError() reads it
        bool isUnavailable = false; ///< there is no tool for it
    };
    [[nodiscard]] virtual ADBResult<Sums> sums(const QStringList &paths,
                                               const std::stop_token &stop) const = 0;

    // -- What is written into

    /// To be called before look(): finds out what stands at these paths, and below those of the folders.
    [[nodiscard]] virtual ADBResult<void> learn(const QStringList &folders, const QStringList &paths,
                                                const std::stop_token &stop) = 0;
    /// What stands at one of those paths, links not followed; nothing where there is nothing.
    [[nodiscard]] virtual std::optional<TreeEntry> look(const QString &path) const = 0;
    /// The names in a folder of what programs of this user that have ended left of their copies.
    [[nodiscard]] virtual QStringList leftOver(const QString &folder, const std::stop_token &stop) const = 0;
    /// Makes folders, each behind the one around it; what is there stays. Gives why some could not be made,
    /// as far as that shows already.
    [[nodiscard]] virtual ADBResult<QHash<QString, QString>> makeFolders(const QStringList &paths,
                                                                         const std::stop_token &stop) = 0;
    /// Makes a staging folder called `name` in a folder that is there. Fails in the user's words.
    [[nodiscard]] virtual ADBResult<void> makeStaging(const QString &folder, const QString &name,
                                                      const std::stop_token &stop) = 0;
    /// What of these names stands in a staging folder, by name; nothing when that folder is no more the one
    /// that was made.
    [[nodiscard]] virtual ADBResult<std::optional<QHash<QString, TreeEntry>>>
    staged(const QString &staging, const QStringList &names, const std::stop_token &stop) const = 0;
    /// What became of a file that was to take its name.
    struct Placed {
        LocalFiles::Placing outcome = LocalFiles::Placing::placed;
        QString reason = {}; ///< of what failed, in the user's words
    };
    struct Move {
        QString from; ///< in the staging folder
        QString to;
    };
    /// Gives staged files their names with the permissions of new files, none over anything that is there.
    /// With the last of them the staging folder may go, where that saves a question.
    [[nodiscard]] virtual ADBResult<QList<Placed>> place(const QList<Move> &moves, const QString &staging,
                                                         ADBClient::AfterMoves after,
                                                         const std::stop_token &stop) = 0;
    /// Sets a file's time, in seconds since 1970.
    [[nodiscard]] virtual ADBResult<void> setModified(const QString &path, qint64 modified,
                                                      const std::stop_token &stop) const = 0;
    /// Removes what the program made: staging folders with everything in them, or files in one.
    virtual bool remove(const QStringList &paths) const = 0;
};

/// The sides of a copy. `serial` is that of the phone, if one takes part.
[[nodiscard]] std::unique_ptr<CopySide> sourceSide(TransferDirection direction, const QString &serial);
[[nodiscard]] std::unique_ptr<CopySide> destinationSide(TransferDirection direction, const QString &serial);

} // namespace vantrel
