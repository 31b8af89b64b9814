#pragma once

#include "Kit/IconButton.h"
#include "Kit/Symbol.h"

namespace vantrel {

/// A button of the title bar: a symbol over a small title.
class ToolbarButton : public PlainButton {
    Q_OBJECT

public:
    explicit ToolbarButton(QWidget *parent = nullptr);

    /// `help` is the tool tip and the name for assistive technology.
    void setContent(const QString &systemImage, const QString &title, const QString &help);
    [[nodiscard]] const QString &systemImage() const { return m_symbol.name; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintContent(QPainter &painter) override;

private:
    Symbol m_symbol;
};

} // namespace vantrel
