#pragma once

#include "Records/QueueItem.h"

#include <QWidget>

namespace vantrel {

class IconButton;
class QueueBar;
class TextLabel;

/// One copy of the transfer queue. It shows a QueueItem, which may be another one from one moment to the
/// next.
class QueueRowView : public QWidget {
    Q_OBJECT

public:
    explicit QueueRowView(QWidget *parent = nullptr);

    /// Layout pixels; the same for every row, whatever it shows.
    [[nodiscard]] static int rowHeight();

    /// Repaints only what differs from the item shown before.
    void setItem(const QueueItem &item);
    [[nodiscard]] const QueueItem &item() const { return m_item; }
    [[nodiscard]] IconButton *removeButton() const { return m_remove; }

Q_SIGNALS:
    void removeRequested(const QUuid &id);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QueueItem m_item;
    TextLabel *m_name;
    TextLabel *m_route;
    QueueBar *m_bar;
    TextLabel *m_progress;
    TextLabel *m_percent;
    IconButton *m_remove;
};

} // namespace vantrel
