#pragma once

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

namespace vantrel {

/// One file or folder of either pane, or one search hit. A plain value; two records made from the same
/// listing line differ, because each gets an identity of its own.
struct FileItem {
    QUuid id;                            ///< fresh random identity; selections hold these
    QString name;                        ///< last path component as shown
    QString path;                        ///< full path, on the phone or on the computer
    bool isDirectory = false;            ///< true for folders; never for symbolic links
    std::optional<qint64> sizeBytes;     ///< bytes; absent where the producer could not tell (folders)
    std::optional<qint64> itemCount;     ///< entries inside a folder, where known
    std::optional<QDateTime> modifiedAt; ///< last modification; absent where unknown
    /// False for a phone's name that is no text: U+FFFD stands in the path for what it holds, and nothing on
    /// the phone answers to it.
    bool isNameExact = true;

    /// The size column: a file's size, "N items" for a folder whose count is known, else "—"; "0 B" for a
    /// file of unknown size.
    [[nodiscard]] QString sizeLabel() const;
    /// The date column, for example "May 1, 2024" in the user's locale and time zone; "—" when unknown.
    [[nodiscard]] QString modifiedLabel() const;

    friend bool operator==(const FileItem &, const FileItem &) = default;
};

[[nodiscard]] size_t qHash(const FileItem &item, size_t seed = 0) noexcept;

} // namespace vantrel

Q_DECLARE_TYPEINFO(vantrel::FileItem, Q_RELOCATABLE_TYPE);
