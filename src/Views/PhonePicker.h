#pragma once

#include "Kit/PopUpButton.h"
#include "Records/ListedPhone.h"

#include <QList>

namespace vantrel {

/// The pop-up that chooses between several phones. It lists each with its model, its serial and its state;
/// those that are not ready cannot be chosen. Closed it shows the serial of the one in use.
class PhonePicker : public PopUpButton {
    Q_OBJECT

public:
    explicit PhonePicker(QWidget *parent = nullptr);

    /// `shown` is the serial of the phone in use; none of them while there is none.
    void setPhones(const QList<ListedPhone> &phones, const QString &shown);

    /// Whatever the serials are, as wide as the place for them.
    [[nodiscard]] QSize sizeHint() const override { return {0, heightOfButton()}; }

Q_SIGNALS:
    /// The user has chosen this one.
    void phoneChosen(const QString &serial);

protected:
    [[nodiscard]] QString shownText() const override;
};

} // namespace vantrel
