#pragma once

#include "App/Sheets/AboutTexts.h"
#include "App/Sheets/Sheet.h"

namespace vantrel {

/// The About window: what the program is, its version, and how to reach the people who make it.
class AboutView : public Sheet {
    Q_OBJECT

public:
    explicit AboutView(QWidget *window,
                       const AboutTexts &texts = AboutTexts(BuildInformation::ofThisBuild()));

    /// Opens the product's web site in the default browser.
    static void openWebsite();
    /// Opens a new message in the default mail program.
    void openFeedbackMail() const;

private:
    AboutTexts m_texts;
};

} // namespace vantrel
