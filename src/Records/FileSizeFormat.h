#pragma once

#include <QString>

namespace vantrel {

/// What stands for a value that is not known: a single em dash.
[[nodiscard]] QString unknownLabel();

/// A byte count as the desktop's file manager writes it: decimal multiples, "Zero KB" for 0, "1 byte", "999
/// bytes", whole KB, at most one fraction digit for MB and two from GB on, no trailing zeros; a rounding that
/// reaches 1000 goes on to the next unit. The decimal point is the user's locale's. Negative counts carry a
/// minus sign.
[[nodiscard]] QString formatFileSize(qint64 bytes);

/// How much of a byte count is done: "4.1 of 12 GB", "900 KB of 12 GB", "0 of 12 GB".
[[nodiscard]] QString formatFileSizes(qint64 done, qint64 total);

} // namespace vantrel
