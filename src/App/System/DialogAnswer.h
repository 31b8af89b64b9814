#pragma once

#include <QDialog>
#include <QFuture>
#include <QPromise>
#include <QString>

#include <memory>
#include <optional>

namespace vantrel {

/// Opens the dialog and gives its answer, which `textOf` reads when it was accepted; nothing when it was
/// rejected. The dialog deletes itself when it closes. One that is destroyed unanswered takes the promise
/// with it, and the future is given up.
template <class Dialog>
[[nodiscard]] QFuture<std::optional<QString>> answerOf(Dialog *dialog, QString (*textOf)(const Dialog &)) {
    using Answer = std::optional<QString>;
    const auto promise = std::make_shared<QPromise<Answer>>();
    promise->start();
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &QDialog::finished, dialog, [promise, dialog, textOf](int result) {
        promise->addResult(result == QDialog::Accepted ? Answer(textOf(*dialog)) : std::nullopt);
        promise->finish();
    });
    dialog->open();
    return promise->future();
}

} // namespace vantrel
