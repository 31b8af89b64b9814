#include "Views/FileDelegate.h"

#include "Kit/Shapes.h"
#include "Kit/TextStyle.h"
#include "Kit/ToolTips.h"
#include "Theme/AppTheme.h"
#include "Views/FileItemsModel.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>

namespace vantrel {

namespace {
constexpr int dividerHeight = 1;
} // namespace

FileEntry FileDelegate::entry(const QModelIndex &index) {
    return index.data(FileItemsModel::entryRole).value<FileEntry>();
}

bool FileDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                             const QModelIndex &index) {
    if (event->type() != QEvent::ToolTip)
        return QAbstractItemDelegate::helpEvent(event, view, option, index);
    const FileEntry shown = entry(index);
    ToolTips::show(cutsName(shown, option.rect) ? displayText(shown.item.name) : QString(), view->viewport(),
                   option.rect);
    return true;
}

void FileRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const {
    constexpr int dividerIndent = 40;
    const FileEntry shown = entry(index);
    const QRect &rect = option.rect;
    FileRow{shown}.paint(*painter, rect.adjusted(0, 0, 0, -dividerHeight));
    const QRect line(rect.left(), rect.bottom(), rect.width(), dividerHeight);
    // Selected rows touch: no notch of the background between them where the divider is indented.
    if (shown.isSelected)
        painter->fillRect(line, AppTheme::accentSoft());
    painter->fillRect(inReadingDirection(line.adjusted(dividerIndent, 0, 0, 0), line), AppTheme::stroke());
}

int FileRowDelegate::height(bool showsLocation) {
    return FileRowGeometry::height(showsLocation) + dividerHeight;
}

void FileGridCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const {
    const auto picture = index.data(FileItemsModel::pictureRole).value<QImage>();
    FileGridCell{entry(index), picture, m_tileHeight}.paint(*painter, option.rect);
}

} // namespace vantrel
