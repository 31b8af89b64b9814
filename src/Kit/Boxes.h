#pragma once

#include <QBoxLayout>

#include <functional>
#include <initializer_list>

namespace vantrel {

/// One thing in a row or a column: a widget or a layout with its share of the free room, or room alone.
class BoxItem {
public:
    // NOLINTBEGIN(google-explicit-constructor): a list of items reads as what stands in the box.
    BoxItem(QWidget *widget, int stretch = 0)
        : m_addTo([=](QBoxLayout &box) { box.addWidget(widget, stretch); }) {}
    BoxItem(QLayout *layout, int stretch = 0)
        : m_addTo([=](QBoxLayout &box) { box.addLayout(layout, stretch); }) {}
    // NOLINTEND(google-explicit-constructor)

    /// Room that grows.
    static BoxItem room(int stretch = 0) {
        return BoxItem([=](QBoxLayout &box) { box.addStretch(stretch); });
    }
    /// Room of a fixed size, in layout pixels.
    static BoxItem gap(int size) {
        return BoxItem([=](QBoxLayout &box) { box.addSpacing(size); });
    }

    void addTo(QBoxLayout &box) const { m_addTo(box); }

private:
    explicit BoxItem(std::function<void(QBoxLayout &)> addTo) : m_addTo(std::move(addTo)) {}

    std::function<void(QBoxLayout &)> m_addTo;
};

/// The items side by side, or one below the other, `spacing` apart and with `margins` around them; layout
/// pixels. For QWidget::setLayout(), or as an item of another box.
[[nodiscard]] QBoxLayout *rowOf(int spacing, std::initializer_list<BoxItem> items, QMargins margins = {});
[[nodiscard]] QBoxLayout *columnOf(int spacing, std::initializer_list<BoxItem> items, QMargins margins = {});

/// The widget, with the name that it is found by.
template <class Widget>
[[nodiscard]] Widget *named(const QString &objectName, Widget *widget) {
    widget->setObjectName(objectName);
    return widget;
}

} // namespace vantrel
