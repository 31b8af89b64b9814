#pragma once

#include "Kit/RenderScheduler.h"

#include <QWidget>

namespace vantrel {

class AppState;
class TextLabel;

/// The strip along the bottom of the window: how many copies run and wait, how fast, how long still.
class StatusBarView : public QWidget {
public:
    /// The model must outlive the view.
    explicit StatusBarView(AppState *state, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void render();

    AppState *m_state;
    TextLabel *m_counts;
    TextLabel *m_speed;
    TextLabel *m_remaining;
    RenderScheduler m_rendering{[this] { render(); }};
};

} // namespace vantrel
