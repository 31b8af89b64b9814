#pragma once

#include "Records/PhotoFacts.h"

namespace vantrel {

/// A ReadPhotoFacts. Nothing is decoded.
[[nodiscard]] PhotoFacts photoFactsOf(const QByteArray &beginning, const QString &name);

} // namespace vantrel
