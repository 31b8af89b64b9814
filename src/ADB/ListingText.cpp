#include "ADB/ListingText.h"

#include "ADB/AndroidPath.h"
#include "ADB/ToolText.h"
#include "State/Records/FileOrder.h"
#include "State/Records/Identity.h"

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

/// "yyyy-MM-dd" and "HH:mm" in the computer's time zone. Read by hand: QDateTime::fromString interprets its
/// pattern anew for each of 100,000 lines.
std::optional<QDateTime> dateTime(QStringView date, QStringView time) {
    if (date.size() != 10 || date[4] != u'-' || date[7] != u'-' || time.size() != 5 || time[2] != u':')
        return std::nullopt;
    const QDate day(digits(date, 0, 4), digits(date, 5, 2), digits(date, 8, 2));
    const QTime minute(digits(time, 0, 2), digits(time, 3, 2));
    if (!day.isValid() || !minute.isValid())
        return std::nullopt;
    return QDateTime(day, minute);
}

QString joinedFrom(const QList<QStringView> &fields, qsizetype first) {
    QString joined = fields[first].toString();
    for (qsizetype i = first + 1; i < fields.size(); ++i)
        joined += QLatin1Char(' ') % fields[i];
    return joined;
}

/// The name without a symbolic link's target: the first piece around the first "->" that is not empty.
QString displayName(const QString &name) {
    const qsizetype arrow = name.indexOf(QLatin1String("->"));
    if (arrow < 0)
        return ToolText::blankTrimmed(name).toString();
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
    const QList<QStringView> fields = ToolText::fields(line);
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
    for (const QStringView raw : ToolText::lines(text)) {
        const QStringView line = ToolText::blankTrimmed(raw);
        if (line.isEmpty() || line.startsWith(u"total "))
            continue;
        const auto entry = parseLSLALine(line);
        if (!entry || entry->name.startsWith(QLatin1Char('.')))
            continue;
        const QString name = displayName(entry->name);
        if (!AndroidPath::isSafeName(name))
            continue;
        items.append({newIdentity(), name, AndroidPath::join(parentPath, name), entry->isDirectory,
                      entry->size, std::nullopt, dateTime(entry->date, entry->time)});
    }
    sortInFileOrder(items);
    return items;
}

} // namespace vantrel::ADBClient
