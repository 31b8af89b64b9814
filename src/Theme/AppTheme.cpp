#include "Theme/AppTheme.h"

#include <QGuiApplication>

#include <utility>
#include <vector>

namespace vantrel {

namespace {
ColorScheme currentScheme = ColorScheme::light;
Contrast currentContrast = Contrast::normal;
} // namespace

ThemeColor::operator QColor() const {
    return resolved(AppTheme::scheme(), AppTheme::contrast());
}

ThemeColor ThemeColor::withOpacity(double opacity) const {
    ThemeColor faded = *this;
    for (QColor *color : {&faded.m_light, &faded.m_dark, &faded.m_strongLight, &faded.m_strongDark})
        color->setAlphaF(color->alphaF() * float(opacity));
    return faded;
}

ColorScheme AppTheme::scheme() {
    return currentScheme;
}

void AppTheme::setScheme(ColorScheme scheme) {
    if (std::exchange(currentScheme, scheme) != scheme)
        QGuiApplication::setPalette(palette());
}

Contrast AppTheme::contrast() {
    return currentContrast;
}

void AppTheme::setContrast(Contrast contrast) {
    if (std::exchange(currentContrast, contrast) != contrast)
        QGuiApplication::setPalette(palette());
}

QPalette AppTheme::palette() {
    using Role = QPalette::ColorRole;
    const std::pair<QColor, std::vector<Role>> roles[] = {
        {surface(), {Role::Window, Role::Base, Role::Button, Role::ToolTipBase}},
        {ink(), {Role::WindowText, Role::Text, Role::ButtonText, Role::ToolTipText}},
        {canvas(), {Role::AlternateBase}},
        {inkTertiary(), {Role::PlaceholderText}},
        {accent(), {Role::Highlight, Role::Link, Role::LinkVisited}},
        {onAccent(), {Role::HighlightedText}},
        // The bevels of the stock style are shades of these.
        {surface(), {Role::Light}},
        {canvas(), {Role::Midlight}},
        {inkTertiary(), {Role::Mid, Role::Dark}},
    };
    QPalette palette;
    for (const auto &[color, group] : roles) {
        for (const Role role : group)
            palette.setColor(role, color);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, inkTertiary());
    return palette;
}

} // namespace vantrel
