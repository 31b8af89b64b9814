// What the tools print, read by the parsers alone.

#include "support/Environment.h"
#include "support/Printers.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "ADB/BatchText.h"
#include "ADB/DeviceText.h"
#include "ADB/ListingText.h"
#include "ADB/SearchText.h"
#include "ADB/SumText.h"
#include "ADB/ToolText.h"
#include "ADB/TransferText.h"
#include "ADB/TreeText.h"

#include <QtTest>
#include <gtest/gtest.h>

#include <ctime>

using namespace Qt::StringLiterals;
using namespace vantrel;

namespace {

QString transcript(const char *name) {
    QFile file(QLatin1String(VANTREL_TEST_DATA "/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return ToolText::decode(file.readAll());
}

/// "name" for a file, "name/" for a folder, in the listing's order.
QString names(const QList<FileItem> &items) {
    QStringList list;
    for (const FileItem &item : items)
        list.append(item.name + (item.isDirectory ? u"/"_s : QString()));
    return list.join(u'|');
}

const FileItem &named(const QList<FileItem> &items, const char *name) {
    for (const FileItem &item : items) {
        if (item.name == QString::fromUtf8(name))
            return item;
    }
    throw std::runtime_error(std::string("no entry ") + name);
}

} // namespace

TEST(ToolTextTests, splitsAtEveryKindOfNewlineAndSpace) {
    const QString text = u"a\nb\vc\fd\re\r\nf\u0085g\u2028h\u2029\n\ni"_s;
    QStringList lines;
    for (const QStringView line : ToolText::lines(text))
        lines.append(line.toString());
    EXPECT_EQ(lines.join(u' '), u"a b c d e f g h i"_s);

    const QString fields = u"\u00a0a\tb \u1680 c\u2003d\u202fe\u205ff\u3000g"_s;
    EXPECT_EQ(ToolText::fields(fields).size(), 7);

    EXPECT_EQ(ToolText::blankTrimmed(u"\t \u00a0x\n \u3000"), u"x\n"_s);
    EXPECT_EQ(ToolText::trimmed(u"\u2028 \r\n x y \u0085\t"_s), u"x y"_s);
}

TEST(ToolTextTests, invalidUtf8CountsAsNothing) {
    EXPECT_EQ(ToolText::decode("gr\xc3\xbc\xc3\x9f"), u"grüß"_s);
    EXPECT_EQ(ToolText::decode("ok\xff\xfe"), QString());
    EXPECT_EQ(ToolText::decode("cut \xe2\x82"), QString());
}

TEST(ToolTextTests, onlyWholeNumbersAreNumbers) {
    EXPECT_EQ(ToolText::wholeNumber(u"+12"), 12);
    EXPECT_EQ(ToolText::wholeNumber(u"-9223372036854775808"), std::numeric_limits<qint64>::min());
    for (const QString &bad : {u""_s, u"-"_s, u"18%"_s, u"1,000"_s, u" 5"_s, u"0x10"_s, u"1e3"_s,
                               u"\u22125"_s, u"5\u00a0"_s, u"5\n"_s, u"9223372036854775808"_s, u"٣"_s})
        EXPECT_EQ(ToolText::wholeNumber(bad), std::nullopt) << bad.toStdString();
}

TEST(DeviceTextTests, onlyPhonesThatAreReadyAreListed) {
    EXPECT_EQ(ADBClient::parseDeviceList(transcript("device-list/chatter.txt")),
              (QStringList{u"192.168.1.20:5555"_s, u"adb-R58M_x._adb-tls-connect._tcp"_s}));
    EXPECT_EQ(ADBClient::parseDeviceList(u"List of devices attached\r\nR58M\tdevice\r\n\r\n"_s),
              QStringList{u"R58M"_s});
    EXPECT_TRUE(ADBClient::parseDeviceList(QString()).isEmpty());
    EXPECT_EQ(ADBClient::parseDeviceList(u"A\tdevice\n"_s.repeated(5000)).size(), ADBClient::mostPhones);
}

TEST(DeviceTextTests, storageIsTwoNumbersThatFit) {
    using ADBClient::StorageBytes;
    const std::tuple<QString, StorageBytes, QString> cases[] = {
        {u"Filesystem 1K-blocks Used Available Use% Mounted on\n"
         "/dev/fuse 115315200 20123456 95191744 18% /storage/emulated\n"_s,
         {20'606'418'944, 118'082'764'800},
         {}},
        {u"FILESYSTEM\n/dev/block/by-name/a-name-that-is-far-too-long\n  100 50 50 50% /data\r\n"_s,
         {51'200, 102'400},
         {}},
        {u"Filesystem 1K-blocks Used\n"_s, {}, u"Unexpected df output."_s},
        {u""_s, {}, u"Unexpected df output."_s},
        {u"/dev/fuse 18% /sdcard"_s, {}, u"Could not parse df numbers: /dev/fuse 18% /sdcard"_s},
        {u"x 9223372036854775807 1 2"_s, {}, u"Could not parse df numbers: x 9223372036854775807 1 2"_s},
        {u"x 1 9007199254740992 2"_s, {}, u"Could not parse df numbers: x 1 9007199254740992 2"_s},
    };
    for (const auto &[text, expected, error] : cases) {
        const auto bytes = ADBClient::parseDF(text);
        EXPECT_EQ(bytes.value_or(StorageBytes()), expected) << text.toStdString();
        EXPECT_EQ(bytes ? QString() : bytes.error().errorDescription(), error);
    }
}

TEST(ADBDeviceTextTests, addressesOnTheNetwork) {
    const std::pair<QString, QString> cases[] = {
        {u"192.168.1.20:37123"_s, u"192.168.1.20:37123"_s},
        {u" 192.168.1.20 "_s, u"192.168.1.20:5555"_s},
        {u"pixel-7.local:1"_s, u"pixel-7.local:1"_s},
        {u"[fe80::1]:65535"_s, u"[fe80::1]:65535"_s},
        {u"[::1]"_s, u"[::1]:5555"_s},
        {{}, {}},
        {u"-d"_s, {}},
        {u"-s:5555"_s, {}},
        {u"host:0"_s, {}},
        {u"host:65536"_s, {}},
        {u"host:99999999999"_s, {}},
        {u"host:"_s, {}},
        {u"host:12a"_s, {}},
        {u"two words:5555"_s, {}},
        {u"a\nb"_s, {}},
        {u"fe80::1"_s, {}},
        {u"host;rm -rf /:5555"_s, {}},
        {u"https://host:5555"_s, {}},
        {QString(300, u'a'), {}},
        {u"höst"_s, {}},
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(ADBClient::wirelessAddress(text).value_or(QString()), expected) << text.toStdString();

    const std::pair<QString, QString> answers[] = {
        {u"connected to 127.0.0.1:5661\n"_s, u"127.0.0.1:5661"_s},
        {u"already connected to 127.0.0.1:5661"_s, u"127.0.0.1:5661"_s},
        {u"failed to connect to '127.0.0.1:1': Connection refused"_s, {}},
        {u"connected to "_s, {}},
        {u"not connected to x:1"_s, {}},
        {u"connected to a b"_s, {}},
    };
    for (const auto &[text, expected] : answers)
        EXPECT_EQ(ADBClient::parseConnected(text), expected) << text.toStdString();
    EXPECT_EQ(ADBClient::parseVersion(u"Android Debug Bridge version 1.0.41\nVersion 29.0.6-debian\nx"_s),
              29);
    EXPECT_EQ(ADBClient::parseVersion(u"Version 99999999999"_s), 999'999);
    EXPECT_EQ(ADBClient::parseVersion(u"unknown"_s), 0);
}

TEST(ADBDeviceTextTests, cardsComeBehindTheSharedStorage) {
    const QString df = u"Filesystem 1K-blocks Used Available Use% Mounted on\n/dev/fuse %1 5 5 50% x\n"_s;
    const std::tuple<QString, QString> cases[] = {
        {df.arg(10), u"10240"_s},
        {df.arg(10) + u"/storage/1A2B-3C4D\n"_s + df.arg(20) + u"/storage/ffff-0000\n"_s + df.arg(30),
         u"10240 /storage/1A2B-3C4D=20480 /storage/ffff-0000=30720"_s},
        {u"/storage/1A2B-3C4D\n"_s + df.arg(20), u"- /storage/1A2B-3C4D=20480"_s},
        {df.arg(10) + u"/storage/1A2B-3C4D\n"_s, u"10240 /storage/1A2B-3C4D=0"_s}, // pulled just now
        {df.arg(10) + u"/storage/*-*\n/storage/self-abc\n/storage/12345-678\n"_s, u"-"_s},
        {df.arg(10) + u"/storage/1A2B-3C4D/../..\n"_s, u"-"_s},
        {df.arg(10) + u"/storage/1A2B-3C4D\n"_s.repeated(1000),
         u"10240"_s + u" /storage/1A2B-3C4D=0"_s.repeated(16)},
        {QString(), u"-"_s},
    };
    for (const auto &[text, expected] : cases) {
        const auto [shared, cards] = ADBClient::splitStorage(text);
        const auto bytes = ADBClient::parseDF(shared);
        QString found = bytes ? QString::number(bytes->total) : u"-"_s;
        for (const StorageCard &card : cards)
            found += u' ' + card.path + u'=' + QString::number(card.totalBytes);
        EXPECT_EQ(found, expected) << text.left(200).toStdString();
    }
}

TEST(ListingTextTests, oddAndHostileEntriesKeepWhatIsKnownOfThem) {
    const auto items = ADBClient::parseLSLA(transcript("listing/unreadable.txt"), u"/"_s);
    EXPECT_EQ(names(items), u"vendor/|bad-date.txt|name.txt|null|sda|sdcard|too-big.bin"_s);
    EXPECT_EQ(named(items, "vendor").path, u"/vendor"_s);
    EXPECT_EQ(named(items, "too-big.bin").sizeBytes, std::nullopt);
    EXPECT_EQ(named(items, "bad-date.txt").modifiedAt, std::nullopt);
    EXPECT_EQ(named(items, "bad-date.txt").sizeBytes, 100);
    EXPECT_EQ(named(items, "name.txt").sizeBytes, std::nullopt);
    EXPECT_EQ(named(items, "name.txt").modifiedAt, std::nullopt);

    const auto crlf = ADBClient::parseLSLA(transcript("listing/crlf.txt"), u"/sdcard"_s);
    EXPECT_EQ(names(crlf), u"DCIM/|My Song.mp3"_s);
    EXPECT_EQ(named(crlf, "My Song.mp3").sizeBytes, 1'048'576);
}

TEST(ListingTextTests, anExactListingKeepsWhateverANameHolds) {
    // toybox writes U+0085 like the byte 0x85, which is no text.
    const struct {
        const char *mode;
        const char *column;
        QString name; // null: the line is no entry
        bool isExact = true;
    } cases[] = {
        {"-", "\\ a\\ \\ b\\ ", u" a  b "_s},
        {"-", "\u00a0n\u00a0\u00a0b\u3000", u"\u00a0n\u00a0\u00a0b\u3000"_s},
        {"-", "line\\nbreak\\r\\t\\a\\b\\e\\f\\v", u"line\nbreak\r\t\a\b\x1b\f\v"_s},
        {"-", "back\\\\slash\\\\", u"back\\slash\\"_s},
        {"-", "\\\\040", u"\\040"_s},
        {"-", "a\\ ->\\ b", u"a -> b"_s},
        {"-", "->\\ x", u"-> x"_s},
        {"l", "a\\ ->\\ b -> c -> d", u"a -> b"_s},
        {"l", "ends\\\\ -> \\", u"ends\\"_s},
        {"l", "no target", u"no target"_s},
        {"-", "not escaped -> here", u"not escaped -> here"_s},
        {"-", "ls\\342\\200\\250x", u"ls\u2028x"_s},
        {"-", "del\\177\\001", u"del\x7f\x01"_s},
        {"-", "😀é\u0301\ufffd", u"😀é\u0301\ufffd"_s},
        {"-", "bad\\377\\376.txt", u"bad\ufffd\ufffd.txt"_s, false},
        {"-", "c1\\205", u"c1\ufffd"_s, false},
        {"-", "cut\\342\\200", u"cut\ufffd\ufffd"_s, false},
        {"-", "odd\\4", u"odd\\4"_s},
        {"-", "odd\\12", u"odd\\12"_s},
        {"-", "odd\\777\\q", u"odd\\777\\q"_s},
        {"-", "", u""_s},
    };
    for (const auto &[mode, column, name, isExact] : cases) {
        const QString line = QLatin1String(mode) + u"rw-rw----  1 u0_a1 media_rw     7 2024-05-01 13:07 "_s +
                             QString::fromUtf8(column);
        for (const QString &end : {QString(), u"\r"_s}) {
            const auto entry = ADBClient::parseLSLABLine(QString(line + end));
            ASSERT_TRUE(entry.has_value()) << column;
            EXPECT_EQ(entry->name, name) << column;
            EXPECT_EQ(entry->isNameExact, isExact) << column;
            EXPECT_EQ(entry->size, 7) << column;
        }
    }
    for (const char *none :
         {"", "total 28", "d?????????   ? ?      ?        ?                ? my\\ file now and then",
          "ls: /x: Permission denied"})
        EXPECT_FALSE(ADBClient::parseLSLABLine(QString::fromUtf8(none)).has_value()) << none;
}

TEST(ListingTextTests, aRealExactListingIsRead) {
    const auto items = ADBClient::parseLSLAB(transcript("exact-listing/toybox.txt"), u"/sdcard"_s);
    EXPECT_EQ(items.size(), 41);
    EXPECT_EQ(items.first().name, u"Two  Words "_s);
    EXPECT_TRUE(items.first().isDirectory);
    EXPECT_EQ(named(items, "li -> nk").sizeBytes, 11);
    EXPECT_EQ(named(items, "line\nbreak").path, u"/sdcard/line\nbreak"_s);
    EXPECT_EQ(named(items, "nb\u00a0\u00a0sp").modifiedAt, QDateTime(QDate(2026, 11, 23), QTime(23, 22)));
    EXPECT_EQ(
        std::count_if(items.begin(), items.end(), [](const FileItem &item) { return !item.isNameExact; }), 5);
    const auto devices = ADBClient::parseLSLAB(u"crw-rw-rw-  1 0 0 1,   3 2026-11-23 23:22 null\n"
                                               "-rw------- 1 0 0 8 Nov 22 19:53 month name.txt\n"
                                               "-rw------- 1 0 0 8 2026-11-23 23:22 .hidden\n"
                                               "-rw------- 1 0 0 8 2026-11-23 23:22 a\\057b\n"
                                               "-rw------- 1 0 0 8 2026-11-23 23:22 a\\000b\n"_s,
                                               u"/dev"_s);
    EXPECT_EQ(names(devices), u"name.txt|null"_s);
    EXPECT_EQ(named(devices, "null").sizeBytes, std::nullopt);
}

TEST(ListingTextTests, aListingMayComeInAnyPiecesAndEachNameIsJudgedAlone) {
    const QByteArray listing = transcript("exact-listing/toybox.txt").toUtf8() +
                               "-rw------- 1 0 0 8 2026-11-23 23:22 \xff\n"
                               "-rw------- 1 0 0 8 2026-11-23 23:22 said\xef\xbf\xbd\n"
                               "-rw------- 1 0 0 8 2026-11-23 23:22 zu end";
    for (const qsizetype size : {qsizetype(1), qsizetype(7), qsizetype(100), listing.size()}) {
        ADBClient::ListingReader reader(u"/sdcard"_s, ADBClient::ListingReader::Form::escaped);
        for (qsizetype at = 0; at < listing.size(); at += size)
            reader.read(listing.mid(at, size));
        const auto items = reader.take();
        EXPECT_EQ(items.size(), 44) << size;
        EXPECT_FALSE(named(items, "\ufffd").isNameExact) << size;
        EXPECT_TRUE(named(items, "said\ufffd").isNameExact) << size;
        EXPECT_EQ(named(items, "zu end").sizeBytes, 8) << size;
    }
}

TEST(ListingTextTests, complaintsAreCounted) {
    EXPECT_EQ(ADBClient::countComplaints("ls: /a: Permission denied\nls: /b\xff: gone\r\nWARNING: linker\n"),
              2);
    EXPECT_EQ(ADBClient::countComplaints(""), 0);
    EXPECT_EQ(ADBClient::countComplaints("error: device offline\n"), 0);
}

TEST(ListingTextTests, timesAreReadAlsoOnADayWhenTheClockIsChanged) {
    std::optional<Environment> environment(Environment::Values{{"TZ", "CET-1CEST,M3.5.0,M10.5.0/3"}});
    ::tzset();
    for (const auto &[local, utc] : {std::pair("2026-03-28 12:00", "2026-03-28T11:00:00Z"),
                                     {"2026-03-29 01:30", "2026-03-29T00:30:00Z"},
                                     {"2026-03-29 12:00", "2026-03-29T10:00:00Z"},
                                     {"2026-07-01 00:05", "2026-06-30T22:05:00Z"}}) {
        const QString line = u"-rw-rw---- 1 root everybody 1 %1 a"_s.arg(QLatin1String(local));
        const auto items = ADBClient::parseLSLA(line, u"/sdcard"_s);
        EXPECT_EQ(named(items, "a").modifiedAt->toString(Qt::ISODate), QLatin1String(utc)) << local;
    }
    environment.reset();
    ::tzset();
}

TEST(ListingTextTests, someLinesAreNoEntries) {
    for (const QString &line :
         {u""_s, u"-rw-r--r--"_s, u"total 12345678901"_s, u"ls: /sdcard/x: Permission denied"_s,
          u"-rw-r--r-- 1 root root 5 2024-05-01 13:07"_s})
        EXPECT_FALSE(ADBClient::parseLSLALine(line).has_value()) << line.toStdString();
    // An arrow alone, with nothing before it, still leaves a name.
    const auto arrows = ADBClient::parseLSLA(u"-rw-r--r-- 1 r r 5 2024-05-01 13:07 ->x\n"
                                             "-rw-r--r-- 1 r r 5 2024-05-01 13:07 -> .hidden\n"
                                             "-rw-r--r-- 1 r r 5 2024-05-01 13:07 ->\n"_s,
                                             u"/sdcard"_s);
    EXPECT_EQ(names(arrows), u"->|x"_s);
}

TEST(AndroidPathTests, aPathIsNormalizedAndShown) {
    // A path, its normal form and how it is shown.
    for (const QString &row :
         {u"  |/sdcard|"_s, u"|/sdcard|"_s, u"/|/|"_s, u"//|/|"_s, u"/sdcard///|/sdcard|"_s,
          u"/sdcard/DCIM/|/sdcard/DCIM| › DCIM"_s, u"/storage/emulated/0|/storage/emulated/0|"_s,
          u"/storage/emulated/0/Music|/storage/emulated/0/Music| › Music"_s,
          u" /sdcard/DCIM/ |/sdcard/DCIM| › DCIM"_s, u"/sdcard/blank |/sdcard/blank | › blank "_s,
          u"/sdcard/a//b/../c|/sdcard/a//b/../c| › a › b › .. › c"_s}) {
        const QString path = row.section(u'|', 0, 0), normalized = row.section(u'|', 1, 1);
        const QString breadcrumb = u"Internal Storage"_s + row.section(u'|', 2);
        EXPECT_EQ(ADBClient::normalizePath(path), normalized) << path.toStdString();
        EXPECT_EQ(AndroidPath::breadcrumb(path), breadcrumb) << path.toStdString();
    }
    EXPECT_EQ(AndroidPath::breadcrumb(u"/storage/1234-5678/Pictures"_s), u"storage › 1234-5678 › Pictures"_s);
}

TEST(AndroidPathTests, namesFromThePhoneStayInTheirFolder) {
    for (const char *safe : {"a", "..a", "a b", "-rf", "it's", "😀"})
        EXPECT_TRUE(AndroidPath::isSafeName(QString::fromUtf8(safe))) << safe;
    for (const QString &unsafe :
         {QString(), u"."_s, u".."_s, u"a/b"_s, u"/etc"_s, u"../x"_s, QString(QChar(u'\0'))})
        EXPECT_FALSE(AndroidPath::isSafeName(unsafe)) << unsafe.toStdString();
}

TEST(SearchTextTests, queriesLoseWhatTheShellCouldRead) {
    for (const auto &[query, sanitized] : {std::pair(u"a*b;c"_s, u"abc"_s),
                                           {u"  holiday 2024 "_s, u"holiday 2024"_s},
                                           {u"'; rm -rf /sdcard; '"_s, u"rm -rf /sdcard"_s},
                                           {u"$(reboot)`reboot`"_s, u"rebootreboot"_s},
                                           {u"\"\\*?[]{};|&$`<>!()\n\r\t'"_s, u""_s},
                                           {u"x\ty\nz"_s, u"xyz"_s},
                                           {u"Grüße-1.jpg_"_s, u"Grüße-1.jpg_"_s}})
        EXPECT_EQ(ADBClient::sanitizeSearchQuery(query), sanitized) << query.toStdString();
}

TEST(SearchTextTests, foundPathsComeOnceWithoutRootAndHiddenNames) {
    const QString output =
        u"* daemon started successfully\n/sdcard\n/sdcard/a\n/sdcard/a/\n"
        "/sdcard/.nomedia\n/sdcard/.hidden/b\n/sdcard/c d.txt\n/sdcard/a \n"
        "/sdcard/two\n\nbreaks\r\v\u2028\n/sdcard/x/..\n/sdcard/ e  f\u00a0\n/sdcard/a\n"_s;
    const QString root = u"/sdcard"_s;
    const QStringList expected{u"/sdcard/a"_s,
                               u"/sdcard/.hidden/b"_s,
                               u"/sdcard/c d.txt"_s,
                               u"/sdcard/a "_s,
                               u"/sdcard/two\n\nbreaks\r\v\u2028"_s,
                               u"/sdcard/ e  f\u00a0"_s};
    EXPECT_EQ(ADBClient::parseFoundPaths(output, root, 200), expected);
    EXPECT_EQ(ADBClient::parseFoundPaths(output.chopped(1), root, 200), expected);
    EXPECT_EQ(ADBClient::parseFoundPaths(output, root, 4).size(), 1) << "lines count, not hits";
    EXPECT_EQ(ADBClient::parseFoundPaths(u"/sdcard/a\r\n/sdcard/b\r\n"_s, root, 200),
              (QStringList{u"/sdcard/a"_s, u"/sdcard/b"_s}));
    EXPECT_EQ(ADBClient::parseFoundPaths(u"/\n/a\n"_s, u"/"_s, 200), QStringList{u"/a"_s});
    const QString cut = u"/sdcard/a%1/b\n"_s.arg(QChar(u'\0'));
    EXPECT_TRUE(ADBClient::parseFoundPaths(cut, root, 200).isEmpty()) << "a NUL would end the argument early";
}

TEST(SearchTextTests, factsAreReadAsFarAsTheyCanBe) {
    const auto path = [](const char *name) -> QString { return u"/sdcard/"_s + QString::fromUtf8(name); };
    const auto facts =
        ADBClient::parseSearchMetadata(u"WARNING: of something else\n"
                                       "/sdcard/DCIM|Directory|1|1714567890\n"
                                       "/sdcard/a|b.txt|regular file|17|1714567890\r\n"
                                       "/sdcard/link|symbolic link|4|x\n"
                                       "/sdcard/odd|regular empty file|-|1e400\n"
                                       "/sdcard/short|regular file|17\n"
                                       "x/sdcard/late|regular file|17|1\n"
                                       "/sdcard/DCIM|directory|2|1.5\n"_s,
                                       {path("a"), path("gone"), path("DCIM"), path("a|b.txt"), path("link"),
                                        path("odd"), path("short"), path("late")});
    EXPECT_EQ(facts.size(), 4);
    EXPECT_EQ(
        facts[u"/sdcard/a|b.txt"_s],
        (ADBClient::SearchMetadata{false, 17, QDateTime(QDate(2024, 5, 1), QTime(12, 51, 30), Qt::UTC)}));
    EXPECT_TRUE(facts[u"/sdcard/DCIM"_s].isDirectory);
    EXPECT_EQ(facts[u"/sdcard/DCIM"_s].sizeBytes, 1);
    EXPECT_FALSE(facts[u"/sdcard/link"_s].isDirectory);
    EXPECT_EQ(facts[u"/sdcard/link"_s].modifiedAt, std::nullopt);
    EXPECT_EQ(facts[u"/sdcard/odd"_s], ADBClient::SearchMetadata());
    for (const char *time : {"1e300", "9.3e15", "-9.3e15", "nan", "inf", ""}) {
        const QString answer = path("a") + u"|regular file|1|"_s + QLatin1String(time);
        EXPECT_EQ(ADBClient::parseSearchMetadata(answer, {path("a")})[path("a")].modifiedAt, std::nullopt)
            << time;
    }
}

TEST(TransferTextTests, theErrorStreamHasAPercentage) {
    const std::pair<QString, std::optional<double>> cases[] = {{u"[  5%] /sdcard/a\n[ 42%] /sdcard/a"_s, 42},
                                                               {u"[100%] /sdcard/a"_s, 100},
                                                               {u"250%"_s, {}},
                                                               {u"[250%] then 30%"_s, 30},
                                                               {u"[ 12%] first 7%"_s, 12},
                                                               {u"copied 7 % of it"_s, 7},
                                                               {u"1234%"_s, {}}};
    for (const auto &[text, percent] : cases)
        EXPECT_EQ(ADBClient::parseProgressPercent(text), percent) << text.toStdString();
}

TEST(TransferTextTests, terminalOutputIsReadInPieces) {
    ADBClient::TransferOutput output;
    EXPECT_EQ(output.feed("\r[ 2"), std::nullopt);
    EXPECT_EQ(output.feed("5%] /sdcard/[99%].bin\x1b[K"), 25);
    EXPECT_EQ(output.feed("\r[ 14%] /sdcard/d/f1: 43%\x1b[K\r[ 15%] /sdcard/d/f1: 44%\x1b[K"), 15);
    EXPECT_EQ(output.feed("\r/sdcard/unknown: 12/?\x1b[K"), std::nullopt);
    EXPECT_EQ(output.feed("\r[300%] x"), std::nullopt);
    EXPECT_EQ(output.errorText(), QString());
}

TEST(TransferTextTests, errorsOfTheToolAreFound) {
    const std::pair<QByteArray, const char *> cases[] = {
        {"adb: error: failed to stat remote object '/sdcard/nope': No such file or directory\r\n",
         "failed to stat remote object '/sdcard/nope': No such file or directory"},
        {"\r[ 25%] /sdcard/a\x1b[K\r\nadb: error: failed to copy 'x' to '/system/x': Permission "
         "denied\x1b[K\r\n"
         "x: 0 files pushed.\r\n",
         "failed to copy 'x' to '/system/x': Permission denied"},
        {"\r[ 25%] /sdcard/adb: error: a name\x1b[K", ""},
        {"/sdcard/a: 1 file pulled, 0 skipped. 23.8 MB/s (20000000 bytes in 0.801s)\r\n", ""},
    };
    for (const auto &[text, error] : cases) {
        ADBClient::TransferOutput output;
        for (const char byte : text)
            output.feed(QByteArray(1, byte));
        EXPECT_EQ(output.errorText(), QString::fromUtf8(error)) << text.toStdString();
    }
    ADBClient::TransferOutput endless;
    endless.feed("adb: error: " + QByteArray(1 << 20, 'x'));
    EXPECT_LT(endless.errorText().size(), 20'000);
}

TEST(TreeText, keepsWhatLiesBelowItsFolderAndIsWhole) {
    const auto answer = [](const QByteArrayList &records) -> QByteArray {
        QByteArray text;
        for (const QByteArray &record : records)
            text += record + '\0';
        return text + "end\n";
    };
    const QByteArray root = "drwxrwx--x 4096 1795466806.125 ";
    const auto tree = ADBClient::parseTree(
        answer({root, "-rw-rw---- 3 1795466806.85721667 a\nb c", "drwxrwx--x 4096 12.0 sub",
                "lrwxrwxrwx 4 12.0 sub/l", "-rw-rw---- 1 12.0 ../up", "-rw-rw---- 1 12.0 /etc/passwd",
                "-rw-rw---- 1 12.0 a//b", "-rw-rw---- 1 12.0 sub/..", "-rw-rw---- 1 12.0 bad\xff", root}));
    ASSERT_TRUE(tree);
    using Kind = TreeEntry::Kind;
    EXPECT_EQ(tree->entries, (QList<TreeEntry>{{QString(), Kind::folder, 0, 1795466806},
                                               {u"a\nb c"_s, Kind::file, 3, 1795466806},
                                               {u"sub"_s, Kind::folder, 0, 12},
                                               {u"sub/l"_s, Kind::other, 0, 12}}));
    EXPECT_EQ(tree->leftOut.size(), 1);
    EXPECT_EQ(ADBClient::parseTree(answer({}))->entries, QList<TreeEntry>());
    for (const QByteArray &broken :
         {QByteArray(), QByteArray("end"), answer({root}).chopped(1), answer({"x"}), answer({"- 1 1 a"}),
          answer({"-rw-rw---- 99999999999999999999 1.0 a"}), answer({"-rw-rw---- 1 9223372036854775807 a"}),
          QByteArray(answer({root}) + "more")})
        EXPECT_FALSE(ADBClient::parseTree(broken)) << broken.toStdString();
}

TEST(SumText, aSumBelongsToThePathThatWasAskedFor) {
    const QByteArray a(32, 'a');
    const QByteArray b(32, 'b');
    const QStringList paths{u"/x"_s, u"/two\nlines"_s, u"/a\\b"_s};
    const struct {
        QByteArray answer;
        QByteArrayList sums;
    } cases[] = {
        {a + "  /x\n" + b + "  /two\nlines\n" + a + "  /a\\b\nend\n", {a, b, a}},
        {a + "  /x\n\\" + b + "  /two\\nlines\n\\" + a + "  /a\\\\b\nend\n", {a, b, a}},
        {b + "  /two\nlines\nend\n", {"", b, ""}},
        {a + "  /a\\b\n" + b + "  /x\n", {"", "", a}}, // in another order: what is passed over is lost
        {a + "  /xy\n", {"", "", ""}},
        {a.left(31) + "  /x\n", {"", "", ""}},
        {a + " /x\n", {"", "", ""}},
        {QByteArray(32, 'A') + "  /x\n", {"", "", ""}},
        {a + "  /x", {"", "", ""}},
        {a, {"", "", ""}},
        {"\\", {"", "", ""}},
        {"", {"", "", ""}},
    };
    for (const auto &[answer, sums] : cases)
        EXPECT_EQ(ADBClient::parseSums(answer, paths), sums) << answer.toStdString();
}

TEST(BatchText, countsFilesAndKeepsErrorsHoweverItIsCut) {
    // adb 29, three files of which one may not be read.
    const QByteArray text =
        "\r[ 26%] /sdcard/D/f1.bin\x1b[K\r[100%] /sdcard/D/f1.bin\x1b[K"
        "\r/sdcard/D/f1.bin: 1 file pulled, 0 skipped. 51.2 MB/s (3000000 bytes in 0.056s)\x1b[K\n"
        "\radb: error: failed to copy '/sdcard/D/f3.bin' to 'in/f3.bin': remote open failed: Permission "
        "denied\n\r[ 17%] /sdcard/D/f2.bin\x1b[K";
    for (qsizetype piece : {qsizetype(1), qsizetype(7), text.size()}) {
        ADBClient::BatchOutput output;
        for (qsizetype at = 0; at < text.size(); at += piece)
            output.feed(text.mid(at, piece));
        EXPECT_EQ(output.endedFiles(), 2);
        EXPECT_DOUBLE_EQ(output.fractionOfNext(), 0.17);
        EXPECT_EQ(output.errors(),
                  QStringList{QStringLiteral("failed to copy '/sdcard/D/f3.bin' to 'in/f3.bin': remote "
                                             "open failed: Permission denied")});
    }
    ADBClient::BatchOutput sum;
    sum.feed("2 files pulled, 0 skipped. 71.7 MB/s (6000000 bytes in 0.080s)\n");
    EXPECT_EQ(sum.endedFiles(), 0) << "the sum of all is no file";
}
