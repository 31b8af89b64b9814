#pragma once

#include <QWidget>

class QKeyEvent;

namespace vantrel {

class AppState;
class BrowserPane;
class FilePaneView;
class ThumbnailStore;

/// The middle of the window: the phone's pane, the copy buttons and the computer's pane, side by side. While
/// it is on screen it also handles, for the whole application, the two keys that act on the focused pane's
/// selection: Command-A (Control-A off the Mac) and Escape. While a file is being opened Escape gives that
/// up.
class DualBrowserView : public QWidget {
public:
    /// What becomes of a key: it goes on to the focused control, or it ends here.
    enum class KeyOutcome { passedOn, consumed };

    /// The state must outlive the view, and so must the pictures of its files, if there are to be any.
    explicit DualBrowserView(AppState *state, ThumbnailStore *pictures = nullptr, QWidget *parent = nullptr);

    /// The pane that keyboard commands act on, and the other one.
    [[nodiscard]] FilePaneView *focusedPane() const;
    [[nodiscard]] FilePaneView *otherPane() const;

    /// Selects all, stops, clears, or lets the key pass. A control that edits text, an open menu and a dialog
    /// keep all their keys.
    static KeyOutcome handleKeyEvent(const QKeyEvent &event, AppState &state);

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    AppState *m_state;
    BrowserPane *m_android;
    BrowserPane *m_mac;
};

} // namespace vantrel
