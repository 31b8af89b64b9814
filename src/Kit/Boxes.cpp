#include "Kit/Boxes.h"

namespace vantrel {

namespace {

QBoxLayout *boxOf(QBoxLayout::Direction direction, int spacing, std::initializer_list<BoxItem> items,
                  QMargins margins) {
    auto *box = new QBoxLayout(direction);
    box->setContentsMargins(margins);
    box->setSpacing(spacing);
    for (const BoxItem &item : items)
        item.addTo(*box);
    return box;
}

} // namespace

QBoxLayout *rowOf(int spacing, std::initializer_list<BoxItem> items, QMargins margins) {
    return boxOf(QBoxLayout::LeftToRight, spacing, items, margins);
}

QBoxLayout *columnOf(int spacing, std::initializer_list<BoxItem> items, QMargins margins) {
    return boxOf(QBoxLayout::TopToBottom, spacing, items, margins);
}

} // namespace vantrel
