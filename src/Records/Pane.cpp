#include "Records/Pane.h"

namespace vantrel {

QString rawValue(PaneViewMode mode) {
    return mode == PaneViewMode::list ? QStringLiteral("list") : QStringLiteral("grid");
}

std::optional<PaneViewMode> paneViewModeFromRawValue(const QString &text) {
    for (const PaneViewMode mode : allPaneViewModes) {
        if (rawValue(mode) == text)
            return mode;
    }
    return std::nullopt;
}

} // namespace vantrel
