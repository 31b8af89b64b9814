#pragma once

#include "Records/FileItem.h"

#include <QList>
#include <QString>

#include <optional>

namespace vantrel::ADBClient {

/// One parsed line of `ls -la`. The views point into the line.
struct LSEntry {
    bool isDirectory = false;
    std::optional<qint64> size; ///< bytes; absent for folders and in the short form
    QStringView date;           ///< as printed, for example 2024-05-01; empty in the short form
    QStringView time;           ///< as printed, for example 13:07; empty in the short form
    QString name;               ///< possibly followed by "-> target"
};

/// Reads one line, or nothing when it has no entry's form.
[[nodiscard]] std::optional<LSEntry> parseLSLALine(QStringView line);

/// More entries than any folder has; what a phone lists beyond them is not read.
constexpr qsizetype largestListing = 1'000'000;

/// The visible entries of a listing of parentPath, in file order. Lines that make no sense are dropped, and
/// so are names that could not be those of a file in that folder.
[[nodiscard]] QList<FileItem> parseLSLA(const QString &text, const QString &parentPath);

} // namespace vantrel::ADBClient
