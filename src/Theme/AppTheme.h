#pragma once

#include <QColor>
#include <QPalette>

namespace vantrel {

enum class ColorScheme { light, dark };

/// A named colour of the palette: a light and a dark value side by side. It becomes a QColor, the one of the
/// current scheme, at the moment it is used, so a widget that keeps a ThemeColor follows every change of the
/// scheme.
class ThemeColor {
public:
    /// Fully transparent in both schemes: paints nothing.
    constexpr ThemeColor() = default;
    constexpr ThemeColor(QColor light, QColor dark) : m_light(light), m_dark(dark) {}
    /// The same in both schemes.
    constexpr explicit ThemeColor(QColor fixed) : ThemeColor(fixed, fixed) {}

    [[nodiscard]] QColor resolved(ColorScheme scheme) const;
    /// The value of the current scheme.
    operator QColor() const; // NOLINT(google-explicit-constructor): painters take a ThemeColor as a QColor

    /// The same colour with its alpha multiplied by `opacity` (0 to 1).
    [[nodiscard]] ThemeColor withOpacity(double opacity) const;

    friend bool operator==(const ThemeColor &, const ThemeColor &) = default;

private:
    QColor m_light{0, 0, 0, 0};
    QColor m_dark{0, 0, 0, 0};
};

/// The palette of the application and its current scheme. Views take every colour from here; main thread
/// only.
class AppTheme {
public:
    AppTheme() = delete;

    /// Light until setScheme() says otherwise.
    [[nodiscard]] static ColorScheme scheme();
    /// Changes the scheme and with it the application's palette: the toolkit tells every widget in the
    /// next pass of the event loop, and it repaints.
    static void setScheme(ColorScheme scheme);

    // Text and icons: primary, secondary, and captions, placeholders, section headers.
    [[nodiscard]] static ThemeColor ink();
    [[nodiscard]] static ThemeColor inkSecondary();
    [[nodiscard]] static ThemeColor inkTertiary();

    // Backgrounds: sidebar and status bar, toolbar, browser column, cards and panes and small buttons.
    [[nodiscard]] static ThemeColor sidebar();
    [[nodiscard]] static ThemeColor titleBar();
    [[nodiscard]] static ThemeColor canvas();
    [[nodiscard]] static ThemeColor surface();

    // Lines: hairlines and card borders, stronger borders and empty tracks, pane borders.
    [[nodiscard]] static ThemeColor stroke();
    [[nodiscard]] static ThemeColor strokeStrong();
    [[nodiscard]] static ThemeColor paneStroke();

    // Selection and meaning.
    [[nodiscard]] static ThemeColor accent();
    [[nodiscard]] static ThemeColor accentSoft();
    [[nodiscard]] static ThemeColor onAccent(); ///< glyphs on an accent or device-icon background
    [[nodiscard]] static ThemeColor success();
    [[nodiscard]] static ThemeColor progress();
    [[nodiscard]] static ThemeColor danger();
    [[nodiscard]] static ThemeColor focusRing();
    [[nodiscard]] static ThemeColor dimming(); ///< over a window behind its sheet

    // Kinds of files.
    [[nodiscard]] static ThemeColor folderBlue();
    [[nodiscard]] static ThemeColor systemPurple();
    [[nodiscard]] static ThemeColor systemPink();
    [[nodiscard]] static ThemeColor systemOrange();

    // The phone's picture in the sidebar: its gradient from the top-leading to the bottom-trailing corner.
    [[nodiscard]] static ThemeColor deviceIconTop();
    [[nodiscard]] static ThemeColor deviceIconBottom();

    /// The native title bar's colour for a scheme, whichever scheme is current.
    [[nodiscard]] static QColor titleBarNSColor(ColorScheme scheme);

    /// The palette for what the toolkit draws itself, such as text fields, menus and tool tips; current
    /// scheme.
    [[nodiscard]] static QPalette palette();
};

} // namespace vantrel
