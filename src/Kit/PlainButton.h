#pragma once

#include <QAbstractButton>

class QPainter;

namespace vantrel {

/// A button without a bezel that subclasses paint, since a style is not told of symbols in the colours of
/// both schemes. It is clicked by releasing the mouse inside it, by Space and by Return; Tab reaches it, and
/// a click leaves the keyboard where it was. `clicked()` is its action.
///
/// A checkable button shows what the model says: a click does not flip it, the next render() does.
class PlainButton : public QAbstractButton {
public:
    explicit PlainButton(QWidget *parent = nullptr);

    /// The tool tip, which is also the name for assistive technology.
    void setHelp(const QString &help);

    /// Corner radius of the focus ring, in layout pixels.
    void setRingRadius(double radius) { m_ringRadius = radius; }

protected:
    /// Paints everything but the focus ring, on rect().
    virtual void paintContent(QPainter &painter) = 0;

    void paintEvent(QPaintEvent *event) final;
    void keyPressEvent(QKeyEvent *event) override;
    void nextCheckState() override {}

private:
    double m_ringRadius = 6;
};

} // namespace vantrel
