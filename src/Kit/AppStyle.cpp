#include "Kit/AppStyle.h"

#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QApplication>
#include <QToolTip>

namespace vantrel {

namespace {

#ifdef Q_OS_MACOS
QString toolkitStyle() {
    return QStringLiteral("macos");
}
#else
/// The one that is always there and follows the palette.
QString toolkitStyle() {
    return QStringLiteral("fusion");
}
#endif

void applyTheme() {
    QApplication::setPalette(AppTheme::palette());
    QToolTip::setPalette(AppTheme::palette());
}

} // namespace

AppStyle::AppStyle(std::chrono::milliseconds toolTipDelay)
    : QProxyStyle(toolkitStyle()), m_toolTipDelay(toolTipDelay) {}

void AppStyle::install(QApplication &application, std::chrono::milliseconds toolTipDelay) {
    QApplication::setStyle(new AppStyle(toolTipDelay));
    QApplication::setFont(TextStyle{13}.font());
    QToolTip::setFont(TextStyle{11}.font());
    applyTheme();
    QObject::connect(&AppTheme::instance(), &AppTheme::schemeChanged, &application, applyTheme);
}

int AppStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                        QStyleHintReturn *returnData) const {
    if (hint == SH_ToolTip_WakeUpDelay)
        return static_cast<int>(m_toolTipDelay.count());
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

} // namespace vantrel
