#pragma once

#include "Kit/TextStyle.h"
#include "Theme/AppTheme.h"

#include <QLabel>

namespace vantrel {

/// Text that yields: it asks for its natural width but shrinks to nothing before it makes its parent wider,
/// and is shortened with "…". While it is, the tool tip shows the whole text. Assistive technology always
/// reads the whole.
///
/// One line, unless setMaximumLines() allows more. Alignment is QLabel's, vertically centred by default.
class TextLabel : public QLabel {
    Q_OBJECT

public:
    TextLabel(const TextStyle &style, const ThemeColor &color, QWidget *parent = nullptr);

    /// Repaints and lays out again only when the text differs.
    void setText(const QString &text);
    void setColor(const ThemeColor &color);
    void setMaximumLines(int lines);

    /// Whether the text is shortened at the current width.
    [[nodiscard]] bool isElided() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, m_style.lineHeight()}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return m_maximumLines > 1; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    TextStyle m_style;
    ThemeColor m_color;
    int m_maximumLines = 1;
};

} // namespace vantrel
