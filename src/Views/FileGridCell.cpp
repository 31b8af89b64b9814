#include "Views/FileGridCell.h"

#include "Kit/Picture.h"
#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Thumbnails/MediaKind.h"
#include "Views/FileRow.h"

#include <QPainter>

namespace vantrel {

namespace {

constexpr TextStyle nameStyle = FileGridCellGeometry::nameStyle;
constexpr TextStyle captionStyle{9.5, Weight::medium};

constexpr double badgeMargin = 6;
constexpr double textGap = 6;
constexpr double lineGap = 2;

Symbol badgeSymbol(bool isSelected) {
    return {isSelected ? QStringLiteral("checkmark.circle.fill") : QStringLiteral("circle"), 14,
            Weight::semibold};
}

bool isPicture(const FileEntry &entry) {
    return !entry.item.isDirectory &&
           entry.nameEndsWith({QLatin1String(".jpg"), QLatin1String(".jpeg"), QLatin1String(".png"),
                               QLatin1String(".heic"), QLatin1String(".webp")});
}

/// What makes a symbol readable on any picture.
void paintGround(QPainter &painter, const QRectF &symbol) {
    constexpr double margin = 1;
    const QRectF ground = symbol.adjusted(margin, margin, -margin, -margin);
    paintCard(painter, ground, ground.width() / 2, AppTheme::surface().withOpacity(0.85), Qt::transparent);
}

} // namespace

FileGridCellGeometry::FileGridCellGeometry(const QRectF &rect, double tileHeight)
    : tile(rect.left(), rect.top(), rect.width(), tileHeight),
      name(rect.left(), tile.bottom() + textGap, rect.width(), nameLines * nameStyle.lineHeight()),
      caption(rect.left(), name.top() + nameStyle.lineHeight() + lineGap, rect.width(),
              captionStyle.lineHeight()) {
    const QSizeF size = badgeSymbol(false).naturalSize();
    badge = QRectF(tile.right() - badgeMargin - size.width(), tile.top() + badgeMargin, size.width(),
                   size.height());
    badge = inReadingDirection(badge, tile);
    badgeTarget = badge.adjusted(-badgeMargin, -badgeMargin, badgeMargin, badgeMargin);
}

int FileGridCellGeometry::height(double tileHeight, int lines) {
    return int(tileHeight + textGap + lines * nameStyle.lineHeight() + lineGap + captionStyle.lineHeight());
}

QString FileGridCell::icon() const {
    return isPicture(*this) ? QStringLiteral("photo") : FileRow{static_cast<const FileEntry &>(*this)}.icon();
}

ThemeColor FileGridCell::iconColor() const {
    return isPicture(*this) ? AppTheme::folderBlue()
                            : FileRow{static_cast<const FileEntry &>(*this)}.iconColor();
}

FileEntry::Part FileGridCell::hitTest(const QRectF &rect, const QPointF &point) const {
    return FileGridCellGeometry(rect).badgeTarget.contains(point) ? Part::mark : Part::body;
}

bool FileGridCell::cutsName(const QRectF &rect) const {
    constexpr int lines = FileGridCellGeometry::nameLines;
    const double width = FileGridCellGeometry(rect).name.width();
    return wrappedLines(item.name, nameStyle, width, lines + 1).size() > lines;
}

void FileGridCell::paintTile(QPainter &painter, const FileGridCellGeometry &parts) const {
    const ThemeColor line = isSelected ? AppTheme::accent().withOpacity(0.45) : AppTheme::stroke();
    if (picture.isNull()) {
        paintCard(painter, parts.tile, radius, isSelected ? AppTheme::accentSoft() : AppTheme::canvas(),
                  line);
        const double size = 28 * tileHeight / FileGridCellGeometry::standardTileHeight;
        Symbol{icon(), size, Weight::semibold}.paint(painter, parts.tile, iconColor());
        return;
    }
    paintCard(painter, parts.tile, radius, AppTheme::canvas(),
              Qt::transparent); // seen through what is transparent
    paintPicture(painter, parts.tile, radius, picture);
    if (isSelected)
        paintCard(painter, parts.tile, radius, AppTheme::accent().withOpacity(0.25), AppTheme::accent(), 2);
    else
        paintCard(painter, parts.tile, radius, Qt::transparent, line);
    paintGround(painter, parts.badge);
    if (isVideo(mediaKindOf(item.name))) {
        QRectF mark(QPointF(), parts.badge.size());
        mark.moveBottomLeft(parts.tile.bottomLeft() + QPointF(badgeMargin, -badgeMargin));
        paintGround(painter, mark);
        Symbol{QStringLiteral("play.fill"), 9, Weight::semibold}.paint(painter, mark,
                                                                       AppTheme::inkSecondary());
    }
}

void FileGridCell::paint(QPainter &painter, const QRectF &rect) const {
    const FileGridCellGeometry parts(rect, tileHeight);
    paintTile(painter, parts);
    badgeSymbol(isSelected)
        .paint(painter, parts.badge, isSelected ? AppTheme::accent() : AppTheme::inkTertiary());

    const int lines = paintLines(painter, parts.name, item.name, nameStyle, AppTheme::ink(),
                                 FileGridCellGeometry::nameLines);
    const QRectF caption = parts.caption.translated(0, lines > 1 ? nameStyle.lineHeight() : 0);
    paintText(painter, caption, captionLabel(), captionStyle, AppTheme::inkTertiary(), Qt::AlignCenter,
              Elision::middle);
}

} // namespace vantrel
