#pragma once

#include "Kit/TextStyle.h"

#include <QComboBox>

namespace vantrel {

/// A small card with one of several titles, from which a list of all of them drops. Scrolling across it
/// chooses nothing. `activated()` says what the user has chosen.
class PopUpButton : public QComboBox {
    Q_OBJECT

public:
    /// `name` is for assistive technology, which is told the chosen title as its value.
    PopUpButton(const QString &name, const TextStyle &style, QWidget *parent = nullptr);

    /// As wide as its longest title.
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
    void showPopup() override;

protected:
    [[nodiscard]] int heightOfButton() const;
    /// What it shows while the list is closed.
    [[nodiscard]] virtual QString shownText() const { return currentText(); }

    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    TextStyle m_style;
};

} // namespace vantrel
