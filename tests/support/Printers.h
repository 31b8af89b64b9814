#pragma once

#include <QRect>
#include <QString>

#include <ostream>

/// A failed expectation shows the text and not its code units, the numbers and not their bytes.
inline void PrintTo(const QString &text, std::ostream *stream) {
    *stream << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QRect &rect, std::ostream *stream) {
    *stream << rect.x() << ',' << rect.y() << ' ' << rect.width() << 'x' << rect.height();
}
