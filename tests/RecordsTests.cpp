#include "support/Printers.h"

#include "Records/FileItem.h"
#include "Records/FileOrder.h"
#include "Records/FileSizeFormat.h"
#include "Records/Identity.h"
#include "Records/Pane.h"
#include "Records/QueueItem.h"
#include "Records/TextLength.h"
#include "Records/TransferFormat.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace vantrel;

namespace {

QueueItemStatus transferring(double fraction, qint64 done, qint64 total) {
    QueueItemStatus::Transferring progress;
    progress.fraction = fraction;
    progress.transferredBytes = done;
    progress.totalBytes = total;
    return progress;
}

} // namespace

TEST(FileSizeTests, isWrittenAsTheFileManagerWritesIt) {
    const QStringList cases =
        u"0 Zero KB|1 1 byte|2 2 bytes|999 999 bytes|1000 1 KB|1499 1 KB|1500 2 KB|999499 999 KB|999500 1 MB|"
        "1000000 1 MB|2149999 2.1 MB|2150000 2.2 MB|999949999 999.9 MB|999950000 1 GB|12300000000 12.3 GB|"
        "118082764800 118.08 GB|20606418944 20.61 GB|999995000000 1 TB|1500000000000000 1.5 PB|-1 -1 byte|"
        "-2100000 -2.1 MB|9223372036854775807 9.22 EB|-9223372036854775808 -9.22 EB"_s.split(u'|');
    for (const QString &text : cases)
        EXPECT_EQ(formatFileSize(text.section(u' ', 0, 0).toLongLong()), text.section(u' ', 1));
    const QLocale before; // with its decimal point
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(formatFileSize(2'100'000), u"2,1 MB"_s);
    QLocale::setDefault(before);
}

TEST(FileItemTests, labelsSayWhatIsKnown) {
    const QDateTime day(QDate(2024, 5, 1), QTime(13, 7));
    const std::tuple<FileItem, QString, QString> cases[] = {
        {{{}, {}, {}, true, {}, {}, {}}, u"—"_s, u"—"_s},
        {{{}, {}, {}, true, {}, 1, {}}, u"1 items"_s, u"—"_s},
        {{{}, {}, {}, true, {}, 0, day}, u"0 items"_s, u"May 1, 2024"_s},
        {{{}, {}, {}, false, {}, {}, {}}, u"0 B"_s, u"—"_s},
        {{{}, {}, {}, false, 0, {}, day}, u"Zero KB"_s, u"May 1, 2024"_s},
        {{{}, {}, {}, false, 1'048'576, {}, {}}, u"1 MB"_s, u"—"_s},
    };
    for (const auto &[item, size, modified] : cases) {
        EXPECT_EQ(item.sizeLabel(), size);
        EXPECT_EQ(item.modifiedLabel(), modified);
    }
}

TEST(QueueItemTests, labelsFollowTheStatus) {
    QueueItemStatus::Paused paused;
    paused.fraction = 0.5;
    paused.transferredBytes = 1'000'000;
    paused.totalBytes = 2'000'000;
    const std::tuple<QueueItemStatus, QString, QString> cases[] = {
        {QueueItemStatus::Waiting(), u"Waiting…"_s, u"—"_s},
        {QueueItemStatus::Completed(), u"Done"_s, u"100%"_s},
        {QueueItemStatus::Failed{u"No space left"_s}, u"No space left"_s, u"Error"_s},
        {transferring(0.125, 250'000, 2'000'000), u"250 KB / 2 MB"_s, u"13%"_s},
        {transferring(0.004, 0, 2'000'000), u"Zero KB / 2 MB"_s, u"0%"_s},
        {transferring(0.42, 0, 0), u"Transferring…"_s, u"42%"_s},
        {transferring(0.99, 0, -1), u"Transferring…"_s, u"99%"_s},
        {paused, u"1 MB / 2 MB"_s, u"50%"_s},
    };
    for (const auto &[status, progress, percent] : cases) {
        QueueItem item;
        item.status = status;
        EXPECT_EQ(item.progressLabel(), progress);
        EXPECT_EQ(item.percentLabel(), percent);
    }
}

TEST(RawValueTests, onlyTheExactTextGivesAValue) {
    for (const PaneViewMode mode : allPaneViewModes)
        EXPECT_EQ(paneViewModeFromRawValue(rawValue(mode)), mode);
    for (const AndroidSearchScope scope : allAndroidSearchScopes)
        EXPECT_EQ(androidSearchScopeFromRawValue(rawValue(scope)), scope);
    EXPECT_EQ(paneViewModeFromRawValue(u"Grid"_s), std::nullopt);
}

TEST(FileOrderTests, foldersFirstThenNamesWithoutCaseAndStable) {
    QList<FileItem> items;
    for (const QString &name : u"zeta.txt|Gamma/|ähre|same|Alpha/|SAME|beta.txt|same"_s.split(u'|'))
        items.append({newIdentity(), name, {}, name.endsWith(u'/'), items.size(), {}, {}});
    sortInFileOrder(items);
    QStringList sorted;
    for (const FileItem &item : items)
        sorted.append(item.name + QString::number(*item.sizeBytes));
    EXPECT_EQ(sorted.join(u' '), u"Alpha/4 Gamma/1 ähre2 beta.txt6 same3 SAME5 same7 zeta.txt0");
}

TEST(FileOrderTests, columnsSortWithinFoldersAndFilesAndKeepNamesApart) {
    QList<FileItem> items;
    const auto add = [&](const QString &name, std::optional<qint64> size, int day) {
        items.append({newIdentity(), name, {}, name.endsWith(u'/'), size, {}, {}});
        if (day > 0)
            items.last().modifiedAt = QDateTime(QDate(2024, 5, day), QTime(12, 0));
    };
    add(u"A/"_s, {}, 3), add(u"B/"_s, {}, 9), add(u"c"_s, 10, 2), add(u"d"_s, {}, 0), add(u"e"_s, 10, 7);
    const std::pair<FileOrder, QString> table[]{
        {{FileSortKey::name, Qt::AscendingOrder}, u"A/ B/ c d e"_s},
        {{FileSortKey::name, Qt::DescendingOrder}, u"B/ A/ e d c"_s},
        {{FileSortKey::size, Qt::AscendingOrder}, u"A/ B/ d c e"_s},
        {{FileSortKey::size, Qt::DescendingOrder}, u"A/ B/ c e d"_s},
        {{FileSortKey::modified, Qt::AscendingOrder}, u"A/ B/ d c e"_s},
        {{FileSortKey::modified, Qt::DescendingOrder}, u"B/ A/ e c d"_s},
    };
    for (const auto &[order, expected] : table) {
        QStringList names;
        for (const FileItem &item : inOrder(items, order))
            names.append(item.name);
        EXPECT_EQ(names.join(u' '), expected) << qPrintable(rawValue(order));
        EXPECT_EQ(fileOrderFromRawValue(rawValue(order)), order);
    }
    for (const QString &nonsense :
         {u""_s, u"name"_s, u"name up"_s, u"name  ascending"_s, u"Name ascending"_s})
        EXPECT_EQ(fileOrderFromRawValue(nonsense), std::nullopt) << qPrintable(nonsense);
}

TEST(TextLengthTests, countsWhatAPersonSees) {
    EXPECT_EQ(characterCount(QString()), 0);
    EXPECT_EQ(characterCount(u"ab"_s), 2);
    EXPECT_EQ(characterCount(u"e\u0301"_s), 1);
    EXPECT_EQ(characterCount(u"👩‍👩‍👧"_s), 1);
}

TEST(TransferFormatTests, everyNumberHasAText) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    const std::tuple<double, qint64, QString, QString> cases[] = {
        {0, 0, u"Zero KB/s"_s, u"00:00:00"_s},
        {59.5, 59, u"59 bytes/s"_s, u"00:01:00"_s},
        {3725.4, 3725, u"4 KB/s"_s, u"01:02:05"_s},
        {360'000, 360'000, u"360 KB/s"_s, u"100:00:00"_s},
        {3'599'999, 3'599'999, u"3.6 MB/s"_s, u"999:59:59"_s},
        {3'599'999.5, 3'599'999, u"3.6 MB/s"_s, u"—"_s},
        {1e20, most, u"9.22 EB/s"_s, u"—"_s},
        {0x1p63, most, u"9.22 EB/s"_s, u"—"_s},
        {0x1.fffffffffffffp62, most - 1023, u"9.22 EB/s"_s, u"—"_s},
        {infinity, most, u"—"_s, u"—"_s},
        {none, 0, u"—"_s, u"—"_s},
        {-0.4, 0, u"—"_s, u"00:00:00"_s},
        {-1e20, -most - 1, u"—"_s, u"00:00:00"_s},
        {-0x1p63, -most - 1, u"—"_s, u"00:00:00"_s},
        {-infinity, -most - 1, u"—"_s, u"00:00:00"_s},
    };
    for (const auto &[number, bytes, rate, duration] : cases) {
        EXPECT_EQ(wholeBytes(number), bytes) << number;
        EXPECT_EQ(formatTransferRate(number), rate) << number;
        EXPECT_EQ(formatDuration(number), duration) << number;
    }
}
