#include "ADB/BatchText.h"

#include "ADB/ToolText.h"
#include "ADB/TransferText.h"

namespace vantrel::ADBClient {

namespace {

const QByteArray errorPrefix = QByteArrayLiteral("adb: error: ");
/// What erases the rest of a terminal's line.
const QByteArray eraseLine = QByteArrayLiteral("\x1b[K");
/// An error line holds two paths of at most 4096 bytes each and a reason.
constexpr qsizetype longestLine = 16384;

/// Whether the line sums one file up: "PATH: 1 file pulled, 0 skipped. …". The line that sums all files up
/// has no path.
bool endsOneFile(const QByteArray &line) {
    return (line.contains(" pulled, ") || line.contains(" pushed, ")) && line.contains(" skipped.") &&
           (line.contains(": 1 file p") || line.contains(": 0 files p"));
}

} // namespace

bool BatchOutput::feed(const QByteArray &bytes) {
    bool isNew = false;
    for (const char byte : bytes) {
        if (byte == '\r' || byte == '\n') {
            isNew = endLine() || isNew;
            continue;
        }
        if (m_line.size() < longestLine)
            m_line.append(byte);
        if (byte == ']') {
            if (const auto percent = leadingPercent(m_line)) {
                m_fraction = *percent / 100;
                isNew = true;
            }
        }
    }
    return isNew;
}

bool BatchOutput::endLine() {
    constexpr qsizetype mostErrors = 1000;
    QByteArray line;
    line.swap(m_line);
    const bool isError = line.startsWith(errorPrefix);
    if (!isError && !endsOneFile(line))
        return false;
    if (isError && m_errors.size() < mostErrors)
        m_errors.append(ToolText::trimmed(
            ToolText::decode(line.sliced(errorPrefix.size()).replace(eraseLine, QByteArray()))));
    ++m_endedFiles;
    m_fraction = 0;
    return true;
}

QStringList BatchOutput::errors() const {
    BatchOutput whole = *this; // a tool that was ended has not ended its line
    whole.endLine();
    return whole.m_errors;
}

} // namespace vantrel::ADBClient
