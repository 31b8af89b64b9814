#pragma once

#include <QString>
#include <QStringList>

/// Pure functions on paths of the phone; any thread.
namespace vantrel::AndroidPath {

/// The breadcrumb of a phone path: "/sdcard" and "/storage/emulated/0" show as "Internal Storage". Never
/// empty.
[[nodiscard]] QStringList segments(const QString &path);
/// The breadcrumb in one line, its segments joined by " › ".
[[nodiscard]] QString breadcrumb(const QString &path);

/// The card or stick that a path lies on, as "/storage/1A2B-3C4D"; empty for any other path.
[[nodiscard]] QString cardOf(const QString &path);

/// The last component of a path; empty for "/".
[[nodiscard]] QString lastComponent(const QString &path);
/// A folder's path and the name of an entry in it, joined by exactly one "/".
[[nodiscard]] QString join(const QString &folder, const QString &name);

/// The text in single quotes for the phone's shell; a quote inside becomes '\''. Nothing else is special
/// there, so whatever a name holds, the shell reads it as one word.
[[nodiscard]] QString quotedForShell(const QString &text);

/// Whether a name reported by the phone may become the name of a file here: one path component that is not
/// empty,
/// "." or "..", without a NUL. A phone that answers "../../.ssh/authorized_keys" must not choose where a copy
/// lands.
[[nodiscard]] bool isSafeName(const QString &name);

} // namespace vantrel::AndroidPath
