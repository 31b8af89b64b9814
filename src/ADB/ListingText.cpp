#include "ADB/ListingText.h"

#include "ADB/AndroidPath.h"
#include "ADB/ToolText.h"
#include "Records/FileOrder.h"
#include "Records/Identity.h"

#include <QHash>

namespace vantrel::ADBClient {

namespace {

/// The number that a run of exactly `count` digits stands for, or -1.
int digits(QStringView text, qsizetype position, int count) {
    int number = 0;
    for (qsizetype i = position; i < position + count; ++i) {
        if (i >= text.size() || text[i] < u'0' || text[i] > u'9')
            return -1;
        number = number * 10 + (text[i].unicode() - u'0');
    }
    return number;
}

/// Reads "yyyy-MM-dd" and "HH:mm" in the computer's time zone. By hand, since QDateTime::fromString
/// interprets its pattern anew for each of 100,000 lines; and the time zone is asked once for each day on
/// which its offset stays the same, since that question costs more than all the rest of a line.
class TimeReader {
public:
    std::optional<QDateTime> read(QStringView date, QStringView time) {
        if (date.size() != 10 || date[4] != u'-' || date[7] != u'-' || time.size() != 5 || time[2] != u':')
            return std::nullopt;
        const QDate day(digits(date, 0, 4), digits(date, 5, 2), digits(date, 8, 2));
        const QTime minute(digits(time, 0, 2), digits(time, 3, 2));
        if (!day.isValid() || !minute.isValid())
            return std::nullopt;
        const std::optional<int> offset = offsetOfDay(day);
        return offset ? QDateTime(day, minute, Qt::UTC).addSecs(-*offset) : QDateTime(day, minute).toUTC();
    }

private:
    /// Seconds east of UTC; nothing for a day on which the clock is changed.
    std::optional<int> offsetOfDay(QDate day) {
        const auto known = m_offsets.constFind(day);
        if (known != m_offsets.constEnd())
            return *known;
        const int first = QDateTime(day, QTime(0, 0)).offsetFromUtc();
        const int last = QDateTime(day, QTime(23, 59, 59)).offsetFromUtc();
        const auto offset = first == last ? std::optional(first) : std::nullopt;
        m_offsets.insert(day, offset);
        return offset;
    }

    QHash<QDate, std::optional<int>> m_offsets;
};

QString joinedFrom(const ToolText::Fields &fields, qsizetype first) {
    QString joined = fields[first].toString();
    for (qsizetype i = first + 1; i < fields.size(); ++i)
        joined += QLatin1Char(' ') % fields[i];
    return joined;
}

bool isHidden(const QString &name) {
    return name.startsWith(QLatin1Char('.'));
}

/// The name without a symbolic link's target: the first piece around the first "->" that is not empty.
QString displayName(const QString &name) {
    const qsizetype arrow = name.indexOf(QLatin1String("->"));
    if (arrow < 0)
        return name; // its fields hold no blanks
    const QStringView before = QStringView(name).left(arrow);
    const QStringView after = QStringView(name).mid(arrow + 2);
    if (before.isEmpty() && after.isEmpty())
        return name;
    return ToolText::blankTrimmed(before.isEmpty() ? after : before).toString();
}

} // namespace

std::optional<LSEntry> parseLSLALine(QStringView line) {
    constexpr qsizetype shortestLine = 11; // ten mode characters and a blank
    if (line.size() < shortestLine)
        return std::nullopt;
    const ToolText::Fields fields = ToolText::fields(line);
    if (fields.size() < 8)
        return std::nullopt;

    LSEntry entry;
    entry.isDirectory = line.front() == u'd';
    const QStringView date = fields[5];
    if (date.contains(u'-') && date.size() >= 8) {
        if (!entry.isDirectory)
            entry.size = ToolText::wholeNumber(fields[4]);
        entry.date = date;
        entry.time = fields[6];
        entry.name = joinedFrom(fields, 7);
    } else {
        entry.name = fields.last().toString();
    }
    return entry;
}

QList<FileItem> parseLSLA(const QString &text, const QString &parentPath) {
    QList<FileItem> items;
    TimeReader times;
    for (const QStringView raw : ToolText::lines(text)) {
        if (items.size() == largestListing)
            break;
        const QStringView line = ToolText::blankTrimmed(raw);
        if (line.isEmpty() || line.startsWith(u"total "))
            continue;
        const auto entry = parseLSLALine(line);
        if (!entry || isHidden(entry->name))
            continue;
        const QString name = displayName(entry->name);
        if (isHidden(name) || !AndroidPath::isSafeName(name)) // "-> .name" would be shown as ".name"
            continue;
        items.append({newIdentity(), name, AndroidPath::join(parentPath, name), entry->isDirectory,
                      entry->size, std::nullopt, times.read(entry->date, entry->time)});
    }
    sortInFileOrder(items);
    return items;
}

} // namespace vantrel::ADBClient
