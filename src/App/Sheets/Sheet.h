#pragma once

#include <QDialog>
#include <QPointer>
#include <QVariantAnimation>

class QPushButton;
class QVBoxLayout;

namespace vantrel {

class ScrollPane;

/// A dialog inside its window: a card that slides out from under the title bar, over the dimmed content.
/// Behind it the content takes neither mouse nor keyboard; the title bar stays in use, so that the window can
/// be moved, zoomed and closed. Return presses the default button, Escape closes the sheet, Tab stays in it;
/// then the keyboard is where it was before.
///
/// It is never larger than there is room for in the window: what is higher scrolls, but for its buttons.
///
/// A window shows one sheet at a time: one that is opened over another waits until that is closed.
class Sheet : public QDialog {
    Q_OBJECT

public:
    /// `name` is the sheet's for assistive technology. Its card is `width` layout pixels wide, more with
    /// large texts, and as high as its content. `window` is where it appears.
    Sheet(const QString &name, int width, QWidget *window);
    ~Sheet() override;

    /// The way to show it.
    void open() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    /// Where subclasses put their content, from top to bottom, without margins.
    [[nodiscard]] QVBoxLayout *content() const { return m_content; }
    /// Where they put their buttons, below the content, likewise.
    [[nodiscard]] QVBoxLayout *footer() const { return m_footer; }
    enum class Line { always, whenScrolled };
    /// When there is a line between both; always, unless told otherwise.
    void setLine(Line line) { m_lineMode = line; }

    /// A button for the content. Return presses the one that is made the default, wherever the keyboard is.
    [[nodiscard]] QPushButton *makeButton(const QString &title, const QString &objectName);

    /// What has the keyboard at first. Without this it is the content, if that scrolls; otherwise no control,
    /// and Tab begins at the first one.
    void setFirstFocus(QWidget *control) { m_firstFocus = control; }

    /// Makes the card as large as its content is now; when it opens, it is.
    void fitCard();

    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void place();
    void keepFocus(QWidget *now);
    void letKeysScroll();

    int m_width; ///< of the card, with texts of the usual size
    QWidget *m_card;
    QVBoxLayout *m_content;
    ScrollPane *m_pane; ///< the content's
    QWidget *m_line;
    Line m_lineMode = Line::always;
    QVBoxLayout *m_footer;
    QWidget *m_firstFocus;
    QVariantAnimation m_slide;       ///< from 0, out of sight, to 1, in place
    QPointer<QWidget> m_focusBefore; ///< what had the keyboard before the sheet
    QPointer<QWidget> m_focus;       ///< what has it in the sheet
};

} // namespace vantrel
