#pragma once

#include "Kit/RenderScheduler.h"
#include "Records/FileItem.h"
#include "Records/Pane.h"
#include "Thumbnails/ThumbnailStore.h"
#include "Views/Emptiness.h"

#include <QWidget>

#include <optional>

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
    /// The state must outlive the view, and so must the pictures, if there are to be any. The subclass calls
    /// start() at the end of its constructor.
    BrowserPane(AppState *state, BrowserSide side, ThumbnailStore *pictures, QWidget *parent);

    /// What differs between the sides.
    virtual void fill(FilePane &pane) = 0;
    /// What the pane does now, for its footer; nothing when it rests.
    [[nodiscard]] virtual QString activity() const;
    /// What is said in the list's place while the pane rests and has nothing to list.
    [[nodiscard]] virtual std::optional<Emptiness> emptiness() const;

    /// Renders for the first time and again after each of these signals of the model.
    template <typename... Signals>
    void start(Signals... signalsOfState) {
        m_rendering.watch(m_app, signalsOfState...);
        m_rendering.renderNow();
    }
    /// Renders again after this signal of another part of the model, too.
    template <typename Sender, typename Signal>
    void watch(Sender *sender, Signal signal) {
        m_rendering.watch(sender, signal);
    }
    [[nodiscard]] AppState &app() const { return *m_app; }
    [[nodiscard]] PaneState &state() const { return m_state; }
    void focusSide() const;
    /// How a folder is come to from the one that is shown: one around it is gone back to.
    [[nodiscard]] Arrival arrivalAt(const QString &path) const;

private:
    void render();
    [[nodiscard]] QList<FileItem> together(const FileItem &item) const;
    [[nodiscard]] FilePlace place() const;
    void take(const QMimeData &dragged, const QString &folder);

    AppState *m_app;
    PaneState &m_state;
    ThumbnailStore *m_pictures;
    FilePaneView *m_view;
    Spinner *m_spinner;
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
