#pragma once

#include <QAbstractScrollArea>
#include <QList>

class QUuid;

namespace vantrel {

class AppState;
class QueueRowView;

/// The rows of the transfer queue. Every row is as high as the next, so that where it lies is arithmetic;
/// row views exist for the visible rows and one beyond either end, which is the one that Tab goes to next.
/// However long the queue is, a change costs as much as one screen of rows.
class QueueListView : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// The model must outlive the view. `radius`: of the corners that the rows are clipped to, layout pixels.
    QueueListView(AppState *state, double radius, QWidget *parent = nullptr);

    /// Shows what the queue holds now.
    void render();

    /// The height that `count` rows take with their dividers, layout pixels.
    [[nodiscard]] static int heightOfRows(qsizetype count);

    /// The row view of an entry, or null while it is not near what is visible.
    [[nodiscard]] QueueRowView *rowView(const QUuid &id) const;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool viewportEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Row {
        qsizetype index;
        QueueRowView *view;
    };

    void arrange();
    void fitScrollBar();
    void ensureVisible(qsizetype index);
    [[nodiscard]] QueueRowView *newRowView();
    [[nodiscard]] const Row *focusedRow() const;
    void paintDividers();

    AppState *m_state;
    double m_radius;
    QList<Row> m_rows;             ///< by index
    QList<QueueRowView *> m_spare; ///< hidden
    qsizetype m_dividedRows = 0;
};

} // namespace vantrel
