#include "Kit/TextButton.h"

#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <cmath>

namespace vantrel {

namespace {

constexpr TextStyle titleStyle{11, Weight::semibold};
constexpr int buttonHeight = 24;
constexpr int padding = 4;

} // namespace

TextButton::TextButton(const QString &title, const QString &help, QWidget *parent) : PlainButton(parent) {
    setText(title);
    setHelp(help);
    setRingRadius(4);
    setFixedSize(TextButton::sizeHint());
}

QSize TextButton::sizeHint() const {
    return {int(std::ceil(titleStyle.width(text()))) + 2 * padding, buttonHeight};
}

void TextButton::paintContent(QPainter &painter) {
    paintText(painter, rect(), text(), titleStyle, AppTheme::accent(), Qt::AlignCenter);
}

} // namespace vantrel
