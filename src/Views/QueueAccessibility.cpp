#include "Views/QueueAccessibility.h"

#include "Kit/TextStyle.h"
#include "Records/QueueItem.h"
#include "Views/QueueDelegate.h"
#include "Views/QueueListView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QPersistentModelIndex>
#include <QPointer>

#include <algorithm>

namespace vantrel {

namespace {

enum class Part { row, bar, removeButton, action };

/// What a row has inside, in the order of its children.
constexpr Part inside[] = {Part::bar, Part::removeButton, Part::action};
constexpr int removeButtonChild = 1;
constexpr int actionChild = 2;

/// A row, or the bar or the button in it.
class QueuePart : public QAccessibleInterface,
                  public QAccessibleActionInterface,
                  public QAccessibleValueInterface {
public:
    QueuePart(QueueListView *view, const QModelIndex &row, Part part)
        : m_view(view), m_row(row), m_part(part) {
        if (part != Part::row)
            return;
        for (const Part child : inside)
            m_children.append(QAccessible::registerAccessibleInterface(new QueuePart(view, row, child)));
    }
    ~QueuePart() override {
        for (const QAccessible::Id child : std::as_const(m_children))
            QAccessible::deleteAccessibleInterface(child);
    }
    Q_DISABLE_COPY_MOVE(QueuePart)

    [[nodiscard]] bool isValid() const override { return m_view && m_row.isValid(); }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override {
        return isValid() ? m_view->window()->windowHandle() : nullptr;
    }
    [[nodiscard]] QAccessibleInterface *parent() const override {
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(m_view);
        return list && m_part != Part::row ? list->child(m_row.row()) : list;
    }
    /// The action comes and goes with how the copy has ended; it is the last.
    [[nodiscard]] int childCount() const override {
        const bool lacksAction = isValid() && m_part == Part::row && !m_view->actionRect(m_row).isValid();
        return int(m_children.size()) - (lacksAction ? 1 : 0);
    }
    [[nodiscard]] QAccessibleInterface *child(int index) const override {
        return index >= 0 && index < childCount() ? QAccessible::accessibleInterface(m_children.at(index))
                                                  : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override {
        return int(m_children.indexOf(QAccessible::uniqueId(const_cast<QAccessibleInterface *>(child))));
    }
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override {
        for (int index = 0; index < childCount(); ++index) {
            if (child(index)->rect().contains(x, y))
                return child(index);
        }
        return nullptr;
    }

    [[nodiscard]] QAccessible::Role role() const override {
        constexpr QAccessible::Role roles[] = {QAccessible::ListItem, QAccessible::ProgressBar,
                                               QAccessible::Button, QAccessible::Button};
        return roles[int(m_part)];
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (!isValid())
            return {};
        const QueueItem item = queueItemAt(m_row);
        if (kind == QAccessible::Description && m_part == Part::row)
            return displayText(item.progressLabel()) + QStringLiteral(", ") + item.percentLabel();
        if (kind == QAccessible::Description && m_part == Part::action)
            return displayText(item.problemText());
        if (kind != QAccessible::Name)
            return {};
        const QString names[] = {displayText(item.name), QStringLiteral("Progress"),
                                 QueueDelegate::removeHelp(), QueueDelegate::actionTitle(item)};
        return names[int(m_part)];
    }
    void setText(QAccessible::Text, const QString &) override {}
    [[nodiscard]] QRect rect() const override {
        return isValid() ? placeInViewport().translated(m_view->viewport()->mapToGlobal(QPoint())) : QRect();
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        if (!isValid())
            return state;
        state.invisible = !m_view->isVisible();
        state.offscreen = !m_view->viewport()->rect().intersects(placeInViewport());
        state.readOnly = m_part == Part::bar;
        state.focusable = isButton();
        state.focused = state.focusable && m_view->hasFocus() && m_view->currentIndex() == m_row &&
                        m_view->isOnAction() == (m_part == Part::action);
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ActionInterface && isButton())
            return static_cast<QAccessibleActionInterface *>(this);
        if (type == QAccessible::ValueInterface && m_part == Part::bar)
            return static_cast<QAccessibleValueInterface *>(this);
        return nullptr;
    }

    // -- The button

    [[nodiscard]] QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString &name) override {
        if (!isValid())
            return;
        if (name == pressAction()) {
            m_part == Part::action ? m_view->pressAction(m_row) : m_view->pressRemoveButton(m_row);
        } else if (name == setFocusAction()) {
            m_view->setCurrentIndex(m_row);
            m_view->setFocus(Qt::OtherFocusReason);
        }
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }

    // -- The bar, in percent

    [[nodiscard]] QVariant currentValue() const override {
        return isValid() ? qRound(std::clamp(shownFraction(queueItemAt(m_row).status), 0.0, 1.0) * 100) : 0;
    }
    void setCurrentValue(const QVariant &) override {}
    [[nodiscard]] QVariant maximumValue() const override { return 100; }
    [[nodiscard]] QVariant minimumValue() const override { return 0; }
    [[nodiscard]] QVariant minimumStepSize() const override { return 1; }

private:
    [[nodiscard]] bool isButton() const { return m_part == Part::removeButton || m_part == Part::action; }
    [[nodiscard]] QRect placeInViewport() const {
        const QRect row = m_view->visualRect(m_row);
        const QRect places[] = {row, QueueRowGeometry(row).bar, m_view->removeButtonRect(m_row),
                                m_view->actionRect(m_row)};
        return places[int(m_part)];
    }

    QPointer<QueueListView> m_view;
    QPersistentModelIndex m_row;
    Part m_part;
    QList<QAccessible::Id> m_children;
};

class QueueListInterface : public QAccessibleWidget {
public:
    explicit QueueListInterface(QueueListView *view) : QAccessibleWidget(view, QAccessible::List) {}
    ~QueueListInterface() override {
        for (const QAccessible::Id id : std::as_const(m_rows))
            QAccessible::deleteAccessibleInterface(id);
    }
    Q_DISABLE_COPY_MOVE(QueueListInterface)

    [[nodiscard]] int childCount() const override { return view()->model()->rowCount(); }
    [[nodiscard]] QAccessibleInterface *child(int row) const override {
        const QModelIndex index = view()->model()->index(row, 0);
        if (!index.isValid())
            return nullptr;
        if (QAccessibleInterface *known = knownRow(index))
            return known;
        auto *made = new QueuePart(view(), index, Part::row);
        m_rows.insert(index, QAccessible::registerAccessibleInterface(made));
        return made;
    }
    /// The row's interface if somebody has asked for it, else null.
    [[nodiscard]] QAccessibleInterface *knownRow(const QModelIndex &index) const {
        const auto known = m_rows.constFind(index);
        return known != m_rows.constEnd() ? QAccessible::accessibleInterface(*known) : nullptr;
    }
    void forgetRow(const QModelIndex &index) {
        if (QAccessibleInterface *known = knownRow(index)) {
            QAccessibleEvent removal(known, QAccessible::ObjectDestroyed);
            QAccessible::updateAccessibility(&removal);
            QAccessible::deleteAccessibleInterface(m_rows.take(index));
        }
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override {
        return m_rows.key(QAccessible::uniqueId(const_cast<QAccessibleInterface *>(child))).row();
    }
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override {
        return child(view()->indexAt(view()->viewport()->mapFromGlobal(QPoint(x, y))).row());
    }
    /// The button that has the keyboard.
    [[nodiscard]] QAccessibleInterface *focusChild() const override {
        QAccessibleInterface *row = view()->hasFocus() ? child(view()->currentIndex().row()) : nullptr;
        return row ? row->child(view()->isOnAction() ? actionChild : removeButtonChild) : nullptr;
    }

private:
    [[nodiscard]] QueueListView *view() const { return static_cast<QueueListView *>(object()); }

    /// The rows that somebody has asked for.
    mutable QHash<QPersistentModelIndex, QAccessible::Id> m_rows;
};

QAccessibleInterface *queueListInterface(const QString &, QObject *object) {
    auto *view = qobject_cast<QueueListView *>(object);
    return view ? new QueueListInterface(view) : nullptr;
}

QueueListInterface *interfaceOf(QueueListView *view) {
    return static_cast<QueueListInterface *>(QAccessible::queryAccessibleInterface(view));
}

} // namespace

void makeQueueAccessible() {
    // The toolkit keeps one copy of each factory.
    QAccessible::installFactory(queueListInterface);
}

void announceProgress(QueueListView *view, const QModelIndex &row) {
    QAccessibleInterface *known = interfaceOf(view)->knownRow(row);
    if (!known)
        return;
    QAccessibleEvent description(known, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&description);
    QAccessibleInterface *bar = known->child(0);
    QAccessibleValueChangeEvent value(bar, bar->valueInterface()->currentValue());
    QAccessible::updateAccessibility(&value);
}

void announceFocus(QueueListView *view) {
    QAccessibleInterface *button = interfaceOf(view)->focusChild();
    if (!button)
        return;
    QAccessibleEvent focus(button, QAccessible::Focus);
    QAccessible::updateAccessibility(&focus);
}

void announceRemoval(QueueListView *view, int first, int last) {
    for (int row = first; row <= last; ++row)
        interfaceOf(view)->forgetRow(view->model()->index(row, 0));
}

} // namespace vantrel
