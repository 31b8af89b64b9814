#include "ADB/TransferText.h"

#include "ADB/ToolText.h"

#include <QRegularExpression>

namespace vantrel::ADBClient {

namespace {

constexpr QByteArrayView errorPrefix("adb: error: ");
/// An error line holds two paths of at most 4096 bytes each and a reason.
constexpr qsizetype longestLine = 16384;

/// The last match's number, if it lies between 0 and 100.
std::optional<double> lastPercent(const QRegularExpression &pattern, const QString &text) {
    QString number;
    for (auto matches = pattern.globalMatch(text); matches.hasNext();)
        number = matches.next().captured(1);
    const double percent = number.toDouble();
    return number.isEmpty() || percent > 100 ? std::nullopt : std::optional(percent);
}

} // namespace

std::optional<double> parseProgressPercent(const QString &text) {
    static const QRegularExpression bracketed(QStringLiteral("\\[\\s*(\\d{1,3})\\s*%\\]"));
    static const QRegularExpression any(QStringLiteral("(\\d{1,3})\\s*%"));
    const auto percent = lastPercent(bracketed, text);
    return percent ? percent : lastPercent(any, text);
}

std::optional<double> leadingPercent(QByteArrayView line) {
    qsizetype at = 0;
    const auto skipBlanks = [&] {
        while (at < line.size() && (line[at] == ' ' || line[at] == '\t'))
            ++at;
    };
    const auto skip = [&](char expected) { return at < line.size() && line[at++] == expected; };

    skipBlanks();
    if (!skip('['))
        return std::nullopt;
    skipBlanks();
    const qsizetype first = at;
    int percent = 0;
    for (; at < line.size() && at < first + 3 && line[at] >= '0' && line[at] <= '9'; ++at)
        percent = percent * 10 + (line[at] - '0');
    if (at == first)
        return std::nullopt;
    skipBlanks();
    return skip('%') && skip(']') && percent <= 100 ? std::optional<double>(percent) : std::nullopt;
}

std::optional<double> TransferOutput::feed(const QByteArray &bytes) {
    std::optional<double> latest;
    for (const char byte : bytes) {
        if (byte == '\r' || byte == '\n') {
            endLine();
            continue;
        }
        if (m_line.size() < longestLine)
            m_line.append(byte);
        if (byte == ']') {
            if (const auto percent = leadingPercent(m_line))
                latest = percent;
        }
    }
    return latest;
}

void TransferOutput::endLine() {
    if (m_line.startsWith(errorPrefix))
        m_error = m_line;
    m_line.clear();
}

QString TransferOutput::errorText() const {
    QByteArray error = m_line.startsWith(errorPrefix) ? m_line : m_error;
    error.remove(0, errorPrefix.size());
    // What erases the rest of a terminal's line.
    error.replace("\x1b[K", "");
    return ToolText::trimmed(ToolText::decode(error));
}

} // namespace vantrel::ADBClient
