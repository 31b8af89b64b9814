#pragma once

#include "Kit/IconButton.h"

namespace vantrel {

/// A button that is a word or two in the accent colour, for what may be done about what stands beside it.
class TextButton : public PlainButton {
    Q_OBJECT

public:
    /// `help` says more than the title; assistive technology reads it.
    TextButton(const QString &title, const QString &help, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintContent(QPainter &painter) override;
};

} // namespace vantrel
