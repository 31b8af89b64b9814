#include "App/AppStyle.h"

#include "App/AppTheme.h"
#include "App/Settings.h"
#include "Views/Kit/Shapes.h"
#include "Views/Kit/TextStyle.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionSlider>
#include <QToolTip>

#include <algorithm>

namespace vantrel {

namespace {

#ifdef Q_OS_MACOS
QString baseStyle() {
    return QStringLiteral("macos");
}
#else
/// The one that is always there and follows the palette.
QString baseStyle() {
    return QStringLiteral("fusion");
}

constexpr int scrollBarWidth = 12;
constexpr int thumbWidth = 6;
constexpr int shortestThumb = 32;

QRect thumbRect(const QStyleOptionSlider &bar) {
    const bool vertical = bar.orientation == Qt::Vertical;
    const int groove = vertical ? bar.rect.height() : bar.rect.width();
    const qint64 range = qint64(bar.maximum) - bar.minimum;
    int length = groove;
    if (range > 0)
        length = std::clamp(int(qint64(groove) * bar.pageStep / (range + bar.pageStep)),
                            std::min(shortestThumb, groove), groove);
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      groove - length, bar.upsideDown);
    return vertical ? QRect(bar.rect.left(), bar.rect.top() + start, bar.rect.width(), length)
                    : QRect(bar.rect.left() + start, bar.rect.top(), length, bar.rect.height());
}
#endif

void applyTheme() {
    QApplication::setPalette(AppTheme::palette());
    QToolTip::setPalette(AppTheme::palette());
}

} // namespace

AppStyle::AppStyle() : QProxyStyle(baseStyle()) {}

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

#ifndef Q_OS_MACOS

int AppStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const {
    switch (metric) {
    case PM_ScrollBarExtent:
        return scrollBarWidth;
    case PM_ScrollBarSliderMin:
        return shortestThumb;
    case PM_ScrollView_ScrollBarSpacing:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QRect AppStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                               const QWidget *widget) const {
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control != CC_ScrollBar || !bar)
        return QProxyStyle::subControlRect(control, option, part, widget);
    const QRect thumb = thumbRect(*bar);
    const QRect &groove = bar->rect;
    const bool vertical = bar->orientation == Qt::Vertical;
    switch (part) {
    case SC_ScrollBarGroove:
        return groove;
    case SC_ScrollBarSlider:
        return thumb;
    case SC_ScrollBarSubPage:
        return vertical ? QRect(groove.topLeft(), QPoint(groove.right(), thumb.top() - 1))
                        : QRect(groove.topLeft(), QPoint(thumb.left() - 1, groove.bottom()));
    case SC_ScrollBarAddPage:
        return vertical ? QRect(QPoint(groove.left(), thumb.bottom() + 1), groove.bottomRight())
                        : QRect(QPoint(thumb.right() + 1, groove.top()), groove.bottomRight());
    default:
        return {}; // no arrow buttons
    }
}

void AppStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                  QPainter *painter, const QWidget *widget) const {
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control != CC_ScrollBar || !bar) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    if (bar->maximum <= bar->minimum)
        return;
    constexpr double inset = (scrollBarWidth - thumbWidth) / 2.0;
    const QRectF thumb = QRectF(thumbRect(*bar)).adjusted(inset, inset, -inset, -inset);
    const bool pressed = bar->activeSubControls & SC_ScrollBarSlider && bar->state & State_Sunken;
    const bool pointedAt = bar->state & State_MouseOver;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillPath(capsule(thumb),
                      QColor(AppTheme::inkTertiary().withOpacity(pressed ? 0.95 : pointedAt ? 0.75 : 0.5)));
    painter->restore();
}

#endif

} // namespace vantrel
