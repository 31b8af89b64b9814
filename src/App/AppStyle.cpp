#include "App/AppStyle.h"

#include "App/AppTheme.h"
#include "App/Settings.h"
#include "Views/Kit/TextStyle.h"

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

AppStyle::AppStyle() : QProxyStyle(toolkitStyle()) {}

void AppStyle::install(QApplication &application) {
    QApplication::setStyle(new AppStyle);
    QApplication::setFont(TextStyle{13}.font());
    QToolTip::setFont(TextStyle{11}.font());
    applyTheme();
    QObject::connect(&AppTheme::instance(), &AppTheme::schemeChanged, &application, applyTheme);
}

int AppStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                        QStyleHintReturn *returnData) const {
    if (hint == SH_ToolTip_WakeUpDelay)
        return Settings::toolTipDelay;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

} // namespace vantrel
