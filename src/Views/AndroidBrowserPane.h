#pragma once

#include "Kit/RenderScheduler.h"

#include <QWidget>

namespace vantrel {

class AppState;
class FilePaneView;
class Spinner;

/// The phone's file pane: a FilePaneView on the model.
/// It starts the search anew whenever the search text or scope changes.
class AndroidBrowserPane : public QWidget {
    Q_OBJECT

public:
    /// The state must outlive the view.
    explicit AndroidBrowserPane(AppState *state, QWidget *parent = nullptr);

    /// The folder that "Go back" leads to; it never leaves the shared storage.
    [[nodiscard]] static QString parentAndroidPath(const QString &path);

private:
    void render();

    AppState *m_state;
    FilePaneView *m_pane;
    Spinner *m_spinner;
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
