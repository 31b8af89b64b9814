#include "App/QtDesktop.h"

#include "App/TextPrompt.h"
#ifdef Q_OS_MACOS
#include <QProcess>
#else
#include "App/FileManager.h"
#endif

#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPromise>
#include <QUrl>

namespace vantrel {

namespace {

using Answer = std::optional<QString>;

/// Opens the dialog and gives its answer, which `textOf` reads when it was accepted. A dialog that is
/// destroyed unanswered takes the promise with it, and the future is given up.
template <class Dialog>
QFuture<Answer> ask(Dialog *dialog, QString (*textOf)(const Dialog &)) {
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

} // namespace

void QtDesktop::openFile(const QString &path) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

void QtDesktop::revealFile(const QString &path) {
#ifdef Q_OS_MACOS
    QProcess::startDetached(QStringLiteral("/usr/bin/open"), {QStringLiteral("-R"), path});
#else
    showInFileManager(QDBusConnection::sessionBus(), path, this,
                      [this, folder = QFileInfo(path).path()] { openFile(folder); });
#endif
}

void QtDesktop::copyText(const QString &text) {
    QGuiApplication::clipboard()->setText(text);
}

QFuture<std::optional<QString>> QtDesktop::chooseFolder(const QString &message, const QString &acceptLabel,
                                                        const QString &startingAt) {
    auto *dialog = new QFileDialog(m_window, message, startingAt);
    dialog->setObjectName(QStringLiteral("folderChooser"));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setLabelText(QFileDialog::Accept, acceptLabel);
    return ask<QFileDialog>(dialog,
                            [](const QFileDialog &chooser) { return chooser.selectedFiles().value(0); });
}

QFuture<std::optional<QString>> QtDesktop::askForText(const TextQuestion &question) {
    return ask<TextPrompt>(new TextPrompt(question, m_window),
                           [](const TextPrompt &prompt) { return prompt.text(); });
}

} // namespace vantrel
