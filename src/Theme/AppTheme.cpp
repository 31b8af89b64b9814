#include "Theme/AppTheme.h"

#include <QGuiApplication>

#include <utility>

namespace vantrel {

namespace {

ColorScheme currentScheme = ColorScheme::light;

QColor rgb(float red, float green, float blue, float alpha = 1) {
    return QColor::fromRgbF(red, green, blue, alpha);
}

QColor white(float level, float alpha = 1) {
    return rgb(level, level, level, alpha);
}

} // namespace

QColor ThemeColor::resolved(ColorScheme scheme) const {
    return scheme == ColorScheme::dark ? m_dark : m_light;
}

ThemeColor::operator QColor() const {
    return resolved(AppTheme::scheme());
}

ThemeColor ThemeColor::withOpacity(double opacity) const {
    ThemeColor faded = *this;
    faded.m_light.setAlphaF(m_light.alphaF() * float(opacity));
    faded.m_dark.setAlphaF(m_dark.alphaF() * float(opacity));
    return faded;
}

ColorScheme AppTheme::scheme() {
    return currentScheme;
}

void AppTheme::setScheme(ColorScheme scheme) {
    if (std::exchange(currentScheme, scheme) != scheme)
        QGuiApplication::setPalette(palette());
}

// clang-format off: light on the left, dark on the right
ThemeColor AppTheme::ink() {
    return {rgb(0.11f, 0.11f, 0.12f), rgb(0.93f, 0.93f, 0.94f)};
}
ThemeColor AppTheme::inkSecondary() {
    return {rgb(0.35f, 0.36f, 0.38f), rgb(0.70f, 0.71f, 0.73f)};
}
ThemeColor AppTheme::inkTertiary() {
    return {rgb(0.55f, 0.56f, 0.58f), rgb(0.52f, 0.53f, 0.55f)};
}
ThemeColor AppTheme::sidebar() {
    return {rgb(0.93f, 0.94f, 0.96f), rgb(0.13f, 0.14f, 0.15f)};
}
ThemeColor AppTheme::titleBar() {
    return {rgb(0.88f, 0.89f, 0.92f), rgb(0.17f, 0.17f, 0.19f)};
}
ThemeColor AppTheme::canvas() {
    return {rgb(0.96f, 0.96f, 0.97f), rgb(0.10f, 0.10f, 0.11f)};
}
ThemeColor AppTheme::surface() {
    return {white(1), rgb(0.16f, 0.16f, 0.18f)};
}
ThemeColor AppTheme::stroke() {
    return {white(0, 0.08f), white(1, 0.10f)};
}
ThemeColor AppTheme::strokeStrong() {
    return {white(0, 0.12f), white(1, 0.16f)};
}
ThemeColor AppTheme::paneStroke() {
    return {white(0, 0.22f), white(1, 0.22f)};
}
ThemeColor AppTheme::accentSoft() {
    return {rgb(0.20f, 0.48f, 0.96f, 0.12f), rgb(0.35f, 0.55f, 0.98f, 0.22f)};
}
ThemeColor AppTheme::systemPurple() {
    return {rgb(0.62f, 0.33f, 0.86f), rgb(0.74f, 0.48f, 0.95f)};
}
ThemeColor AppTheme::systemPink() {
    return {rgb(0.92f, 0.26f, 0.47f), rgb(0.97f, 0.40f, 0.58f)};
}
ThemeColor AppTheme::systemOrange() {
    return {rgb(0.93f, 0.52f, 0.08f), rgb(0.98f, 0.63f, 0.24f)};
}
ThemeColor AppTheme::focusRing() {
    return {rgb(0.20f, 0.48f, 0.96f, 0.85f), rgb(0.45f, 0.64f, 1.00f, 0.90f)};
}
ThemeColor AppTheme::dimming() {
    return {white(0, 0.18f), white(0, 0.40f)};
}

ThemeColor AppTheme::accent() {
    return ThemeColor(rgb(0.20f, 0.48f, 0.96f));
}
ThemeColor AppTheme::onAccent() {
    return ThemeColor(white(1));
}
ThemeColor AppTheme::success() {
    return ThemeColor(rgb(0.20f, 0.72f, 0.40f));
}
ThemeColor AppTheme::progress() {
    return ThemeColor(rgb(0.22f, 0.72f, 0.45f));
}
ThemeColor AppTheme::danger() {
    return ThemeColor(rgb(0.86f, 0.28f, 0.28f));
}
ThemeColor AppTheme::folderBlue() {
    return ThemeColor(rgb(0.30f, 0.56f, 0.95f));
}

ThemeColor AppTheme::deviceIconTop() {
    return ThemeColor(rgb(0.18f, 0.20f, 0.24f));
}
ThemeColor AppTheme::deviceIconBottom() {
    return ThemeColor(rgb(0.10f, 0.12f, 0.15f));
}
// clang-format on

QColor AppTheme::titleBarNSColor(ColorScheme scheme) {
    return titleBar().resolved(scheme);
}

QPalette AppTheme::palette() {
    QPalette palette;
    palette.setColor(QPalette::Window, surface());
    palette.setColor(QPalette::WindowText, ink());
    palette.setColor(QPalette::Base, surface());
    palette.setColor(QPalette::AlternateBase, canvas());
    palette.setColor(QPalette::Text, ink());
    palette.setColor(QPalette::PlaceholderText, inkTertiary());
    palette.setColor(QPalette::Button, surface());
    palette.setColor(QPalette::ButtonText, ink());
    palette.setColor(QPalette::ToolTipBase, surface());
    palette.setColor(QPalette::ToolTipText, ink());
    palette.setColor(QPalette::Highlight, accent());
    palette.setColor(QPalette::HighlightedText, onAccent());
    palette.setColor(QPalette::Link, accent());
    palette.setColor(QPalette::LinkVisited, accent());
    // The bevels of the stock style are shades of these.
    palette.setColor(QPalette::Light, surface());
    palette.setColor(QPalette::Midlight, canvas());
    palette.setColor(QPalette::Mid, inkTertiary());
    palette.setColor(QPalette::Dark, inkTertiary());
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, inkTertiary());
    return palette;
}

} // namespace vantrel
