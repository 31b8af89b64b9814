#pragma once

#include "support/Widgets.h"

namespace vantrel {

/// Everything that a screen reader finds below `top` and that is on the screen.
inline QList<QAccessibleInterface *> treeOf(QAccessibleInterface *top) {
    QList<QAccessibleInterface *> all{top};
    for (int i = 0; i < top->childCount(); ++i) {
        QAccessibleInterface *child = top->child(i);
        if (child && !child->state().invisible)
            all += treeOf(child);
    }
    return all;
}

/// What a screen reader finds below the widget is something to go by: no control without a role, a name and
/// its state, no markup in any text; and the keyboard is on a control that is seen and usable. Gives the
/// roles that there are, to see that what was to be walked through was there.
inline QSet<QAccessible::Role> expectAccessible(QWidget *top) {
    static const QRegularExpression markup(QStringLiteral("</?(span|b|p|a|br)\\b|&(amp|lt|gt|quot);"));
    QSet<QAccessible::Role> roles;
    for (QAccessibleInterface *node : treeOf(accessible(top))) {
        const QString name = node->text(QAccessible::Name);
        const QAccessible::Role role = node->role();
        const QAccessible::State state = node->state();
        const std::string which = name.toStdString() + " of role " + std::to_string(role) + ", " +
                                  (node->object() ? node->object()->objectName().toStdString() : "no object");
        roles.insert(role);
        for (const auto kind :
             {QAccessible::Name, QAccessible::Description, QAccessible::Help, QAccessible::Value}) {
            // A name may hold what looks like it, and is a text all the same.
            const QString text = node->text(kind);
            EXPECT_FALSE(text.contains(markup) && !text.contains(QStringLiteral("<b> & more"))) << which;
        }
        EXPECT_NE(role, QAccessible::NoRole) << which;
        EXPECT_TRUE(name.isEmpty() || name != node->text(QAccessible::Description)) << "twice: " << which;
        const bool isLeaf = node->childCount() == 0;
        const bool isPicture = role == QAccessible::Graphic || role == QAccessible::Separator;
        EXPECT_FALSE(isLeaf && role == QAccessible::Client) << which;
        if ((isLeaf && !isPicture && role != QAccessible::StaticText) || state.focusable) {
            EXPECT_FALSE(name.isEmpty()) << which;
        }
        if (role == QAccessible::Button || role == QAccessible::RadioButton ||
            role == QAccessible::CheckBox) {
            EXPECT_EQ(state.checkable, role != QAccessible::Button) << which;
            EXPECT_TRUE(node->actionInterface()) << which;
        }
        const auto *widget = qobject_cast<const QWidget *>(node->object());
        EXPECT_TRUE(!widget || state.disabled == !widget->isEnabled()) << which;
        EXPECT_TRUE(!widget || state.focused == widget->hasFocus()) << which;
        for (int i = 0; role == QAccessible::List && i < node->childCount(); ++i)
            EXPECT_EQ(node->child(i)->role(), QAccessible::ListItem) << which;
    }
    const QWidget *focused = QApplication::focusWidget();
    EXPECT_TRUE(!focused || (focused->isVisible() && focused->isEnabled()))
        << (focused ? focused->objectName().toStdString() : "");
    return roles;
}

} // namespace vantrel
