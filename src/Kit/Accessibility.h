#pragma once

#include <QAccessible>
#include <QString>

class QWidget;

namespace vantrel {

/// Tells assistive technology what a hand-painted widget is and what it is called; a progress bar is said to
/// be busy, a dialog to be modal. Needed for plain widgets only: the controls of this kit and Qt's own know
/// their roles. The tool tip of such a widget is not read out: it says what the name says.
void describe(QWidget *widget, QAccessible::Role role, const QString &name);

/// Names a widget of any kind, and adds to the name what is worth knowing at the moment. Assistive technology
/// is told only when a text differs from before.
void setAccessibleTexts(QWidget *widget, const QString &name, const QString &description = {});

} // namespace vantrel
