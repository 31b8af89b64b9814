#pragma once

#include "Kit/RenderScheduler.h"

#include <QWidget>

namespace vantrel {

class AppState;
class IconButton;

/// The column between the panes: the buttons that copy what is selected to the other side. They start the
/// copy and do not wait for it.
class TransferButtons : public QWidget {
public:
    /// The state must outlive the view.
    explicit TransferButtons(AppState *state, QWidget *parent = nullptr);

private:
    void render();

    AppState *m_state;
    IconButton *m_toMac;
    IconButton *m_toAndroid;
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
