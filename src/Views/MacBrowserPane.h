#pragma once

#include "Views/BrowserPane.h"

namespace vantrel {

/// The computer's file pane.
class MacBrowserPane : public BrowserPane {
public:
    /// The state must outlive the view.
    explicit MacBrowserPane(AppState *state, QWidget *parent = nullptr);

protected:
    void fill(FilePane &pane) override;
};

} // namespace vantrel
