#include "Kit/Focus.h"

#include <QWidget>

namespace vantrel {

namespace {

/// The window's own focus counts: it comes back when the window does.
void handOn(const QWidget *control, const std::function<void()> &heir) {
    const auto has = [control] {
        const QWidget *focused = control->window()->focusWidget();
        return focused && (focused == control || control->isAncestorOf(focused));
    };
    if (!has())
        return;
    heir();
    if (has())
        control->window()->focusWidget()->clearFocus();
}

} // namespace

void enableWithHeir(QWidget *control, bool isEnabled, const std::function<void()> &heir) {
    if (!isEnabled)
        handOn(control, heir);
    control->setEnabled(isEnabled);
}

void showWithHeir(QWidget *control, bool isShown, const std::function<void()> &heir) {
    if (!isShown)
        handOn(control, heir);
    control->setVisible(isShown);
}

} // namespace vantrel
