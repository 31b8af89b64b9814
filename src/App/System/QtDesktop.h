#pragma once

#include "MacFiles/Desktop.h"

#include <QObject>
#include <QPointer>

class QWidget;

namespace vantrel {

class StayAwake;

/// The desktop that the program really runs on. Its questions belong to the window and leave the event loop
/// alone: the answer comes through the future. A question that is still open when the window goes is given
/// up.
class QtDesktop : public QObject, public Desktop {
    Q_OBJECT

public:
    /// Shows a question for one line of text above the window and gives its answer.
    using AskForText = QFuture<std::optional<QString>> (*)(const TextQuestion &question, QWidget *window);

    explicit QtDesktop(AskForText ask) : m_askForText(ask) {}

    /// Where its questions appear. To be set before the first.
    void setWindow(QWidget *window) { m_window = window; }

    void openFile(const QString &path) override;
    void revealFile(const QString &path) override;
    void copyText(const QString &text) override;
    [[nodiscard]] QFuture<std::optional<QString>>
    chooseFolder(const QString &message, const QString &acceptLabel, const QString &startingAt) override;
    [[nodiscard]] QFuture<std::optional<QString>> askForText(const TextQuestion &question) override;
    void keepAwake(bool isOn) override;

private:
    AskForText m_askForText;
    QPointer<QWidget> m_window;
#ifndef Q_OS_MACOS
    StayAwake *m_awake = nullptr; ///< once it was wanted
#endif
};

} // namespace vantrel
