#include "Views/ScopePicker.h"

#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace vantrel {

namespace {

constexpr TextStyle titleStyle{11.5, Weight::medium};
constexpr int pickerHeight = 22;
constexpr double radius = 5;
constexpr double inset = 8;
constexpr double arrowWidth = 12;
constexpr double arrowGap = 4;

} // namespace

ScopePicker::ScopePicker(QWidget *parent) : QComboBox(parent) {
    for (const AndroidSearchScope scope : allAndroidSearchScopes)
        addItem(displayTitle(scope));
    setAccessibleName(QStringLiteral("Scope"));
    // Where the toolkit gives the chosen title as the name.
    setAccessibleDescription(QStringLiteral("Scope"));
    setFocusPolicy(Qt::TabFocus);
    setFixedSize(ScopePicker::sizeHint());
    connect(this, &QComboBox::activated, this,
            [this](int index) { Q_EMIT scopeChosen(allAndroidSearchScopes.at(size_t(index))); });
}

void ScopePicker::setScope(AndroidSearchScope scope) {
    const auto *place = std::find(allAndroidSearchScopes.begin(), allAndroidSearchScopes.end(), scope);
    setCurrentIndex(int(place - allAndroidSearchScopes.begin()));
}

QSize ScopePicker::sizeHint() const {
    double widest = 0;
    for (const AndroidSearchScope scope : allAndroidSearchScopes)
        widest = std::max(widest, titleStyle.width(displayTitle(scope)));
    return {qCeil(widest + arrowGap + arrowWidth + 2 * inset) + 1, pickerHeight};
}

void ScopePicker::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintCard(painter, rect(), radius, AppTheme::canvas(), AppTheme::stroke());
    const QRectF inner = QRectF(rect()).adjusted(inset, 0, -inset, 0);
    paintText(painter, inner.adjusted(0, 0, -arrowWidth - arrowGap, 0), currentText(), titleStyle,
              AppTheme::inkSecondary());
    Symbol{QStringLiteral("chevron.down"), 8, Weight::bold}.paint(
        painter, QRectF(inner.right() - arrowWidth, inner.top(), arrowWidth, inner.height()),
        AppTheme::inkTertiary());
    if (hasFocus())
        paintFocusRing(painter, rect(), radius);
}

void ScopePicker::showPopup() {
    view()->setFont(titleStyle.font());
    QComboBox::showPopup();
}

void ScopePicker::wheelEvent(QWheelEvent *event) {
    // Scrolling across the pane must not start another search.
    event->ignore();
}

} // namespace vantrel
