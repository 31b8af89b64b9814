#pragma once

#include "MacFiles/Desktop.h"

#include <QPromise>
#include <QStringList>

namespace vantrel {

/// A desktop that remembers what it was asked, and answers what a test says: at once, or when the test gets
/// to it.
class FakeDesktop : public Desktop {
public:
    QStringList opened;
    QStringList revealed;
    QStringList copied;
    QStringList folderQuestions; ///< "message|button|start"
    QList<TextQuestion> textQuestions;
    bool isAwake = false;
    /// The answers to come; nothing stands for "Cancel".
    std::optional<QString> nextFolder;
    std::optional<QString> nextText;

    void openFile(const QString &path) override { opened.append(path); }
    void revealFile(const QString &path) override { revealed.append(path); }
    void copyText(const QString &text) override { copied.append(text); }

    QFuture<std::optional<QString>> chooseFolder(const QString &message, const QString &acceptLabel,
                                                 const QString &startingAt) override {
        folderQuestions.append(QStringList{message, acceptLabel, startingAt}.join(QLatin1Char('|')));
        return answered(nextFolder);
    }

    QFuture<std::optional<QString>> askForText(const TextQuestion &question) override {
        textQuestions.append(question);
        return answered(nextText);
    }

    void keepAwake(bool isOn) override { isAwake = isOn; }

private:
    static QFuture<std::optional<QString>> answered(const std::optional<QString> &answer) {
        QPromise<std::optional<QString>> promise;
        promise.start();
        promise.addResult(answer);
        promise.finish();
        return promise.future();
    }
};

} // namespace vantrel
