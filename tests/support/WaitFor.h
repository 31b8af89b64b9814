#pragma once

#include <QTest>

#include <functional>

namespace vantrel {

/// Runs the event loop until the condition holds; false after two minutes, which no machine needs.
inline bool waitFor(const std::function<bool()> &condition) {
    return QTest::qWaitFor(condition, 120'000);
}

} // namespace vantrel
