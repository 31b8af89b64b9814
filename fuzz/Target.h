#pragma once

#include <QByteArray>
#include <QList>

namespace vantrel::fuzz {

/// One parser of text that comes from elsewhere. `run` feeds it any bytes, and stops the process when an
/// answer breaks what the rest of the program relies on; a crash or a sanitizer's finding stops it as well.
struct Target {
    const char *name; ///< also the folder of its inputs below tests/data
    void (*run)(const QByteArray &input);
};

/// Every target, in the order of the rooms.
[[nodiscard]] const QList<Target> &targets();

} // namespace vantrel::fuzz
