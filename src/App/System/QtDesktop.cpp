#include "App/System/QtDesktop.h"

#include "App/System/DialogAnswer.h"
#ifdef Q_OS_MACOS
#include <QProcess>
#else
#include "App/System/FileManager.h"
#include "App/System/StayAwake.h"
#endif

#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QUrl>

namespace vantrel {

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
    return answerOf<QFileDialog>(dialog,
                                 [](const QFileDialog &chooser) { return chooser.selectedFiles().value(0); });
}

QFuture<std::optional<QString>> QtDesktop::askForText(const TextQuestion &question) {
    return m_askForText(question, m_window);
}

void QtDesktop::keepAwake(bool isOn) {
#ifdef Q_OS_MACOS
    Q_UNUSED(isOn)
#else
    if (!m_awake && isOn)
        m_awake = new StayAwake(QDBusConnection::systemBus(), QDBusConnection::sessionBus(), this);
    if (m_awake)
        m_awake->setOn(isOn);
#endif
}

} // namespace vantrel
