#include "Views/DualBrowserView.h"

#include "State/AppState.h"
#include "Views/AndroidBrowserPane.h"
#include "Views/MacBrowserPane.h"
#include "Views/TransferButtons.h"

#include <QApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace vantrel {

namespace {

/// A dialog may be part of the window, over the panes.
bool isInDialog(const QWidget *control) {
    while (control && !qobject_cast<const QDialog *>(control))
        control = control->parentWidget();
    return control;
}

bool editsText(const QWidget *control) {
    return qobject_cast<const QLineEdit *>(control) || qobject_cast<const QTextEdit *>(control) ||
           qobject_cast<const QPlainTextEdit *>(control);
}

} // namespace

DualBrowserView::DualBrowserView(AppState *state, ThumbnailStore *pictures, QWidget *parent)
    : QWidget(parent), m_state(state), m_android(new AndroidBrowserPane(state, pictures)),
      m_mac(new MacBrowserPane(state, pictures)) {
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(10);
    row->addWidget(m_android, 1);
    row->addWidget(new TransferButtons(state, m_android, m_mac));
    row->addWidget(m_mac, 1);
    setMinimumHeight(320);

    // However the keyboard came there: the keys below act on the pane that has it.
    connect(qApp, &QApplication::focusChanged, this, [=, this](QWidget *, QWidget *now) {
        if (now && m_android->isAncestorOf(now))
            state->setFocusedBrowserSide(BrowserSide::android);
        else if (now && m_mac->isAncestorOf(now))
            state->setFocusedBrowserSide(BrowserSide::mac);
    });
}

FilePaneView *DualBrowserView::focusedPane() const {
    return (m_state->focusedBrowserSide() == BrowserSide::mac ? m_mac : m_android)->view();
}

FilePaneView *DualBrowserView::otherPane() const {
    return (m_state->focusedBrowserSide() == BrowserSide::mac ? m_android : m_mac)->view();
}

DualBrowserView::KeyOutcome DualBrowserView::handleKeyEvent(const QKeyEvent &event, AppState &state) {
    const QWidget *control = QApplication::focusWidget();
    if (editsText(control) || isInDialog(control) || QApplication::activePopupWidget() ||
        QApplication::activeModalWidget())
        return KeyOutcome::passedOn;
    const BrowserSide side = state.focusedBrowserSide();
    // The toolkit calls the Mac's Command key Control, so this is the platform's own shortcut everywhere.
    if (event.modifiers().testFlag(Qt::ControlModifier) && event.key() == Qt::Key_A) {
        state.selectAllVisible(side);
        return KeyOutcome::consumed;
    }
    if (event.key() == Qt::Key_Escape) {
        if (side == BrowserSide::android && state.isOpeningAndroidFile())
            state.opening().stop();
        else
            state.clearSelection(side);
        return KeyOutcome::consumed;
    }
    return KeyOutcome::passedOn;
}

bool DualBrowserView::eventFilter(QObject *, QEvent *event) {
    return event->type() == QEvent::KeyPress &&
           handleKeyEvent(*static_cast<QKeyEvent *>(event), *m_state) == KeyOutcome::consumed;
}

void DualBrowserView::showEvent(QShowEvent *) {
    qApp->installEventFilter(this);
}

void DualBrowserView::hideEvent(QHideEvent *) {
    qApp->removeEventFilter(this);
}

} // namespace vantrel
