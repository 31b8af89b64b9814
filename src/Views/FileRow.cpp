#include "Views/FileRow.h"

#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Kit/TextStyle.h"

#include <QPainter>

#include <algorithm>
#include <initializer_list>

namespace vantrel {

namespace {

constexpr TextStyle nameStyle{12.5, Weight::medium};
constexpr TextStyle locationStyle{10.5, Weight::medium};
constexpr TextStyle columnStyle{11.5, Weight::medium};

constexpr double iconWidth = 16;
constexpr double iconGap = 8;
constexpr double lineGap = 1;

constexpr double verticalInset(bool showsLocation) {
    return showsLocation ? 8 : 7;
}

struct FileKind {
    std::initializer_list<QLatin1String> suffixes;
    QLatin1String icon;
    ThemeColor (*color)();
};

const FileKind &kindOf(const FileEntry &entry) {
    static const FileKind kinds[] = {
        {{QLatin1String(".mp4"), QLatin1String(".mov")}, QLatin1String("film"), &AppTheme::systemPurple},
        {{QLatin1String(".m4a"), QLatin1String(".mp3")}, QLatin1String("music.note"), &AppTheme::systemPink},
        {{QLatin1String(".zip")}, QLatin1String("doc.zipper"), &AppTheme::systemOrange},
        {{QLatin1String(".txt")}, QLatin1String("doc.text"), &AppTheme::inkSecondary},
    };
    static const FileKind anyFile{{}, QLatin1String("doc.fill"), &AppTheme::inkSecondary};
    static const FileKind folder{{}, QLatin1String("folder.fill"), &AppTheme::folderBlue};
    if (entry.item.isDirectory)
        return folder;
    const auto *kind = std::find_if(std::begin(kinds), std::end(kinds),
                                    [&entry](const FileKind &of) { return entry.nameEndsWith(of.suffixes); });
    return kind != std::end(kinds) ? *kind : anyFile;
}

} // namespace

FileRowGeometry::FileRowGeometry(const QRectF &rect, bool showsLocation)
    : checkbox(rect.left() + inset, rect.top(), checkboxWidth, rect.height()) {
    const double dateWidth = showsModified(rect.width()) ? modifiedWidth() : 0;
    const double nameCell = std::max(0.0, rect.width() - 2 * inset - checkboxWidth - sizeWidth() - dateWidth);
    size = QRectF(checkbox.right() + nameCell, rect.top(), sizeWidth(), rect.height());
    modified = QRectF(size.right(), rect.top(), dateWidth, rect.height());

    icon = QRectF(checkbox.right(), rect.top(), std::min(iconWidth, nameCell), rect.height());
    const double textLeft = checkbox.right() + iconWidth + iconGap;
    const double textWidth = std::max(0.0, size.left() - textLeft);
    name = QRectF(textLeft, rect.top() + verticalInset(showsLocation), textWidth, nameStyle.lineHeight());
    if (showsLocation)
        location = QRectF(textLeft, name.bottom() + lineGap, textWidth, locationStyle.lineHeight());
    for (QRectF *part : {&checkbox, &icon, &name, &location, &size, &modified})
        *part = inReadingDirection(*part, rect);
}

double FileRowGeometry::sizeWidth() {
    constexpr double designed = 88;
    return std::max<double>(designed, withTexts(0.8 * designed));
}

double FileRowGeometry::modifiedWidth() {
    constexpr double designed = 100;
    return std::max<double>(designed, withTexts(0.9 * designed));
}

bool FileRowGeometry::showsModified(double rowWidth) {
    constexpr double leastName = 80; // of an icon and the beginning of a name
    return textScale() <= 1 ||
           rowWidth - 2 * inset - checkboxWidth - sizeWidth() - modifiedWidth() >= withTexts(leastName);
}

int FileRowGeometry::height(bool showsLocation) {
    const double text = nameStyle.lineHeight() + (showsLocation ? lineGap + locationStyle.lineHeight() : 0);
    return int(text + 2 * verticalInset(showsLocation));
}

QString FileRow::icon() const {
    return kindOf(*this).icon;
}

ThemeColor FileRow::iconColor() const {
    return kindOf(*this).color();
}

FileEntry::Part FileRow::hitTest(const QRectF &rect, const QPointF &point) const {
    return FileRowGeometry(rect, showsLocation).checkbox.contains(point) ? Part::mark : Part::body;
}

bool FileRow::cutsName(const QRectF &rect) const {
    return nameStyle.width(item.name) > FileRowGeometry(rect, showsLocation).name.width();
}

void FileRow::paint(QPainter &painter, const QRectF &rect) const {
    const FileRowGeometry parts(rect, showsLocation);
    if (isSelected)
        painter.fillRect(rect, AppTheme::accentSoft());

    const Symbol box{isSelected ? QStringLiteral("checkmark.square.fill") : QStringLiteral("square"), 13,
                     Weight::medium};
    const QRectF boxRect(parts.checkbox.topLeft(),
                         QSizeF(box.naturalSize().width(), parts.checkbox.height()));
    box.paint(painter, inReadingDirection(boxRect, parts.checkbox),
              isSelected ? AppTheme::accent() : AppTheme::inkTertiary());

    if (parts.icon.width() >= iconWidth)
        Symbol{icon(), 13, Weight::semibold}.paint(painter, parts.icon, iconColor());

    paintText(painter, parts.name, item.name, nameStyle, AppTheme::ink());
    if (showsLocation)
        paintText(painter, parts.location, locationLabel(), locationStyle, AppTheme::inkTertiary(),
                  Qt::AlignLeft | Qt::AlignVCenter, Elision::middle);

    constexpr auto trailing = Qt::AlignRight | Qt::AlignVCenter;
    paintText(painter, parts.size, item.sizeLabel(), columnStyle, AppTheme::inkSecondary(), trailing);
    if (!parts.modified.isEmpty())
        paintText(painter, parts.modified, item.modifiedLabel(), columnStyle, AppTheme::inkSecondary(),
                  trailing);
}

} // namespace vantrel
