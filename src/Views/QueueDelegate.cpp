#include "Views/QueueDelegate.h"

#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Kit/TextStyle.h"
#include "Kit/ToolTips.h"
#include "Theme/AppTheme.h"
#include "Transfers/TransferQueue.h"
#include "Views/QueueListView.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>

#include <utility>

namespace vantrel {

namespace {

constexpr int horizontalPadding = 12;
constexpr int verticalPadding = 10;
constexpr int columnGap = 12;
constexpr int lineGap = 4;
constexpr int numbersGap = 2;
constexpr int iconWidth = 22;
constexpr int designedNumbersWidth = 110;
constexpr int designedPercentWidth = 42; ///< of "Error", the longest beside an action
constexpr int barHeight = 5;
constexpr int buttonSize = 22;

constexpr TextStyle nameStyle{12.5, Weight::semibold};
constexpr TextStyle routeStyle{10.5, Weight::medium};
constexpr TextStyle progressStyle{11, Weight::medium};
constexpr TextStyle actionStyle{10.5, Weight::semibold};
constexpr TextStyle percentStyle{11, Weight::semibold, FontDesign::monospaced};

ThemeColor barColor(const QueueItemStatus &status) {
    if (status.is<QueueItemStatus::Completed>())
        return AppTheme::success();
    if (status.is<QueueItemStatus::Failed>())
        return AppTheme::danger();
    if (status.is<QueueItemStatus::Waiting>() || status.is<QueueItemStatus::NameTaken>())
        return AppTheme::strokeStrong();
    return AppTheme::progress();
}

QString routeOf(const QueueItem &item) {
    return item.sourcePath + QStringLiteral("  →  ") + item.destinationPath();
}

void paintRemoveButton(QPainter &painter, const QRect &rect, bool hasFocus) {
    constexpr double radius = buttonSize / 2.0;
    paintCard(painter, rect, radius, AppTheme::canvas(), AppTheme::stroke());
    Symbol{QStringLiteral("xmark"), 10, Weight::bold}.paint(painter, rect, AppTheme::inkSecondary());
    if (hasFocus)
        paintFocusRing(painter, rect, radius);
}

} // namespace

QueueItem queueItemAt(const QModelIndex &index) {
    return index.data(TransferQueue::itemRole).value<QueueItem>();
}

double shownFraction(const QueueItemStatus &status) {
    if (const auto *progress = status.progress())
        return progress->fraction;
    return status.is<QueueItemStatus::Completed>() ? 1 : 0;
}

QueueRowGeometry::QueueRowGeometry(const QRect &row, bool showsReason)
    : icon(row.left() + horizontalPadding, row.top(), iconWidth, row.height()),
      removeButton(row.right() + 1 - horizontalPadding - buttonSize,
                   row.top() + (row.height() - buttonSize) / 2, buttonSize, buttonSize) {
    const int numbersWidth = withTexts(designedNumbersWidth);
    const int progressHeight = progressStyle.lineHeight();
    const int percentHeight = percentStyle.lineHeight();
    const int numbersLeft = removeButton.left() - columnGap - numbersWidth;
    const int numbersTop = row.top() + (row.height() - progressHeight - numbersGap - percentHeight + 1) / 2;
    progress = {numbersLeft, numbersTop, numbersWidth, progressHeight};
    percent = {numbersLeft, numbersTop + progressHeight + numbersGap, numbersWidth, percentHeight};

    const int left = icon.right() + 1 + columnGap;
    const int width = qMax(0, numbersLeft - columnGap - left);
    name = {left, row.top() + verticalPadding, width, nameStyle.lineHeight()};
    route = {left, name.bottom() + 1 + lineGap, width, routeStyle.lineHeight()};
    bar = {left, route.bottom() + 1 + lineGap, width, barHeight};
    reason = {left, name.bottom() + 1, progress.right() + 1 - left, bar.bottom() - name.bottom()};
    if (showsReason)
        percent.moveTop(name.top() + (name.height() - percentHeight) / 2);
    action = percent.adjusted(0, 0, -withTexts(designedPercentWidth), 0);
    for (QRect *part : {&icon, &name, &route, &bar, &reason, &progress, &percent, &action, &removeButton})
        *part = inReadingDirection(*part, row);
}

int QueueRowGeometry::rowHeight() {
    static double scale = 0;
    static int height = 0; // asked for often
    if (std::exchange(scale, textScale()) != textScale())
        height = 2 * verticalPadding + nameStyle.lineHeight() + lineGap + routeStyle.lineHeight() + lineGap +
                 barHeight;
    return height;
}

QueueDelegate::QueueDelegate(double radius, QObject *parent)
    : QAbstractItemDelegate(parent), m_radius(radius) {}

QString QueueDelegate::removeHelp() {
    return QStringLiteral("Remove this transfer from the queue");
}

QString QueueDelegate::actionTitle(const QueueItem &item) {
    if (item.canTryAgain())
        return QStringLiteral("Try again");
    return item.canKeepBoth() ? QStringLiteral("Keep both") : QString();
}

bool QueueDelegate::showsReason(const QueueItem &item) {
    return item.canTryAgain() || item.canKeepBoth() ||
           ((item.status.is<QueueItemStatus::Completed>() || item.status.is<QueueItemStatus::Waiting>()) &&
            progressStyle.width(item.progressLabel()) > withTexts(designedNumbersWidth));
}

QSize QueueDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const {
    return {0, QueueRowGeometry::rowHeight() + dividerHeight};
}

void QueueDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const {
    const QueueItem item = queueItemAt(index);
    const QRect row = option.rect.adjusted(0, 0, 0, -dividerHeight);
    const bool isReason = showsReason(item);
    const QueueRowGeometry parts(row, isReason);
    painter->save();
    clipToCard(*painter, option);

    const Symbol symbol{item.isDirectory ? QStringLiteral("folder.fill") : QStringLiteral("doc.fill"), 14,
                        Weight::semibold};
    symbol.paint(*painter, parts.icon, item.isDirectory ? AppTheme::folderBlue() : AppTheme::inkSecondary());
    paintText(*painter, parts.name, item.name, nameStyle, AppTheme::ink());
    constexpr auto trailing = Qt::AlignRight | Qt::AlignVCenter;
    if (isReason) {
        paintText(*painter, parts.reason, item.progressLabel(), progressStyle,
                  item.canTryAgain() ? AppTheme::danger() : AppTheme::inkSecondary());
    } else {
        paintText(*painter, parts.route, routeOf(item), routeStyle, AppTheme::inkTertiary(),
                  Qt::AlignLeft | Qt::AlignVCenter, Elision::middle);
        paintProgress(*painter, parts.bar, shownFraction(item.status), barColor(item.status),
                      AppTheme::stroke());
        paintText(*painter, parts.progress, item.progressLabel(), progressStyle, AppTheme::inkSecondary(),
                  trailing);
    }
    paintText(*painter, parts.percent, item.percentLabel(), percentStyle, AppTheme::ink(), trailing);
    const bool hasFocus = option.state.testFlag(QStyle::State_HasFocus);
    const auto *list = qobject_cast<const QueueListView *>(option.widget);
    const bool isOnAction = list && list->isOnAction();
    paintRemoveButton(*painter, parts.removeButton, hasFocus && !isOnAction);
    if (const QString title = actionTitle(item); !title.isEmpty()) {
        paintText(*painter, parts.action, title, actionStyle, AppTheme::accent(), trailing);
        if (hasFocus && isOnAction)
            paintFocusRing(*painter, parts.action, 4);
    }

    if (index.row() + 1 < index.model()->rowCount())
        painter->fillRect(
            QRectF(row.left() + hairline, row.bottom() + 1, row.width() - 2 * hairline, dividerHeight),
            AppTheme::stroke());
    painter->restore();
}

/// The card's line stays in sight, whatever is scrolled under it.
void QueueDelegate::clipToCard(QPainter &painter, const QStyleOptionViewItem &option) const {
    const QRectF card = option.widget->rect();
    const bool isInMiddle = option.rect.top() >= card.top() + m_radius &&
                            option.rect.bottom() < card.bottom() - m_radius; // where its sides are straight
    if (isInMiddle)
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(
        roundedRect(card.adjusted(hairline, hairline, -hairline, -hairline), m_radius - hairline),
        Qt::IntersectClip);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

bool QueueDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                              const QModelIndex &index) {
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QAbstractItemDelegate::helpEvent(event, view, option, index);
    const QueueItem item = queueItemAt(index);
    const bool isReason = showsReason(item);
    const QueueRowGeometry parts(option.rect.adjusted(0, 0, 0, -dividerHeight), isReason);
    const struct {
        QRect rect;
        QString text;
        TextStyle style;
    } texts[] = {{parts.name, item.name, nameStyle},
                 {parts.route, routeOf(item), routeStyle},
                 {parts.progress, item.progressLabel(), progressStyle}};
    QStringList help;
    if (parts.removeButton.contains(event->pos()))
        help = {removeHelp()};
    for (const auto &[rect, text, style] : texts) {
        if (!(isReason && rect != parts.name) && rect.contains(event->pos()) &&
            style.width(text) > rect.width())
            help = {text};
    }
    const QString problems = item.problemText();
    const QRect words = isReason ? parts.reason : parts.progress | parts.percent;
    if ((isReason || !problems.isEmpty()) && words.contains(event->pos())) {
        help = item.progressLabel().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        if (!problems.isEmpty())
            help += QStringList(QString()) + problems.split(QLatin1Char('\n'));
        help += {QString(), routeOf(item)};
    }
    std::transform(help.begin(), help.end(), help.begin(), &displayText); // a name has no lines of its own
    ToolTips::show(help.join(QLatin1Char('\n')), view->viewport(), option.rect);
    return true;
}

} // namespace vantrel
