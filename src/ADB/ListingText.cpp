#include "ADB/ListingText.h"

#include "ADB/AndroidPath.h"
#include "ADB/ToolText.h"
#include "Records/Identity.h"

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

/// The pieces of a line that stand between blanks, one after the other.
class Columns {
public:
    explicit Columns(QStringView line) : m_rest(line) {}

    QStringView next() {
        qsizetype start = 0;
        while (start < m_rest.size() && m_rest[start] == u' ')
            ++start;
        qsizetype end = start;
        while (end < m_rest.size() && m_rest[end] != u' ')
            ++end;
        const QStringView column = m_rest.mid(start, end - start);
        m_rest = m_rest.mid(end);
        return column;
    }
    /// What follows the blank behind the last piece.
    [[nodiscard]] QStringView rest() const { return m_rest.mid(1); }

private:
    QStringView m_rest;
};

bool isDate(QStringView column) {
    return column.size() >= 8 && column.contains(u'-');
}

/// The byte that the escape sequence at this position of a name stands for, and how many characters it takes;
/// the backslash itself where it begins no sequence.
std::pair<char, qsizetype> escaped(QStringView text, qsizetype at) {
    static constexpr QStringView letters = u"abefnrtv\\ ";
    static constexpr std::string_view meanings = "\a\b\x1b\f\n\r\t\v\\ ";
    if (at + 1 == text.size())
        return {'\\', 1};
    if (const qsizetype letter = letters.indexOf(text[at + 1]); letter >= 0)
        return {meanings[static_cast<std::size_t>(letter)], 2};
    int byte = 0;
    for (qsizetype i = at + 1; i < at + 4; ++i) {
        if (i >= text.size() || text[i] < u'0' || text[i] > u'7')
            return {'\\', 1};
        byte = byte * 8 + (text[i].unicode() - u'0');
    }
    return byte < 256 ? std::pair{static_cast<char>(byte), qsizetype(4)} : std::pair{'\\', qsizetype(1)};
}

/// Takes the name without its escapes. toybox writes a control character from U+0080 to U+009F like the byte
/// of that number, which is no UTF-8: such a name is not exact.
void unescape(QStringView text, LSEntry &entry) {
    QByteArray bytes;
    for (qsizetype i = 0; i < text.size();) {
        qsizetype next = text.indexOf(u'\\', i);
        if (next < 0)
            next = text.size();
        bytes += text.mid(i, next - i).toUtf8();
        i = next;
        if (i < text.size()) {
            const auto [byte, length] = escaped(text, i);
            bytes += byte;
            i += length;
        }
    }
    const ToolText::Decoded name = ToolText::decodeLeniently(bytes);
    entry.name = name.text;
    entry.isNameExact = name.isExact;
}

/// Where a link's name ends: at the first blank without a backslash, behind which its target stands.
QStringView withoutTarget(QStringView text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\')
            ++i;
        else if (text[i] == u' ' && text.mid(i).startsWith(u" -> "))
            return text.left(i);
    }
    return text;
}

/// Whether the phone tells nothing of the entry but its type and name.
bool isUnreadable(QStringView line) {
    return line.size() > 1 && line[1] == u'?';
}

} // namespace

std::optional<LSEntry> parseLSLALine(QStringView line) {
    constexpr qsizetype shortestLine = 11; // ten mode characters and a blank
    if (line.size() < shortestLine || isUnreadable(line))
        return std::nullopt;
    const ToolText::Fields fields = ToolText::fields(line);
    if (fields.size() < 8)
        return std::nullopt;

    LSEntry entry;
    entry.isDirectory = line.front() == u'd';
    const QStringView date = fields[5];
    if (isDate(date)) {
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

std::optional<LSEntry> parseLSLABLine(QStringView line) {
    if (line.endsWith(u'\r')) // from the terminal of an old phone; one in a name is written with a backslash
        line.chop(1);
    if (line.startsWith(u"total ") || isUnreadable(line))
        return std::nullopt;
    Columns columns(line);
    LSEntry entry;
    const QStringView mode = columns.next();
    entry.isDirectory = mode.startsWith(u'd');
    for (int i = 0; i < 3; ++i) // links, owner, group
        columns.next();
    const QStringView size = columns.next();
    if (size.endsWith(u',')) // a device's two numbers
        columns.next();
    const QStringView date = columns.next();
    const QStringView time = columns.next();
    if (!isDate(date)) // a form that no ls with escapes is known to print
        return parseLSLALine(line);
    if (!entry.isDirectory)
        entry.size = ToolText::wholeNumber(size);
    entry.date = date;
    entry.time = time;
    const QStringView name = mode.startsWith(u'l') ? withoutTarget(columns.rest()) : columns.rest();
    if (name.contains(u'\\'))
        unescape(name, entry);
    else
        entry.name = name.toString();
    return entry;
}

ListingReader::ListingReader(QString parentPath, Form form)
    : m_parentPath(std::move(parentPath)), m_form(form) {}

void ListingReader::read(const QByteArray &bytes) {
    m_isEmpty = m_isEmpty && bytes.isEmpty();
    const qsizetype end = bytes.lastIndexOf('\n') + 1;
    if (end > 0) {
        readLines(m_rest + bytes.left(end));
        m_rest.clear();
    }
    m_rest += bytes.mid(end);
}

QList<FileItem> ListingReader::take() {
    readLines(m_rest);
    return m_entries.take();
}

void ListingReader::readLines(const QByteArray &bytes) {
    const auto [text, isExact] = ToolText::decodeLeniently(bytes);
    if (!isExact && bytes.contains('\n')) { // in which line, only each by itself tells
        for (const QByteArray &line : bytes.split('\n'))
            readLines(line);
        return;
    }
    if (m_form == Form::escaped) {
        for (const QStringView line : QStringView(text).tokenize(u'\n', Qt::SkipEmptyParts)) {
            if (const auto entry = parseLSLABLine(line))
                append(*entry, entry->name, isExact);
        }
        return;
    }
    for (const QStringView raw : ToolText::lines(text)) {
        const QStringView line = ToolText::blankTrimmed(raw);
        if (line.isEmpty() || line.startsWith(u"total "))
            continue;
        const auto entry = parseLSLALine(line);
        if (entry && !isHidden(entry->name))
            append(*entry, displayName(entry->name), isExact); // of "-> .name" only ".name" is left
    }
}

void ListingReader::append(const LSEntry &entry, const QString &name, bool isTextExact) {
    if (m_entries.size() == largestListing || isHidden(name) || !AndroidPath::isSafeName(name))
        return;
    // U+FFFD is taken for what it says only where it is what the phone has printed.
    const bool isExact =
        entry.isNameExact && (isTextExact || !name.contains(QChar(QChar::ReplacementCharacter)));
    m_entries.add({newIdentity(), name, AndroidPath::join(m_parentPath, name), entry.isDirectory, entry.size,
                   std::nullopt, timeOf(entry.date, entry.time), isExact});
}

/// Reads "yyyy-MM-dd" and "HH:mm" in the computer's time zone. By hand, since QDateTime::fromString
/// interprets its pattern anew for each of 100,000 lines; and the time zone is asked once for each day on
/// which its offset stays the same, since that question costs more than all the rest of a line.
std::optional<QDateTime> ListingReader::timeOf(QStringView date, QStringView time) {
    if (date.size() != 10 || date[4] != u'-' || date[7] != u'-' || time.size() != 5 || time[2] != u':')
        return std::nullopt;
    const QDate day(digits(date, 0, 4), digits(date, 5, 2), digits(date, 8, 2));
    const QTime minute(digits(time, 0, 2), digits(time, 3, 2));
    if (!day.isValid() || !minute.isValid())
        return std::nullopt;
    const std::optional<int> offset = offsetOfDay(day);
    if (!offset)
        return QDateTime(day, minute).toUTC();
    constexpr qint64 dayMilliseconds = 86'400'000;
    const qint64 days = day.toJulianDay() - QDate(1970, 1, 1).toJulianDay();
    return QDateTime::fromMSecsSinceEpoch(
        days * dayMilliseconds + minute.msecsSinceStartOfDay() - qint64(*offset) * 1000, Qt::UTC);
}

/// Seconds east of UTC; nothing for a day on which the clock is changed.
std::optional<int> ListingReader::offsetOfDay(QDate day) {
    const auto known = m_offsets.constFind(day);
    if (known != m_offsets.constEnd())
        return *known;
    const int first = QDateTime(day, QTime(0, 0)).offsetFromUtc();
    const int last = QDateTime(day, QTime(23, 59, 59)).offsetFromUtc();
    const auto offset = first == last ? std::optional(first) : std::nullopt;
    m_offsets.insert(day, offset);
    return offset;
}

namespace {

QList<FileItem> parse(const QString &text, const QString &parentPath, ListingReader::Form form) {
    ListingReader reader(parentPath, form);
    reader.read(text.toUtf8());
    return reader.take();
}

} // namespace

QList<FileItem> parseLSLA(const QString &text, const QString &parentPath) {
    return parse(text, parentPath, ListingReader::Form::plain);
}

QList<FileItem> parseLSLAB(const QString &text, const QString &parentPath) {
    return parse(text, parentPath, ListingReader::Form::escaped);
}

qsizetype countComplaints(const QByteArray &standardError) {
    qsizetype count = 0;
    for (const QByteArray &line : standardError.split('\n'))
        count += line.startsWith("ls: ") ? 1 : 0;
    return count;
}

} // namespace vantrel::ADBClient
