#pragma once

#include <QPoint>
#include <QRect>
#include <QString>
#include <Qt>

#include <chrono>
#include <functional>

class QMenu;
class QWidget;

namespace vantrel {
class FileItemsView;
}

namespace vantrel::tour {

/// A person's hand on the window: mouse and keys, on the controls that it finds by name. What it does not
/// find, or what does not happen in time, is a TourError.
class Hand {
public:
    /// `pace`: how long it rests after each move, so that people can follow; zero for a machine.
    Hand(QWidget &window, std::chrono::milliseconds pace);

    /// Runs the event loop until the condition holds.
    void waitUntil(const QString &what, const std::function<bool()> &condition) const;

    /// The visible control of that name, inside the one named `within` when that is given.
    [[nodiscard]] QWidget *control(const QString &name, const QString &within = {}) const;
    /// Moves the mouse there and lets it lie.
    void pointAt(const QString &name, const QString &within = {}) const;
    void click(const QString &name, const QString &within = {}) const;
    void type(const QString &name, const QString &text) const;
    /// Chooses from the program's menu.
    void choose(const QString &title) const;
    /// The menu that is open, as soon as one is.
    [[nodiscard]] QMenu *shownMenu() const;
    /// Chooses from it.
    void chooseShown(const QString &title) const;
    /// Presses what the first row of the queue offers, as "Try again".
    void pressFirstAction() const;
    void press(QWidget *control, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const;

    /// The entries of a pane, as it shows them now.
    [[nodiscard]] FileItemsView *entries(const QString &pane) const;
    void clickEntry(const QString &pane, const QString &name) const;
    /// Ticks the mark of an entry.
    void markEntry(const QString &pane, const QString &name) const;
    void openEntry(const QString &pane, const QString &name) const;

    /// Turns the wheel over a control until the condition holds.
    void scrollUntil(QWidget *control, const QString &what, const std::function<bool()> &condition) const;

private:
    enum class Click { single, twice };
    void clickAt(QWidget *control, QPoint position, Click click) const;
    [[nodiscard]] QRect entryRect(const QString &pane, const QString &name) const;
    void rest() const;

    QWidget &m_window;
    std::chrono::milliseconds m_pace;
};

} // namespace vantrel::tour
