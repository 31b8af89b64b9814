#include "Views/FileItemsAccessibility.h"

#include "Kit/TextStyle.h"
#include "Views/FileItemsView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

namespace vantrel {

namespace {

/// One entry, by its place: it always tells what stands there now.
class FileItemInterface : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    FileItemInterface(FileItemsView *view, int index) : m_view(view), m_index(index) {}

    [[nodiscard]] bool isValid() const override { return m_view && m_index < m_view->count(); }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override {
        return isValid() ? m_view->window()->windowHandle() : nullptr;
    }
    [[nodiscard]] QAccessibleInterface *parent() const override {
        return QAccessible::queryAccessibleInterface(m_view);
    }
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (!isValid())
            return {};
        const FileEntry entry = m_view->contents().entry(m_index);
        if (kind == QAccessible::Name)
            return displayText(entry.item.name);
        if (kind == QAccessible::Description)
            return displayText(entry.captionLabel() + QStringLiteral(", ") + entry.item.modifiedLabel());
        return {};
    }
    void setText(QAccessible::Text, const QString &) override {}

    [[nodiscard]] QRect rect() const override {
        if (!isValid())
            return {};
        const QRect inViewport = m_view->entryRect(m_index);
        return {m_view->viewport()->mapToGlobal(inViewport.topLeft()), inViewport.size()};
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const bool isSelected = m_view->contents().entry(m_index).isSelected;
        state.checkable = true;
        state.checked = isSelected;
        state.selectable = true;
        state.selected = isSelected;
        state.multiSelectable = true;
        state.focusable = true;
        state.focused = m_view->focusedIndex() == m_index;
        state.invisible = !m_view->isVisible();
        state.offscreen = !m_view->viewport()->rect().intersects(m_view->entryRect(m_index));
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this)
                                                    : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override {
        return {toggleAction(), pressAction(), showMenuAction(), setFocusAction()};
    }
    void doAction(const QString &name) override {
        if (!isValid())
            return;
        const FileItem item = m_view->contents().items.at(m_index);
        if (name == toggleAction()) {
            Q_EMIT m_view->toggled(item);
        } else if (name == pressAction()) {
            Q_EMIT m_view->selected(item);
        } else if (name == showMenuAction()) {
            m_view->requestContextMenu(m_index);
        } else if (name == setFocusAction()) {
            m_view->setFocus(Qt::OtherFocusReason);
            m_view->setFocusedIndex(m_index);
        }
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    QPointer<FileItemsView> m_view;
    int m_index;
};

class FileItemsInterface : public QAccessibleWidget {
public:
    explicit FileItemsInterface(FileItemsView *view) : QAccessibleWidget(view, QAccessible::List) {}
    ~FileItemsInterface() override {
        for (const QAccessible::Id id : std::as_const(m_items))
            QAccessible::deleteAccessibleInterface(id);
    }
    Q_DISABLE_COPY_MOVE(FileItemsInterface)

    [[nodiscard]] int childCount() const override { return int(view()->count()); }
    [[nodiscard]] QAccessibleInterface *child(int index) const override {
        if (index < 0 || index >= childCount())
            return nullptr;
        if (const auto known = m_items.constFind(index); known != m_items.constEnd())
            return QAccessible::accessibleInterface(*known);
        auto *item = new FileItemInterface(view(), index);
        m_items.insert(index, QAccessible::registerAccessibleInterface(item));
        return item;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override {
        return m_items.key(QAccessible::uniqueId(const_cast<QAccessibleInterface *>(child)), -1);
    }
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override {
        return child(int(view()->indexAt(view()->viewport()->mapFromGlobal(QPoint(x, y)))));
    }
    [[nodiscard]] QAccessibleInterface *focusChild() const override {
        const qsizetype focused = view()->focusedIndex();
        return view()->hasFocus() && focused >= 0 ? child(int(focused)) : nullptr;
    }

private:
    [[nodiscard]] FileItemsView *view() const { return static_cast<FileItemsView *>(object()); }

    /// The items that somebody has asked for.
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

void announceSelection(FileItemsView *view, int index) {
    QAccessible::State changed;
    changed.checked = true;
    changed.selected = true;
    QAccessibleStateChangeEvent event(view, changed);
    event.setChild(index);
    QAccessible::updateAccessibility(&event);
}

} // namespace vantrel
