#include "App/Sheets/TextPrompt.h"

#include "App/System/DialogAnswer.h"
#include "Kit/TextLabel.h"
#include "Theme/AppTheme.h"

#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

constexpr int padding = 20;
constexpr int sheetWidth = 240 + 2 * padding; // the field with its margins

TextPrompt::TextPrompt(const Desktop::TextQuestion &question, QWidget *window)
    : Sheet(question.message, sheetWidth, window) {
    setObjectName(QStringLiteral("textPrompt"));
    auto *heading = new TextLabel({13, Weight::bold}, AppTheme::ink(), this);
    heading->setText(question.message);
    auto *information = new TextLabel({11, Weight::medium}, AppTheme::inkSecondary(), this);
    information->setText(question.informativeText);

    m_field = new QLineEdit(question.initialText, this);
    m_field->setObjectName(QStringLiteral("textPrompt.field"));
    m_field->setAccessibleName(question.informativeText);
    m_field->setFixedSize(withTexts(sheetWidth) - 2 * padding, withTexts(24));
    setTextStyle(m_field, {13});
    m_field->selectAll();
    setFirstFocus(m_field);

    QPushButton *cancel = makeButton(question.cancelLabel, QStringLiteral("textPrompt.cancel"));
    QPushButton *accept = makeButton(question.acceptLabel, QStringLiteral("textPrompt.accept"));
    accept->setDefault(true);
    connect(cancel, &QAbstractButton::clicked, this, &QDialog::reject);
    connect(accept, &QAbstractButton::clicked, this, &QDialog::accept);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(accept);
    setLine(Line::whenScrolled);
    content()->setContentsMargins(padding, 18, padding, 16);
    footer()->setContentsMargins(padding, 0, padding, 18);
    content()->addWidget(heading);
    content()->addSpacing(4);
    content()->addWidget(information);
    content()->addSpacing(12);
    content()->addWidget(m_field);
    footer()->addLayout(buttons);
    setTabOrder(m_field, cancel);
    setTabOrder(cancel, accept);
}

QString TextPrompt::text() const {
    return m_field->text();
}

QFuture<std::optional<QString>> askForText(const Desktop::TextQuestion &question, QWidget *window) {
    return answerOf<TextPrompt>(new TextPrompt(question, window),
                                [](const TextPrompt &prompt) { return prompt.text(); });
}

} // namespace vantrel
