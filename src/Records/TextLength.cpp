#include "Records/TextLength.h"

#include <QTextBoundaryFinder>

namespace vantrel {

qsizetype characterCount(const QString &text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() >= 0)
        ++count;
    return count;
}

} // namespace vantrel
