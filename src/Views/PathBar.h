#pragma once

#include "Views/FilePane.h"

#include <QWidget>

class QLineEdit;
class QStringListModel;

namespace vantrel {

class PathLabel;

/// The folder that a pane shows. A click on one of its names goes there; edit() makes it a field, which
/// offers the folders that go on from what is typed. Return goes to that path, Escape and leaving the field
/// give it up.
class PathBar : public QWidget {
    Q_OBJECT

public:
    explicit PathBar(QWidget *parent = nullptr);

    /// `label` is what is read. Without `onGoTo` it is a text and no more.
    void show(const QString &label, const PanePath &path);
    /// Lets the path be typed, beginning with the one that is shown.
    void edit();

Q_SIGNALS:
    /// The field was left by Return or Escape: the keyboard belongs to the entries again.
    void edited();

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void complete(const QString &text);
    void finish(bool goesThere);

    PanePath m_path;
    bool m_isEdited = false;
    PathLabel *m_label;
    QLineEdit *m_field = nullptr;
    QStringListModel *m_completions;
    QString m_completedFolder; ///< whose folders the completions are, or will be
};

} // namespace vantrel
