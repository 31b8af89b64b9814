#pragma once

#include "Records/FileItem.h"

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

/// The visible entries of a listing of parentPath by `ls -la`, in file order. Lines that make no sense are
/// dropped, and so are entries of which the phone tells nothing but the name, and names that could not be
/// those of a file in that folder. Names with U+FFFD are taken for what they say only where the text is what
/// the phone has printed.
[[nodiscard]] QList<FileItem> parseLSLA(const QString &text, const QString &parentPath,
                                        bool isTextExact = true);
/// The same of a listing by `ls -lab`.
[[nodiscard]] QList<FileItem> parseLSLAB(const QString &text, const QString &parentPath,
                                         bool isTextExact = true);
/// How many entries ls says it could not read, by its standard error.
[[nodiscard]] qsizetype countComplaints(const QByteArray &standardError);

} // namespace vantrel::ADBClient
