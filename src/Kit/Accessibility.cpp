#include "Kit/Accessibility.h"

#include "Kit/IconButton.h"

#include <QAccessibleWidget>
#include <QWidget>

namespace vantrel {

namespace {

constexpr const char *roleProperty = "vantrelAccessibleRole";

/// A progress bar that has to be described is one without a known end: it is busy. A dialog is one inside its
/// window, which it keeps from being used.
class DescribedWidget : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;

    /// As it was described last.
    [[nodiscard]] QAccessible::Role role() const override {
        return QAccessible::Role(object()->property(roleProperty).toInt());
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.busy = role() == QAccessible::ProgressBar;
        state.modal = role() == QAccessible::Dialog;
        return state;
    }
    /// The toolkit would read out the tool tip.
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Description ? widget()->accessibleDescription()
                                                : QAccessibleWidget::text(kind);
    }
};

/// One that is pressed, and that may be on or off.
class DescribedButton : public DescribedWidget {
public:
    explicit DescribedButton(PlainButton *button) : DescribedWidget(button), m_button(button) {}

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = DescribedWidget::state();
        state.pressed = m_button->isDown();
        state.checkable = m_button->isCheckable();
        state.checked = m_button->isChecked();
        state.checkStateMixed = m_button->checkState() == Qt::PartiallyChecked;
        return state;
    }
    [[nodiscard]] QStringList actionNames() const override {
        QStringList names = DescribedWidget::actionNames();
        if (m_button->isEnabled())
            names.prepend(action());
        return names;
    }
    void doAction(const QString &name) override {
        if (name == action())
            m_button->click();
        else
            DescribedWidget::doAction(name);
    }

private:
    [[nodiscard]] QString action() const { return m_button->isCheckable() ? toggleAction() : pressAction(); }

    PlainButton *m_button;
};

QAccessibleInterface *describedWidget(const QString &, QObject *object) {
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget || !widget->property(roleProperty).isValid())
        return nullptr;
    if (auto *button = dynamic_cast<PlainButton *>(widget))
        return new DescribedButton(button);
    return new DescribedWidget(widget);
}

} // namespace

void describe(QWidget *widget, QAccessible::Role role, const QString &name) {
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(describedWidget);
        return true;
    }();
    widget->setProperty(roleProperty, int(role));
    setAccessibleTexts(widget, name, widget->accessibleDescription());
}

void setAccessibleTexts(QWidget *widget, const QString &name, const QString &description) {
    if (widget->accessibleName() != name)
        widget->setAccessibleName(name);
    if (widget->accessibleDescription() != description)
        widget->setAccessibleDescription(description);
}

} // namespace vantrel
