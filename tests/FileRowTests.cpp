#include "support/Widgets.h"

#include "Kit/TextStyle.h"
#include "Views/FileGridCell.h"
#include "Views/FileGridView.h"
#include "Views/FileRow.h"

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

FileItem fileNamed(const QString &name) {
    FileItem item;
    item.id = QUuid::createUuid();
    item.name = name;
    item.path = u"/sdcard/"_s + name;
    item.sizeBytes = 2048;
    return item;
}

FileItem folderNamed(const QString &name) {
    FileItem item = fileNamed(name);
    item.isDirectory = true;
    item.sizeBytes.reset();
    return item;
}

TEST(FileRowTests, symbolsAndColoursFollowTheName) {
    const ThemeColor plain = AppTheme::inkSecondary();
    const ThemeColor blue = AppTheme::folderBlue();
    const ThemeColor film = AppTheme::systemPurple();
    const ThemeColor music = AppTheme::systemPink();
    const ThemeColor packed = AppTheme::systemOrange();
    // Names, then symbol and colour of a row, then of a cell.
    const std::tuple<QString, QString, ThemeColor, QString, ThemeColor> cases[] = {
        {u"IMG_0001.JPG a.jpeg a.png a.Heic a.webp"_s, u"doc.fill"_s, plain, u"photo"_s, blue},
        {u"a.mp4 movie.MOV"_s, u"film"_s, film, u"film"_s, film},
        {u"a.m4a a.mp3"_s, u"music.note"_s, music, u"music.note"_s, music},
        {u"notes.txt.zip .zip"_s, u"doc.zipper"_s, packed, u"doc.zipper"_s, packed},
        {u"archive.zip.txt"_s, u"doc.text"_s, plain, u"doc.text"_s, plain},
        {u"zip a.gif "_s, u"doc.fill"_s, plain, u"doc.fill"_s, plain}, // and a name without letters
    };
    for (const auto &[names, rowIcon, rowColor, cellIcon, cellColor] : cases) {
        for (const QString &name : names.split(u' ')) {
            SCOPED_TRACE(qPrintable(name));
            const FileRow row{{fileNamed(name)}};
            const FileGridCell cell{{fileNamed(name)}};
            EXPECT_EQ(row.icon(), rowIcon);
            EXPECT_EQ(row.iconColor(), rowColor);
            EXPECT_EQ(cell.icon(), cellIcon);
            EXPECT_EQ(cell.iconColor(), cellColor);

            // A folder is a folder, whatever its name.
            EXPECT_EQ(FileRow{{folderNamed(name)}}.icon(), u"folder.fill");
            EXPECT_EQ(FileGridCell{{folderNamed(name)}}.icon(), u"folder.fill");
            EXPECT_EQ(FileRow{{folderNamed(name)}}.iconColor(), blue);
            EXPECT_EQ(FileGridCell{{folderNamed(name)}}.iconColor(), blue);
        }
    }
}

TEST(FileRowTests, locationIsTheFolderAsABreadcrumb) {
    FileItem item = fileNamed(u"x"_s);
    item.path = u"/storage/emulated/0/Music/a.mp3"_s;
    EXPECT_EQ(FileEntry{item}.locationLabel(), u"Internal Storage › Music");
    FileEntry entry{fileNamed(u"a"_s)};
    EXPECT_EQ(entry.captionLabel(), u"2 KB");
    entry.showsLocation = true;
    EXPECT_EQ(entry.captionLabel(), u"Internal Storage");
}

TEST(FileRowTests, columnsNeverOverlapHoweverNarrow) {
    for (int width = 0; width <= 600; width += 7) {
        const FileRowGeometry row(QRectF(0, 0, width, 30), false);
        EXPECT_LE(row.checkbox.right(), row.icon.left()) << width;
        EXPECT_LE(row.icon.right(), row.size.left()) << width;
        EXPECT_GE(row.name.width(), 0) << width;
        EXPECT_TRUE(row.name.isEmpty() || row.name.right() <= row.size.left()) << width;
        EXPECT_LE(row.size.right(), row.modified.left()) << width;
    }
}

TEST(FileRowTests, asManyColumnsAsFit) {
    // Width, columns, width of a column: one more column from the pixel on at which it has 96.
    const std::tuple<int, int, int> cases[] = {{100, 1, 96},  {144, 1, 120}, {225, 1, 120}, {226, 2, 96},
                                               {331, 2, 120}, {332, 3, 96},  {438, 4, 96},  {437, 3, 120},
                                               {480, 4, 106}, {1000, 9, 99}};
    for (const auto &[width, columns, columnWidth] : cases) {
        SCOPED_TRACE(width);
        const FileGridGeometry grid(width);
        EXPECT_EQ(grid.columns, columns);
        EXPECT_EQ(grid.columnWidth, columnWidth);
        if (width < 120)
            continue;
        const int used = grid.columns * grid.columnWidth + (grid.columns - 1) * FileGridGeometry::spacing;
        const int right = width - grid.left - used;
        EXPECT_GE(std::min(grid.left, right), 12);
        EXPECT_LE(qAbs(grid.left - right), 1) << "but for the one pixel that cannot be halved it is centred";
    }
}

TEST(FileRowTests, geometryOfTheGridGivesALineTheHeightOfItsHighestTile) {
    FileGridGeometry grid(332); // three columns
    const int heights[] = {100, 114, 100, 100, 100, 100, 100, 114};
    grid.layOut(8, [&](int row) { return heights[row]; });
    EXPECT_EQ(grid.height(), 12 + 114 + 10 + 100 + 10 + 114 + 12);
    const int tops[] = {12, 12 + 114 + 10, 12 + 114 + 10 + 100 + 10};
    for (int row = 0; row < 8; ++row) {
        SCOPED_TRACE(row);
        const QRect rect = grid.rectOf(row);
        EXPECT_EQ(rect.top(), tops[row / 3]);
        EXPECT_EQ(rect.height(), row / 3 == 1 ? 100 : 114);
        EXPECT_EQ(grid.lineAt(rect.top()), row / 3);
        EXPECT_EQ(grid.lineAt(rect.bottom() + 10), row / 3) << "in the gap below";
    }
    EXPECT_EQ(grid.lineAt(-5), 0);
    EXPECT_EQ(grid.lineAt(100'000), 2);
    EXPECT_TRUE(grid.rectOf(8).isEmpty());
    grid.layOut(0, [](int) { return 100; });
    EXPECT_EQ(std::tuple(grid.height(), grid.lineAt(50), grid.rectOf(0)), std::tuple(0, 0, QRect()));
}

TEST(FileRowTests, aClickOnTheMarkIsToldFromOneOnTheBody) {
    const FileRow row{{fileNamed(u"a"_s)}};
    const FileGridCell cell{{fileNamed(u"a"_s)}};
    const QRectF rowRect(0, 100, 400, 30);
    const QRectF cellRect(0, 100, 100, FileGridCellGeometry::height());
    using Part = FileEntry::Part;
    for (const double x : {11.0, 12.0, 39.0, 40.5, 200.0, 395.0})
        EXPECT_EQ(row.hitTest(rowRect, {x, 101}), x > 11 && x < 40 ? Part::mark : Part::body) << x;
    const double side = FileGridCellGeometry(cellRect).badgeTarget.width();
    for (const QPointF &point : {QPointF(99, 101), {101 - side, 99 + side}})
        EXPECT_EQ(cell.hitTest(cellRect, point), Part::mark);
    for (const QPointF &point : {QPointF(99 - side, 101), {99, 101 + side}, {50, 136}, {50, 190}})
        EXPECT_EQ(cell.hitTest(cellRect, point), Part::body);
}

/// What an entry paints on white, on a screen of `ratio`.
template <typename Entry>
QImage painted(const Entry &entry, const QSize &size, double ratio = 1) {
    constexpr int margin = 20;
    return vantrel::painted(size + QSize(2 * margin, 2 * margin), ratio, [&](QPainter &painter) {
        entry.paint(painter, QRectF(QPointF(margin, margin), QSizeF(size)));
    });
}

/// The rectangle outside of which nothing was painted, in layout pixels.
QRectF inkOf(const QImage &image) {
    const QRectF ink = inkBounds(image);
    return {ink.topLeft() / image.devicePixelRatio(), ink.size() / image.devicePixelRatio()};
}

TEST(FileRowTests, theEndOfALongFolderIsSeen) {
    FileEntry here{fileNamed(u"hit.txt"_s), false, true};
    FileEntry there = here;
    here.item.path = u"/sdcard/"_s + QString(200, u'p') + u"/Camera/hit.txt"_s;
    there.item.path = u"/sdcard/"_s + QString(200, u'p') + u"/Screens/hit.txt"_s;
    const QSize row(400, FileRowGeometry::height(true)), cell(110, FileGridCellGeometry::height());
    EXPECT_NE(painted(FileRow{here}, row), painted(FileRow{there}, row));
    EXPECT_NE(painted(FileGridCell{here}, cell), painted(FileGridCell{there}, cell));
}

TEST(FileRowTests, noNamePaintsOutsideItsRow) {
    const QString emoji = u"😀"_s.repeated(60);
    const QString names[] = {QString(255, u'w'),   emoji,
                             u"שלום עולם.pdf"_s,   QChar(0x202E) + u"gpj.exe"_s,
                             u"one\ntwo\nthree"_s, u"Zalgo"_s + QString(200, QChar(0x0335))};
    for (const QString &name : names) {
        for (const bool location : {false, true}) {
            FileItem item = fileNamed(name);
            item.path = u"/sdcard/"_s + QString(300, u'p') + u"/x"_s;
            const FileEntry entry{item, true, location};
            for (const double ratio : {1.0, 3.0}) {
                SCOPED_TRACE(qPrintable(name.left(12)));
                // Stacked accents may reach into the gap between two lines, but no farther.
                constexpr double gap = 3;
                const QSize row(330, FileRowGeometry::height(location));
                const QRectF rowInk = inkOf(painted(FileRow{entry}, row, ratio));
                EXPECT_TRUE(QRectF(20, 20, row.width(), row.height()).contains(rowInk)) << ratio;
                const QSize cell(96, FileGridCellGeometry::height());
                const QRectF cellInk = inkOf(painted(FileGridCell{entry}, cell, ratio));
                EXPECT_TRUE(
                    QRectF(20, 20, cell.width(), cell.height()).adjusted(-1, 0, 1, gap).contains(cellInk))
                    << ratio;
            }
        }
    }
    EXPECT_TRUE(FileRow{{fileNamed(names[0])}}.cutsName(QRectF(0, 0, 400, 30)));
    EXPECT_FALSE(FileRow{{fileNamed(u"short"_s)}}.cutsName(QRectF(0, 0, 400, 30)));
    EXPECT_TRUE(FileGridCell{{fileNamed(names[0])}}.cutsName(QRectF(0, 0, 96, 120)));
    EXPECT_FALSE(FileGridCell{{fileNamed(u"two words here"_s)}}.cutsName(QRectF(0, 0, 96, 120)));
}

} // namespace
} // namespace vantrel
