#pragma once

#include "Records/FileTree.h"

#include <QString>
#include <QUuid>

#include <variant>

namespace vantrel {

/// Which way a copy goes: a pull from the phone, a push to it, or from one folder of this computer into
/// another.
enum class TransferDirection { androidToMac, macToAndroid, withinMac };

/// Whether a phone takes part.
[[nodiscard]] constexpr bool needsPhone(TransferDirection direction) {
    return direction != TransferDirection::withinMac;
}

/// The state of one queued copy.
class QueueItemStatus {
public:
    /// How far a copy has come: the latest report.
    struct Progress {
        double fraction = 0;         ///< 0 to 1
        qint64 transferredBytes = 0; ///< bytes
        qint64 totalBytes = 0;       ///< bytes; 0 when unknown
        qsizetype files = 0;         ///< done, of fileCount
        qsizetype fileCount = 0;     ///< 0 while it is unknown
        bool isVerifying = false;    ///< what has arrived is being compared with its source
        qint64 carriedBytes = 0;     ///< of transferredBytes, what has not been there before this run
        bool isSilent = false;       ///< nothing has come for 30 s
        friend bool operator==(const Progress &, const Progress &) = default;
    };
    struct Transferring : Progress {};
    /// A stopped copy with its progress; shown like Transferring.
    struct Paused : Progress {};
    /// It ended without all of it; another try may bring the rest.
    struct Failed {
        QString message;                  ///< what the user reads
        QList<CopyProblem> problems = {}; ///< of a folder: each file that is missing
        friend bool operator==(const Failed &, const Failed &) = default;
    };
    /// Another content stands under its name, or under that of some of its files: the user decides.
    struct NameTaken {
        QString message;
        QList<CopyProblem> problems = {};
        friend bool operator==(const NameTaken &, const NameTaken &) = default;
    };
    struct Waiting {
        bool forPhone = false;  ///< for the phone that it was queued for to come back
        bool isClaimed = false; ///< its turn in a run of several files has been fixed
        friend bool operator==(const Waiting &, const Waiting &) = default;
    };
    struct Completed {
        QString note;                    ///< what is worth saying; empty when everything was copied
        QList<CopyProblem> leftOut = {}; ///< what cannot be copied at all
        qint64 totalBytes = 0;
        friend bool operator==(const Completed &, const Completed &) = default;
    };

    QueueItemStatus() : m_value(Waiting()) {}
    // NOLINTNEXTLINE(google-explicit-constructor): a status is written as one of its cases.
    template <class Case>
    requires std::constructible_from<
        std::variant<Waiting, Transferring, Paused, Failed, NameTaken, Completed>, Case>
    QueueItemStatus(Case value) : m_value(std::move(value)) {}

    template <class Case>
    [[nodiscard]] bool is() const {
        return std::holds_alternative<Case>(m_value);
    }
    /// The case's values, or null when the status is another case.
    template <class Case>
    [[nodiscard]] const Case *as() const {
        return std::get_if<Case>(&m_value);
    }
    /// The progress of a running or paused copy, else null.
    [[nodiscard]] const Progress *progress() const;

    friend bool operator==(const QueueItemStatus &, const QueueItemStatus &) = default;

private:
    std::variant<Waiting, Transferring, Paused, Failed, NameTaken, Completed> m_value;
};

/// What becomes of a copy where another content stands under its name. Nothing is ever replaced.
enum class WhenTaken {
    ask,     ///< it is not made, and the entry says so
    keepBoth ///< it is made under the next free name: "name 2.jpg"
};

/// One entry of the transfer queue. Only the status and what the user decides change after the entry was
/// made.
struct QueueItem {
    QUuid id;                  ///< fresh random identity
    QString name;              ///< the source entry's name
    bool isDirectory = false;  ///< a whole folder is copied
    QString sourcePath;        ///< full path of the source, on the phone for a pull
    QString destinationFolder; ///< full path of the folder that the copy goes into, under the same name
    TransferDirection direction = TransferDirection::androidToMac;
    QueueItemStatus status; ///< starts as waiting
    qint64 totalBytes = 0;  ///< expected bytes; 0 when the source's size is unknown
    QString serial =
        {}; ///< of the phone that it was queued for, and of no other; empty where none takes part
    WhenTaken whenTaken = WhenTaken::ask;

    /// The full path that the copy will have on the other side.
    [[nodiscard]] QString destinationPath() const;
    /// The byte progress or the state in words.
    [[nodiscard]] QString progressLabel() const;
    /// What is missing and why, one file to a line, or empty; at most as many lines as a tool tip takes.
    [[nodiscard]] QString problemText() const;
    /// Whether another try may bring what is missing.
    [[nodiscard]] bool canTryAgain() const { return status.is<QueueItemStatus::Failed>(); }
    /// Whether the user may have it under another name.
    [[nodiscard]] bool canKeepBoth() const { return status.is<QueueItemStatus::NameTaken>(); }
    /// The percentage, or what stands in its place.
    [[nodiscard]] QString percentLabel() const;

    friend bool operator==(const QueueItem &, const QueueItem &) = default;
};

} // namespace vantrel

Q_DECLARE_TYPEINFO(vantrel::QueueItem, Q_RELOCATABLE_TYPE);
