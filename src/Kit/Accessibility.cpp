#include "Kit/Accessibility.h"

#include <QAccessibleWidget>
#include <QWidget>

namespace vantrel {

namespace {

constexpr const char *roleProperty = "vantrelAccessibleRole";

QAccessibleInterface *describedWidget(const QString &, QObject *object) {
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return nullptr;
    const QVariant role = widget->property(roleProperty);
    return role.isValid() ? new QAccessibleWidget(widget, QAccessible::Role(role.toInt())) : nullptr;
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
