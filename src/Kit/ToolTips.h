#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QTimer>

class QApplication;
class QHelpEvent;
class QWidget;

namespace vantrel {

/// Where a tool tip of size `tip` goes, beside `part` and inside `window`: below it, above it, or to its
/// right or left, the first of these places that covers none of the `controls`. `x` is what it is centred on
/// above and below. Where there is no such place it covers as few of them as a place beside `part` can. All
/// in one system of coordinates.
[[nodiscard]] QPoint placeToolTip(QSize tip, const QRect &part, int x, const QRect &window,
                                  const QList<QRect> &controls);

/// The application's tool tips, in its own look. They are part of the window that they help with: one line
/// where it fits, at most half as wide as the window, never over another control. A tip stays as long as the
/// mouse rests on what it is about; when that is painted anew, it is asked for again, since something else
/// may stand there now. Whoever has pressed something knows what it is for: there is no tip until the mouse
/// has been elsewhere.
///
/// Every QWidget::toolTip() is shown, as plain text. Widgets and delegates that answer QEvent::ToolTip
/// themselves call show().
class ToolTips : public QObject {
    Q_OBJECT

public:
    /// Once, for the whole application.
    static void install(QApplication &application);

    /// Shows `text` beside `part` of the control, in its coordinates; an empty text shows nothing. Line feeds
    /// in it begin new lines: foreign text goes through displayText() first.
    static void show(const QString &text, QWidget *control, const QRect &part);
    /// What is shown; empty when nothing is.
    [[nodiscard]] static QString text();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit ToolTips(QObject *parent);

    bool help(QWidget &widget, const QHelpEvent &event);
    void present(const QString &text, QWidget *control, const QRect &part);
    void notePress(QWidget *widget, QPoint place);
    void hide();
    void askAgain();

    QPointer<QWidget> m_view; ///< while a tip is shown
    QPointer<QWidget> m_control;
    QRect m_part;
    QPoint m_mouse;              ///< in the control
    QPointer<QWidget> m_pressed; ///< until the mouse leaves it
    QPoint m_pressedAt;          ///< in it
    QTimer m_end;
    QTimer m_question;
    bool m_isConfirmed = false;
};

} // namespace vantrel
