#pragma once

#include <QTextBoundaryFinder>

namespace vantrel {

/// How many characters a person sees: an emoji built of several code points counts once.
[[nodiscard]] inline qsizetype characterCount(const QString &text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() >= 0)
        ++count;
    return count;
}

} // namespace vantrel
