#pragma once

#include <QAccessible>
#include <QString>

class QWidget;

namespace vantrel {

/// Tells assistive technology what a hand-painted widget is and what it is called; a progress bar is said to
/// be busy, a dialog to be modal. Needed for plain widgets only: the controls of this kit and Qt's own know
/// their roles.
void describe(QWidget *widget, QAccessible::Role role, const QString &name);

} // namespace vantrel
