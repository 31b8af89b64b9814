#include "Views/PhonePicker.h"

#include <QHash>
#include <QStandardItemModel>

namespace vantrel {

namespace {

/// adb's word for a state, as people say it; a word that is not known here as it is.
QString stateTitle(const QString &state) {
    static const QHash<QString, QString> titles{
        {QStringLiteral("device"), QStringLiteral("Connected")},
        {QStringLiteral("unauthorized"), QStringLiteral("Not allowed yet")},
        {QStringLiteral("authorizing"), QStringLiteral("Connecting…")},
        {QStringLiteral("connecting"), QStringLiteral("Connecting…")},
        {QStringLiteral("offline"), QStringLiteral("Offline")},
        {QStringLiteral("no permissions"), QStringLiteral("No permission")},
        {QStringLiteral("recovery"), QStringLiteral("Recovery")},
        {QStringLiteral("sideload"), QStringLiteral("Sideload")},
        {QStringLiteral("bootloader"), QStringLiteral("Bootloader")},
    };
    return titles.value(state, state);
}

QString titleOf(const ListedPhone &phone) {
    const QString dot = QStringLiteral(" · ");
    const QString name = phone.model.isEmpty() ? QString() : QString(phone.model % dot);
    return displayText(name % phone.serial % dot % stateTitle(phone.state));
}

} // namespace

PhonePicker::PhonePicker(QWidget *parent)
    : PopUpButton(QStringLiteral("Phone"), {12, Weight::semibold, FontDesign::monospaced}, parent) {
    setModel(new QStandardItemModel(this));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QComboBox::activated, this,
            [this](int index) { Q_EMIT phoneChosen(itemData(index).toString()); });
}

void PhonePicker::setPhones(const QList<ListedPhone> &phones, const QString &shown) {
    // In place: its list may be open.
    auto *rows = static_cast<QStandardItemModel *>(model());
    rows->setRowCount(int(phones.size()));
    int current = -1;
    for (int row = 0; row < rows->rowCount(); ++row) {
        const ListedPhone &phone = phones.at(row);
        if (phone.serial == shown)
            current = row;
        if (!rows->item(row))
            rows->setItem(row, new QStandardItem);
        rows->item(row)->setText(titleOf(phone));
        rows->item(row)->setData(phone.serial, Qt::UserRole);
        rows->item(row)->setEnabled(phone.isReady());
    }
    setCurrentIndex(current);
    update();
}

QString PhonePicker::shownText() const {
    return currentIndex() < 0 ? QStringLiteral("No device") : currentData().toString();
}

} // namespace vantrel
