#pragma once

#include "Kit/TextStyle.h"

#include <QPlainTextEdit>

namespace vantrel {

/// Text that can be selected and copied, with the mouse and with keys, on as many lines as it needs up to
/// mostLines; beyond these it scrolls. It is plain: no markup is read in it, and what would deceive is shown
/// as displayText() does.
class ReadOnlyText : public QPlainTextEdit {
    Q_OBJECT

public:
    static constexpr int mostLines = 8;

    /// `name` is what assistive technology calls it.
    ReadOnlyText(const QString &name, const TextStyle &style, QWidget *parent = nullptr);

    void setText(const QString &text);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override { return {0, heightForWidth(width())}; }
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    [[nodiscard]] int linesAt(int width) const;

    bool m_showsFocus = false;
};

} // namespace vantrel
