#include "Hand.h"

#include "TourError.h"

#include "Views/FileItemsView.h"
#include "Views/QueueListView.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>

namespace vantrel::tour {

Hand::Hand(QWidget &window, std::chrono::milliseconds pace) : m_window(window), m_pace(pace) {}

void Hand::rest() const {
    if (m_pace.count() > 0)
        QTest::qWait(int(m_pace.count()));
}

void Hand::waitUntil(const QString &what, const std::function<bool()> &condition) const {
    constexpr int patience = 60'000; // milliseconds
    if (!QTest::qWaitFor(condition, patience))
        throw TourError(QStringLiteral("waited in vain: ") + what);
    rest();
}

QWidget *Hand::control(const QString &name, const QString &within) const {
    const QWidget *root = within.isEmpty() ? &m_window : control(within);
    const QList<QWidget *> found = root->findChildren<QWidget *>(name);
    const auto visible =
        std::find_if(found.begin(), found.end(), [](const QWidget *widget) { return widget->isVisible(); });
    if (visible == found.end())
        throw TourError(QStringLiteral("there is no ") + name);
    return *visible;
}

void Hand::clickAt(QWidget *control, QPoint position, Click click) const {
    QTest::mouseMove(control, position);
    QTest::mouseClick(control, Qt::LeftButton, {}, position);
    if (click == Click::twice)
        QTest::mouseDClick(control, Qt::LeftButton, {}, position);
    rest();
}

void Hand::pointAt(const QString &name, const QString &within) const {
    QWidget *target = control(name, within);
    QTest::mouseMove(target, target->rect().center());
    rest();
}

void Hand::click(const QString &name, const QString &within) const {
    QWidget *target = control(name, within);
    if (!QTest::qWaitFor([target] { return target->isEnabled(); }))
        throw TourError(name + QStringLiteral(" is disabled"));
    clickAt(target, target->rect().center(), Click::single);
}

void Hand::type(const QString &name, const QString &text) const {
    click(name);
    QTest::keyClicks(control(name), text, Qt::NoModifier, m_pace.count() > 0 ? 80 : -1);
    rest();
}

void Hand::choose(const QString &title) const {
    click(QStringLiteral("applicationMenu"));
    chooseShown(title);
}

QMenu *Hand::shownMenu() const {
    QMenu *menu = nullptr;
    waitUntil(QStringLiteral("the menu"), [&menu] {
        menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        return menu != nullptr;
    });
    return menu;
}

void Hand::chooseShown(const QString &title) const {
    QMenu *menu = shownMenu();
    for (QAction *action : menu->actions()) {
        if (action->text() == title)
            return clickAt(menu, menu->actionGeometry(action).center(), Click::single);
    }
    throw TourError(QStringLiteral("the menu has no ") + title);
}

void Hand::pressFirstAction() const {
    const auto *list = m_window.findChild<QueueListView *>();
    QRect action;
    waitUntil(QStringLiteral("a first row with an action"), [&] {
        action = list->actionRect(list->model()->index(0, 0));
        return action.isValid();
    });
    clickAt(list->viewport(), action.center(), Click::single);
}

void Hand::press(QWidget *control, Qt::Key key, Qt::KeyboardModifiers modifiers) const {
    QTest::keyClick(control, key, modifiers);
    rest();
}

FileItemsView *Hand::entries(const QString &pane) const {
    for (auto *view : control(pane)->findChildren<FileItemsView *>()) {
        if (view->isVisible())
            return view;
    }
    throw TourError(pane + QStringLiteral(" shows no entries"));
}

QRect Hand::entryRect(const QString &pane, const QString &name) const {
    FileItemsView *view = nullptr;
    QModelIndex index;
    // The view follows the model in a later pass of the event loop.
    const auto isShown = [&] {
        view = entries(pane);
        const QAbstractItemModel *model = view->model();
        index = model->match(model->index(0, 0), Qt::DisplayRole, name, 1, Qt::MatchExactly).value(0);
        return index.isValid();
    };
    if (!QTest::qWaitFor(isShown))
        throw TourError(pane + QStringLiteral(" does not show ") + name);
    const auto isInView = [&] { return view->viewport()->rect().contains(view->visualRect(index)); };
    if (!isInView()) {
        view->verticalScrollBar()->setValue(0);
        if (!isInView())
            scrollUntil(view->viewport(), name, isInView);
    }
    return view->visualRect(index);
}

void Hand::clickEntry(const QString &pane, const QString &name) const {
    const QRect rect = entryRect(pane, name);
    clickAt(entries(pane)->viewport(), rect.center(), Click::single);
}

void Hand::markEntry(const QString &pane, const QString &name) const {
    constexpr int markCentre = 20; // of the mark's cell, in a list
    const QRect rect = entryRect(pane, name);
    clickAt(entries(pane)->viewport(), {rect.left() + markCentre, rect.center().y()}, Click::single);
}

void Hand::openEntry(const QString &pane, const QString &name) const {
    const QRect rect = entryRect(pane, name);
    clickAt(entries(pane)->viewport(), rect.center(), Click::twice);
}

void Hand::scrollUntil(QWidget *control, const QString &what, const std::function<bool()> &condition) const {
    constexpr int enough = 2000;
    for (int turn = 0; turn < enough && !condition(); ++turn) {
        const QPointF centre = control->rect().center();
        QWheelEvent event(centre, control->mapToGlobal(centre), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(control, &event);
        QCoreApplication::processEvents();
    }
    if (!condition())
        throw TourError(QStringLiteral("cannot be scrolled into view: ") + what);
    rest();
}

} // namespace vantrel::tour
