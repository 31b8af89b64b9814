#pragma once

#include "Records/FileItem.h"
#include "Records/Pane.h"
#include "Records/PhotoFacts.h"

#include <QCoroTask>
#include <QList>
#include <QObject>

#include <optional>
#include <stop_token>

namespace vantrel {

/// What lies below some folders.
struct FolderContents {
    qint64 files = 0;
    qint64 folders = 0; ///< without those that were asked about
    qint64 bytes = 0;   ///< of the files
    qint64 unreadable = 0;
    bool isWhole = true; ///< false: there is more than was counted

    friend bool operator==(const FolderContents &, const FolderContents &) = default;
};

/// All that is known of some entries of a pane. What a row does not tell is found out on a worker, for as
/// long as this lives: the exact dates, the kind, and what folders hold. Main thread.
class Details : public QObject {
    Q_OBJECT

public:
    /// A fact as the user reads it.
    struct Fact {
        QString label;
        QString value;
        friend bool operator==(const Fact &, const Fact &) = default;
    };
    /// The phone that the entries are on.
    struct Phone {
        QString serial;
        QString name;
    };

    /// Entries of one folder or hits of a search, at least one. Without a phone they are this computer's.
    /// Begins to find out; `readPhoto` reads pictures, where there is one to read.
    Details(const QList<FileItem> &items, const std::optional<Phone> &phone, ReadPhotoFacts readPhoto = {});
    ~Details() override;

    /// The name of the one entry, or how many there are.
    [[nodiscard]] QString title() const;
    [[nodiscard]] const QList<FileItem> &items() const { return m_items; }
    /// Always the same ones, in the order in which they are read; what is not known has no value.
    [[nodiscard]] QList<Fact> facts() const;
    /// Why something could not be found out, in words; empty when nothing failed.
    [[nodiscard]] const QString &problem() const { return m_problem; }
    /// Whether folders are still being counted.
    [[nodiscard]] bool isCounting() const { return m_isCounting; }
    /// Everything as lines of text.
    [[nodiscard]] QString text() const;

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<> learn();
    [[nodiscard]] QStringList folders() const;
    [[nodiscard]] QString place() const;

    const QList<FileItem> m_items;
    const std::optional<Phone> m_phone;
    const ReadPhotoFacts m_readPhoto;
    std::stop_source m_stop;
    QString m_kind;
    QString m_linkTarget;
    std::optional<QDateTime> m_modified;
    std::optional<QDateTime> m_created;
    PhotoFacts m_photo;
    std::optional<FolderContents> m_contents;
    QString m_problem;
    bool m_isCounting = false;
};

} // namespace vantrel
