#pragma once

#include "Kit/RenderScheduler.h"
#include "Records/Pane.h"

#include <QWidget>

class QMimeData;

namespace vantrel {

class AppState;
class FilePaneView;
class PaneState;
class Spinner;
struct FilePane;

/// One side of the browser: a FilePaneView on the model, with a spinner over it. What both sides have in
/// common is done here; the rest is the subclass's.
class BrowserPane : public QWidget {
public:
    [[nodiscard]] FilePaneView *view() const { return m_view; }

protected:
    /// The state must outlive the view. The subclass calls start() at the end of its constructor.
    BrowserPane(AppState *state, BrowserSide side, QWidget *parent);

    /// What differs between the sides.
    virtual void fill(FilePane &pane) = 0;
    /// What the pane does now, for its footer; nothing when it rests.
    [[nodiscard]] virtual QString activity() const;

    /// Renders for the first time and again after each of these signals of the model.
    template <typename... Signals>
    void start(Signals... signalsOfState) {
        m_rendering.watch(m_app, signalsOfState...);
        m_rendering.renderNow();
    }
    [[nodiscard]] AppState &app() const { return *m_app; }
    [[nodiscard]] PaneState &state() const { return m_state; }
    void focusSide() const;

private:
    void render();
    void take(const QMimeData &dragged, const QString &folder);

    AppState *m_app;
    PaneState &m_state;
    FilePaneView *m_view;
    Spinner *m_spinner;
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
