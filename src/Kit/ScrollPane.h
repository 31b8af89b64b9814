#pragma once

#include <QScrollArea>

namespace vantrel {

/// Shows as much of a widget as there is room for; the rest is reached by scrolling down. While there is a
/// rest, Tab stops here, which a ring shows, and the keys that move scroll.
class ScrollPane : public QScrollArea {
public:
    /// `name` is for assistive technology. Takes `content`, which is as wide as the pane.
    ScrollPane(const QString &name, QWidget *content, QWidget *parent = nullptr);

    /// Whether there is more than is seen.
    [[nodiscard]] bool scrolls() const;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    QWidget *m_ring; ///< above the content
};

} // namespace vantrel
