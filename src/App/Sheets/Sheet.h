#pragma once

#include <QDialog>
#include <QPointer>

class QPushButton;
class QVBoxLayout;

namespace vantrel {

/// A modal dialog that belongs to its window: it hangs below the title bar, dims the window, follows it, and
/// has the theme's look. Return presses its default button, Escape closes it.
class Sheet : public QDialog {
    Q_OBJECT

public:
    /// `name` is the sheet's for assistive technology and window lists. The sheet is `width` layout pixels
    /// wide and as high as its content.
    Sheet(const QString &name, int width, QWidget *window);
    ~Sheet() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    /// Where subclasses put their content, from top to bottom, without margins.
    [[nodiscard]] QVBoxLayout *content() const { return m_content; }

    /// A button for the content. Return presses the one that is made the default, wherever the keyboard is.
    [[nodiscard]] QPushButton *makeButton(const QString &title, const QString &objectName);

    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void place();

    QVBoxLayout *m_content;
    QPointer<QWidget> m_dimming; ///< over the window while the sheet is shown
    bool m_hasRoundCorners = false;
};

} // namespace vantrel
