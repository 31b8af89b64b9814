#pragma once

#include <QProxyStyle>

class QApplication;

namespace vantrel {

/// What the toolkit draws by itself, in the theme's look: tool tips that come after a quarter of a second,
/// and slim scroll bars. On the Mac the system's own look stays.
class AppStyle : public QProxyStyle {
    Q_OBJECT

public:
    AppStyle();

    /// Gives the application this style, the theme's palette and font, now and after each change of the
    /// scheme.
    static void install(QApplication &application);

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override;
#ifndef Q_OS_MACOS
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
#endif
};

} // namespace vantrel
