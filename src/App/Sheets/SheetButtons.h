#pragma once

#include "Kit/PlainButton.h"

namespace vantrel {

/// A button with a border and a text, for sheets.
class BorderedButton : public PlainButton {
    Q_OBJECT

public:
    /// The prominent one is what Return presses.
    enum class Prominence { normal, prominent };

    BorderedButton(const QString &title, Prominence prominence, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintContent(QPainter &painter) override;

private:
    Prominence m_prominence;
};

/// Text that acts like a link: underlined under the mouse.
class LinkButton : public PlainButton {
    Q_OBJECT

public:
    /// Around the text, for the focus ring; in layout pixels.
    static constexpr int margin = 4;

    explicit LinkButton(const QString &title, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintContent(QPainter &painter) override;
};

} // namespace vantrel
