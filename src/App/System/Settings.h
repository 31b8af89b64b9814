#pragma once

#include "Theme/AppTheme.h"

#include <QSettings>
#include <QString>

#include <chrono>

namespace vantrel {

/// The few choices that outlive a start of the program. Whatever state the stored settings are in, there is
/// an answer: what is missing, unreadable or nonsense counts as not set, and a choice that cannot be stored
/// holds until the program ends. Main thread.
class Settings {
public:
    /// How long the mouse rests before a tool tip appears.
    static constexpr std::chrono::milliseconds toolTipDelay{250};

    /// The settings of the user.
    Settings();
    /// Those in a file of this path, in the INI format.
    explicit Settings(const QString &path);

    /// Only the stored text "dark" is dark.
    [[nodiscard]] ColorScheme appearancePreference() const;
    void setAppearancePreference(ColorScheme scheme);

    /// Stores toolTipDelay where the Mac's toolkit looks for it; elsewhere the program applies it itself.
    void storeToolTipDelay();

    /// What a double-click in the title bar does: "Minimize" or, for any other text, zoom. "Maximize" when
    /// not set. On the Mac this is the choice made in the system's own settings.
    [[nodiscard]] QString doubleClickAction() const;

    /// Whether the user wants no usage signals to be sent.
    [[nodiscard]] bool analyticsDisabled() const;

    /// Writes what has changed; otherwise that happens a moment later by itself. False when it could not be
    /// stored.
    bool save();

private:
    QSettings m_store;
};

} // namespace vantrel
