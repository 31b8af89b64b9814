#include "Views/FileListView.h"

#include "Theme/AppTheme.h"
#include "Views/FileRow.h"

#include <QPainter>

namespace vantrel {

namespace {

constexpr int dividerHeight = 1;

QRect withoutDivider(const QRect &rect) {
    return rect.adjusted(0, 0, 0, -dividerHeight);
}

} // namespace

FileListView::FileListView(QWidget *parent) : FileItemsView(parent) {
    setObjectName(QStringLiteral("fileList"));
}

int FileListView::pitch() const {
    return FileRowGeometry::height(contents().showsLocation) + dividerHeight;
}

int FileListView::contentHeight() const {
    return int(count()) * pitch();
}

QRect FileListView::rectOf(qsizetype index) const {
    return {0, int(index) * pitch(), viewport()->width(), pitch()};
}

FileItemsView::Range FileListView::entriesBetween(int top, int bottom) const {
    return {top / pitch(), bottom / pitch()};
}

bool FileListView::looksSame(const FileEntry &a, const FileEntry &b) const {
    return FileRow{a} == FileRow{b};
}

FileEntry::Part FileListView::partAt(const FileEntry &entry, const QRect &rect, const QPoint &point) const {
    return FileRow{entry}.hitTest(rect, point);
}

bool FileListView::cutsName(const FileEntry &entry, const QRect &rect) const {
    return FileRow{entry}.cutsName(rect);
}

void FileListView::paintEntry(QPainter &painter, const FileEntry &entry, const QRect &rect) const {
    FileRow{entry}.paint(painter, withoutDivider(rect));
    const QRect line(rect.left(), rect.bottom(), rect.width(), dividerHeight);
    // Selected rows touch: no notch of the background between them where the divider is indented.
    if (entry.isSelected)
        painter.fillRect(line, AppTheme::accentSoft());
    painter.fillRect(line.adjusted(dividerIndent, 0, 0, 0), AppTheme::stroke());
}

} // namespace vantrel
