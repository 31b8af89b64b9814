#include "App/Window/ContentView.h"

#include "App/System/Settings.h"
#include "Kit/Accessibility.h"
#include "Kit/Boxes.h"
#include "Kit/Canvas.h"
#include "Kit/Focus.h"
#include "Kit/Shapes.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"
#include "Views/DualBrowserView.h"
#include "Views/FileItemsView.h"
#include "Views/SidebarView.h"
#include "Views/StatusBarView.h"
#include "Views/TransferQueueView.h"

#include <QKeyEvent>
#include <QPainter>

namespace vantrel {

namespace {

// Around the panes on all sides, and below the queue.
constexpr int padding = 12;
constexpr int bottomPadding = 8;

/// The edge between the panes and the queue. It shows itself while it can be grasped.
class QueueEdge : public QSplitterHandle {
public:
    explicit QueueEdge(BrowserColumn *column) : QSplitterHandle(Qt::Vertical, column), m_column(column) {
        describe(this, QAccessible::Splitter, QStringLiteral("Height of the transfer queue"));
        setToolTip(QStringLiteral("Drag to change the height of the transfer queue"));
        setFocusPolicy(Qt::TabFocus);
        setAttribute(Qt::WA_Hover);
    }

protected:
    void paintEvent(QPaintEvent *) override {
        constexpr QSizeF grip(36, 4);
        if (!isEnabled() || !(underMouse() || hasFocus()))
            return;
        QPainter painter(this);
        QRectF place({}, grip);
        place.moveCenter(QRectF(rect()).center());
        paintCard(painter, place, grip.height() / 2, AppTheme::strokeStrong(), {});
        if (hasFocus())
            paintFocusRing(painter, place.adjusted(-2, -2, 2, 2).toAlignedRect(), grip.height());
    }
    void mouseReleaseEvent(QMouseEvent *event) override {
        QSplitterHandle::mouseReleaseEvent(event);
        if (event->button() == Qt::LeftButton)
            Q_EMIT m_column->queueLimitChosen(m_column->queueLimit());
    }
    void mouseDoubleClickEvent(QMouseEvent *) override {
        m_column->setQueueLimit(std::nullopt);
        Q_EMIT m_column->queueLimitChosen(std::nullopt);
    }
    void keyPressEvent(QKeyEvent *event) override {
        constexpr int step = 24;
        if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)
            m_column->stretchQueue(event->key() == Qt::Key_Up ? step : -step);
        else
            QSplitterHandle::keyPressEvent(event);
    }
    void focusInEvent(QFocusEvent *) override { update(); }
    void focusOutEvent(QFocusEvent *) override { update(); }

private:
    BrowserColumn *m_column;
};

} // namespace

ContentView::ContentView(AppState *state, Settings &settings, ThumbnailStore *pictures, QWidget *parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("content"));

    setAutoFillBackground(true);
    auto *browser = named(QStringLiteral("browser"), new DualBrowserView(state, pictures));
    auto *column = new BrowserColumn(browser, new TransferQueueView(state));
    column->setQueueLimit(settings.queueHeight());
    connect(column, &BrowserColumn::queueLimitChosen, this,
            [&settings](std::optional<int> limit) { settings.setQueueHeight(limit); });
    auto *columns = rowOf(0, {new SidebarView(state), new Divider(Qt::Vertical), {column, 1}});
    setLayout(columnOf(0, {{columns, 1}, new StatusBarView(state)}));
}

ContentGround::ContentGround(QWidget *parent)
    : Canvas(
          [](QPainter &painter, const QRectF &rect) {
              const QRectF sidebar(0, 0, SidebarView::columnWidth(), rect.height());
              const QRectF line(sidebar.right(), 0, hairline, rect.height());
              painter.fillRect(rect, AppTheme::canvas());
              painter.fillRect(inReadingDirection(sidebar, rect), AppTheme::sidebar());
              fillLine(painter, inReadingDirection(line, rect), AppTheme::stroke());
          },
          parent) {}

BrowserColumn::BrowserColumn(QWidget *browser, QWidget *queue, QWidget *parent)
    : QSplitter(Qt::Vertical, parent), m_browser(browser), m_queue(queue) {
    setContentsMargins(padding, padding, padding, bottomPadding);
    setBackgroundRole(QPalette::AlternateBase); // the canvas
    setAutoFillBackground(true);
    setHandleWidth(padding);
    setChildrenCollapsible(false);
    addWidget(m_browser);
    addWidget(m_queue);
    m_browser->setMinimumHeight(browserMinimumHeight);
    handle(1)->setObjectName(QStringLiteral("queue.edge")); // the toolkit has given it another name
    connect(this, &QSplitter::splitterMoved, this, [this](int position, int) {
        setQueueLimit(height() - bottomPadding - position - handleWidth());
    });
}

QSplitterHandle *BrowserColumn::createHandle() {
    return new QueueEdge(this);
}

QSize BrowserColumn::minimumSizeHint() const {
    return {m_browser->minimumSizeHint().width() + 2 * padding,
            2 * padding + browserMinimumHeight + m_queue->minimumSizeHint().height() + bottomPadding};
}

int BrowserColumn::room() const {
    return contentsRect().height() - handleWidth();
}

void BrowserColumn::setQueueLimit(std::optional<int> limit) {
    m_queueLimit = limit;
    arrange();
}

void BrowserColumn::stretchQueue(int by) {
    setQueueLimit(std::clamp(m_queue->height() + by, m_queue->minimumSizeHint().height(),
                             std::max(m_queue->minimumSizeHint().height(), room() - browserMinimumHeight)));
    Q_EMIT queueLimitChosen(m_queueLimit);
}

void BrowserColumn::arrange() {
    const int least = m_queue->minimumSizeHint().height();
    const int wanted = m_queue->sizeHint().height();
    const int most = std::max(least, room() - browserMinimumHeight);
    const int queueHeight = std::clamp(std::min(wanted, m_queueLimit.value_or(room() * 2 / 5)), least, most);
    setSizes({room() - queueHeight, queueHeight});
    enableWithHeir(handle(1), wanted > least, [this] { focusEntries(window()); });
}

bool BrowserColumn::event(QEvent *event) {
    const bool isHandled = QSplitter::event(event);
    if (event->type() == QEvent::LayoutRequest)
        arrange();
    return isHandled;
}

void BrowserColumn::resizeEvent(QResizeEvent *event) {
    QSplitter::resizeEvent(event);
    arrange();
}

} // namespace vantrel
