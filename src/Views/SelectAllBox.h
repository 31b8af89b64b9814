#pragma once

#include "Records/Pane.h"

#include <QCheckBox>

namespace vantrel {

/// The box above a pane's entries. It shows what it is told; a click does not change it, what follows from
/// the click does.
class SelectAllBox : public QCheckBox {
public:
    explicit SelectAllBox(QWidget *parent = nullptr);

    void setSelection(PaneSelectAllState selection);
    /// "Select all", or "Deselect all" when everything is selected: its tool tip.
    [[nodiscard]] static QString title(PaneSelectAllState selection);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void nextCheckState() override {}
    [[nodiscard]] bool hitButton(const QPoint &point) const override { return rect().contains(point); }
};

} // namespace vantrel
