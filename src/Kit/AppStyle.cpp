#include "Kit/AppStyle.h"

#include "Kit/Shapes.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>
#include <QToolTip>
#include <QtMath>

#include <algorithm>

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

constexpr int animationDuration = 180; // milliseconds
bool reducedMotion = false;

// -- Scroll bars

constexpr int scrollBarWidth = 10;
constexpr int scrollBarMargin = 2;
constexpr int shortestThumb = 28;

/// A rectangle of a scroll bar with its ends cut off: `from` to `to` along the bar, its whole width across.
QRectF sliceOf(const QStyleOptionSlider &bar, double from, double to) {
    const QRectF all(bar.rect);
    return bar.orientation == Qt::Horizontal ? QRectF(all.left() + from, all.top(), to - from, all.height())
                                             : QRectF(all.left(), all.top() + from, all.width(), to - from);
}

/// Where the parts of a scroll bar end, in layout pixels from its beginning.
struct ScrollBarParts {
    explicit ScrollBarParts(const QStyleOptionSlider &bar) {
        end = (bar.orientation == Qt::Horizontal ? bar.rect.width() : bar.rect.height()) - scrollBarMargin;
        const double room = end - scrollBarMargin;
        const double steps = std::max(1.0, double(bar.maximum) - bar.minimum);
        const double proportional = room * bar.pageStep / (steps + bar.pageStep);
        const double length = std::min(room, std::max<double>(shortestThumb, proportional));
        thumb = scrollBarMargin + (room - length) * (double(bar.sliderPosition) - bar.minimum) / steps;
        thumbEnd = thumb + length;
    }

    double thumb = 0, thumbEnd = 0, end = 0;
};

void paintScrollBar(QPainter &painter, const QStyleOptionSlider &bar) {
    const bool held = bar.state & QStyle::State_Sunken && bar.activeSubControls == QStyle::SC_ScrollBarSlider;
    const ScrollBarParts parts(bar);
    constexpr double margin = scrollBarMargin;
    const QRectF slice = sliceOf(bar, parts.thumb, parts.thumbEnd);
    const QRectF thumb = bar.orientation == Qt::Horizontal ? slice.adjusted(0, margin, 0, -margin)
                                                           : slice.adjusted(margin, 0, -margin, 0);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(capsule(thumb), QColor(AppTheme::inkTertiary().withOpacity(held ? 0.8 : 0.5)));
    painter.restore();
}

// -- Progress

void paintSpokes(QPainter &painter, const QRectF &rect, int step) {
    constexpr int spokes = 8;
    const double radius = std::min(rect.width(), rect.height()) / 2;
    const double thickness = radius / 4;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.center());
    painter.rotate(step * 360.0 / spokes);
    for (int spoke = 0; spoke < spokes; ++spoke) {
        const double strength = 0.2 + 0.8 * spoke / (spokes - 1);
        const QColor color = AppTheme::inkSecondary().withOpacity(strength);
        painter.setPen(QPen(color, thickness, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius + thickness / 2));
        painter.rotate(360.0 / spokes);
    }
    painter.restore();
}

void paintProgressBar(QPainter &painter, const QStyleOptionProgressBar &bar) {
    const double steps = double(bar.maximum) - bar.minimum;
    if (steps > 0)
        paintProgress(painter, bar.rect, (bar.progress - bar.minimum) / steps, AppTheme::accent(),
                      AppTheme::strokeStrong());
    else
        paintSpokes(painter, bar.rect, bar.progress);
}

// -- Push buttons

constexpr double buttonRadius = 6;
constexpr double linkRadius = 4;

bool isLink(const QStyleOptionButton &button) {
    return button.features & QStyleOptionButton::Flat;
}

TextStyle textStyle(const QStyleOptionButton &button) {
    return {.size = isLink(button) ? 12.0 : 13.0, .weight = Weight::medium};
}

/// Without the sign of the letter that a dialog of the toolkit reaches it by.
QString title(const QStyleOptionButton &button) {
    return QString(button.text).remove(u'&');
}

QSize pushButtonSize(const QStyleOptionButton &button) {
    constexpr int minimumWidth = 84;
    constexpr int height = 28;
    constexpr int padding = 16;
    constexpr int margins = 2 * AppStyle::linkMargin;
    const TextStyle style = textStyle(button);
    const int textWidth = qCeil(style.width(title(button)));
    return isLink(button) ? QSize(textWidth + margins, style.lineHeight() + margins)
                          : QSize(std::max(minimumWidth, textWidth + 2 * padding), height);
}

void paintPushButton(QPainter &painter, const QStyleOptionButton &button) {
    const QRectF rect = button.rect;
    const bool isDown = button.state & QStyle::State_Sunken;
    const bool isDefault = button.features & QStyleOptionButton::DefaultButton;
    QColor text = !(button.state & QStyle::State_Enabled) ? AppTheme::inkTertiary()
                  : isDefault                             ? AppTheme::onAccent()
                                                          : AppTheme::ink();
    if (isLink(button)) {
        text = AppTheme::accent().withOpacity(isDown ? 0.7 : 1);
        if (button.state & QStyle::State_MouseOver)
            painter.fillRect(QRectF(AppStyle::linkMargin, rect.bottom() - AppStyle::linkMargin - 1.5,
                                    rect.width() - 2 * AppStyle::linkMargin, hairline),
                             text);
    } else {
        const QColor fill = isDefault ? AppTheme::accent() : AppTheme::surface();
        paintCard(painter, rect, buttonRadius, isDown ? fill.darker(112) : fill,
                  isDefault ? ThemeColor() : AppTheme::paneStroke());
    }
    paintText(painter, rect, title(button), textStyle(button), text, Qt::AlignCenter);
    if (button.state & QStyle::State_HasFocus)
        paintFocusRing(painter, rect, isLink(button) ? linkRadius : buttonRadius);
}

} // namespace

AppStyle::AppStyle(std::chrono::milliseconds toolTipDelay)
    : QProxyStyle(toolkitStyle()), m_toolTipDelay(toolTipDelay) {}

void AppStyle::install(QApplication &, std::chrono::milliseconds toolTipDelay) {
    QApplication::setStyle(new AppStyle(toolTipDelay));
    QApplication::setFont(TextStyle{13}.font());
    QApplication::setPalette(AppTheme::palette());
    QToolTip::setFont(TextStyle{11}.font());
    QToolTip::setPalette({}); // the desktop's own would stay when the scheme changes
}

void AppStyle::setReducedMotion(bool reduced) {
    reducedMotion = reduced;
}

void AppStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                           const QWidget *widget) const {
    const auto *bar = qstyleoption_cast<const QStyleOptionProgressBar *>(option);
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
    if (element == CE_ProgressBar && bar)
        paintProgressBar(*painter, *bar);
    else if (element == CE_PushButton && button)
        paintPushButton(*painter, *button);
    else
        QProxyStyle::drawControl(element, option, painter, widget);
}

void AppStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                  QPainter *painter, const QWidget *widget) const {
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control == CC_ScrollBar && bar)
        paintScrollBar(*painter, *bar);
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect AppStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                               const QWidget *widget) const {
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control != CC_ScrollBar || !bar)
        return QProxyStyle::subControlRect(control, option, part, widget);
    const ScrollBarParts parts(*bar);
    switch (part) {
    case SC_ScrollBarSubPage:
        return sliceOf(*bar, scrollBarMargin, parts.thumb).toRect();
    case SC_ScrollBarSlider:
        return sliceOf(*bar, parts.thumb, parts.thumbEnd).toRect();
    case SC_ScrollBarAddPage:
        return sliceOf(*bar, parts.thumbEnd, parts.end).toRect();
    case SC_ScrollBarGroove:
        return sliceOf(*bar, scrollBarMargin, parts.end).toRect();
    default:
        return {}; // it has no arrows
    }
}

QSize AppStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                                 const QWidget *widget) const {
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
    return type == CT_PushButton && button ? pushButtonSize(*button)
                                           : QProxyStyle::sizeFromContents(type, option, size, widget);
}

int AppStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const {
    switch (metric) {
    case PM_ScrollBarExtent:
    case PM_ScrollView_ScrollBarOverlap:
        return scrollBarWidth;
    case PM_ScrollBarSliderMin:
        return shortestThumb;
    case PM_ScrollView_ScrollBarSpacing:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int AppStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                        QStyleHintReturn *returnData) const {
    switch (hint) {
    case SH_ToolTip_WakeUpDelay:
        return static_cast<int>(m_toolTipDelay.count());
    case SH_Widget_Animation_Duration:
        return reducedMotion ? 0 : animationDuration;
    case SH_ScrollBar_ContextMenu:
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

} // namespace vantrel
