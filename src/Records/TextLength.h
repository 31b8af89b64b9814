#pragma once

#include <QString>

namespace vantrel {

/// How many characters a person sees: an emoji built of several code points counts once.
[[nodiscard]] qsizetype characterCount(const QString &text);

} // namespace vantrel
