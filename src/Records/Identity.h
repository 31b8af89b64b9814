#pragma once

#include <QUuid>

namespace vantrel {

/// A fresh random identity (version 4 UUID). Any thread. QUuid::createUuid() asks the operating system for
/// every one of them, which is felt in a listing of 100,000 entries; this draws from a generator per thread
/// that was seeded by the operating system once.
[[nodiscard]] QUuid newIdentity();

} // namespace vantrel
