#include "ADB/ToolText.h"

#include <QStringDecoder>

#include <algorithm>

namespace vantrel::ToolText {

namespace {

bool isNewline(QChar c) {
    const char16_t code = c.unicode();
    return (code >= 0x0a && code <= 0x0d) || code == 0x85 || code == 0x2028 || code == 0x2029;
}

bool isBlank(QChar c) {
    return c == QLatin1Char('\t') || c.category() == QChar::Separator_Space;
}

} // namespace

Decoded decodeLeniently(const QByteArray &bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    return {std::move(text), !decoder.hasError()};
}

QString decode(const QByteArray &bytes) {
    const Decoded decoded = decodeLeniently(bytes);
    return decoded.isExact ? decoded.text : QString();
}

Lines::Iterator &Lines::Iterator::operator++() {
    const auto *first = std::find_if_not(m_rest.begin(), m_rest.end(), isNewline);
    const auto *last = std::find_if(first, m_rest.end(), isNewline);
    m_line = QStringView(first, last);
    m_rest = QStringView(last, m_rest.end());
    return *this;
}

Fields fields(QStringView line) {
    Fields pieces;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= line.size(); ++i) {
        if (i < line.size() && !line[i].isSpace())
            continue;
        if (i > start)
            pieces.append(line.mid(start, i - start));
        start = i + 1;
    }
    return pieces;
}

QStringView blankTrimmed(QStringView text) {
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.mid(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

QString trimmed(const QString &text) {
    return text.trimmed();
}

bool isNotice(QStringView line) {
    return line.startsWith(u"* ");
}

Reason reason(const QString &standardError) {
    Reason reason;
    QStringList kept;
    for (const QString &line : standardError.split(QLatin1Char('\n'))) {
        if (isNotice(line))
            continue;
        if (!reason.isTheToolsOwn &&
            (line.startsWith(QLatin1String("adb: error: ")) || line.startsWith(QLatin1String("error: ")))) {
            reason.isTheToolsOwn = true;
            kept.clear();
        }
        kept.append(line);
    }
    reason.text = trimmed(kept.join(QLatin1Char('\n')));
    return reason;
}

std::optional<qint64> wholeNumber(QStringView text) {
    // QStringView::toLongLong alone would also take surrounding blanks and other signs.
    const QStringView digits = text.startsWith(u'-') || text.startsWith(u'+') ? text.mid(1) : text;
    if (digits.isEmpty())
        return std::nullopt;
    for (const QChar c : digits) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
    }
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

} // namespace vantrel::ToolText
