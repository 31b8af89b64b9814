#include "App/Sheets/KeyboardView.h"

#include "App/Sheets/KeyboardTable.h"
#include "Kit/Boxes.h"
#include "Kit/Canvas.h"
#include "Kit/TextLabel.h"
#include "Theme/AppTheme.h"

#include <QGridLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int viewWidth = 680;
constexpr int keysWidth = 270;
constexpr int groupHeight = 30; // with the room above the group
constexpr int aroundRows = 170; // of the window: title bar, button and what is free

TextLabel *label(const QString &text, const TextStyle &style, const ThemeColor &color) {
    auto *made = new TextLabel(style, color);
    made->setText(text);
    return made;
}

/// The rows, which scroll where they are higher than that.
QScrollArea *scrolled(QLayout *rows, int mostHeight) {
    auto *all = new QWidget;
    all->setLayout(rows);
    auto *area = named(QStringLiteral("keyboard.rows"), new QScrollArea);
    area->setAccessibleName(QStringLiteral("Keys"));
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->setWidget(all);
    area->viewport()->setAutoFillBackground(false);
    all->setAutoFillBackground(false);
    const int height = all->sizeHint().height();
    area->setFixedHeight(std::min(height, mostHeight));
    area->setFocusPolicy(height > mostHeight ? Qt::TabFocus : Qt::NoFocus); // the keys scroll it
    return area;
}

} // namespace

KeyboardView::KeyboardView(QWidget *window) : Sheet(QStringLiteral("Keyboard"), viewWidth, window) {
    setObjectName(QStringLiteral("keyboard"));
    auto *rows = new QGridLayout;
    rows->setContentsMargins(24, 8, 24, 18);
    rows->setHorizontalSpacing(16);
    rows->setVerticalSpacing(3);
    rows->setColumnMinimumWidth(0, withTexts(keysWidth));
    rows->setColumnStretch(1, 1);
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
    content()->addWidget(scrolled(rows, window->height() - aroundRows));
    content()->addWidget(new Divider);
    QPushButton *close = makeButton(QStringLiteral("Close"), QStringLiteral("keyboard.close"));
    close->setDefault(true);
    connect(close, &QAbstractButton::clicked, this, &QDialog::accept);
    content()->addSpacing(12);
    content()->addWidget(close, 0, Qt::AlignHCenter);
    content()->addSpacing(12);
}

} // namespace vantrel
