#include "App/Window/ContentView.h"

#include "Kit/Divider.h"
#include "Kit/Shapes.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"
#include "Views/DualBrowserView.h"
#include "Views/SidebarView.h"
#include "Views/StatusBarView.h"
#include "Views/TransferQueueView.h"

#include <QEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

// Around the panes on all sides, and below the queue.
constexpr int padding = 12;
constexpr int bottomPadding = 8;

} // namespace

ContentView::ContentView(AppState *state, QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("content"));

    auto *columns = new QHBoxLayout;
    columns->setSpacing(0);
    columns->addWidget(new SidebarView(state, this));
    columns->addWidget(new Divider(Qt::Vertical, AppTheme::stroke(), this));
    auto *browser = new DualBrowserView(state);
    browser->setObjectName(QStringLiteral("browser"));
    columns->addWidget(new BrowserColumn(browser, new TransferQueueView(state), this), 1);

    auto *stack = new QVBoxLayout(this);
    stack->setContentsMargins({});
    stack->setSpacing(0);
    stack->addLayout(columns, 1);
    stack->addWidget(new StatusBarView(state, this));
}

void ContentView::paintEvent(QPaintEvent *) {
    QPainter(this).fillRect(rect(), AppTheme::surface());
}

ContentGround::ContentGround(QWidget *parent) : QWidget(parent) {}

void ContentGround::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const QRectF sidebar(0, 0, SidebarView::columnWidth, height());
    painter.fillRect(rect(), AppTheme::canvas());
    painter.fillRect(sidebar, AppTheme::sidebar());
    fillLine(painter, {sidebar.right(), 0, hairline, sidebar.height()}, AppTheme::stroke());
}

BrowserColumn::BrowserColumn(QWidget *browser, QWidget *queue, QWidget *parent)
    : QWidget(parent), m_browser(browser), m_queue(queue) {
    m_browser->setParent(this);
    m_queue->setParent(this);
}

QSize BrowserColumn::minimumSizeHint() const {
    return {m_browser->minimumSizeHint().width() + 2 * padding,
            2 * padding + browserMinimumHeight + m_queue->minimumSizeHint().height() + bottomPadding};
}

void BrowserColumn::arrange() {
    const int width = this->width() - 2 * padding;
    const int room = height() - 2 * padding - bottomPadding;
    const int least = m_queue->minimumSizeHint().height();
    const int queueHeight =
        std::clamp(m_queue->sizeHint().height(), least, std::max(least, room - browserMinimumHeight));
    m_browser->setGeometry(padding, padding, width, room - queueHeight);
    m_queue->setGeometry(padding, height() - bottomPadding - queueHeight, width, queueHeight);
}

bool BrowserColumn::event(QEvent *event) {
    if (event->type() == QEvent::LayoutRequest)
        arrange();
    return QWidget::event(event);
}

void BrowserColumn::resizeEvent(QResizeEvent *) {
    arrange();
}

void BrowserColumn::paintEvent(QPaintEvent *) {
    QPainter(this).fillRect(rect(), AppTheme::canvas());
}

} // namespace vantrel
