#pragma once

#include "Records/ListedPhone.h"
#include "Records/Pane.h"

#include <QString>
#include <QStringList>

namespace vantrel {

/// What stands in a list's place while there is nothing to list: why that is so, and the next steps.
struct Emptiness {
    enum class Subject { phone, folder };
    enum class Mood { calm, attention };

    Subject subject = Subject::folder; ///< what is drawn
    QString badge = {};                ///< the symbol on it; none when empty
    Mood mood = Mood::calm;            ///< the badge's colour
    QString heading = {};
    QStringList steps = {};   ///< in their order; a single one is a remark
    QString command = {};     ///< for a terminal; a button copies it
    bool mayTryAgain = false; ///< a button asks once more; not beside a command

    friend bool operator==(const Emptiness &, const Emptiness &) = default;
};

/// What is said of each state, all of it here.
namespace EmptyStates {

/// No phone is shown, for this reason other than none. `message` is the reason in words where it is `other`.
[[nodiscard]] Emptiness ofPhone(PhoneTrouble trouble, const QString &message);
[[nodiscard]] Emptiness emptyFolder();
/// A folder that could not be listed, and a search that failed, with the reason in words.
[[nodiscard]] Emptiness failed(const QString &reason);
[[nodiscard]] Emptiness failedSearch(const QString &reason);
/// Nothing has the text, which has no blanks around it, in its name.
[[nodiscard]] Emptiness noHits(const QString &query, AndroidSearchScope scope);

} // namespace EmptyStates

} // namespace vantrel
