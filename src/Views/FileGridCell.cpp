#include "Views/FileGridCell.h"

#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Kit/TextStyle.h"
#include "Views/FileRow.h"

#include <QPainter>

#include <algorithm>

namespace vantrel {

namespace {

constexpr TextStyle nameStyle{11, Weight::semibold};
constexpr TextStyle captionStyle{9.5, Weight::medium};

constexpr double badgeMargin = 6;
constexpr double textGap = 6;
constexpr double lineGap = 2;

Symbol badgeSymbol(bool isSelected) {
    return {isSelected ? QStringLiteral("checkmark.circle.fill") : QStringLiteral("circle"), 14,
            Weight::semibold};
}

bool isPicture(const QString &name) {
    static const QLatin1String suffixes[] = {QLatin1String(".jpg"), QLatin1String(".jpeg"),
                                             QLatin1String(".png"), QLatin1String(".heic"),
                                             QLatin1String(".webp")};
    const QString lowered = name.toLower();
    return std::any_of(std::begin(suffixes), std::end(suffixes),
                       [&lowered](QLatin1String suffix) { return lowered.endsWith(suffix); });
}

} // namespace

FileGridCellGeometry::FileGridCellGeometry(const QRectF &rect)
    : tile(rect.left(), rect.top(), rect.width(), tileHeight),
      name(rect.left(), tile.bottom() + textGap, rect.width(), nameLines * nameStyle.lineHeight()),
      caption(rect.left(), name.top() + nameStyle.lineHeight() + lineGap, rect.width(),
              captionStyle.lineHeight()) {
    const QSizeF size = badgeSymbol(false).naturalSize();
    badge = QRectF(tile.right() - badgeMargin - size.width(), tile.top() + badgeMargin, size.width(),
                   size.height());
    badgeTarget = badge.adjusted(-badgeMargin, -badgeMargin, badgeMargin, badgeMargin);
}

int FileGridCellGeometry::height() {
    return int(tileHeight + textGap + nameLines * nameStyle.lineHeight() + lineGap +
               captionStyle.lineHeight());
}

QString FileGridCell::fileIcon(const QString &name) {
    return isPicture(name) ? QStringLiteral("photo") : FileRow::fileIcon(name);
}

ThemeColor FileGridCell::fileColor(const QString &name) {
    return isPicture(name) ? AppTheme::folderBlue() : FileRow::fileColor(name);
}

QString FileGridCell::icon() const {
    return item.isDirectory ? QStringLiteral("folder.fill") : fileIcon(item.name);
}

ThemeColor FileGridCell::iconColor() const {
    return item.isDirectory ? AppTheme::folderBlue() : fileColor(item.name);
}

FileEntry::Part FileGridCell::hitTest(const QRectF &rect, const QPointF &point) const {
    return FileGridCellGeometry(rect).badgeTarget.contains(point) ? Part::mark : Part::body;
}

bool FileGridCell::cutsName(const QRectF &rect) const {
    constexpr int lines = FileGridCellGeometry::nameLines;
    const double width = FileGridCellGeometry(rect).name.width();
    return wrappedLines(item.name, nameStyle, width, lines + 1).size() > lines;
}

void FileGridCell::paint(QPainter &painter, const QRectF &rect) const {
    const FileGridCellGeometry parts(rect);
    paintCard(painter, parts.tile, FileGridCellGeometry::tileRadius,
              isSelected ? AppTheme::accentSoft() : AppTheme::canvas(),
              isSelected ? AppTheme::accent().withOpacity(0.45) : AppTheme::stroke());
    Symbol{icon(), 28, Weight::semibold}.paint(painter, parts.tile, iconColor());
    badgeSymbol(isSelected)
        .paint(painter, parts.badge, isSelected ? AppTheme::accent() : AppTheme::inkTertiary());

    QRectF line(parts.name.topLeft(), QSizeF(parts.name.width(), nameStyle.lineHeight()));
    QRectF caption = parts.caption;
    const QStringList lines =
        wrappedLines(item.name, nameStyle, parts.name.width(), FileGridCellGeometry::nameLines);
    for (const QString &words : lines) {
        paintText(painter, line, words, nameStyle, AppTheme::ink(), Qt::AlignCenter);
        line.translate(0, line.height());
    }
    if (lines.size() > 1)
        caption.translate(0, nameStyle.lineHeight());
    paintText(painter, caption, captionLabel(), captionStyle, AppTheme::inkTertiary(), Qt::AlignCenter);
}

} // namespace vantrel
