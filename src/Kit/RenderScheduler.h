#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

namespace vantrel {

/// Calls a view's `render()` at most once per pass of the event loop, however many of the signals it reads
/// fired. A change of the colour scheme is none of them: the widgets repaint by themselves.
///
/// A view holds it as its last member, so that nothing is rendered once the view's other members are gone:
///
///     class StatusBarView : public QWidget {
///         ...
///         RenderScheduler m_rendering{[this] { render(); }};
///     };
///     StatusBarView::StatusBarView(AppState *state) {
///         m_rendering.watch(state, &AppState::queueChanged, &AppState::transferSpeedLabelChanged);
///         m_rendering.renderNow();
///     }
class RenderScheduler : public QObject {
public:
    explicit RenderScheduler(std::function<void()> render) : m_render(std::move(render)) {
        m_timer.setSingleShot(true);
        m_timer.setInterval(0);
        connect(&m_timer, &QTimer::timeout, this, [this] { m_render(); });
    }

    /// Renders after any of the sender's signals, whatever their arguments.
    template <typename Sender, typename... Signals>
    void watch(const Sender *sender, Signals... signalsOfSender) {
        (connect(sender, signalsOfSender, this, &RenderScheduler::request), ...);
    }

    /// Renders in the next pass of the event loop.
    void request() {
        if (!m_timer.isActive())
            m_timer.start();
    }

    /// Renders at once and makes a render that was due unnecessary: for the first look, and before measuring.
    void renderNow() {
        m_timer.stop();
        m_render();
    }

private:
    std::function<void()> m_render;
    QTimer m_timer;
};

} // namespace vantrel
