#include "Views/StatusBarView.h"

#include "Kit/Accessibility.h"
#include "Kit/Shapes.h"
#include "Kit/TextLabel.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"

#include <QHBoxLayout>
#include <QPainter>

namespace vantrel {

StatusBarView::StatusBarView(AppState *state, QWidget *parent) : QWidget(parent), m_state(state) {
    setObjectName(QStringLiteral("statusBar"));
    describe(this, QAccessible::StatusBar, QStringLiteral("Transfer status"));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    const auto text = [this](const QString &name) {
        auto *label = new TextLabel({11, Weight::medium}, AppTheme::inkSecondary(), this);
        label->setObjectName(name);
        return label;
    };
    m_counts = text(QStringLiteral("statusBar.counts"));
    m_speed = text(QStringLiteral("statusBar.speed"));
    m_remaining = text(QStringLiteral("statusBar.remaining"));

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(14, 7, 14, 7);
    row->setSpacing(8);
    row->addWidget(m_counts);
    row->addStretch();
    row->addWidget(m_speed);
    row->addWidget(m_remaining);

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
