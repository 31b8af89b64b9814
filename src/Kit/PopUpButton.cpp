#include "Kit/PopUpButton.h"

#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Theme/AppTheme.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace vantrel {

namespace {

constexpr TextStyle listStyle{11.5, Weight::medium}; // of every list, whatever the button's is
constexpr double radius = 5;
constexpr double inset = 8;
constexpr double arrowWidth = 12;
constexpr double arrowGap = 4;

} // namespace

PopUpButton::PopUpButton(const QString &name, const TextStyle &style, QWidget *parent)
    : QComboBox(parent), m_style(style) {
    setAccessibleName(name);
    // Where the toolkit gives the chosen title as the name.
    setAccessibleDescription(name);
    setFocusPolicy(Qt::TabFocus);
}

QSize PopUpButton::sizeHint() const {
    double widest = 0;
    for (int i = 0; i < count(); ++i)
        widest = std::max(widest, m_style.width(itemText(i)));
    return {qCeil(widest + arrowGap + arrowWidth + 2 * inset) + 1, heightOfButton()};
}

int PopUpButton::heightOfButton() const {
    constexpr int least = 22;
    constexpr int aroundText = 6;
    return std::max(least, m_style.lineHeight() + aroundText);
}

void PopUpButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintCard(painter, rect(), radius, AppTheme::canvas(), AppTheme::stroke());
    const QRectF inner = QRectF(rect()).adjusted(inset, 0, -inset, 0);
    paintText(painter, inReadingDirection(inner.adjusted(0, 0, -arrowWidth - arrowGap, 0), inner),
              shownText(), m_style, AppTheme::inkSecondary());
    const QRectF arrow(inner.right() - arrowWidth, inner.top(), arrowWidth, inner.height());
    Symbol{QStringLiteral("chevron.down"), 8, Weight::bold}.paint(painter, inReadingDirection(arrow, inner),
                                                                  AppTheme::inkTertiary());
    if (hasFocus())
        paintFocusRing(painter, rect(), radius);
}

void PopUpButton::showPopup() {
    view()->setFont(listStyle.font());
    QComboBox::showPopup();
}

void PopUpButton::wheelEvent(QWheelEvent *event) {
    event->ignore();
}

} // namespace vantrel
