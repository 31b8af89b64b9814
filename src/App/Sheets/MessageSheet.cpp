#include "App/Sheets/MessageSheet.h"

#include "Kit/TextLabel.h"
#include "Theme/AppTheme.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int viewWidth = 380;

} // namespace

MessageSheet::MessageSheet(const QString &name, const QString &objectName, const Message &message,
                           QWidget *window)
    : Sheet(name, viewWidth, window),
      m_heading(new TextLabel({.size = 15, .weight = Weight::semibold}, AppTheme::ink())),
      m_detail(new TextLabel({.size = 13}, AppTheme::inkSecondary())) {
    constexpr int padding = 28;
    setObjectName(objectName);
    auto *texts = new QVBoxLayout;
    texts->setContentsMargins(padding, padding, padding, 22);
    texts->setSpacing(10);
    m_heading->setObjectName(objectName + QStringLiteral(".heading"));
    m_detail->setObjectName(objectName + QStringLiteral(".detail"));
    for (TextLabel *label : {m_heading, m_detail}) {
        label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        label->setMaximumLines(6);
        texts->addWidget(label);
    }
    setTexts(message.heading, message.detail);
    content()->addLayout(texts);

    auto *buttons = new QHBoxLayout;
    buttons->setContentsMargins(padding, 14, padding, 14);
    buttons->setSpacing(8);
    buttons->addStretch();
    QPushButton *reject = makeButton(message.rejectLabel, objectName + QStringLiteral(".close"));
    reject->setDefault(message.acceptLabel.isEmpty());
    connect(reject, &QAbstractButton::clicked, this, &QDialog::reject);
    buttons->addWidget(reject);
    if (!message.acceptLabel.isEmpty()) {
        QPushButton *accept = makeButton(message.acceptLabel, objectName + QStringLiteral(".accept"));
        accept->setDefault(true);
        connect(accept, &QAbstractButton::clicked, this, &QDialog::accept);
        buttons->addWidget(accept);
    }
    buttons->addStretch();
    footer()->addLayout(buttons);
}

void MessageSheet::setTexts(const QString &heading, const QString &detail) {
    m_heading->setText(heading);
    m_detail->setText(detail);
}

} // namespace vantrel
