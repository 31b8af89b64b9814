#pragma once

#include "Kit/WidthTable.h"
#include "Records/Pane.h"
#include "Views/FileGridGeometry.h"
#include "Views/FileItemsView.h"

namespace vantrel {

class FileGridCellDelegate;

/// The entries in lines of tiles, a FileGridCell each. What is beside them begins a rubber band.
///
/// It tells the model which entries are in sight, for their pictures. The wheel with Control changes the size
/// of the tiles.
class FileGridView : public FileItemsView {
    Q_OBJECT

public:
    FileGridView(FileItemsModel *model, FileSelectionModel *selection, QWidget *parent = nullptr);

    /// A TileSize. The entry in the upper left corner stays there, as far as it can.
    void setTileSize(int size);

    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QList<int> &roles = {}) override;

Q_SIGNALS:
    /// The user wants larger tiles, or smaller ones where it is negative, by so many steps.
    void tileSizeStepped(int steps);

protected:
    [[nodiscard]] int columns() const override { return m_geometry.columns; }
    [[nodiscard]] int lineAt(int y) const override { return geometry().lineAt(y); }
    [[nodiscard]] QRect rectOf(int row) const override { return geometry().rectOf(row); }
    [[nodiscard]] int contentHeight() const override { return geometry().height(); }
    void forgetLayout() override { m_isStale = true; }
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    /// How many lines a name takes, as far as it was found out.
    struct NameRoom {
        QStringView name; ///< the text that m_laidOut holds
        WidthTable::Width width;
        int lines = 1;
        int column = 0; ///< the width of the column in which it takes them
    };

    /// What is drawn beside the tiles to select what lies in it.
    struct RubberBand {
        QPoint from;        ///< where the content begins being (0, 0)
        QPoint to;          ///< likewise
        QSet<int> selected; ///< the rows that it has selected
    };

    [[nodiscard]] const FileGridGeometry &geometry() const;
    void keepKnownNames(const QList<FileItem> &items) const;
    void fit(int width);
    void takeOtherNames();
    void lookAtVisible();
    [[nodiscard]] QPoint scrolled() const;
    [[nodiscard]] QRect bandRect() const;
    [[nodiscard]] QSet<int> rowsIn(const QRect &rect) const;
    void stretchBand(const QPoint &to);

    FileGridCellDelegate *m_cells;
    // Put together when they are asked for, not at each of the changes that come together.
    mutable FileGridGeometry m_geometry;
    mutable bool m_isStale = true;
    bool m_hasOtherNames = false;        ///< than those that the layout is of
    mutable QList<FileItem> m_laidOut;   ///< the rows
    mutable QList<NameRoom> m_nameRooms; ///< of their names
    mutable WidthTable m_widths;
    int m_tileSize = TileSize::standard;
    int m_turned = 0; ///< of the wheel with Control, what is not a step yet
    std::optional<RubberBand> m_band;
};

} // namespace vantrel
