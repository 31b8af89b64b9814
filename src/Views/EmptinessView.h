#pragma once

#include "Views/Emptiness.h"

#include <QWidget>

class QBoxLayout;
class QPushButton;

namespace vantrel {

class Canvas;
class ScrollPane;
class TextLabel;

/// Shows an Emptiness: its drawing, its heading, the steps and a button, in the middle of what room there is.
/// Where that is low, the drawing is left out, and where it is lower still, the rest scrolls.
class EmptinessView : public QWidget {
    Q_OBJECT

public:
    explicit EmptinessView(QWidget *parent = nullptr);

    void setEmptiness(const Emptiness &emptiness);
    [[nodiscard]] const Emptiness &emptiness() const { return m_emptiness; }

    // Never makes the place larger that it is shown in.
    [[nodiscard]] QSize sizeHint() const override { return {}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return false; }

Q_SIGNALS:
    /// Its button was pressed.
    void acted();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void arrange();

    Emptiness m_emptiness;
    ScrollPane *m_pane;
    QBoxLayout *m_column;
    Canvas *m_picture;
    TextLabel *m_heading;
    QWidget *m_steps;
    QPushButton *m_button;
};

} // namespace vantrel
