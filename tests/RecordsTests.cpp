#include "support/Printers.h"

#include "Records/AndroidSearchScope.h"
#include "Records/FileItem.h"
#include "Records/FileOrder.h"
#include "Records/FileSizeFormat.h"
#include "Records/Identity.h"
#include "Records/Pane.h"
#include "Records/QueueItem.h"
#include "Records/TextLength.h"
#include "Records/TransferFormat.h"

#include <gtest/gtest.h>

#include <limits>

using namespace vantrel;

namespace {

QueueItem queueItem(const QueueItemStatus &status) {
    QueueItem item;
    item.status = status;
    return item;
}

QueueItemStatus transferring(double fraction, qint64 done, qint64 total) {
    QueueItemStatus::Transferring progress;
    progress.fraction = fraction;
    progress.transferredBytes = done;
    progress.totalBytes = total;
    return progress;
}

} // namespace

TEST(FileSize, isWrittenAsTheFileManagerWritesIt) {
    const struct {
        qint64 bytes;
        const char *text;
    } cases[] = {
        {0, "Zero KB"},
        {1, "1 byte"},
        {2, "2 bytes"},
        {999, "999 bytes"},
        {1000, "1 KB"},
        {1499, "1 KB"},
        {1500, "2 KB"},
        {999'499, "999 KB"},
        {999'500, "1 MB"},
        {1'000'000, "1 MB"},
        {1'048'576, "1 MB"},
        {2'100'000, "2.1 MB"},
        {2'149'999, "2.1 MB"},
        {2'150'000, "2.2 MB"},
        {999'949'999, "999.9 MB"},
        {999'950'000, "1 GB"},
        {12'300'000'000, "12.3 GB"},
        {118'082'764'800, "118.08 GB"},
        {20'606'418'944, "20.61 GB"},
        {999'995'000'000, "1 TB"},
        {1'500'000'000'000'000, "1.5 PB"},
        {std::numeric_limits<qint64>::max(), "9.22 EB"},
        {-1, "-1 byte"},
        {-2'100'000, "-2.1 MB"},
        {std::numeric_limits<qint64>::min(), "-9.22 EB"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(formatFileSize(c.bytes), QString::fromUtf8(c.text)) << c.bytes;
}

TEST(FileSize, usesTheDecimalPointOfTheLocale) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(formatFileSize(2'100'000), QStringLiteral("2,1 MB"));
    QLocale::setDefault(before);
}

TEST(FileItem, labels) {
    const QDateTime day(QDate(2024, 5, 1), QTime(13, 7));
    const struct {
        FileItem item;
        QString size;
        QString modified;
    } cases[] = {
        {{{}, {}, {}, true, {}, {}, {}}, QStringLiteral("—"), QStringLiteral("—")},
        {{{}, {}, {}, true, {}, 1, {}}, QStringLiteral("1 items"), QStringLiteral("—")},
        {{{}, {}, {}, true, {}, 0, day}, QStringLiteral("0 items"), QStringLiteral("May 1, 2024")},
        {{{}, {}, {}, false, {}, {}, {}}, QStringLiteral("0 B"), QStringLiteral("—")},
        {{{}, {}, {}, false, 0, {}, day}, QStringLiteral("Zero KB"), QStringLiteral("May 1, 2024")},
        {{{}, {}, {}, false, 1'048'576, {}, {}}, QStringLiteral("1 MB"), QStringLiteral("—")},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.item.sizeLabel(), c.size);
        EXPECT_EQ(c.item.modifiedLabel(), c.modified);
    }
}

TEST(QueueItem, labelsByStatus) {
    QueueItemStatus::Paused paused;
    paused.fraction = 0.5;
    paused.transferredBytes = 1'000'000;
    paused.totalBytes = 2'000'000;
    const struct {
        QueueItemStatus status;
        const char *progress;
        const char *percent;
    } cases[] = {
        {QueueItemStatus::Waiting(), "Waiting…", "—"},
        {QueueItemStatus::Completed(), "Done", "100%"},
        {QueueItemStatus::Failed{QStringLiteral("No space left")}, "No space left", "Error"},
        {transferring(0.125, 250'000, 2'000'000), "250 KB / 2 MB", "13%"},
        {transferring(0.004, 0, 2'000'000), "Zero KB / 2 MB", "0%"},
        {transferring(0.42, 0, 0), "Transferring…", "42%"},
        {transferring(0.99, 0, -1), "Transferring…", "99%"},
        {paused, "1 MB / 2 MB", "50%"},
    };
    for (const auto &c : cases) {
        const QueueItem item = queueItem(c.status);
        EXPECT_EQ(item.progressLabel(), QString::fromUtf8(c.progress));
        EXPECT_EQ(item.percentLabel(), QString::fromUtf8(c.percent));
    }
}

TEST(RawValueTests, onlyTheExactTextGivesAValue) {
    for (const PaneViewMode mode : allPaneViewModes)
        EXPECT_EQ(paneViewModeFromRawValue(rawValue(mode)), mode);
    for (const AndroidSearchScope scope : allAndroidSearchScopes)
        EXPECT_EQ(androidSearchScopeFromRawValue(rawValue(scope)), scope);
    EXPECT_EQ(paneViewModeFromRawValue(QStringLiteral("Grid")), std::nullopt);
    EXPECT_EQ(androidSearchScopeFromRawValue(QStringLiteral("everywhere ")), std::nullopt);
}

TEST(FileOrder, foldersFirstThenNamesWithoutCaseAndStable) {
    const auto item = [](const char *name, bool isDirectory, qint64 mark = 0) {
        return FileItem{newIdentity(), QString::fromUtf8(name), {}, isDirectory, mark, {}, {}};
    };
    QList<FileItem> items{item("zeta.txt", false), item("Gamma", true),   item("ähre", false),
                          item("same", false, 1),  item("Alpha", true),   item("SAME", false, 2),
                          item("beta.txt", false), item("same", false, 3)};
    sortInFileOrder(items);
    QStringList names;
    for (const FileItem &sorted : items)
        names.append(sorted.name);
    EXPECT_EQ(names.join(QLatin1Char(' ')),
              QStringLiteral("Alpha Gamma ähre beta.txt same SAME same zeta.txt"));
    EXPECT_EQ(*items[4].sizeBytes, 1);
    EXPECT_EQ(*items[5].sizeBytes, 2);
    EXPECT_EQ(*items[6].sizeBytes, 3);
}

TEST(Identity, isARandomUuidOfVersionFour) {
    QSet<QUuid> seen;
    for (int i = 0; i < 1000; ++i) {
        const QUuid id = newIdentity();
        EXPECT_EQ(id.version(), QUuid::Random);
        EXPECT_EQ(id.variant(), QUuid::DCE);
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 1000);
}

TEST(TextLength, countsWhatAPersonSees) {
    EXPECT_EQ(characterCount(QString()), 0);
    EXPECT_EQ(characterCount(QStringLiteral("ab")), 2);
    EXPECT_EQ(characterCount(QStringLiteral("e\u0301")), 1);
    EXPECT_EQ(characterCount(QStringLiteral("👩‍👩‍👧")), 1);
}

TEST(TransferFormat, everyNumberHasAText) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    const struct {
        double number;
        qint64 bytes;
        const char *rate;
        const char *duration;
    } cases[] = {
        {0, 0, "Zero KB/s", "00:00:00"},
        {59.5, 59, "59 bytes/s", "00:01:00"},
        {3725.4, 3725, "4 KB/s", "01:02:05"},
        {360'000, 360'000, "360 KB/s", "100:00:00"},
        {3'599'999, 3'599'999, "3.6 MB/s", "999:59:59"},
        {3'599'999.5, 3'599'999, "3.6 MB/s", "—"},
        {1e20, most, "9.22 EB/s", "—"},
        {0x1p63, most, "9.22 EB/s", "—"},
        {0x1.fffffffffffffp62, most - 1023, "9.22 EB/s", "—"},
        {infinity, most, "—", "—"},
        {none, 0, "—", "—"},
        {-0.4, 0, "—", "00:00:00"},
        {-1e20, -most - 1, "—", "00:00:00"},
        {-0x1p63, -most - 1, "—", "00:00:00"},
        {-infinity, -most - 1, "—", "00:00:00"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(wholeBytes(c.number), c.bytes) << c.number;
        EXPECT_EQ(formatTransferRate(c.number), QString::fromUtf8(c.rate)) << c.number;
        EXPECT_EQ(formatDuration(c.number), QString::fromUtf8(c.duration)) << c.number;
    }
}
