#include "Views/TransferQueueView.h"

#include "Kit/Accessibility.h"
#include "Kit/Card.h"
#include "Kit/IconButton.h"
#include "Kit/TextLabel.h"
#include "MacFiles/ThisComputer.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"
#include "Views/QueueListView.h"

#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int bodyGap = 8;
constexpr int hintPadding = 14;
constexpr double cardRadius = 10;

} // namespace

TransferQueueView::TransferQueueView(AppState *state, QWidget *parent) : QWidget(parent), m_state(state) {
    setObjectName(QStringLiteral("queue"));
    describe(this, QAccessible::Grouping, QStringLiteral("Transfer Queue"));

    m_header = new QWidget(this);
    auto *title = new TextLabel({12, Weight::semibold}, AppTheme::ink(), m_header);
    title->setText(QStringLiteral("Transfer Queue"));
    m_note = new TextLabel({10.5, Weight::medium}, AppTheme::inkTertiary(), m_header);
    m_note->setObjectName(QStringLiteral("queue.note"));
    m_note->setText(QStringLiteral("Copy only — originals are kept"));
    m_clear = new IconButton({24, 24}, 6, m_header);
    m_clear->setObjectName(QStringLiteral("queue.clear"));
    m_clear->setHelp(QStringLiteral("Clear all transfers from the queue"));
    m_clear->setLook({.symbol = {QStringLiteral("trash"), 11, Weight::semibold},
                      .glyph = AppTheme::inkSecondary(),
                      .fill = AppTheme::surface(),
                      .stroke = AppTheme::stroke()});
    connect(m_clear, &QAbstractButton::clicked, state, &AppState::clearQueue);
    auto *header = new QHBoxLayout(m_header);
    header->setContentsMargins({});
    header->setSpacing(10);
    header->addWidget(title);
    header->addStretch();
    header->addWidget(m_note);
    header->addWidget(m_clear);

    m_card = new Card(cardRadius, this);
    m_card->setObjectName(QStringLiteral("queue.card"));
    m_hint = new QWidget(m_card);
    auto *hint = new TextLabel({12, Weight::medium}, AppTheme::inkTertiary(), m_hint);
    hint->setObjectName(QStringLiteral("queue.hint"));
    hint->setText(
        QStringLiteral("Select files and use → or ← to copy between Android and %1.").arg(thisComputer()));
    auto *padding = new QVBoxLayout(m_hint);
    padding->setContentsMargins(hintPadding, hintPadding, hintPadding, hintPadding);
    padding->addWidget(hint);
    m_list = new QueueListView(state->queueModel(), cardRadius, m_card);
    connect(m_list, &QueueListView::removeRequested, state, &AppState::removeQueueItem);
    auto *card = new QVBoxLayout(m_card);
    card->setContentsMargins({});
    card->setSpacing(0);
    card->addWidget(m_hint);
    card->addWidget(m_list);

    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins({});
    stack->setSpacing(bodyGap);
    stack->addWidget(m_header);
    stack->addWidget(m_card, 1);

    m_rendering.watch(state->queueModel(), &QAbstractItemModel::rowsInserted,
                      &QAbstractItemModel::rowsRemoved);
    m_rendering.renderNow();
}

void TransferQueueView::render() {
    const qsizetype count = m_state->queue().size();
    m_note->setVisible(count > 0);
    m_clear->setVisible(count > 0);
    m_hint->setVisible(count == 0);
    m_list->setVisible(count > 0);
    updateGeometry();
}

int TransferQueueView::heightAround(int bodyHeight) const {
    return m_header->sizeHint().height() + bodyGap + bodyHeight;
}

QSize TransferQueueView::sizeHint() const {
    const qsizetype count = m_state->queue().size();
    return {0, heightAround(count == 0 ? m_hint->sizeHint().height() : QueueListView::heightOfRows(count))};
}

QSize TransferQueueView::minimumSizeHint() const {
    const qsizetype count = std::min<qsizetype>(m_state->queue().size(), 1);
    return {0, heightAround(count == 0 ? m_hint->sizeHint().height() : QueueListView::heightOfRows(count))};
}

} // namespace vantrel
