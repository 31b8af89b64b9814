#include "Views/StatusBarView.h"

#include "Kit/Accessibility.h"
#include "Kit/Boxes.h"
#include "Kit/Shapes.h"
#include "Kit/TextLabel.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"

#include <QPainter>

namespace vantrel {

StatusBarView::StatusBarView(AppState *state, QWidget *parent) : QWidget(parent), m_state(state) {
    setObjectName(QStringLiteral("statusBar"));
    describe(this, QAccessible::StatusBar, QStringLiteral("Transfer status"));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    const auto text = [](const QString &name) {
        return named(name, new TextLabel({11, Weight::medium}, AppTheme::inkSecondary()));
    };
    m_counts = text(QStringLiteral("statusBar.counts"));
    m_speed = text(QStringLiteral("statusBar.speed"));
    m_remaining = text(QStringLiteral("statusBar.remaining"));
    setLayout(rowOf(8, {m_counts, BoxItem::room(), m_speed, m_remaining}, {14, 7, 14, 7}));

    m_rendering.watch(state, &AppState::queueChanged, &AppState::transferSpeedLabelChanged,
                      &AppState::remainingLabelChanged);
    m_rendering.renderNow();
}

void StatusBarView::render() {
    m_counts->setText(QStringLiteral("%1 active transfer • %2 waiting")
                          .arg(m_state->activeTransferCount())
                          .arg(m_state->waitingCount()));
    m_speed->setText(QStringLiteral("Speed: ") + m_state->transferSpeedLabel());
    m_remaining->setText(QStringLiteral("Remaining: ") + m_state->remainingLabel());
}

void StatusBarView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), AppTheme::sidebar());
    painter.fillRect(QRectF(0, 0, width(), hairline), AppTheme::stroke());
}

} // namespace vantrel
