#include "Views/FileDrag.h"

#include "Kit/Shapes.h"
#include "Kit/Symbol.h"
#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QDrag>
#include <QFileInfo>
#include <QPainter>
#include <QUrl>
#include <QWidget>

#include <algorithm>

namespace vantrel {

QPixmap dragPicture(const QList<FileItem> &items, double pixelRatio) {
    constexpr TextStyle style{12, Weight::semibold};
    constexpr double widest = 220;
    constexpr double inset = 10;
    constexpr double symbolWidth = 22;
    const bool isOne = items.size() == 1;
    const QString title = isOne ? items.first().name : QStringLiteral("%L1 items").arg(items.size());
    const QString text = elidedText(title, style, widest, Elision::middle);
    const QSizeF size(style.width(text) + symbolWidth + 2 * inset, 30);
    QPixmap picture((size * pixelRatio).toSize());
    picture.setDevicePixelRatio(pixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF rect({}, size);
    paintCard(painter, rect, 8, AppTheme::surface(), AppTheme::strokeStrong());
    const QString symbol = !isOne                      ? QStringLiteral("doc.on.doc")
                           : items.first().isDirectory ? QStringLiteral("folder.fill")
                                                       : QStringLiteral("doc.fill");
    const QRectF place(inset - 2, 0, symbolWidth - 4, rect.height());
    Symbol{symbol, 13, Weight::medium}.paint(painter, inReadingDirection(place, rect),
                                             AppTheme::folderBlue());
    const QRectF words = rect.adjusted(inset + symbolWidth - 2, 0, -inset + 2, 0);
    paintText(painter, inReadingDirection(words, rect), text, style, AppTheme::ink());
    return picture;
}

DraggedEntries::DraggedEntries(BrowserSide side, const QString &serial, const QList<FileItem> &items)
    : m_side(side), m_serial(serial), m_items(items) {
    if (side == BrowserSide::android)
        return; // only this program reaches them
    QList<QUrl> urls;
    for (const FileItem &item : items)
        urls.append(QUrl::fromLocalFile(item.path));
    setUrls(urls);
}

QStringList draggedPaths(const QMimeData &data) {
    QStringList paths;
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    return paths;
}

qsizetype draggedCount(const QMimeData &data, BrowserSide to, const QString &folder) {
    const auto *own = qobject_cast<const DraggedEntries *>(&data);
    if (own && own->side() == BrowserSide::android)
        return to == BrowserSide::android ? 0 : own->items().size();
    const QStringList paths = draggedPaths(data);
    const auto isWhereItWouldGo = [&](const QString &path) {
        const QString within = path + QLatin1Char('/');
        return folder == path || folder.startsWith(within) || QFileInfo(path).path() == folder;
    };
    const bool isRefused =
        to == BrowserSide::mac && std::any_of(paths.begin(), paths.end(), isWhereItWouldGo);
    return isRefused ? 0 : paths.size();
}

void dragEntries(QWidget *from, DraggedEntries *entries) {
    auto *drag = new QDrag(from); // which Qt deletes
    drag->setMimeData(entries);
    drag->setPixmap(dragPicture(entries->items(), from->devicePixelRatioF()));
    drag->setHotSpot({-12, -8}); // beside the pointer, which shows what a drop would do
    drag->exec(Qt::CopyAction);
}

} // namespace vantrel
