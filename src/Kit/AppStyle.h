#pragma once

#include <QProxyStyle>

#include <chrono>

class QApplication;

namespace vantrel {

/// The toolkit's own look in the theme's colours.
class AppStyle : public QProxyStyle {
    Q_OBJECT

public:
    /// `toolTipDelay`: how long the mouse rests before a tool tip appears.
    explicit AppStyle(std::chrono::milliseconds toolTipDelay);

    /// Gives the application this style, the theme's palette and font, now and after each change of the
    /// scheme.
    static void install(QApplication &application, std::chrono::milliseconds toolTipDelay);

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override;

private:
    std::chrono::milliseconds m_toolTipDelay;
};

} // namespace vantrel
