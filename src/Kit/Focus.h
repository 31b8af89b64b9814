#pragma once

#include <functional>

class QWidget;

namespace vantrel {

/// Enables or disables a control, or everything in a bar of controls. If the keyboard is there as it goes,
/// `heir` is called to take it elsewhere: the toolkit would give it to the next control in line, where the
/// next stroke of the same key does something else. An heir that does not take it leaves it to nobody.
void enableWithHeir(QWidget *control, bool isEnabled, const std::function<void()> &heir);

/// The same for showing and hiding.
void showWithHeir(QWidget *control, bool isShown, const std::function<void()> &heir);

} // namespace vantrel
