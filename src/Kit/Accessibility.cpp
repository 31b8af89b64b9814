#include "Kit/Accessibility.h"

#include <QAccessibleWidget>
#include <QWidget>

namespace vantrel {

namespace {

/// A progress bar that has to be described is one without a known end: it is busy. A dialog is one inside its
/// window, which it keeps from being used.
class DescribedWidget : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.busy = role() == QAccessible::ProgressBar;
        state.modal = role() == QAccessible::Dialog;
        return state;
    }
};

constexpr const char *roleProperty = "vantrelAccessibleRole";

QAccessibleInterface *describedWidget(const QString &, QObject *object) {
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return nullptr;
    const QVariant role = widget->property(roleProperty);
    return role.isValid() ? new DescribedWidget(widget, QAccessible::Role(role.toInt())) : nullptr;
}

} // namespace

void describe(QWidget *widget, QAccessible::Role role, const QString &name) {
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(describedWidget);
        return true;
    }();
    widget->setProperty(roleProperty, int(role));
    widget->setAccessibleName(name);
}

} // namespace vantrel
