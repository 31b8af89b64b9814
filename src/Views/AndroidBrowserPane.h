#pragma once

#include "Views/BrowserPane.h"

namespace vantrel {

/// The phone's file pane. It starts the search anew whenever the search text or scope changes.
class AndroidBrowserPane : public BrowserPane {
public:
    /// The state must outlive the view, and so must the pictures of its files, if there are to be any.
    explicit AndroidBrowserPane(AppState *state, ThumbnailStore *pictures = nullptr,
                                QWidget *parent = nullptr);

    /// The folder that "Go back" leads to; it never leaves the shared storage or the card.
    [[nodiscard]] static QString parentAndroidPath(const QString &path);

protected:
    void fill(FilePane &pane) override;
    [[nodiscard]] QString activity() const override;
    [[nodiscard]] std::optional<Emptiness> emptiness() const override;
};

} // namespace vantrel
