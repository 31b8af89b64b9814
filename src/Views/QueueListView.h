#pragma once

#include <QListView>

class QUuid;

namespace vantrel {

/// The rows of the transfer queue, painted by QueueDelegate. A report of progress repaints its row and costs
/// the same however long the queue is.
///
/// Each row ends in a button that removes it; one that has ended without all of it has another, to try again
/// or to keep both, which Left and Right change to and from. The keyboard is always on one of them, that of
/// currentIndex(): Tab enters at a row in sight, goes from row to row and leaves behind the last; the list's
/// own keys go there, too. Space and Return press the button, and the mouse does without taking the keyboard
/// along.
class QueueListView : public QListView {
    Q_OBJECT

public:
    /// `queue` is a TransferQueue and must outlive the view. `radius`: of the corners that the rows are
    /// clipped to, layout pixels.
    QueueListView(QAbstractItemModel *queue, double radius, QWidget *parent = nullptr);

    /// The height that `count` rows take with their dividers, layout pixels.
    [[nodiscard]] static int heightOfRows(qsizetype count);

    /// Where the remove button of a row lies, in the viewport.
    [[nodiscard]] QRect removeButtonRect(const QModelIndex &row) const;
    /// Scrolls so that the rows are in sight that run; where they do not all fit, one of them. Not after the
    /// user has scrolled them out of it, until they are back or none runs; nor while the list is in use.
    void keepInSight(const QList<int> &running);

    /// Does what the remove button of a row does.
    void pressRemoveButton(const QModelIndex &row);

    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QList<int> &roles) override;

    /// Where the action of a row lies, in the viewport; null where there is none.
    [[nodiscard]] QRect actionRect(const QModelIndex &row) const;
    /// Does what the action of a row does, if it has one.
    void pressAction(const QModelIndex &row);
    /// Whether the keyboard is on the action of its row, not on the remove button.
    [[nodiscard]] bool isOnAction() const { return m_isOnAction; }

Q_SIGNALS:
    void removeRequested(const QUuid &id);
    void tryAgainRequested(const QUuid &id);
    void keepBothRequested(const QUuid &id);

protected:
    void rowsAboutToBeRemoved(const QModelIndex &parent, int first, int last) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    /// The row whose remove button is at a place of the viewport.
    [[nodiscard]] QModelIndex removeButtonAt(const QPoint &place) const;

    void setOnAction(bool isOnAction);
    /// Whether that would be in sight, with this many pixels above the viewport.
    [[nodiscard]] bool areInSight(const QList<int> &running, int offset) const;

    QPersistentModelIndex m_pressed; ///< whose button the mouse holds down
    bool m_isActionPressed = false;  ///< the action, not the remove button
    bool m_isOnAction = false;
    QList<int> m_running;         ///< rows, as told last
    bool m_followsRunning = true; ///< the user has not scrolled away from them
};

} // namespace vantrel
