#include "Kit/PopUpButton.h"

#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Theme/AppTheme.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
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

/// The toolkit's own has the list below it all the time, whose entries count as seen while it is closed.
class PopUpAccessible : public QAccessibleWidget {
public:
    explicit PopUpAccessible(PopUpButton *button)
        : QAccessibleWidget(button, QAccessible::ComboBox), m_button(button) {}

    [[nodiscard]] int childCount() const override { return isOpen() ? 1 : 0; }
    [[nodiscard]] QAccessibleInterface *child(int index) const override {
        return index == 0 && isOpen() ? QAccessible::queryAccessibleInterface(m_button->view()) : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override {
        return isOpen() && child->object() == m_button->view() ? 0 : -1;
    }
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override {
        return isOpen() && m_button->view()->rect().contains(m_button->view()->mapFromGlobal(QPoint(x, y)))
                   ? child(0)
                   : nullptr;
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        // Readers read a name, and not all of them a value.
        return kind == QAccessible::Name || kind == QAccessible::Value ? m_button->currentText()
                                                                       : QAccessibleWidget::text(kind);
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.expanded = isOpen();
        state.collapsed = !isOpen();
        return state;
    }
    [[nodiscard]] QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
    void doAction(const QString &name) override {
        if (name == showMenuAction() || name == pressAction())
            isOpen() ? m_button->hidePopup() : m_button->showPopup();
    }

private:
    [[nodiscard]] bool isOpen() const { return m_button->view()->isVisible(); }

    PopUpButton *m_button;
};

QAccessibleInterface *popUpAccessible(const QString &, QObject *object) {
    auto *button = qobject_cast<PopUpButton *>(object);
    return button ? new PopUpAccessible(button) : nullptr;
}

} // namespace

PopUpButton::PopUpButton(const QString &name, const TextStyle &style, QWidget *parent)
    : QComboBox(parent), m_style(style) {
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(popUpAccessible);
        return true;
    }();
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
