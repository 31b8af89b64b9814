#pragma once

#include <QString>
#include <QUuid>

#include <variant>

namespace vantrel {

/// Which way a copy goes: a pull from the phone or a push to it.
enum class TransferDirection { androidToMac, macToAndroid };

/// The state of one queued copy.
class QueueItemStatus {
public:
    /// How far a copy has come: the latest report.
    struct Progress {
        double fraction = 0;         ///< 0 to 1
        qint64 transferredBytes = 0; ///< bytes
        qint64 totalBytes = 0;       ///< bytes; 0 when unknown
        friend bool operator==(const Progress &, const Progress &) = default;
    };
    struct Transferring : Progress {};
    /// A stopped copy with its progress. Nothing enters this state today; it is shown like Transferring.
    struct Paused : Progress {};
    struct Failed {
        QString message; ///< what the user reads
        friend bool operator==(const Failed &, const Failed &) = default;
    };
    struct Waiting {
        friend bool operator==(const Waiting &, const Waiting &) = default;
    };
    struct Completed {
        friend bool operator==(const Completed &, const Completed &) = default;
    };

    QueueItemStatus() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): a status is written as one of its cases.
    template <class Case>
    requires std::constructible_from<std::variant<Waiting, Transferring, Paused, Failed, Completed>, Case>
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
    std::variant<Waiting, Transferring, Paused, Failed, Completed> m_value;
};

/// One entry of the transfer queue. Only the status changes after the entry was made.
struct QueueItem {
    QUuid id;                 ///< fresh random identity
    QString name;             ///< the source entry's name
    bool isDirectory = false; ///< a whole folder is copied
    QString sourcePath;       ///< full path of the source, on the phone for a pull
    QString destinationPath;  ///< full path that the copy will have on the other side
    TransferDirection direction = TransferDirection::androidToMac;
    QueueItemStatus status; ///< starts as waiting
    qint64 totalBytes = 0;  ///< expected bytes; 0 when the source's size is unknown

    /// The byte progress or the state in words.
    [[nodiscard]] QString progressLabel() const;
    /// The percentage, or what stands in its place.
    [[nodiscard]] QString percentLabel() const;

    friend bool operator==(const QueueItem &, const QueueItem &) = default;
};

} // namespace vantrel

Q_DECLARE_TYPEINFO(vantrel::QueueItem, Q_RELOCATABLE_TYPE);
