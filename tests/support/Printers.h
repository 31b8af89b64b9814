#pragma once

#include <QString>

#include <ostream>

/// A failed expectation shows the text and not its code units.
inline void PrintTo(const QString &text, std::ostream *stream) {
    *stream << '"' << text.toStdString() << '"';
}
