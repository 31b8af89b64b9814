#pragma once

#include "Records/Pane.h"

#include <QCoroTask>
#include <QStringList>

namespace vantrel {

class AppState;

/// The paths of the folders in `folder`, in the order of their names, to complete a path that is being typed;
/// none where that cannot be listed. Main thread; the task ends without a result when the model is destroyed.
[[nodiscard]] QCoro::Task<QStringList> folderPathsIn(AppState &state, BrowserSide side, QString folder);

} // namespace vantrel
