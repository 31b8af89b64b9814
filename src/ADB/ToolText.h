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
/// A text whose bytes may have been none.
struct Decoded {
    QString text;
    bool isExact = true; ///< else U+FFFD stands for what is no UTF-8
};
/// UTF-8, as far as it is.
[[nodiscard]] Decoded decodeLeniently(const QByteArray &bytes);
/// The pieces of a text between newline characters (line feed, vertical tab, form feed, carriage return,
/// U+0085, U+2028, U+2029), empty ones dropped; found one after the other, since there may be millions. The
/// views stay valid as long as the text.
class Lines {
public:
    class Iterator {
    public:
        explicit Iterator(QStringView rest) : m_rest(rest) { ++*this; }
        [[nodiscard]] QStringView operator*() const { return m_line; }
        Iterator &operator++();
        [[nodiscard]] bool operator!=(std::nullptr_t) const { return !m_line.isEmpty(); }

    private:
        QStringView m_rest;
        QStringView m_line;
    };

    explicit Lines(QStringView text) : m_text(text) {}
    [[nodiscard]] Iterator begin() const { return Iterator(m_text); }
    [[nodiscard]] static std::nullptr_t end() { return nullptr; }

private:
    QStringView m_text;
};
[[nodiscard]] inline Lines lines(QStringView text) {
    return Lines(text);
}
/// The fields of one line; as many as a listing's line usually has need no allocation.
using Fields = QVarLengthArray<QStringView, 16>;
/// The pieces between runs of white space, empty ones dropped.
[[nodiscard]] Fields fields(QStringView line);
/// Without leading and trailing tabs and space separators; newline characters stay.
[[nodiscard]] QStringView blankTrimmed(QStringView text);
/// Without leading and trailing white space, newline characters included.
[[nodiscard]] QString trimmed(const QString &text);
/// Why a tool failed, from its standard error.
struct Reason {
    QString text;               ///< trimmed; may be empty
    bool isTheToolsOwn = false; ///< the text begins with the tool's own "adb: error: " or "error: "
};
/// Without the notices of a server that was started on the way (lines that begin with "* "), and without what
/// stands before the first line in which the tool itself says what is wrong.
[[nodiscard]] Reason reason(const QString &standardError);
/// Whether a line is such a notice.
[[nodiscard]] bool isNotice(QStringView line);
/// A whole decimal number, with an optional sign, that fits 64 bits.
[[nodiscard]] std::optional<qint64> wholeNumber(QStringView text);

} // namespace vantrel::ToolText
