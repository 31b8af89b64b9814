#include "App/Sheets/KeyboardView.h"

#include "App/Sheets/KeyboardTable.h"
#include "Kit/TextLabel.h"
#include "Theme/AppTheme.h"

#include <QGridLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace vantrel {

namespace {

constexpr int viewWidth = 680;
constexpr int keysShare = 27; // of the width, in comparison with what they do
constexpr int meaningShare = 35;
constexpr int groupHeight = 30; // with the room above the group

TextLabel *label(const QString &text, const TextStyle &style, const ThemeColor &color) {
    auto *made = new TextLabel(style, color);
    made->setText(text);
    made->setMaximumLines(3);
    made->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return made;
}

} // namespace

KeyboardView::KeyboardView(QWidget *window) : Sheet(QStringLiteral("Keyboard"), viewWidth, window) {
    setObjectName(QStringLiteral("keyboard"));
    auto *rows = new QGridLayout;
    rows->setContentsMargins(24, 8, 24, 18);
    rows->setHorizontalSpacing(16);
    rows->setVerticalSpacing(3);
    rows->setColumnStretch(0, keysShare);
    rows->setColumnStretch(1, meaningShare);
    QString group;
    for (const KeyboardEntry &entry : keyboardTable()) {
        const int row = rows->rowCount();
        if (std::exchange(group, entry.group) != entry.group) {
            auto *title = label(group, {11, Weight::semibold}, AppTheme::inkTertiary());
            rows->setRowMinimumHeight(row, withTexts(groupHeight));
            rows->addWidget(title, row, 0, 1, 2, Qt::AlignBottom);
        }
        rows->addWidget(label(entry.title(), {12, Weight::semibold}, AppTheme::ink()), row + 1, 0);
        rows->addWidget(label(entry.does, {12, Weight::medium}, AppTheme::inkSecondary()), row + 1, 1);
    }
    content()->addLayout(rows);
    QPushButton *close = makeButton(QStringLiteral("Close"), QStringLiteral("keyboard.close"));
    close->setDefault(true);
    connect(close, &QAbstractButton::clicked, this, &QDialog::accept);
    footer()->addSpacing(12);
    footer()->addWidget(close, 0, Qt::AlignHCenter);
    footer()->addSpacing(12);
}

} // namespace vantrel
