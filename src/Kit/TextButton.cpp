#include "Kit/TextButton.h"

#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

constexpr TextStyle titleStyle{11, Weight::semibold};
constexpr int leastHeight = 24;
constexpr int padding = 4;

} // namespace

TextButton::TextButton(const QString &title, const QString &help, QWidget *parent) : PlainButton(parent) {
    setHelp(help); // before assistive technology hears of a button that is only called by its title
    setText(title);
    setRingRadius(4);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize TextButton::sizeHint() const {
    return {int(std::ceil(titleStyle.width(text()))) + 2 * padding,
            std::max(leastHeight, titleStyle.lineHeight() + padding)};
}

void TextButton::paintContent(QPainter &painter) {
    paintText(painter, rect(), text(), titleStyle, AppTheme::accent(), Qt::AlignCenter);
}

} // namespace vantrel
