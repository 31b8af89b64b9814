#pragma once

#include <QProxyStyle>

class QApplication;

namespace vantrel {

/// The toolkit's own look in the theme's colours, with tool tips that come after a quarter of a second.
class AppStyle : public QProxyStyle {
    Q_OBJECT

public:
    AppStyle();

    /// Gives the application this style, the theme's palette and font, now and after each change of the
    /// scheme.
    static void install(QApplication &application);

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override;
};

} // namespace vantrel
