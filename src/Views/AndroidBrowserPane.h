#pragma once

#include "Views/Kit/RenderScheduler.h"

#include <QWidget>

namespace vantrel {

class AppState;
class FilePaneView;
class Spinner;

/// The phone's file pane: FilePaneView on the model.
class AndroidBrowserPane : public QWidget {
    Q_OBJECT

public:
    /// The state must outlive the view.
    explicit AndroidBrowserPane(AppState *state, QWidget *parent = nullptr);

private:
    void render();

    AppState *m_state;
    FilePaneView *m_pane = nullptr;
    Spinner *m_spinner = nullptr;
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
