#include "Target.h"

#include "ADB/ADBClient.h"
#include "ADB/AndroidPath.h"
#include "ADB/DeviceText.h"
#include "ADB/ListingText.h"
#include "ADB/SearchText.h"
#include "ADB/ToolText.h"
#include "ADB/TransferText.h"
#include "Analytics/SignalJson.h"
#include "App/System/Settings.h"
#include "App/Updates/Appcast.h"
#include "Records/FileOrder.h"
#include "Thumbnails/SmallPicture.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUuid>

#include <algorithm>
#include <cstdlib>

namespace vantrel::fuzz {

namespace {

/// Ends the process the way a fuzzer notices.
void require(bool holds, const char *what) {
    if (!holds)
        qFatal("Does not hold: %s", what);
}

bool isPercent(const std::optional<double> &percent) {
    return !percent || (*percent >= 0 && *percent <= 100);
}

void deviceList(const QByteArray &input) {
    const auto phones = ADBClient::parsePhones(ToolText::decode(input));
    for (const ListedPhone &phone : phones)
        require(!phone.serial.isEmpty() && !phone.state.isEmpty() &&
                    !phone.serial.contains(QLatin1Char('\t')),
                "a phone has a serial and a state");
    require(phones.size() <= ADBClient::mostPhones, "there is an end to phones");
}

/// A pipe hands over its text in pieces of any size; where it is cut must not matter.
void trackedDevices(const QByteArray &input) {
    ADBClient::TrackedDevices whole;
    const auto newest = whole.feed(input);
    ADBClient::TrackedDevices pieces;
    std::optional<QList<ListedPhone>> last;
    for (const char byte : input) {
        if (auto phones = pieces.feed(QByteArray(1, byte)))
            last = std::move(phones);
    }
    require(last == newest && pieces.isGarbage() == whole.isGarbage(), "pieces read like the whole");
}

void storage(const QByteArray &input) {
    const auto [shared, cards] = ADBClient::splitStorage(ToolText::decode(input));
    const auto bytes = ADBClient::parseDF(shared);
    if (bytes)
        require(bytes->used % 1024 == 0 && bytes->total % 1024 == 0, "df counts blocks of 1024 bytes");
    for (const StorageCard &card : cards)
        require(AndroidPath::cardOf(card.path) == card.path && card.totalBytes % 1024 == 0, "a card is one");
    require(cards.size() <= 16, "there is an end to cards");
}

void listingIn(const QString &folder, const QList<FileItem> &items) {
    for (const FileItem &item : items) {
        require(AndroidPath::isSafeName(item.name), "a name is one component");
        require(!item.name.startsWith(QLatin1Char('.')), "hidden names are left out");
        require(item.path == AndroidPath::join(folder, item.name), "an entry lies in its folder");
        require(!item.modifiedAt || item.modifiedAt->isValid(), "a date is a date");
        require(!item.sizeLabel().isEmpty() && !item.modifiedLabel().isEmpty(), "a row has its labels");
    }
    auto sorted = items;
    sortInFileOrder(sorted);
    require(std::equal(items.begin(), items.end(), sorted.begin(),
                       [](const FileItem &a, const FileItem &b) { return a.name == b.name; }),
            "a listing is in file order");
}

/// What ls has printed, in two pieces.
QList<FileItem> entriesOf(const QString &folder, const QByteArray &text,
                          ADBClient::ListingReader::Form form) {
    ADBClient::ListingReader reader(folder, form);
    reader.read(text.left(text.size() / 2));
    reader.read(text.mid(text.size() / 2));
    return reader.take();
}

void listing(const QByteArray &input) {
    const QString folder = QStringLiteral("/sdcard/Download");
    listingIn(folder, entriesOf(folder, input, ADBClient::ListingReader::Form::plain));
}

/// The phone may go while it lists: every beginning of a listing is one, too.
void exactListing(const QByteArray &input) {
    const QString folder = QStringLiteral("/sdcard/Download");
    const auto form = ADBClient::ListingReader::Form::escaped;
    const auto items = entriesOf(folder, input, form);
    listingIn(folder, items);
    const auto whole = entriesOf(folder, input.left(input.lastIndexOf('\n') + 1), form);
    require(items.size() - whole.size() == 0 || items.size() - whole.size() == 1,
            "a line that is cut is one entry at most");
    require(ADBClient::countComplaints(input) <= input.count('\n') + 1, "a line is one complaint at most");
}

void foundPaths(const QByteArray &input) {
    const QString root = QStringLiteral("/sdcard");
    const QStringList paths = ADBClient::parseFoundPaths(ToolText::decode(input), root, 200);
    for (const QString &path : paths) {
        require(path.startsWith(QLatin1Char('/')) && path != root, "a hit is a path below the root");
        require(AndroidPath::isSafeName(AndroidPath::lastComponent(path)), "a hit's name is one component");
    }
    require(QSet<QString>(paths.begin(), paths.end()).size() == paths.size(), "a hit comes once");
}

/// There, and without a slash at its end. It may well end with a blank.
bool isCanonical(const QString &path) {
    return path == QLatin1String("/") || (!path.isEmpty() && !path.endsWith(QLatin1Char('/')));
}

void searchMetadata(const QByteArray &input) {
    const QString text = ToolText::decode(input);
    QStringList asked; // every name that the answer could be about
    for (const QString &line : text.split(QLatin1Char('\n')))
        asked.append(line.section(QLatin1Char('|'), 0, -4));
    const auto facts = ADBClient::parseSearchMetadata(text, asked);
    for (auto fact = facts.begin(); fact != facts.end(); ++fact) {
        require(asked.contains(fact.key()), "facts go by what was asked");
        require(!fact->modifiedAt || fact->modifiedAt->isValid(), "a time is a time");
    }
}

/// A terminal hands over its text in pieces of any size; where it is cut must not matter.
void progress(const QByteArray &input) {
    require(isPercent(ADBClient::parseProgressPercent(ToolText::decode(input))), "a percentage on stderr");
    ADBClient::TransferOutput whole;
    const auto latest = whole.feed(input);
    require(isPercent(latest), "a percentage on the terminal");
    ADBClient::TransferOutput pieces;
    std::optional<double> last;
    for (const char byte : input) {
        if (const auto percent = pieces.feed(QByteArray(1, byte)))
            last = percent;
    }
    require(last == latest && pieces.errorText() == whole.errorText(), "pieces read like the whole");
}

/// What a POSIX shell makes of one single-quoted word; empty when it would read anything else.
QString shellWord(const QString &quoted) {
    QString word;
    bool isInside = false;
    for (qsizetype i = 0; i < quoted.size(); ++i) {
        if (quoted[i] == QLatin1Char('\''))
            isInside = !isInside;
        else if (isInside)
            word += quoted[i];
        else if (quoted[i] == QLatin1Char('\\') && i + 1 < quoted.size())
            word += quoted[++i];
        else
            return {};
    }
    return isInside ? QString() : word;
}

void paths(const QByteArray &input) {
    const QString text = ToolText::decode(input);
    const QString path = ADBClient::normalizePath(text);
    require(isCanonical(path), "a path is canonical");
    require(!AndroidPath::segments(path).isEmpty() && !AndroidPath::breadcrumb(path).isEmpty(),
            "a path has a breadcrumb");
    require(shellWord(AndroidPath::quotedForShell(text)) == text, "the shell reads one word");
    const QString last = AndroidPath::lastComponent(path);
    if (AndroidPath::isSafeName(last))
        require(QDir::cleanPath(QStringLiteral("/cache/") + last) == QStringLiteral("/cache/") + last,
                "a safe name stays in its folder");
    const QString query = ADBClient::sanitizeSearchQuery(text);
    require(ADBClient::sanitizeSearchQuery(query) == query, "a clean query stays as it is");
    require(query.indexOf(QLatin1Char('\'')) < 0 && query.indexOf(QLatin1Char('*')) < 0, "a query is text");
}

void appcast(const QByteArray &input) {
    const auto feed = parseAppcast(input);
    if (!feed)
        return;
    const auto newest = feed->newest();
    require(newest.has_value() == !feed->items.isEmpty(), "a feed with releases has a newest");
    const bool isComparable =
        std::none_of(feed->items.begin(), feed->items.end(), [](const AppcastItem &item) {
            return item.version.shortVersion.isEmpty() || item.version.build.isEmpty();
        });
    for (const AppcastItem &item : feed->items)
        require(!isComparable || !isNewer(item.version, newest->version), "nothing is newer than the newest");
}

void analyticsCache(const QByteArray &input) {
    const auto batch = decodeSignals(input);
    if (!batch)
        return;
    const auto written = encodeSignals(*batch, DateForm::disk);
    require(written && decodeSignals(*written).has_value(), "what was read can be written and read again");
}

void settings(const QByteArray &input) {
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("settings.ini"));
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(input) == input.size(), "the file is written");
    file.close();
    Settings settings(path);
    const ColorScheme kept = settings.appearancePreference();
    static_cast<void>(settings.analyticsDisabled());
    static_cast<void>(settings.doubleClickAction());
    const ColorScheme other = kept == ColorScheme::dark ? ColorScheme::light : ColorScheme::dark;
    settings.setAppearancePreference(other);
    require(settings.save() && Settings(path).appearancePreference() == other, "a choice can be stored");
}

/// The first byte says what the others are taken for.
void picture(const QByteArray &input) {
    constexpr int edge = 96;
    const int choice = input.isEmpty() ? 0 : uchar(input.front());
    const auto kind = MediaKind(choice / 2 % (int(MediaKind::audio) + 1));
    const QImage image =
        smallPicture(input.mid(1), choice % 2 == 0 ? Extent::whole : Extent::beginning, kind, edge);
    require(image.isNull() || (image.width() <= edge && image.height() <= edge), "a small picture is small");
    require(image.isNull() || isReadable(kind), "what cannot be read has no picture");
}

} // namespace

const QList<Target> &targets() {
    // clang-format off: one to a line, as fuzz/run reads them
    static const QList<Target> all{
        {"device-list", &deviceList},
        {"tracked-devices", &trackedDevices},
        {"storage", &storage},
        {"listing", &listing},
        {"exact-listing", &exactListing},
        {"found-paths", &foundPaths},
        {"search-metadata", &searchMetadata},
        {"progress", &progress},
        {"paths", &paths},
        {"appcast", &appcast},
        {"analytics-cache", &analyticsCache},
        {"settings", &settings},
        {"small-picture", &picture},
    };
    // clang-format on
    return all;
}

} // namespace vantrel::fuzz
