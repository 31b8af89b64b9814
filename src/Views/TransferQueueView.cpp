#include "Views/TransferQueueView.h"

#include "Kit/Accessibility.h"
#include "Kit/Canvas.h"
#include "Kit/Focus.h"
#include "Kit/IconButton.h"
#include "Kit/TextLabel.h"
#include "MacFiles/ThisComputer.h"
#include "Records/FileSizeFormat.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"
#include "Transfers/TransferQueue.h"
#include "Views/FileItemsView.h"
#include "Views/QueueListView.h"

#include <QProgressBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr int bodyGap = 8;
constexpr int hintPadding = 14;
constexpr double cardRadius = 10;
constexpr int barHeight = 5;
constexpr int barWidth = 120;
constexpr int barSteps = 10 * barWidth;

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
    m_figures = new TextLabel({11, Weight::medium}, AppTheme::inkSecondary(), m_header);
    m_figures->setObjectName(QStringLiteral("queue.figures"));
    m_bar = new QProgressBar(m_header);
    m_bar->setObjectName(QStringLiteral("queue.bar"));
    m_bar->setAccessibleName(QStringLiteral("Progress of all copies"));
    m_bar->setRange(0, barSteps);
    m_bar->setFixedSize(barWidth, barHeight);
    m_tryAll = makeButton("queue.tryAll", QStringLiteral("arrow.clockwise"), QStringLiteral("Try all again"));
    m_keepAll = makeButton("queue.keepAll", QStringLiteral("doc.on.doc"),
                           QStringLiteral("Keep both wherever another content is already there"));
    m_pause = makeButton("queue.pause", QStringLiteral("pause.fill"), QStringLiteral("Pause"));
    m_clear = makeButton("queue.clear", QStringLiteral("trash"),
                         QStringLiteral("Clear all transfers from the queue"));
    connect(m_tryAll, &QAbstractButton::clicked, state, &AppState::tryAllAgain);
    connect(m_keepAll, &QAbstractButton::clicked, state, &AppState::keepAllBoth);
    connect(m_pause, &QAbstractButton::clicked, state,
            [state] { state->isPaused() ? state->resumeTransfers() : state->pauseTransfers(); });
    connect(m_clear, &QAbstractButton::clicked, state, &AppState::clearQueue);
    auto *header = new QHBoxLayout(m_header);
    header->setContentsMargins({});
    header->setSpacing(10);
    header->addWidget(title);
    header->addWidget(m_figures);
    header->addWidget(m_bar);
    header->addStretch();
    header->addWidget(m_note);
    for (QWidget *button : {m_tryAll, m_keepAll, m_pause, m_clear})
        header->addWidget(button);

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
    connect(m_list, &QueueListView::tryAgainRequested, state, &AppState::tryAgain);
    connect(m_list, &QueueListView::keepBothRequested, state, &AppState::keepBoth);
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

    m_rendering.watch(state, &AppState::queueChanged, &AppState::isPausedChanged,
                      &AppState::isTransferringChanged);
    m_rendering.renderNow();
}

void TransferQueueView::render() {
    const qsizetype count = m_state->queue().size();
    m_note->setVisible(count > 0);
    // Not to its neighbours, which do things to copies.
    const auto heir = [this] { focusEntries(window()); };
    showWithHeir(m_clear, count > 0, heir);
    renderFigures();
    renderPause();
    showWithHeir(m_tryAll, m_state->transferQueue().failedCount() > 0, heir);
    showWithHeir(m_keepAll, m_state->transferQueue().nameTakenCount() > 0, heir);
    m_hint->setVisible(count == 0);
    showWithHeir(m_list, count > 0, heir);
    if (std::exchange(m_shownCount, count) != count)
        updateGeometry();
}

/// "312 of 2,000 · 4.1 of 12 GB"
void TransferQueueView::renderFigures() {
    const TransferQueue &queue = m_state->transferQueue();
    const qsizetype count = queue.items().size();
    m_figures->setVisible(count > 1);
    m_bar->setVisible(count > 1);
    if (count < 2)
        return;
    QString text = QStringLiteral("%L1 of %L2").arg(queue.completedCount()).arg(count);
    if (queue.totalBytes() > 0)
        text += QStringLiteral(" · %1 of %2")
                    .arg(formatFileSize(queue.doneBytes()), formatFileSize(queue.totalBytes()));
    m_figures->setText(text);
    const double total = std::max(static_cast<double>(queue.totalBytes()), 1.0);
    m_bar->setValue(static_cast<int>(barSteps * (static_cast<double>(queue.doneBytes()) / total)));
}

void TransferQueueView::renderPause() {
    const bool isPaused = m_state->isPaused();
    showWithHeir(m_pause, isPaused || m_state->isTransferring() || m_state->waitingCount() > 0,
                 [this] { focusEntries(window()); });
    m_pause->setHelp(isPaused ? QStringLiteral("Resume all transfers")
                              : QStringLiteral("Pause all transfers"));
    IconButton::Look look = m_pause->look();
    look.symbol.name = isPaused ? QStringLiteral("play.fill") : QStringLiteral("pause.fill");
    m_pause->setLook(look);
}

IconButton *TransferQueueView::makeButton(const char *name, const QString &symbol, const QString &help) {
    auto *button = new IconButton({24, 24}, 6, m_header);
    button->setObjectName(QLatin1String(name));
    button->setHelp(help);
    button->setLook({.symbol = {symbol, 11, Weight::semibold},
                     .glyph = AppTheme::inkSecondary(),
                     .fill = AppTheme::surface(),
                     .stroke = AppTheme::stroke()});
    return button;
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
