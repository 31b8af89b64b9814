#pragma once

#include <QString>

namespace vantrel {

/// The hidden names under which copies arrive before they are whole: ".vantrel-USER-PROGRAM-NUMBER.part".
/// USER stands for one user of one computer, PROGRAM for one run of the program, which holds a lock of that
/// name for as long as it lives: so a program that died is told from one that works, whatever became of its
/// process number. Any thread.
namespace StagedName {

/// How every name of this user on this computer begins; letters, digits, "." and "-".
[[nodiscard]] QString prefix();
/// A name that has never been given before, in use until it is released. 48 bytes, whatever the copied file
/// is called.
[[nodiscard]] QString make();
/// What bears the name is of no use any more, and gone unless its phone is.
void release(const QString &name);
/// Whether the name has the form of anybody's staged copy. Such a thing is never copied itself.
[[nodiscard]] bool isStaged(const QString &name);
/// Whether the name is this user's on this computer, and the program that gave it has ended: what bears it
/// may be removed.
[[nodiscard]] bool isLeftOver(const QString &name);

} // namespace StagedName

} // namespace vantrel
