#pragma once

#include "Transfers/CopyPlan.h"

namespace vantrel {

/// Compares copies with their sources by hash, both sides at the same time. Blocking; any thread.
class FileComparer {
public:
    /// All must outlive the comparer.
    FileComparer(const CopySide &from, const CopySide &to, CopyTally &tally, std::stop_token stop);

    struct Comparison {
        enum class Outcome { same, different, unreadable, unavailable };
        Outcome outcome = Outcome::different;
        QString reason = {};    ///< of what is unreadable, in the user's words
        QString complaint = {}; ///< of the side that was asked, where that could not read it
    };
    struct Pair {
        PlannedFile file;
        QString copied; ///< the path of what is to be the same
    };
    /// A comparison for each pair. An error when the phone left or the run was stopped.
    [[nodiscard]] ADBResult<QList<Comparison>> compare(const QList<Pair> &pairs,
                                                       CopyTally::Arrival arrival) const;

private:
    const CopySide &m_from;
    const CopySide &m_to;
    CopyTally &m_tally;
    const std::stop_token m_stop;
};

} // namespace vantrel
