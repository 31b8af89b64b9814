#pragma once

#include "Kit/RenderScheduler.h"

#include <QWidget>

namespace vantrel {

class AppState;
class IconButton;

/// The column between the panes: the buttons that copy what is selected to the other side. They start the
/// copy and do not wait for it. One that turns off while it has the keyboard gives it to the entries that it
/// copies.
class TransferButtons : public QWidget {
public:
    /// The state must outlive the view. The panes: to the left and to the right of it.
    TransferButtons(AppState *state, QWidget *android, QWidget *mac);

protected:
    void changeEvent(QEvent *event) override;

private:
    void render();

    AppState *m_state;
    QWidget *m_android;
    QWidget *m_mac;
    IconButton *m_toMac;
    IconButton *m_toAndroid;
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
