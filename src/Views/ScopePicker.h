#pragma once

#include "Kit/PopUpButton.h"
#include "Records/Pane.h"

namespace vantrel {

/// The pop-up that chooses what the search field searches.
class ScopePicker : public PopUpButton {
    Q_OBJECT

public:
    explicit ScopePicker(QWidget *parent = nullptr);

    void setScope(AndroidSearchScope scope);

Q_SIGNALS:
    /// The user has chosen.
    void scopeChosen(AndroidSearchScope scope);
};

} // namespace vantrel
