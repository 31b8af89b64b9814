#pragma once

#include <QString>

#include <tl/expected.hpp>

/// Phone files that the user opens: fetched into the cache, each into a folder of its own.
namespace vantrel::FilePreview {

/// Where the fetched files live: "vantrelapp/previews" in the user's cache folder.
[[nodiscard]] QString cacheFolder();

/// The name of the folder inside cacheFolder() for a phone file: its path with "_" for "/".
[[nodiscard]] QString folderName(const QString &remotePath);

/// Copies a phone file into the cache, in place of an earlier copy, and gives the local path; fails with the
/// text that the user reads. The copy is readable by the user alone and never executable, and no link that
/// someone planted in the cache leads it elsewhere. Blocks.
[[nodiscard]] tl::expected<QString, QString> fetch(const QString &serial, const QString &remotePath,
                                                   const QString &name);

} // namespace vantrel::FilePreview
