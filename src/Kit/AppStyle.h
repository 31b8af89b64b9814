#pragma once

#include <QProxyStyle>

#include <chrono>

class QApplication;

namespace vantrel {

/// The toolkit's own look in the theme's colours, and a look of ours for what the application's views show:
///
/// - a scroll bar is a slim thumb over the edge of the content, takes no width from it, and is there while
///   there is something to scroll;
/// - a progress bar is a capsule filled from where lines begin, one without a known end (a range of nothing)
/// a circle
///   of spokes;
/// - a slider is a thin line with a round handle, which goes where the line is clicked;
/// - menus and pop-ups are cards of rows, with a tick beside what is chosen, round where the desktop blends
///   windows; a text field is a card whose line tells that it has the keyboard;
/// - a push button is a small card with its title, in the accent colour if it is the dialog's default; a flat
///   one is text that acts like a link.
class AppStyle : public QProxyStyle {
    Q_OBJECT

public:
    /// What a flat button has around its text for the focus ring, in layout pixels.
    static constexpr int linkMargin = 4;

    /// `toolTipDelay`: how long the mouse rests before a tool tip appears.
    explicit AppStyle(std::chrono::milliseconds toolTipDelay);

    /// Gives the application this style, and the theme's palette and font.
    static void install(QApplication &application, std::chrono::milliseconds toolTipDelay);

    /// Whether things move at all; at first they do. Controls learn of it as SH_Widget_Animation_Duration.
    static void setReducedMotion(bool reduced);

    /// How many times as large texts are to appear; every widget is told, and laid out anew.
    static void setTextScale(double scale);

    void polish(QWidget *widget) override;
    using QProxyStyle::polish;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override;

private:
    std::chrono::milliseconds m_toolTipDelay;
};

} // namespace vantrel
