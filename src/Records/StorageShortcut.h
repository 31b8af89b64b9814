#pragma once

#include <QList>
#include <QString>
#include <QUuid>

namespace vantrel {

/// A sidebar entry that jumps to a folder of the phone.
struct StorageShortcut {
    QUuid id;
    QString title;       ///< shown in the sidebar
    QString path;        ///< phone folder that it opens
    QString systemImage; ///< name of the symbol beside the title

    friend bool operator==(const StorageShortcut &, const StorageShortcut &) = default;
};

namespace MockData {

/// The default shortcuts, built on first use; the identities stay the same for the life of the process.
[[nodiscard]] const QList<StorageShortcut> &shortcuts();

} // namespace MockData

} // namespace vantrel
