// What the tools print, read by the parsers alone.

#include "support/Printers.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "ADB/DeviceText.h"
#include "ADB/ListingText.h"
#include "ADB/SearchText.h"
#include "ADB/ToolText.h"
#include "ADB/TransferText.h"

#include <QFile>

#include <gtest/gtest.h>

#include <ctime>

using namespace vantrel;

namespace {

QString transcript(const char *name) {
    QFile file(QStringLiteral(VANTREL_TEST_DATA "/") + QString::fromLatin1(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return ToolText::decode(file.readAll());
}

/// "name" for a file, "name/" for a folder, in the listing's order.
QString names(const QList<FileItem> &items) {
    QStringList list;
    for (const FileItem &item : items)
        list.append(item.name + (item.isDirectory ? QStringLiteral("/") : QString()));
    return list.join(QLatin1Char('|'));
}

const FileItem &named(const QList<FileItem> &items, const char *name) {
    for (const FileItem &item : items) {
        if (item.name == QString::fromUtf8(name))
            return item;
    }
    throw std::runtime_error(std::string("no entry ") + name);
}

} // namespace

TEST(ToolText, splitsAtEveryKindOfNewlineAndSpace) {
    const QString text = QStringLiteral("a\nb\vc\fd\re\r\nf\u0085g\u2028h\u2029\n\ni");
    QStringList lines;
    for (const QStringView line : ToolText::lines(text))
        lines.append(line.toString());
    EXPECT_EQ(lines.join(QLatin1Char(' ')), QStringLiteral("a b c d e f g h i"));

    const QString fields = QStringLiteral("\u00a0a\tb \u1680 c\u2003d\u202fe\u205ff\u3000g");
    EXPECT_EQ(ToolText::fields(fields).size(), 7);

    EXPECT_EQ(ToolText::blankTrimmed(u"\t \u00a0x\n \u3000"), QStringLiteral("x\n"));
    EXPECT_EQ(ToolText::trimmed(QStringLiteral("\u2028 \r\n x y \u0085\t")), QStringLiteral("x y"));
}

TEST(ToolText, invalidUtf8CountsAsNothing) {
    EXPECT_EQ(ToolText::decode("gr\xc3\xbc\xc3\x9f"), QStringLiteral("grüß"));
    EXPECT_EQ(ToolText::decode("ok\xff\xfe"), QString());
    EXPECT_EQ(ToolText::decode("cut \xe2\x82"), QString());
}

TEST(ToolText, wholeNumbersOnly) {
    EXPECT_EQ(ToolText::wholeNumber(u"+12"), 12);
    EXPECT_EQ(ToolText::wholeNumber(u"-9223372036854775808"), std::numeric_limits<qint64>::min());
    for (const QStringView bad :
         {QStringView(u""), QStringView(u"-"), QStringView(u"18%"), QStringView(u"1,000"), QStringView(u" 5"),
          QStringView(u"0x10"), QStringView(u"1e3"), QStringView(u"\u22125"), QStringView(u"5\u00a0"),
          QStringView(u"5\n"), QStringView(u"9223372036854775808"), QStringView(u"٣")})
        EXPECT_EQ(ToolText::wholeNumber(bad), std::nullopt) << bad.toString().toStdString();
}

TEST(DeviceText, onlyPhonesThatAreReady) {
    EXPECT_EQ(ADBClient::parseDeviceList(transcript("device-list/chatter.txt")),
              (QStringList{QStringLiteral("192.168.1.20:5555"),
                           QStringLiteral("adb-R58M_x._adb-tls-connect._tcp")}));
    EXPECT_EQ(ADBClient::parseDeviceList(QStringLiteral("List of devices attached\r\nR58M\tdevice\r\n\r\n")),
              QStringList{QStringLiteral("R58M")});
    EXPECT_TRUE(ADBClient::parseDeviceList(QString()).isEmpty());
}

TEST(DeviceText, storageFigures) {
    using ADBClient::StorageBytes;
    const struct {
        const char *text;
        std::optional<StorageBytes> bytes;
        const char *error;
    } cases[] = {
        {"Filesystem 1K-blocks Used Available Use% Mounted on\n"
         "/dev/fuse 115315200 20123456 95191744 18% /storage/emulated\n",
         StorageBytes{20'606'418'944, 118'082'764'800}, ""},
        {"FILESYSTEM\n/dev/block/by-name/a-name-that-is-far-too-long\n  100 50 50 50% /data\r\n",
         StorageBytes{51'200, 102'400}, ""},
        {"Filesystem 1K-blocks Used\n", {}, "Unexpected df output."},
        {"", {}, "Unexpected df output."},
        {"/dev/fuse 18% /sdcard", {}, "Could not parse df numbers: /dev/fuse 18% /sdcard"},
        {"x 9223372036854775807 1 2", {}, "Could not parse df numbers: x 9223372036854775807 1 2"},
        {"x 1 9007199254740992 2", {}, "Could not parse df numbers: x 1 9007199254740992 2"},
    };
    for (const auto &c : cases) {
        const auto bytes = ADBClient::parseDF(QString::fromUtf8(c.text));
        if (c.bytes)
            EXPECT_EQ(*bytes, *c.bytes);
        else
            EXPECT_EQ(bytes.error().errorDescription(), QString::fromUtf8(c.error));
    }
}

TEST(ListingText, aRealListing) {
    const auto items = ADBClient::parseLSLA(transcript("listing/toybox.txt"), QStringLiteral("/sdcard"));
    EXPECT_EQ(names(items),
              QStringLiteral("DCIM/|Download/|My Photos/|Secret/|-dash|😀 emoji.txt|a|double space|"
                             "it's.txt|link|My Song.mp3|sémantique"));
    const FileItem &song = named(items, "My Song.mp3");
    EXPECT_EQ(song.path, QStringLiteral("/sdcard/My Song.mp3"));
    EXPECT_EQ(song.sizeBytes, 3);
    EXPECT_EQ(song.modifiedAt, QDateTime(QDate(2026, 11, 22), QTime(21, 35)));
    EXPECT_EQ(named(items, "DCIM").sizeBytes, std::nullopt);
    EXPECT_EQ(named(items, "link").sizeBytes, 4);
    EXPECT_FALSE(named(items, "link").isDirectory);
}

TEST(ListingText, oddAndHostileEntries) {
    const auto items = ADBClient::parseLSLA(transcript("listing/unreadable.txt"), QStringLiteral("/"));
    EXPECT_EQ(names(items), QStringLiteral("vendor/|bad-date.txt|name.txt|null|sda|sdcard|too-big.bin"));
    EXPECT_EQ(named(items, "vendor").path, QStringLiteral("/vendor"));
    EXPECT_EQ(named(items, "too-big.bin").sizeBytes, std::nullopt);
    EXPECT_EQ(named(items, "bad-date.txt").modifiedAt, std::nullopt);
    EXPECT_EQ(named(items, "bad-date.txt").sizeBytes, 100);
    EXPECT_EQ(named(items, "name.txt").sizeBytes, std::nullopt);
    EXPECT_EQ(named(items, "name.txt").modifiedAt, std::nullopt);

    const auto crlf = ADBClient::parseLSLA(transcript("listing/crlf.txt"), QStringLiteral("/sdcard"));
    EXPECT_EQ(names(crlf), QStringLiteral("DCIM/|My Song.mp3"));
    EXPECT_EQ(named(crlf, "My Song.mp3").sizeBytes, 1'048'576);
}

TEST(ListingText, timesAreReadAlsoOnADayWhenTheClockIsChanged) {
    const QByteArray before = qgetenv("TZ");
    qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    ::tzset();
    for (const auto &[local, utc] : {std::pair("2026-03-28 12:00", "2026-03-28T11:00:00Z"),
                                     std::pair("2026-03-29 01:30", "2026-03-29T00:30:00Z"),
                                     std::pair("2026-03-29 12:00", "2026-03-29T10:00:00Z"),
                                     std::pair("2026-07-01 00:05", "2026-06-30T22:05:00Z")}) {
        const QString line = QStringLiteral("-rw-rw---- 1 root everybody 1 %1 a").arg(QLatin1String(local));
        const auto items = ADBClient::parseLSLA(line, QStringLiteral("/sdcard"));
        EXPECT_EQ(named(items, "a").modifiedAt->toString(Qt::ISODate), QLatin1String(utc)) << local;
    }
    before.isNull() ? qunsetenv("TZ") : qputenv("TZ", before);
    ::tzset();
}

TEST(ListingText, linesThatAreNoEntries) {
    for (const QStringView line :
         {QStringView(u""), QStringView(u"-rw-r--r--"), QStringView(u"total 12345678901"),
          QStringView(u"ls: /sdcard/x: Permission denied"),
          QStringView(u"-rw-r--r-- 1 root root 5 2024-05-01 13:07")})
        EXPECT_FALSE(ADBClient::parseLSLALine(line).has_value()) << line.toString().toStdString();
    // An arrow alone, with nothing before it, still leaves a name.
    const auto arrows = ADBClient::parseLSLA(QStringLiteral("-rw-r--r-- 1 r r 5 2024-05-01 13:07 ->x\n"
                                                            "-rw-r--r-- 1 r r 5 2024-05-01 13:07 ->\n"),
                                             QStringLiteral("/sdcard"));
    EXPECT_EQ(names(arrows), QStringLiteral("->|x"));
}

TEST(AndroidPath, normalizedAndShown) {
    const struct {
        const char *path;
        const char *normalized;
        const char *breadcrumb;
    } cases[] = {
        {"  ", "/sdcard", "Internal Storage"},
        {"", "/sdcard", "Internal Storage"},
        {"/", "/", "Internal Storage"},
        {"//", "/", "Internal Storage"},
        {"/sdcard///", "/sdcard", "Internal Storage"},
        {"/sdcard/DCIM/", "/sdcard/DCIM", "Internal Storage › DCIM"},
        {"/sdcard/DCIM/Camera", "/sdcard/DCIM/Camera", "Internal Storage › DCIM › Camera"},
        {"/storage/emulated/0", "/storage/emulated/0", "Internal Storage"},
        {"/storage/emulated/0/Music", "/storage/emulated/0/Music", "Internal Storage › Music"},
        {"/storage/1234-5678/Pictures", "/storage/1234-5678/Pictures", "storage › 1234-5678 › Pictures"},
        {" /sdcard/DCIM/ ", "/sdcard/DCIM", "Internal Storage › DCIM"},
        {"/sdcard/blank ", "/sdcard/blank ", "Internal Storage › blank "},
        {"/sdcard/a//b/../c", "/sdcard/a//b/../c", "Internal Storage › a › b › .. › c"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(ADBClient::normalizePath(QString::fromUtf8(c.path)), QString::fromUtf8(c.normalized))
            << c.path;
        EXPECT_EQ(AndroidPath::breadcrumb(QString::fromUtf8(c.path)), QString::fromUtf8(c.breadcrumb))
            << c.path;
    }
}

TEST(AndroidPath, namesFromThePhoneStayInTheirFolder) {
    for (const char *safe : {"a", "..a", "a b", "-rf", "it's", "😀"})
        EXPECT_TRUE(AndroidPath::isSafeName(QString::fromUtf8(safe))) << safe;
    for (const QString &unsafe : {QString(), QStringLiteral("."), QStringLiteral(".."), QStringLiteral("a/b"),
                                  QStringLiteral("/etc"), QStringLiteral("../x"), QString(QChar(u'\0'))})
        EXPECT_FALSE(AndroidPath::isSafeName(unsafe)) << unsafe.toStdString();
}

TEST(SearchText, queriesLoseWhatTheShellCouldRead) {
    const struct {
        const char *query;
        const char *sanitized;
    } cases[] = {
        {"a*b;c", "abc"},
        {"  holiday 2024 ", "holiday 2024"},
        {"'; rm -rf /sdcard; '", "rm -rf /sdcard"},
        {"$(reboot)`reboot`", "rebootreboot"},
        {"\"\\*?[]{};|&$`<>!()\n\r\t'", ""},
        {"x\ty\nz", "xyz"},
        {"Grüße-1.jpg_", "Grüße-1.jpg_"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ADBClient::sanitizeSearchQuery(QString::fromUtf8(c.query)), QString::fromUtf8(c.sanitized))
            << c.query;
}

TEST(SearchText, foundPathsOnceWithoutRootAndHiddenNames) {
    const QString output =
        QStringLiteral("/sdcard\n/sdcard/a\r\n/sdcard/a/\n/sdcard/.nomedia\n/sdcard/.hidden/b\n"
                       "/sdcard/c d.txt\n/sdcard/a \n /sdcard/e\ntail of a name with a "
                       "newline\n/sdcard/x/..\n\n/sdcard/a\n");
    const QString root = QStringLiteral("/sdcard");
    EXPECT_EQ(ADBClient::parseFoundPaths(output, root, 200),
              (QStringList{QStringLiteral("/sdcard/a"), QStringLiteral("/sdcard/.hidden/b"),
                           QStringLiteral("/sdcard/c d.txt"), QStringLiteral("/sdcard/a "),
                           QStringLiteral("/sdcard/e")}));
    EXPECT_EQ(ADBClient::parseFoundPaths(output, root, 3).size(), 1) << "lines count, not hits";
    const QString cut = QStringLiteral("/sdcard/a%1/b\n").arg(QChar(u'\0'));
    EXPECT_TRUE(ADBClient::parseFoundPaths(cut, root, 200).isEmpty()) << "a NUL would end the argument early";
}

TEST(SearchText, facts) {
    const auto path = [](const char *name) -> QString {
        return QStringLiteral("/sdcard/") + QString::fromUtf8(name);
    };
    const auto facts =
        ADBClient::parseSearchMetadata(QStringLiteral("WARNING: of something else\n"
                                                      "/sdcard/DCIM|Directory|1|1714567890\n"
                                                      "/sdcard/a|b.txt|regular file|17|1714567890\r\n"
                                                      "/sdcard/link|symbolic link|4|x\n"
                                                      "/sdcard/odd|regular empty file|-|1e400\n"
                                                      "/sdcard/short|regular file|17\n"
                                                      "x/sdcard/late|regular file|17|1\n"
                                                      "/sdcard/DCIM|directory|2|1.5\n"),
                                       {path("a"), path("gone"), path("DCIM"), path("a|b.txt"), path("link"),
                                        path("odd"), path("short"), path("late")});
    EXPECT_EQ(facts.size(), 4);
    EXPECT_EQ(
        facts[QStringLiteral("/sdcard/a|b.txt")],
        (ADBClient::SearchMetadata{false, 17, QDateTime(QDate(2024, 5, 1), QTime(12, 51, 30), Qt::UTC)}));
    EXPECT_TRUE(facts[QStringLiteral("/sdcard/DCIM")].isDirectory);
    EXPECT_EQ(facts[QStringLiteral("/sdcard/DCIM")].sizeBytes, 1);
    EXPECT_FALSE(facts[QStringLiteral("/sdcard/link")].isDirectory);
    EXPECT_EQ(facts[QStringLiteral("/sdcard/link")].modifiedAt, std::nullopt);
    EXPECT_EQ(facts[QStringLiteral("/sdcard/odd")], ADBClient::SearchMetadata());
    for (const char *time : {"1e300", "9.3e15", "-9.3e15", "nan", "inf", ""}) {
        const QString answer = path("a") + QStringLiteral("|regular file|1|") + QLatin1String(time);
        EXPECT_EQ(ADBClient::parseSearchMetadata(answer, {path("a")})[path("a")].modifiedAt, std::nullopt)
            << time;
    }
}

TEST(TransferText, percentOfTheErrorStream) {
    const struct {
        const char *text;
        std::optional<double> percent;
    } cases[] = {
        {"", {}},
        {"[  5%] /sdcard/a\n[ 42%] /sdcard/a", 42},
        {"[100%] /sdcard/a", 100},
        {"250%", {}},
        {"[250%] then 30%", 30},
        {"[ 12%] first 7%", 12},
        {"copied 7 % of it", 7},
        {"1234%", {}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ADBClient::parseProgressPercent(QString::fromUtf8(c.text)), c.percent) << c.text;
}

TEST(TransferText, terminalOutputInPieces) {
    ADBClient::TransferOutput output;
    EXPECT_EQ(output.feed("\r[ 2"), std::nullopt);
    EXPECT_EQ(output.feed("5%] /sdcard/[99%].bin\x1b[K"), 25);
    EXPECT_EQ(output.feed("\r[ 14%] /sdcard/d/f1: 43%\x1b[K\r[ 15%] /sdcard/d/f1: 44%\x1b[K"), 15);
    EXPECT_EQ(output.feed("\r/sdcard/unknown: 12/?\x1b[K"), std::nullopt);
    EXPECT_EQ(output.feed("\r[300%] x"), std::nullopt);
    EXPECT_EQ(output.errorText(), QString());
}

TEST(TransferText, errorsOfTheTool) {
    const struct {
        const char *text;
        const char *error;
    } cases[] = {
        {"adb: error: failed to stat remote object '/sdcard/nope': No such file or directory\r\n",
         "failed to stat remote object '/sdcard/nope': No such file or directory"},
        {"\r[ 25%] /sdcard/a\x1b[K\r\nadb: error: failed to copy 'x' to '/system/x': Permission "
         "denied\x1b[K\r\n"
         "x: 0 files pushed.\r\n",
         "failed to copy 'x' to '/system/x': Permission denied"},
        {"\r[ 25%] /sdcard/adb: error: a name\x1b[K", ""},
        {"/sdcard/a: 1 file pulled, 0 skipped. 23.8 MB/s (20000000 bytes in 0.801s)\r\n", ""},
    };
    for (const auto &c : cases) {
        ADBClient::TransferOutput output;
        for (const char *byte = c.text; *byte != '\0'; ++byte)
            output.feed(QByteArray(byte, 1));
        EXPECT_EQ(output.errorText(), QString::fromUtf8(c.error)) << c.text;
    }
    ADBClient::TransferOutput endless;
    endless.feed("adb: error: " + QByteArray(1 << 20, 'x'));
    EXPECT_LT(endless.errorText().size(), 20'000);
}
