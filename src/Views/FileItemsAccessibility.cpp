#include "Views/FileItemsAccessibility.h"

#include "Views/FileDelegate.h"
#include "Views/FileItemsView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

namespace vantrel {

namespace {

/// The entry that stands in a row, whichever that is at the time.
class FileItemInterface : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    FileItemInterface(FileItemsView *view, int row) : m_view(view), m_row(row) {}

    [[nodiscard]] bool isValid() const override { return m_view && index().isValid(); }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override {
        return isValid() ? m_view->window()->windowHandle() : nullptr;
    }
    [[nodiscard]] QAccessibleInterface *parent() const override {
        return m_view ? QAccessible::queryAccessibleInterface(m_view) : nullptr;
    }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }

    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (!isValid() || (kind != QAccessible::Name && kind != QAccessible::Description))
            return {};
        return index()
            .data(kind == QAccessible::Name ? Qt::AccessibleTextRole : Qt::AccessibleDescriptionRole)
            .toString();
    }
    void setText(QAccessible::Text, const QString &) override {}
    [[nodiscard]] QRect rect() const override {
        return isValid() ? m_view->visualRect(index()).translated(m_view->viewport()->mapToGlobal(QPoint()))
                         : QRect();
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        if (!isValid())
            return state;
        state.invisible = !m_view->isVisible();
        state.offscreen = !m_view->viewport()->rect().intersects(m_view->visualRect(index()));
        state.selectable = state.checkable = state.focusable = true;
        state.selected = state.checked = m_view->selectionModel()->isSelected(index());
        state.focused = m_view->hasFocus() && m_view->focusedIndex() == index();
        return state;
    }
    void *interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this)
                                                    : nullptr;
    }

    // -- What can be done with it

    [[nodiscard]] QStringList actionNames() const override {
        return {pressAction(), toggleAction(), setFocusAction()};
    }
    [[nodiscard]] QString localizedActionName(const QString &name) const override {
        return name == pressAction() ? QStringLiteral("Open")
                                     : QAccessibleActionInterface::localizedActionName(name);
    }
    [[nodiscard]] QString localizedActionDescription(const QString &name) const override {
        return name == pressAction() ? QStringLiteral("Opens the folder or the file")
                                     : QAccessibleActionInterface::localizedActionDescription(name);
    }
    void doAction(const QString &name) override {
        if (!isValid())
            return;
        if (name == pressAction()) {
            Q_EMIT m_view->opened(FileDelegate::entry(index()).item);
        } else if (name == toggleAction()) {
            m_view->selectionModel()->select(index(), QItemSelectionModel::Toggle);
        } else if (name == setFocusAction()) {
            m_view->takeFocus();
            m_view->setCurrentIndex(index());
        }
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    [[nodiscard]] QModelIndex index() const { return m_view->model()->index(m_row, 0); }

    QPointer<FileItemsView> m_view;
    int m_row;
};

class FileItemsInterface : public QAccessibleWidget {
public:
    explicit FileItemsInterface(FileItemsView *view) : QAccessibleWidget(view, QAccessible::List) {}
    ~FileItemsInterface() override {
        for (const QAccessible::Id id : std::as_const(m_items))
            QAccessible::deleteAccessibleInterface(id);
    }
    Q_DISABLE_COPY_MOVE(FileItemsInterface)

    [[nodiscard]] int childCount() const override { return view()->model()->rowCount(); }
    [[nodiscard]] QAccessibleInterface *child(int row) const override {
        if (row < 0 || row >= childCount())
            return nullptr;
        auto known = m_items.constFind(row);
        if (known == m_items.constEnd())
            known = m_items.insert(
                row, QAccessible::registerAccessibleInterface(new FileItemInterface(view(), row)));
        return QAccessible::accessibleInterface(*known);
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override {
        return m_items.key(QAccessible::uniqueId(const_cast<QAccessibleInterface *>(child)), -1);
    }
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override {
        return child(view()->indexAt(view()->viewport()->mapFromGlobal(QPoint(x, y))).row());
    }
    [[nodiscard]] QAccessibleInterface *focusChild() const override {
        return view()->hasFocus() ? child(view()->focusedIndex().row()) : nullptr;
    }

private:
    [[nodiscard]] FileItemsView *view() const { return static_cast<FileItemsView *>(object()); }

    /// The rows that somebody has asked for.
    mutable QHash<int, QAccessible::Id> m_items;
};

QAccessibleInterface *fileItemsInterface(const QString &, QObject *object) {
    auto *view = qobject_cast<FileItemsView *>(object);
    return view ? new FileItemsInterface(view) : nullptr;
}

} // namespace

void makeFileItemsAccessible() {
    // The toolkit keeps one copy of each factory.
    QAccessible::installFactory(fileItemsInterface);
}

} // namespace vantrel
