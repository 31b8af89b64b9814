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

} // namespace vantrel
