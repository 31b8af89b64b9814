#pragma once

#include <QColor>
#include <QPalette>

namespace vantrel {

enum class ColorScheme { light, dark };

/// How far inks and lines are from their grounds.
enum class Contrast { normal, high };

/// A named colour of the palette: a light and a dark value side by side, and perhaps stronger ones for those
/// who want more contrast. It becomes a QColor, the one of the current scheme and contrast, at the moment it
/// is used, so a widget that keeps a ThemeColor follows every change of them.
class [[nodiscard]] ThemeColor {
public:
    /// Fully transparent in both schemes: paints nothing.
    constexpr ThemeColor() = default;
    constexpr ThemeColor(QColor light, QColor dark)
        : m_light(light), m_dark(dark), m_strongLight(light), m_strongDark(dark) {}
    /// The same in both schemes.
    constexpr explicit ThemeColor(QColor fixed) : ThemeColor(fixed, fixed) {}

    /// The same colour, with these values in high contrast.
    [[nodiscard]] ThemeColor orStrong(QColor light, QColor dark) const {
        ThemeColor both = *this;
        both.m_strongLight = light;
        both.m_strongDark = dark;
        return both;
    }

    [[nodiscard]] QColor resolved(ColorScheme scheme, Contrast contrast = Contrast::normal) const {
        if (contrast == Contrast::high)
            return scheme == ColorScheme::dark ? m_strongDark : m_strongLight;
        return scheme == ColorScheme::dark ? m_dark : m_light;
    }
    /// The value of the current scheme and contrast.
    operator QColor() const; // NOLINT(google-explicit-constructor): painters take a ThemeColor as a QColor

    /// The same colour with its alpha multiplied by `opacity` (0 to 1).
    ThemeColor withOpacity(double opacity) const;

    friend bool operator==(const ThemeColor &, const ThemeColor &) = default;

private:
    QColor m_light{0, 0, 0, 0};
    QColor m_dark{0, 0, 0, 0};
    QColor m_strongLight{0, 0, 0, 0};
    QColor m_strongDark{0, 0, 0, 0};
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

    /// Normal until setContrast() says otherwise, which tells the widgets as setScheme() does.
    [[nodiscard]] static Contrast contrast();
    static void setContrast(Contrast contrast);

    // Each colour has its light value on the left and its dark one on the right.

    // Text and icons: primary, secondary, and captions, placeholders, section headers.
    static ThemeColor ink() {
        return ThemeColor(rgb(0.11, 0.11, 0.12), rgb(0.93, 0.93, 0.94)).orStrong(white(0), white(1));
    }
    static ThemeColor inkSecondary() {
        return ThemeColor(rgb(0.35, 0.36, 0.38), rgb(0.70, 0.71, 0.73)).orStrong(white(0.14), white(0.90));
    }
    static ThemeColor inkTertiary() {
        return ThemeColor(rgb(0.55, 0.56, 0.58), rgb(0.52, 0.53, 0.55)).orStrong(white(0.25), white(0.80));
    }

    // Backgrounds: sidebar and status bar, toolbar, browser column, cards and panes and small buttons.
    static ThemeColor sidebar() { return {rgb(0.93, 0.94, 0.96), rgb(0.13, 0.14, 0.15)}; }
    static ThemeColor titleBar() { return {rgb(0.88, 0.89, 0.92), rgb(0.17, 0.17, 0.19)}; }
    static ThemeColor canvas() { return {rgb(0.96, 0.96, 0.97), rgb(0.10, 0.10, 0.11)}; }
    static ThemeColor surface() { return {white(1), rgb(0.16, 0.16, 0.18)}; }

    // Lines: hairlines and card borders, stronger borders and empty tracks, pane borders.
    static ThemeColor stroke() {
        return ThemeColor(white(0, 0.08), white(1, 0.10)).orStrong(white(0, 0.50), white(1, 0.50));
    }
    static ThemeColor strokeStrong() {
        return ThemeColor(white(0, 0.12), white(1, 0.16)).orStrong(white(0, 0.60), white(1, 0.60));
    }
    static ThemeColor paneStroke() {
        return ThemeColor(white(0, 0.22), white(1, 0.22)).orStrong(white(0, 0.80), white(1, 0.80));
    }

    // Selection and meaning.
    static ThemeColor accent() { return ThemeColor(rgb(0.20, 0.48, 0.96)); }
    static ThemeColor accentSoft() {
        return ThemeColor(rgb(0.20, 0.48, 0.96, 0.12), rgb(0.35, 0.55, 0.98, 0.22))
            .orStrong(rgb(0.20, 0.48, 0.96, 0.25), rgb(0.35, 0.55, 0.98, 0.40));
    }
    static ThemeColor onAccent() { return ThemeColor(white(1)); } ///< glyphs on accent or deviceIcon
    static ThemeColor success() { return ThemeColor(rgb(0.20, 0.72, 0.40)); }
    static ThemeColor progress() { return ThemeColor(rgb(0.22, 0.72, 0.45)); }
    static ThemeColor danger() {
        return ThemeColor(rgb(0.86, 0.28, 0.28)).orStrong(rgb(0.68, 0.10, 0.12), rgb(1.00, 0.55, 0.55));
    }
    static ThemeColor focusRing() {
        return ThemeColor(rgb(0.20, 0.48, 0.96, 0.85), rgb(0.45, 0.64, 1.00, 0.90))
            .orStrong(rgb(0.00, 0.28, 0.80), rgb(0.70, 0.83, 1.00));
    }
    static ThemeColor dimming() { return {white(0, 0.18), white(0, 0.40)}; } ///< over a window with a sheet

    // Kinds of files.
    static ThemeColor folderBlue() { return ThemeColor(rgb(0.30, 0.56, 0.95)); }
    static ThemeColor systemPurple() { return {rgb(0.62, 0.33, 0.86), rgb(0.74, 0.48, 0.95)}; }
    static ThemeColor systemPink() { return {rgb(0.92, 0.26, 0.47), rgb(0.97, 0.40, 0.58)}; }
    static ThemeColor systemOrange() { return {rgb(0.93, 0.52, 0.08), rgb(0.98, 0.63, 0.24)}; }

    // The phone's picture in the sidebar: its gradient from the top-leading to the bottom-trailing corner.
    static ThemeColor deviceIconTop() { return ThemeColor(rgb(0.18, 0.20, 0.24)); }
    static ThemeColor deviceIconBottom() { return ThemeColor(rgb(0.10, 0.12, 0.15)); }

    /// The native title bar's colour for a scheme, whichever scheme is current.
    [[nodiscard]] static QColor titleBarNSColor(ColorScheme scheme) { return titleBar().resolved(scheme); }

    /// The palette for what the toolkit draws itself, such as text fields, menus and tool tips; current
    /// scheme.
    [[nodiscard]] static QPalette palette();

private:
    static QColor rgb(double red, double green, double blue, double alpha = 1) {
        return QColor::fromRgbF(float(red), float(green), float(blue), float(alpha));
    }
    static QColor white(double level, double alpha = 1) { return rgb(level, level, level, alpha); }
};

} // namespace vantrel
