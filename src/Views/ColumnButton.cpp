#include "Views/ColumnButton.h"

#include "Kit/Accessibility.h"
#include "Kit/Shapes.h"
#include "Kit/TextStyle.h"

#include <cmath>

namespace vantrel {

namespace {

constexpr TextStyle titleStyle{10.5, Weight::semibold};
constexpr double arrowWidth = 14; ///< with the space between it and the title

QString sortHelp(FileSortKey column) {
    switch (column) {
    case FileSortKey::size:
        return QStringLiteral("Sort by size");
    case FileSortKey::modified:
        return QStringLiteral("Sort by date");
    case FileSortKey::name:
        break;
    }
    return QStringLiteral("Sort by name");
}

QString orderInWords(FileOrder order) {
    const bool isAscending = order.direction == Qt::AscendingOrder;
    switch (order.key) {
    case FileSortKey::size:
        return isAscending ? QStringLiteral("Smallest first") : QStringLiteral("Largest first");
    case FileSortKey::modified:
        return isAscending ? QStringLiteral("Oldest first") : QStringLiteral("Newest first");
    case FileSortKey::name:
        break;
    }
    return isAscending ? QStringLiteral("From A to Z") : QStringLiteral("From Z to A");
}

Symbol arrow(Qt::SortOrder direction) {
    return {direction == Qt::AscendingOrder ? QStringLiteral("chevron.up") : QStringLiteral("chevron.down"),
            8, Weight::bold};
}

} // namespace

ColumnButton::ColumnButton(FileSortKey column, QWidget *parent) : PlainButton(parent), m_column(column) {
    setRingRadius(3);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setToolTip(sortHelp(column));
}

void ColumnButton::setAlignment(Qt::Alignment alignment) {
    m_alignment = alignment;
}

void ColumnButton::show(const QString &title, FileOrder order) {
    const auto direction = order.key == m_column ? std::optional(order.direction) : std::nullopt;
    if (title == text() && direction == m_direction)
        return;
    m_direction = direction;
    setText(title);
    setAccessibleTexts(this, title, direction ? orderInWords(order) : sortHelp(m_column));
    updateGeometry();
    update();
}

QSize ColumnButton::sizeHint() const {
    return {int(std::ceil(titleStyle.width(text()) + arrowWidth)), titleStyle.lineHeight()};
}

void ColumnButton::paintContent(QPainter &painter) {
    const bool isRight = m_alignment.testFlag(Qt::AlignRight);
    const ThemeColor color = m_direction ? AppTheme::inkSecondary() : AppTheme::inkTertiary();
    const QRectF room = QRectF(rect()).adjusted(isRight ? arrowWidth : 0, 0, isRight ? 0 : -arrowWidth, 0);
    paintText(painter, inReadingDirection(room, rect()), text(), titleStyle, color,
              m_alignment | Qt::AlignVCenter);
    if (!m_direction)
        return;
    const double width = std::min(titleStyle.width(text()), room.width());
    QRectF place(0, 0, arrowWidth, height());
    place.moveLeft(isRight ? room.right() - width - arrowWidth : room.left() + width);
    arrow(*m_direction).paint(painter, inReadingDirection(place, rect()), color);
}

} // namespace vantrel
