#pragma once

#include "Views/BrowserPane.h"

namespace vantrel {

/// The computer's file pane.
class MacBrowserPane : public BrowserPane {
public:
    /// The state must outlive the view, and so must the pictures of its files, if there are to be any.
    explicit MacBrowserPane(AppState *state, ThumbnailStore *pictures = nullptr, QWidget *parent = nullptr);

protected:
    void fill(FilePane &pane) override;
};

} // namespace vantrel
