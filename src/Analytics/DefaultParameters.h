#pragma once

#include "Analytics/SignalPostBody.h"

#include <QDateTime>
#include <QStringList>

namespace vantrel {

/// What the application tells about itself and its screen; this library sees neither.
struct ApplicationFacts {
    enum class ColorScheme { light, dark };

    QString version;
    QString buildNumber;
    double screenWidth = 0; ///< of the main screen, in layout pixels
    double screenHeight = 0;
    double screenScaleFactor = 1;
    ColorScheme colorScheme = ColorScheme::light;
    Qt::LayoutDirection layoutDirection = Qt::LeftToRight;
};

/// The parameters that every signal carries, but for those of the session statistics. `now` is in UTC. Main
/// thread.
[[nodiscard]] SignalParameters defaultSignalParameters(const ApplicationFacts &facts, const QDateTime &now);

/// Names that the client uses itself, in lower case: signals and parameters should have others.
[[nodiscard]] const QStringList &reservedNames();

} // namespace vantrel
