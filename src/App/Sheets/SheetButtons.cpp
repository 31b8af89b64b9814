#include "App/Sheets/SheetButtons.h"

#include "Kit/Shapes.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QPainter>
#include <QtMath>

namespace vantrel {

namespace {

const TextStyle buttonText{.size = 13, .weight = Weight::medium};
const TextStyle linkText{.size = 12, .weight = Weight::medium};
constexpr double buttonRadius = 6;

} // namespace

BorderedButton::BorderedButton(const QString &title, Prominence prominence, QWidget *parent)
    : PlainButton(parent), m_prominence(prominence) {
    setText(title);
    setAccessibleName(title);
    setRingRadius(buttonRadius);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize BorderedButton::sizeHint() const {
    constexpr int minimumWidth = 84;
    constexpr int height = 28;
    constexpr int padding = 16;
    return {qMax(minimumWidth, qCeil(buttonText.width(text())) + 2 * padding), height};
}

void BorderedButton::paintContent(QPainter &painter) {
    const bool prominent = m_prominence == Prominence::prominent;
    const QColor fill = prominent ? AppTheme::accent() : AppTheme::surface();
    paintCard(painter, rect(), buttonRadius, isDown() ? fill.darker(112) : fill,
              prominent ? ThemeColor() : AppTheme::paneStroke());
    paintText(painter, rect(), text(), buttonText, prominent ? AppTheme::onAccent() : AppTheme::ink(),
              Qt::AlignCenter);
}

LinkButton::LinkButton(const QString &title, QWidget *parent) : PlainButton(parent) {
    setText(title);
    setAccessibleName(title);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setRingRadius(4);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LinkButton::sizeHint() const {
    return {qCeil(linkText.width(text())) + 2 * margin, linkText.lineHeight() + 2 * margin};
}

void LinkButton::paintContent(QPainter &painter) {
    const QColor color = isDown() ? AppTheme::accent().withOpacity(0.7) : AppTheme::accent();
    paintText(painter, rect(), text(), linkText, color, Qt::AlignCenter);
    if (underMouse()) {
        const double bottomOfText = height() - margin;
        painter.fillRect(QRectF(margin, bottomOfText - 1.5, width() - 2 * margin, hairline), color);
    }
}

} // namespace vantrel
