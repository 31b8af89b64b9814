#pragma once

#include <QFuture>
#include <QString>

#include <optional>

namespace vantrel {

/// What the model needs of the desktop that it runs on. The application implements it with real dialogs,
/// tests with answers of their own. Main thread.
class Desktop {
public:
    /// A question for one line of text.
    struct TextQuestion {
        QString message;         ///< heading
        QString informativeText; ///< one line below it
        QString acceptLabel;     ///< the default button
        QString cancelLabel;
        QString initialText; ///< selected when the question opens
    };

    virtual ~Desktop() = default;

    /// Opens a local file or folder with its default application.
    virtual void openFile(const QString &path) = 0;
    /// Shows the file, selected, in the desktop's file manager.
    virtual void revealFile(const QString &path) = 0;
    /// Replaces the clipboard by the text.
    virtual void copyText(const QString &text) = 0;
    /// Asks for one existing folder; the future gives its path, or nothing when the user cancels.
    /// `startingAt` is where the dialog opens, or empty.
    [[nodiscard]] virtual QFuture<std::optional<QString>>
    chooseFolder(const QString &message, const QString &acceptLabel, const QString &startingAt) = 0;
    /// Asks for a text; the future gives it as typed, or nothing when the user cancels.
    [[nodiscard]] virtual QFuture<std::optional<QString>> askForText(const TextQuestion &question) = 0;
    /// From now on, or not any more: the computer does not go to sleep by itself, and the session does not
    /// end without a question. Where the desktop cannot do that, nothing happens.
    virtual void keepAwake(bool isOn) = 0;
};

} // namespace vantrel
