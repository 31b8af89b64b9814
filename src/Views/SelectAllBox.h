#pragma once

#include "Kit/IconButton.h"
#include "Records/Pane.h"

namespace vantrel {

/// The box above a pane's entries. It shows what it is told; a click does not change it, what follows from
/// the click does.
class SelectAllBox : public PlainButton {
public:
    explicit SelectAllBox(QWidget *parent = nullptr);

    void setSelection(PaneSelectAllState selection);
    /// "Select all", or "Deselect all" when everything is selected: its tool tip.
    [[nodiscard]] static QString title(PaneSelectAllState selection);

    [[nodiscard]] Qt::CheckState checkState() const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintContent(QPainter &painter) override;

private:
    PaneSelectAllState m_selection = PaneSelectAllState::none;
};

} // namespace vantrel
