#pragma once

#include <QString>

namespace vantrel {

/// What texts call the computer that the program runs on.
inline QString thisComputer() {
#ifdef Q_OS_MACOS
    return QStringLiteral("Mac");
#else
    return QStringLiteral("Computer");
#endif
}

/// What the command is called that shows a file in the desktop's file manager.
inline QString revealTitle() {
#ifdef Q_OS_MACOS
    return QStringLiteral("Reveal in Finder");
#else
    return QStringLiteral("Show in Files");
#endif
}

} // namespace vantrel
