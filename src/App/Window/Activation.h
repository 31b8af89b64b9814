#pragma once

#include <QByteArray>

class QWidget;

namespace vantrel {

/// Shows the window, whatever state it is in, in front of the others and with the keyboard. `activationToken`
/// is what the desktop gave the start that asks for it, of Wayland's or of X11's kind; without one some
/// desktops only mark the window as wanting attention. Under X11 the desktop is told that this start is over.
void bringToFront(QWidget *window, const QByteArray &activationToken);

} // namespace vantrel
