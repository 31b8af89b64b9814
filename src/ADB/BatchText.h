#pragma once

#include <QByteArray>
#include <QStringList>

namespace vantrel::ADBClient {

/// Reads what adb writes to a terminal while it copies several files, piece by piece and in bounded memory:
/// "\r[ 25%] PATH" of the file under way, "PATH: 1 file pulled, 0 skipped." behind each that is through, and
/// "adb: error: …" for each that is not.
class BatchOutput {
public:
    /// Takes the next piece. Returns whether the progress is another than before.
    bool feed(const QByteArray &bytes);

    /// Files that are through or have failed.
    [[nodiscard]] int endedFiles() const { return m_endedFiles; }
    /// How much of the next file is through, 0 to 1.
    [[nodiscard]] double fractionOfNext() const { return m_fraction; }
    /// The text of each error line, without its "adb: error: "; at most 1,000.
    [[nodiscard]] QStringList errors() const;

private:
    bool endLine();

    QByteArray m_line; ///< the line being written, cut to what is of interest
    QStringList m_errors;
    int m_endedFiles = 0;
    double m_fraction = 0;
};

} // namespace vantrel::ADBClient
