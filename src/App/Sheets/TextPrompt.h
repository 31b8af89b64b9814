#pragma once

#include "App/Sheets/Sheet.h"
#include "MacFiles/Desktop.h"

class QLineEdit;

namespace vantrel {

/// Asks for one line of text. Accepted: the text is what was typed; rejected: the user cancelled.
class TextPrompt : public Sheet {
    Q_OBJECT

public:
    TextPrompt(const Desktop::TextQuestion &question, QWidget *window);

    [[nodiscard]] QString text() const;

private:
    QLineEdit *m_field;
};

/// Asks above the window; the future gives the text as typed, or nothing when the user cancels.
[[nodiscard]] QFuture<std::optional<QString>> askForText(const Desktop::TextQuestion &question,
                                                         QWidget *window);

} // namespace vantrel
