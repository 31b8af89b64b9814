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
    /// Where a single line is shortened; at first at its end.
    void setElision(Elision elision);
    /// How wide it stays, if its text needs that much: another text beside it yields first. Layout pixels.
    void setKeptWidth(int width);

    /// Whether the text is shortened at the current width.
    [[nodiscard]] bool isElided() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override {
        return {qMin(m_keptWidth, sizeHint().width()), m_style.lineHeight()};
    }
    [[nodiscard]] bool hasHeightForWidth() const override { return m_maximumLines > 1; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    TextStyle m_style;
    ThemeColor m_color;
    int m_maximumLines = 1;
    int m_keptWidth = 0;
    Elision m_elision = Elision::end;
};

} // namespace vantrel
