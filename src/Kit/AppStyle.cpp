#include "Kit/AppStyle.h"

#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Kit/TextStyle.h"
#include "Kit/ToolTips.h"
#include "Kit/WindowFrame.h"
#include "Theme/AppTheme.h"

#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QPainter>
#include <QStyleOption>
#include <QToolTip>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <utility>

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

// -- Sliders

constexpr int sliderHandle = 12;

QRect handleOf(const QStyleOptionSlider &slider) {
    const int place = QStyle::sliderPositionFromValue(slider.minimum, slider.maximum, slider.sliderPosition,
                                                      slider.rect.width() - sliderHandle, slider.upsideDown);
    return {slider.rect.left() + place, slider.rect.top() + (slider.rect.height() - sliderHandle) / 2,
            sliderHandle, sliderHandle};
}

/// Lying ones, which are all that there are.
void paintSlider(QPainter &painter, const QStyleOptionSlider &slider) {
    constexpr double thickness = 3;
    const QRectF handle = handleOf(slider);
    const QRectF groove(slider.rect.left() + 1, handle.center().y() - thickness / 2, slider.rect.width() - 2,
                        thickness);
    const double done = (handle.center().x() - groove.left()) / groove.width();
    paintProgress(painter, groove, slider.upsideDown ? 1 - done : done, AppTheme::inkTertiary(),
                  AppTheme::strokeStrong());
    const bool isHeld = slider.state & QStyle::State_Sunken;
    paintCard(painter, handle, sliderHandle / 2.0, AppTheme::surface(),
              isHeld ? AppTheme::accent() : AppTheme::inkTertiary(), 1.5);
    if (slider.state & QStyle::State_HasFocus && slider.state & QStyle::State_KeyboardFocusChange)
        paintFocusRing(painter, slider.rect, 6);
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
    constexpr int leastHeight = 28;
    constexpr int aboveAndBelow = 5;
    constexpr int padding = 16;
    constexpr int margins = 2 * AppStyle::linkMargin;
    const TextStyle style = textStyle(button);
    const int textWidth = qCeil(style.width(title(button)));
    return isLink(button) ? QSize(textWidth + margins, style.lineHeight() + margins)
                          : QSize(std::max(minimumWidth, textWidth + 2 * padding),
                                  std::max(leastHeight, style.lineHeight() + 2 * aboveAndBelow));
}

void paintPushButton(QPainter &painter, const QStyleOptionButton &button) {
    const QRectF rect = button.rect;
    const bool isDown = button.state & QStyle::State_Sunken;
    const bool isEnabled = button.state & QStyle::State_Enabled;
    const bool isDefault = isEnabled && button.features & QStyleOptionButton::DefaultButton;
    QColor text = !isEnabled ? AppTheme::inkTertiary() : isDefault ? AppTheme::onAccent() : AppTheme::ink();
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

// -- Menus and pop-ups

constexpr int menuMargin = 5;
constexpr double menuRadius = 8;
constexpr double menuItemRadius = 5;
constexpr int menuItemPadding = 10;
constexpr int tickWidth = 18;
constexpr int leastMenuItemHeight = 26;
constexpr int menuSeparatorHeight = 9;

bool isPopUp(const QWidget *widget) {
    return qobject_cast<const QMenu *>(widget) || (widget && widget->inherits("QComboBoxPrivateContainer"));
}

/// As the control that it belongs to.
TextStyle menuStyle(const QWidget *widget) {
    return {.size = qobject_cast<const QComboBox *>(widget) ? 11.5 : 12.5, .weight = Weight::medium};
}

bool isSeparator(const QStyleOptionMenuItem &item) {
    return item.menuItemType == QStyleOptionMenuItem::Separator;
}

/// What an item says, and the keys that do the same.
std::pair<QString, QString> menuTexts(const QStyleOptionMenuItem &item) {
    const QString text = QString(item.text).remove(u'&');
    return {text.section(u'\t', 0, 0), text.section(u'\t', 1)};
}

void paintMenuPanel(QPainter &painter, const QRectF &rect, const QWidget *widget) {
    const bool isRound = widget && widget->testAttribute(Qt::WA_TranslucentBackground);
    paintCard(painter, rect, isRound ? menuRadius : 0, AppTheme::surface(), AppTheme::paneStroke());
}

void paintTick(QPainter &painter, const QPointF &centre, const QColor &color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(centre);
    painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{{-3.5, 0.5}, {-1, 3}, {3.5, -3}});
    painter.restore();
}

void paintMenuItem(QPainter &painter, const QStyleOptionMenuItem &item, const QWidget *widget) {
    const int inset = qobject_cast<const QComboBox *>(widget) ? menuMargin : 0; // its list has no margins
    const QRectF rect = item.rect.adjusted(inset, 0, -inset, 0);
    if (isSeparator(item)) {
        fillLine(painter, {rect.left() + 4, std::floor(rect.center().y()), rect.width() - 8, hairline},
                 AppTheme::stroke());
        return;
    }
    const bool isEnabled = item.state & QStyle::State_Enabled;
    const bool isPointedAt = isEnabled && item.state & QStyle::State_Selected;
    if (isPointedAt)
        paintCard(painter, rect, menuItemRadius, AppTheme::accent(), ThemeColor());
    const QColor ink = isPointedAt ? AppTheme::onAccent()
                       : isEnabled ? AppTheme::ink()
                                   : AppTheme::inkTertiary();
    QRectF text = rect.adjusted(menuItemPadding, 0, -menuItemPadding, 0);
    if (item.menuHasCheckableItems) {
        const QRectF tick(text.left() - 5, rect.top(), tickWidth, rect.height());
        if (item.checked)
            paintTick(painter, inReadingDirection(tick, rect).center(), ink);
        text.setLeft(text.left() + tickWidth);
    }
    text = inReadingDirection(text, rect);
    const auto [title, keys] = menuTexts(item);
    paintText(painter, text, title, menuStyle(widget), ink);
    paintText(painter, text, keys, menuStyle(widget), isPointedAt ? ink : QColor(AppTheme::inkTertiary()),
              Qt::AlignRight | Qt::AlignVCenter);
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
        const QRectF end(rect.right() - 2 * menuItemPadding, rect.top(), menuItemPadding, rect.height());
        Symbol{forwardChevron(), 9, Weight::bold}.paint(painter, inReadingDirection(end, rect), ink);
    }
}

/// The place of a list that drops from a pop-up button: its texts lie over the button's, and are seen whole.
QRect popUpListRect(QRect rect, const QComboBox &button) {
    double widest = 0;
    for (int i = 0; i < button.count(); ++i)
        widest = std::max(widest, menuStyle(&button).width(button.itemText(i)));
    constexpr int beforeText = menuMargin + menuItemPadding + tickWidth;
    constexpr int buttonPadding = 8;
    const int end = rect.right();
    rect.translate(buttonPadding - beforeText, 0);
    rect.setWidth(std::max(rect.width(), qCeil(widest) + 1 + beforeText + menuItemPadding + menuMargin));
    if (QGuiApplication::isRightToLeft())
        rect.moveRight(end + beforeText - buttonPadding);
    return rect;
}

void setFonts() {
    QApplication::setFont(TextStyle{13}.font());
    QToolTip::setFont(TextStyle{11.5, Weight::medium}.font()); // those of menus, which the toolkit shows
}

QSize menuItemSize(const QStyleOptionMenuItem &item, const QWidget *widget) {
    if (isSeparator(item))
        return {1, menuSeparatorHeight}; // without a width it would be left out
    constexpr int keysGap = 20;          // the toolkit adds the keys' own width
    const auto [title, keys] = menuTexts(item);
    const int text = qCeil(menuStyle(widget).width(title)) + 1;
    return {text + 2 * menuItemPadding + (item.menuHasCheckableItems ? tickWidth : 0) +
                (keys.isEmpty() ? 0 : keysGap),
            std::max(leastMenuItemHeight, menuStyle(widget).lineHeight() + 8)};
}

} // namespace

AppStyle::AppStyle(std::chrono::milliseconds toolTipDelay)
    : QProxyStyle(toolkitStyle()), m_toolTipDelay(toolTipDelay) {}

void AppStyle::install(QApplication &application, std::chrono::milliseconds toolTipDelay) {
    QApplication::setStyle(new AppStyle(toolTipDelay));
    setFonts();
    QApplication::setPalette(AppTheme::palette());
    ToolTips::install(application);
    QToolTip::setPalette({}); // the desktop's own would stay when the scheme changes
}

void AppStyle::setReducedMotion(bool reduced) {
    reducedMotion = reduced;
}

void AppStyle::setTextScale(double scale) {
    const double before = textScale();
    vantrel::setTextScale(scale);
    if (textScale() == before)
        return;
    setFonts();
    // A change too small for the toolkit's whole pixels is one for the texts that are painted here.
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget *widget : widgets) {
        QEvent change(QEvent::FontChange);
        QCoreApplication::sendEvent(widget, &change);
    }
}

void AppStyle::polish(QWidget *widget) {
    QProxyStyle::polish(widget);
    if (isPopUp(widget) && desktopBlendsWindows())
        widget->setAttribute(Qt::WA_TranslucentBackground);
}

void AppStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                             const QWidget *widget) const {
    const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option);
    if (element == PE_PanelMenu || (element == PE_Frame && isPopUp(widget))) {
        paintMenuPanel(*painter, option->rect, widget);
    } else if (element == PE_FrameMenu) {
        return; // it is part of the panel
    } else if (element == PE_PanelTipLabel) {
        paintCard(*painter, option->rect, 0, AppTheme::surface(), AppTheme::paneStroke());
    } else if (element == PE_PanelLineEdit && frame && frame->lineWidth > 0) {
        const bool isFocused = option->state & State_HasFocus;
        paintCard(*painter, option->rect, buttonRadius, AppTheme::surface(),
                  isFocused ? AppTheme::accent() : AppTheme::paneStroke(), isFocused ? 2 : hairline);
    } else {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void AppStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                           const QWidget *widget) const {
    const auto *bar = qstyleoption_cast<const QStyleOptionProgressBar *>(option);
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (element == CE_MenuItem && item)
        paintMenuItem(*painter, *item, widget);
    else if (element == CE_ProgressBar && bar)
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
    else if (control == CC_Slider && bar)
        paintSlider(*painter, *bar);
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect AppStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                               const QWidget *widget) const {
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    const auto *button = qobject_cast<const QComboBox *>(widget);
    if (control == CC_ComboBox && part == SC_ComboBoxListBoxPopup && button)
        return popUpListRect(QProxyStyle::subControlRect(control, option, part, widget), *button);
    if (control == CC_Slider && bar)
        return part == SC_SliderHandle ? handleOf(*bar) : bar->rect;
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
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (type == CT_PushButton && button)
        return pushButtonSize(*button);
    if (type == CT_MenuItem && item)
        return menuItemSize(*item, widget);
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

int AppStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const {
    switch (metric) {
    case PM_MenuPanelWidth:
        return 0;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return menuMargin;
    case PM_ScrollBarExtent:
    case PM_ScrollView_ScrollBarOverlap:
        return scrollBarWidth;
    case PM_SliderLength:
        return sliderHandle;
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
    case SH_Slider_AbsoluteSetButtons: // a click sets it there
        return Qt::LeftButton;
    case SH_ScrollBar_ContextMenu:
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

} // namespace vantrel
