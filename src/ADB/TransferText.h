#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace vantrel::ADBClient {

/// The latest percentage in a tool's error stream: the last bracketed one, else the last one of any form;
/// nothing when there is none between 0 and 100.
[[nodiscard]] std::optional<double> parseProgressPercent(const QString &text);

/// The percentage (0 to 100) that a progress line begins with: "[", a number of up to three digits and "%]",
/// with blanks around the number. By hand, since adb writes 15,000 such lines for a file of 1 GB.
[[nodiscard]] std::optional<double> leadingPercent(QByteArrayView line);

/// Reads what adb writes to a terminal during a copy, piece by piece and in bounded memory: progress lines
/// such as
/// "\r[ 25%] /sdcard/f.bin\x1b[K", and lines that begin with "adb: error: " when the copy fails. Seen with
/// adb 29, which rewrites its progress line for every 64 KiB.
class TransferOutput {
public:
    /// Takes the next piece. Returns the latest percentage (0 to 100) that began a line in it, if any did; a
    /// file named "[99%]" must not count.
    std::optional<double> feed(const QByteArray &bytes);
    /// The text of the last error line without its "adb: error: ", or empty.
    [[nodiscard]] QString errorText() const;

private:
    void endLine();

    QByteArray m_line; ///< the line being written, cut to what is of interest
    QByteArray m_error;
};

} // namespace vantrel::ADBClient
