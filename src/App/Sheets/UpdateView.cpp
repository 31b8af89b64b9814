#include "App/Sheets/UpdateView.h"

#include "Kit/Canvas.h"
#include "Kit/TextLabel.h"
#include "Theme/AppTheme.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int viewWidth = 380;

} // namespace

UpdateView::UpdateView(QWidget *window, const UpdateResult &result, const AppVersion &installed)
    : Sheet(QStringLiteral("Software Update"), viewWidth, window) {
    constexpr int padding = 28;
    const UpdateMessage message = describe(result, installed);

    auto *texts = new QVBoxLayout;
    texts->setContentsMargins(padding, padding, padding, 22);
    texts->setSpacing(10);
    auto *heading = new TextLabel({.size = 15, .weight = Weight::semibold}, AppTheme::ink());
    auto *detail = new TextLabel({.size = 13}, AppTheme::inkSecondary());
    heading->setText(message.heading);
    detail->setText(message.detail);
    detail->setObjectName(QStringLiteral("update.detail"));
    for (TextLabel *label : {heading, detail}) {
        label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        label->setMaximumLines(6);
        label->setFixedWidth(viewWidth - 2 * padding);
        texts->addWidget(label);
    }
    content()->addLayout(texts);
    content()->addWidget(new Divider);

    auto *buttons = new QHBoxLayout;
    buttons->setContentsMargins(padding, 14, padding, 14);
    buttons->setSpacing(8);
    buttons->addStretch();
    const bool offersPage = !message.actionLabel.isEmpty();
    QPushButton *close = makeButton(offersPage ? QStringLiteral("Later") : QStringLiteral("OK"),
                                    QStringLiteral("update.close"));
    close->setDefault(!offersPage);
    connect(close, &QAbstractButton::clicked, this, &QDialog::reject);
    buttons->addWidget(close);
    if (offersPage) {
        QPushButton *open = makeButton(message.actionLabel, QStringLiteral("update.open"));
        open->setDefault(true);
        connect(open, &QAbstractButton::clicked, this, [this, page = result.downloadPage] {
            QDesktopServices::openUrl(page);
            accept();
        });
        buttons->addWidget(open);
    }
    buttons->addStretch();
    content()->addLayout(buttons);
}

} // namespace vantrel
