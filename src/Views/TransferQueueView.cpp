#include "Views/TransferQueueView.h"

#include "Kit/Accessibility.h"
#include "Kit/Canvas.h"
#include "Kit/Focus.h"
#include "Kit/IconButton.h"
#include "Kit/TextButton.h"
#include "Kit/TextLabel.h"
#include "MacFiles/ThisComputer.h"
#include "Records/FileSizeFormat.h"
#include "Records/TransferFormat.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"
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

TransferQueueView::TransferQueueView(AppState *state, QWidget *parent)
    : QWidget(parent), m_state(state), m_transfers(&state->transfers()) {
    setObjectName(QStringLiteral("queue"));
    describe(this, QAccessible::Grouping, QStringLiteral("Transfer Queue"));

    m_header = new QWidget(this);
    auto *title = new TextLabel({12, Weight::semibold}, AppTheme::ink(), m_header);
    title->setText(QStringLiteral("Transfer Queue"));
    m_note = new TextLabel({10.5, Weight::medium}, AppTheme::inkTertiary(), m_header);
    m_note->setObjectName(QStringLiteral("queue.note"));
    m_figures = new TextLabel({11, Weight::medium}, AppTheme::inkSecondary(), m_header);
    m_figures->setObjectName(QStringLiteral("queue.figures"));
    m_bar = new QProgressBar(m_header);
    m_bar->setObjectName(QStringLiteral("queue.bar"));
    m_bar->setAccessibleName(QStringLiteral("Progress of all copies"));
    m_bar->setRange(0, barSteps);
    m_bar->setFixedSize(barWidth, barHeight);
    m_tryAll = new TextButton(QStringLiteral("Try all again"),
                              QStringLiteral("Try all transfers again that have failed"), m_header);
    m_tryAll->setObjectName(QStringLiteral("queue.tryAll"));
    m_keepAll =
        new TextButton(QStringLiteral("Keep both for all"),
                       QStringLiteral("Keep both wherever another content is already there"), m_header);
    m_keepAll->setObjectName(QStringLiteral("queue.keepAll"));
    m_pause = makeButton("queue.pause", QStringLiteral("pause.fill"), QStringLiteral("Pause all transfers"));
    m_resume =
        makeButton("queue.resume", QStringLiteral("play.fill"), QStringLiteral("Resume all transfers"));
    m_clear = makeButton("queue.clear", QStringLiteral("trash"),
                         QStringLiteral("Clear all transfers from the queue"));
    connect(m_tryAll, &QAbstractButton::clicked, m_transfers, &TransferRunner::tryAllAgain);
    connect(m_keepAll, &QAbstractButton::clicked, m_transfers, &TransferRunner::keepAllBoth);
    connect(m_pause, &QAbstractButton::clicked, m_transfers, &TransferRunner::pause);
    connect(m_resume, &QAbstractButton::clicked, m_transfers, &TransferRunner::resume);
    connect(m_clear, &QAbstractButton::clicked, state, &AppState::clearQueue);
    auto *header = new QHBoxLayout(m_header);
    header->setContentsMargins({});
    header->setSpacing(10);
    header->addWidget(title);
    header->addWidget(m_figures);
    header->addWidget(m_bar);
    header->addStretch();
    header->addWidget(m_note);
    for (QWidget *button : std::initializer_list<QWidget *>{m_tryAll, m_keepAll, m_pause, m_resume, m_clear})
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
    m_list = new QueueListView(m_transfers->queueModel(), cardRadius, m_card);
    connect(m_list, &QueueListView::removeRequested, state, &AppState::removeQueueItem);
    connect(m_list, &QueueListView::tryAgainRequested, m_transfers, &TransferRunner::tryAgain);
    connect(m_list, &QueueListView::keepBothRequested, m_transfers, &TransferRunner::keepBoth);
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

    m_rendering.watch(m_transfers, &TransferRunner::queueChanged, &TransferRunner::isPausedChanged,
                      &TransferRunner::isTransferringChanged, &TransferRunner::noticeChanged);
    m_rendering.renderNow();
}

void TransferQueueView::render() {
    const TransferQueue &queue = m_transfers->queue();
    const qsizetype count = queue.items().size();
    const bool isToDecide = queue.failedCount() > 0 || queue.nameTakenCount() > 0;
    const QString &notice = m_transfers->notice();
    const bool mayResume = m_transfers->isPaused() || queue.pausedCount() > 0;
    const bool isResting = mayResume && !m_transfers->isTransferring();
    m_note->setText(!notice.isEmpty() ? notice
                    : isResting       ? QStringLiteral("Paused")
                                      : QStringLiteral("Copy only — originals are kept"));
    m_note->setColor(notice.isEmpty() ? AppTheme::inkTertiary() : AppTheme::danger());
    m_note->setVisible(!notice.isEmpty() || (count > 0 && !isToDecide)); // there is no room for all
    // Not to their neighbours, which do things to copies.
    const auto heir = [this] { focusEntries(window()); };
    const auto orTo = [&heir](QWidget *other) {
        return [&heir, other] { other->isHidden() ? heir() : other->setFocus(Qt::TabFocusReason); };
    };
    showWithHeir(m_clear, !notice.isEmpty() || count > 0, heir);
    renderFigures();
    const bool mayPause =
        !m_transfers->isPaused() && (m_transfers->isTransferring() || queue.waitingCount() > 0);
    m_resume->setVisible(m_resume->isVisibleTo(this) || mayResume);
    showWithHeir(m_pause, mayPause, orTo(m_resume));
    showWithHeir(m_resume, mayResume, orTo(m_pause));
    showWithHeir(m_tryAll, queue.failedCount() > 0, heir);
    showWithHeir(m_keepAll, queue.nameTakenCount() > 0, heir);
    m_hint->setVisible(count == 0);
    showWithHeir(m_list, count > 0, heir);
    if (std::exchange(m_shownCount, count) != count)
        updateGeometry();
    m_list->keepInSight(queue.activeRows());
}

/// "312 of 2,000 · 4.1 of 12 GB"
void TransferQueueView::renderFigures() {
    const TransferQueue &queue = m_transfers->queue();
    const qsizetype count = queue.items().size();
    m_figures->setVisible(count > 1);
    m_bar->setVisible(count > 1);
    if (count < 2)
        return;
    QString text = formatCount(queue.completedCount()) % QStringLiteral(" of ") % formatCount(count);
    const double bytes = static_cast<double>(queue.totalBytes());
    if (queue.totalBytes() > 0)
        text += QStringLiteral(" · ") + formatFileSizes(queue.doneBytes(), queue.totalBytes());
    m_figures->setText(text);
    const double fraction = bytes > 0 ? static_cast<double>(queue.doneBytes()) / bytes
                                      : queue.completedCount() / static_cast<double>(count);
    m_bar->setValue(static_cast<int>(barSteps * fraction));
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
