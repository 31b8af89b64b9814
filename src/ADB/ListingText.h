#pragma once

#include "Records/FileOrder.h"

#include <QByteArray>
#include <QDate>
#include <QHash>
#include <QList>
#include <QString>

#include <optional>

namespace vantrel::ADBClient {

/// One parsed line of `ls -la` or `ls -lab`. The views point into the line.
struct LSEntry {
    bool isDirectory = false;
    std::optional<qint64> size; ///< bytes; absent for folders and in the short form
    QStringView date;           ///< as printed, for example 2024-05-01; empty in the short form
    QStringView time;           ///< as printed, for example 13:07; empty in the short form
    QString name;               ///< of `ls -la` possibly followed by "-> target"
    bool isNameExact = true;    ///< else U+FFFD stands in the name for what is no UTF-8
};

/// Reads one line of `ls -la`, or nothing when it has no entry's form.
[[nodiscard]] std::optional<LSEntry> parseLSLALine(QStringView line);
/// Reads one line of `ls -lab`, which writes blanks, line breaks and whatever else does not print with a
/// backslash: a blank without one ends a link's name. Its target is left out.
[[nodiscard]] std::optional<LSEntry> parseLSLABLine(QStringView line);

/// More entries than any folder has; what a phone lists beyond them is not read.
constexpr qsizetype largestListing = 1'000'000;

/// Makes the visible entries of a folder out of what ls prints, while it prints it: after the last line
/// little is left to do. Lines that make no sense are dropped, and so are entries of which the phone tells
/// nothing but the name, and names that could not be those of a file in that folder.
class ListingReader {
public:
    enum class Form { plain, escaped }; ///< of `ls -la`, of `ls -lab`

    ListingReader(QString parentPath, Form form);
    /// Takes the next bytes of the listing, which may be cut anywhere.
    void read(const QByteArray &bytes);
    /// Whether ls has printed nothing.
    [[nodiscard]] bool isEmpty() const { return m_isEmpty; }
    /// The entries in file order. To be called once, at the end of the listing.
    [[nodiscard]] QList<FileItem> take();

private:
    void readLines(const QByteArray &bytes);
    void append(const LSEntry &entry, const QString &name, bool isTextExact);
    [[nodiscard]] std::optional<QDateTime> timeOf(QStringView date, QStringView time);
    [[nodiscard]] std::optional<int> offsetOfDay(QDate day);

    const QString m_parentPath;
    const Form m_form;
    bool m_isEmpty = true;
    QByteArray m_rest; ///< a line whose end has not come
    QHash<QDate, std::optional<int>> m_offsets;
    FileSorter m_entries;
};

/// The entries of a whole listing by `ls -la`.
[[nodiscard]] QList<FileItem> parseLSLA(const QString &text, const QString &parentPath);
/// The same of a listing by `ls -lab`.
[[nodiscard]] QList<FileItem> parseLSLAB(const QString &text, const QString &parentPath);
/// How many entries ls says it could not read, by its standard error.
[[nodiscard]] qsizetype countComplaints(const QByteArray &standardError);

} // namespace vantrel::ADBClient
