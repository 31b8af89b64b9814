#pragma once

#include "Kit/TextStyle.h"

#include <QLineEdit>

namespace vantrel {

/// A line to type into, without a frame, whose text has exactly its style's size. The toolkit's fonts have
/// whole pixels: it lays the text out in the next larger one, on a line that is longer by as much, and what
/// it paints there is made smaller.
class TextField : public QLineEdit {
    Q_OBJECT

public:
    explicit TextField(const TextStyle &style, QWidget *parent = nullptr);

    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    [[nodiscard]] QPainter *sharedPainter() const override;
    QPaintDevice *redirected(QPoint *offset) const override;

private:
    [[nodiscard]] QMouseEvent laidOut(const QMouseEvent &event) const;

    void fit();

    const TextStyle m_style;
    double m_scale = 1;            ///< of what the toolkit paints
    QPainter *m_painter = nullptr; ///< while it does
};

} // namespace vantrel
