#include "Theme/AppTheme.h"

#include <QGuiApplication>

#include <utility>

namespace vantrel {

namespace {
ColorScheme currentScheme = ColorScheme::light;
} // namespace

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
