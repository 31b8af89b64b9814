#pragma once

#include <QAbstractItemDelegate>

namespace vantrel {

struct QueueItem;
class QueueItemStatus;

/// The copy that stands in a row of a TransferQueue.
[[nodiscard]] QueueItem queueItemAt(const QModelIndex &index);

/// How much of the bar is filled; 0 to 1, as far as what was reported is.
[[nodiscard]] double shownFraction(const QueueItemStatus &status);

/// Where the parts of a row lie, in layout pixels: of the row at `row`, which is as high as rowHeight() and
/// ends above its divider.
struct QueueRowGeometry {
    explicit QueueRowGeometry(const QRect &row, bool showsReason = false);

    /// The same for every row, whatever it shows.
    [[nodiscard]] static int rowHeight();

    QRect icon;
    QRect name;
    QRect route;
    QRect bar;
    QRect progress;
    QRect percent;
    QRect reason; ///< in place of the route and the bar; there the percentage and the action stand above
    QRect action; ///< beside the percentage, where there is one to take
    QRect removeButton;
};

/// Paints the rows of the transfer queue, each with the divider below it, and tells the whole of a text that
/// is shortened. The button of the row that has the keyboard, removing or acting, carries the focus ring.
class QueueDelegate : public QAbstractItemDelegate {
    Q_OBJECT

public:
    static constexpr int dividerHeight = 1;

    /// `radius`: of the corners of the card that the rows are scrolled in; layout pixels.
    explicit QueueDelegate(double radius, QObject *parent = nullptr);

    /// What the remove button does.
    [[nodiscard]] static QString removeHelp();
    /// Whether words stand in place of the route and the bar: those of an end that are worth reading, or too
    /// long for the column of numbers.
    [[nodiscard]] static bool showsReason(const QueueItem &item);
    /// What the user may do about how the entry has ended: "Try again", "Keep both", or empty.
    [[nodiscard]] static QString actionTitle(const QueueItem &item);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

private:
    void clipToCard(QPainter &painter, const QStyleOptionViewItem &option) const;

    double m_radius;
};

} // namespace vantrel
