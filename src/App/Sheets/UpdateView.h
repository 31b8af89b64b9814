#pragma once

#include "App/Sheets/MessageSheet.h"
#include "App/Updates/Updater.h"

namespace vantrel {

/// Tells what a check for updates found out. Its second button, where there is one, opens the download page.
class UpdateView : public MessageSheet {
    Q_OBJECT

public:
    UpdateView(QWidget *window, const UpdateResult &result, const AppVersion &installed);
};

} // namespace vantrel
