#pragma once

#include "Kit/IconButton.h"
#include "Records/FileOrder.h"

namespace vantrel {

/// The title of a column, which sorts by it: an arrow beside the title points up while the least comes first,
/// down while the greatest does. It shows what it is told; a click does not change it.
class ColumnButton : public PlainButton {
    Q_OBJECT

public:
    explicit ColumnButton(FileSortKey column, QWidget *parent = nullptr);

    [[nodiscard]] FileSortKey column() const { return m_column; }
    /// Where in its width the title stands; at its right, the arrow is left of it, so that titles stay over
    /// their columns.
    void setAlignment(Qt::Alignment alignment);
    /// What to call the column, and in what order the entries are.
    void show(const QString &title, FileOrder order);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void paintContent(QPainter &painter) override;

private:
    FileSortKey m_column;
    Qt::Alignment m_alignment = Qt::AlignLeft;
    std::optional<Qt::SortOrder> m_direction; ///< of the entries, while this column decides it
};

} // namespace vantrel
