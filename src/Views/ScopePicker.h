#pragma once

#include "Records/Pane.h"

#include <QComboBox>

namespace vantrel {

/// The pop-up that chooses what the search field searches. As wide as its longest title.
class ScopePicker : public QComboBox {
    Q_OBJECT

public:
    explicit ScopePicker(QWidget *parent = nullptr);

    void setScope(AndroidSearchScope scope);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
    void showPopup() override;

Q_SIGNALS:
    /// The user has chosen.
    void scopeChosen(AndroidSearchScope scope);

protected:
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
};

} // namespace vantrel
