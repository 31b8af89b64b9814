#include "App/Window/ContentView.h"

#include "Kit/Boxes.h"
#include "Kit/Canvas.h"
#include "Kit/Shapes.h"
#include "State/AppState.h"
#include "Theme/AppTheme.h"
#include "Views/DualBrowserView.h"
#include "Views/SidebarView.h"
#include "Views/StatusBarView.h"
#include "Views/TransferQueueView.h"

#include <QPainter>

namespace vantrel {

ContentView::ContentView(AppState *state, QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("content"));

    setAutoFillBackground(true);
    auto *browser = named(QStringLiteral("browser"), new DualBrowserView(state));
    auto *columns = rowOf(0, {new SidebarView(state),
                              new Divider(Qt::Vertical),
                              {new BrowserColumn(browser, new TransferQueueView(state)), 1}});
    setLayout(columnOf(0, {{columns, 1}, new StatusBarView(state)}));
}

ContentGround::ContentGround(QWidget *parent)
    : Canvas(
          [](QPainter &painter, const QRectF &rect) {
              const QRectF sidebar(0, 0, SidebarView::columnWidth, rect.height());
              painter.fillRect(rect, AppTheme::canvas());
              painter.fillRect(sidebar, AppTheme::sidebar());
              fillLine(painter, {sidebar.right(), 0, hairline, rect.height()}, AppTheme::stroke());
          },
          parent) {}

BrowserColumn::BrowserColumn(QWidget *browser, QWidget *queue, QWidget *parent) : QWidget(parent) {
    setBackgroundRole(QPalette::AlternateBase); // the canvas
    setAutoFillBackground(true);
    // With no wish of its own the browser yields to the queue down to its least height, and takes what is
    // left.
    browser->setMinimumHeight(browserMinimumHeight);
    browser->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored);
    setLayout(columnOf(12, {{browser, 1}, queue}, {12, 12, 12, 8}));
}

} // namespace vantrel
