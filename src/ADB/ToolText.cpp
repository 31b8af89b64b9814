#include "ADB/ToolText.h"

#include <QStringDecoder>

namespace vantrel::ToolText {

namespace {

bool isNewline(QChar c) {
    const char16_t code = c.unicode();
    return (code >= 0x0a && code <= 0x0d) || code == 0x85 || code == 0x2028 || code == 0x2029;
}

bool isBlank(QChar c) {
    return c == QLatin1Char('\t') || c.category() == QChar::Separator_Space;
}

template <class Pieces, class Predicate>
Pieces split(QStringView text, Predicate isSeparator) {
    Pieces pieces;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !isSeparator(text[i]))
            continue;
        if (i > start)
            pieces.append(text.mid(start, i - start));
        start = i + 1;
    }
    return pieces;
}

} // namespace

QString decode(const QByteArray &bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    return decoder.hasError() ? QString() : text;
}

QList<QStringView> lines(QStringView text) {
    return split<QList<QStringView>>(text, isNewline);
}

Fields fields(QStringView line) {
    return split<Fields>(line, [](QChar c) { return c.isSpace(); });
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

std::optional<qint64> wholeNumber(QStringView text) {
    // QStringView::toLongLong alone would also take "1,000" and surrounding blanks.
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
