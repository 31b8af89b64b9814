#pragma once

#include "Kit/RenderScheduler.h"

#include <QWidget>

namespace vantrel {

class AppState;
class FilePaneView;
class Spinner;

/// The computer's file pane: a FilePaneView on the model.
class MacBrowserPane : public QWidget {
    Q_OBJECT

public:
    /// The state must outlive the view.
    explicit MacBrowserPane(AppState *state, QWidget *parent = nullptr);

private:
    void render();

    AppState *m_state;
    FilePaneView *m_pane;
    Spinner *m_spinner;
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
