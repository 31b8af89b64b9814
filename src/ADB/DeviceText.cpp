#include "ADB/DeviceText.h"

#include "ADB/AndroidPath.h"
#include "ADB/ToolText.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <cctype>

namespace vantrel::ADBClient {

namespace {

/// adb's word for a state, without what it adds: an explanation, or the facts of a long list.
QString stateWord(QStringView text) {
    const QStringView state = ToolText::blankTrimmed(text);
    constexpr QStringView noPermissions = u"no permissions";
    if (state.startsWith(noPermissions))
        return noPermissions.toString();
    return state.left(state.indexOf(u' ') < 0 ? state.size() : state.indexOf(u' ')).toString();
}

} // namespace

QList<ListedPhone> parsePhones(const QString &text) {
    QList<ListedPhone> phones;
    for (const QStringView line : ToolText::lines(text)) {
        if (phones.size() == mostPhones)
            break;
        const qsizetype tab = line.indexOf(u'\t');
        if (ToolText::isNotice(line) || line.startsWith(u"List of devices"))
            continue;
        if (tab > 0) {
            const QString state = stateWord(line.mid(tab));
            if (!state.isEmpty())
                phones.append({line.left(tab).toString(), state});
        } else if (const auto fields = ToolText::fields(line); fields.size() >= 2 && fields[1] == u"device") {
            phones.append({fields[0].toString(), fields[1].toString()});
        }
    }
    return phones;
}

QStringList parseDeviceList(const QString &text) {
    QStringList serials;
    for (const ListedPhone &phone : parsePhones(text)) {
        if (phone.isReady())
            serials.append(phone.serial);
    }
    return serials;
}

PhoneTrouble troubleOf(const QList<ListedPhone> &phones) {
    static const QHash<QString, PhoneTrouble> troubles{
        {QStringLiteral("unauthorized"), PhoneTrouble::unauthorized},
        {QStringLiteral("authorizing"), PhoneTrouble::authorizing},
        {QStringLiteral("connecting"), PhoneTrouble::authorizing},
        {QStringLiteral("offline"), PhoneTrouble::offline},
        {QStringLiteral("no permissions"), PhoneTrouble::noPermissions},
        {QStringLiteral("recovery"), PhoneTrouble::recovery},
        {QStringLiteral("rescue"), PhoneTrouble::recovery},
        {QStringLiteral("sideload"), PhoneTrouble::sideload},
        {QStringLiteral("bootloader"), PhoneTrouble::bootloader},
    };
    return phones.isEmpty() ? PhoneTrouble::noPhone
                            : troubles.value(phones.first().state, PhoneTrouble::offline);
}

PhoneTrouble troubleOf(const QByteArray &standardError) {
    const QByteArray words = standardError.toLower();
    const auto says = [&](const char *text) { return words.contains(text); };
    if (says("doesn't match this client") || says("server is out of date"))
        return PhoneTrouble::serverRestarts;
    if (says("address already in use") || says("cannot bind") || says("failed to start daemon") ||
        says("cannot connect to daemon"))
        return PhoneTrouble::portTaken;
    return PhoneTrouble::other;
}

std::optional<QList<ListedPhone>> TrackedDevices::feed(const QByteArray &bytes) {
    constexpr qsizetype headSize = 4;
    std::optional<QList<ListedPhone>> newest;
    m_pending += bytes;
    qsizetype at = 0;
    while (!m_isGarbage && m_pending.size() - at >= headSize) {
        const QByteArrayView head = QByteArrayView(m_pending).sliced(at, headSize);
        const bool isLength = std::all_of(
            head.begin(), head.end(), [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); });
        m_isGarbage = !isLength;
        const qsizetype length = isLength ? head.toByteArray().toInt(nullptr, 16) : 0;
        if (m_isGarbage || m_pending.size() - at - headSize < length)
            break;
        newest = parsePhones(ToolText::decodeLeniently(m_pending.mid(at + headSize, length)).text);
        at += headSize + length;
    }
    m_pending = m_isGarbage ? QByteArray() : m_pending.mid(at);
    return newest;
}

QString cardsCommand() {
    return QStringLiteral("; for c in /storage/*-*; do echo \"$c\"; df \"$c\"; done; true");
}

std::pair<QString, QList<StorageCard>> splitStorage(const QString &text) {
    constexpr qsizetype mostCards = 16;
    QStringList pieces{QString()}; // of the shared storage, then of each card
    QList<StorageCard> cards;
    for (const QStringView line : ToolText::lines(text)) {
        const QString card = AndroidPath::cardOf(line.toString());
        if (!card.isEmpty() && card == line) {
            if (cards.size() == mostCards)
                break;
            cards.append({card});
            pieces.append(QString());
        } else {
            pieces.last() += line % QLatin1Char('\n');
        }
    }
    for (qsizetype i = 0; i < cards.size(); ++i) {
        const auto bytes = parseDF(pieces.at(i + 1)).value_or(StorageBytes());
        cards[i].usedBytes = bytes.used;
        cards[i].totalBytes = bytes.total;
    }
    return {pieces.first(), cards};
}

int parseVersion(const QString &text) {
    static const QRegularExpression pattern(QStringLiteral("^Version (\\d{1,6})"),
                                            QRegularExpression::MultilineOption);
    return pattern.match(text).captured(1).toInt();
}

QString parseConnected(const QString &text) {
    static const QRegularExpression pattern(QStringLiteral("\\A(?:already )?connected to (\\S+)\\s*\\z"));
    return pattern.match(text).captured(1);
}

std::optional<QString> wirelessAddress(const QString &text) {
    // Begins like no option. In brackets, what holds colons of its own.
    static const QRegularExpression pattern(QStringLiteral(
        "\\A(\\[[0-9A-Fa-f:.]{2,45}\\]|[0-9A-Za-z](?:[0-9A-Za-z.-]{0,252}[0-9A-Za-z])?)(?::(\\d{1,5}))?\\z"));
    constexpr int usualPort = 5555;
    constexpr int largestPort = 65'535;
    const auto match = pattern.match(text.trimmed());
    const int port = match.captured(2).isEmpty() ? usualPort : match.captured(2).toInt();
    if (!match.hasMatch() || port < 1 || port > largestPort)
        return std::nullopt;
    return match.captured(1) % QLatin1Char(':') % QString::number(port);
}

ADBResult<StorageBytes> parseDF(const QString &text) {
    QStringView last;
    for (const QStringView raw : ToolText::lines(text)) {
        const QStringView line = ToolText::blankTrimmed(raw);
        if (!line.isEmpty() && !line.startsWith(u"filesystem", Qt::CaseInsensitive))
            last = line;
    }
    if (last.isEmpty())
        return tl::make_unexpected(ADBError::parseFailed(QStringLiteral("Unexpected df output.")));

    QList<qint64> numbers;
    for (const QStringView field : ToolText::fields(last)) {
        if (const auto number = ToolText::wholeNumber(field))
            numbers.append(*number);
    }
    StorageBytes bytes;
    constexpr qint64 blockSize = 1024;
    if (numbers.size() < 2 || __builtin_mul_overflow(numbers[0], blockSize, &bytes.total) ||
        __builtin_mul_overflow(numbers[1], blockSize, &bytes.used))
        return tl::make_unexpected(
            ADBError::parseFailed(QStringLiteral("Could not parse df numbers: ") + last.toString()));
    return bytes;
}

} // namespace vantrel::ADBClient
