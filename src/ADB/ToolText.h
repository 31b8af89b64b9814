#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVarLengthArray>

#include <optional>

/// How the text that tools print is read: one set of rules for every parser. Pure; any thread.
namespace vantrel::ToolText {

/// UTF-8; output that is not valid UTF-8 counts as no output.
[[nodiscard]] QString decode(const QByteArray &bytes);
/// The pieces between newline characters (line feed, vertical tab, form feed, carriage return, U+0085,
/// U+2028, U+2029), empty ones dropped. The views stay valid as long as the text.
[[nodiscard]] QList<QStringView> lines(QStringView text);
/// The fields of one line; as many as a listing's line usually has need no allocation.
using Fields = QVarLengthArray<QStringView, 16>;
/// The pieces between runs of white space, empty ones dropped.
[[nodiscard]] Fields fields(QStringView line);
/// Without leading and trailing tabs and space separators; newline characters stay.
[[nodiscard]] QStringView blankTrimmed(QStringView text);
/// Without leading and trailing white space, newline characters included.
[[nodiscard]] QString trimmed(const QString &text);
/// A whole decimal number, with an optional sign, that fits 64 bits.
[[nodiscard]] std::optional<qint64> wholeNumber(QStringView text);

} // namespace vantrel::ToolText
