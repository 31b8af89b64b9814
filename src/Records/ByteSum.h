#pragma once

#include <QtGlobal>

#include <limits>

namespace vantrel {

/// The sum of two sizes in bytes, or of a size and what is to be taken off it. A phone may claim any size: a
/// sum that does not fit is the largest number that does.
[[nodiscard]] constexpr qint64 byteSum(qint64 a, qint64 b) {
    return b > 0 && a > std::numeric_limits<qint64>::max() - b ? std::numeric_limits<qint64>::max() : a + b;
}

} // namespace vantrel
