#pragma once

#include <QString>

namespace vantrel {

/// What became of a run of copies, in words for those who were elsewhere meanwhile. The numbers are entries
/// of the queue.
struct RunSummary {
    int copied = 0;
    int failed = 0;
    int undecided = 0; ///< another content has their names: the user decides
    int waiting = 0;   ///< for the phone

    /// What matters most, in a few words; empty when nothing is to be said.
    [[nodiscard]] QString heading() const;
    /// What the heading leaves out, one sentence to a line; may be empty.
    [[nodiscard]] QString detail() const;

    friend bool operator==(const RunSummary &, const RunSummary &) = default;
};

} // namespace vantrel
