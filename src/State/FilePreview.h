#pragma once

#include <QDateTime>
#include <QString>

#include <functional>
#include <stop_token>
#include <tl/expected.hpp>

/// Phone files that the user opens: fetched into the cache, each into a folder of its own. They are to be
/// looked at: what is written to one would not come to the phone, so nobody may.
namespace vantrel::FilePreview {

/// Where the fetched files live: "vantrelapp/previews" in the user's cache folder.
[[nodiscard]] QString cacheFolder();

/// The name of the folder inside cacheFolder() for a phone file: its path with "_" for "/".
[[nodiscard]] QString folderName(const QString &remotePath);

/// A phone file to be fetched.
struct Request {
    QString serial;
    QString path;    ///< on the phone
    QString name;    ///< that it gets here
    qint64 size = 0; ///< bytes; 0: not known
};

/// Copies a phone file into the cache, in place of an earlier copy, and gives the local path; fails with the
/// text that the user reads: when it does not fit, before anything is copied, and when a stop is requested.
/// The copy has that path only when it is whole; it is readable by the user alone and never executable, and
/// no link that someone planted in the cache leads it elsewhere. `onPercent` is told, on other threads, how
/// much of it has come. Blocks.
[[nodiscard]] tl::expected<QString, QString>
fetch(const Request &request, const std::function<void(int percent)> &onPercent, const std::stop_token &stop);

/// Removes from the cache what was fetched before that time and was not made writable since, and what dead
/// programs have left of their copies. Blocks. Gives how many files stay.
int sweep(const QDateTime &before);

} // namespace vantrel::FilePreview
