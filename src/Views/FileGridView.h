#pragma once

#include "Records/Pane.h"
#include "Views/FileItemsView.h"

namespace vantrel {

class FileGridCellDelegate;

/// Where the cells of a grid lie: as many columns as fit, each between the tiles' size and maxColumnWidth
/// wide and all of one width; the user chooses the former. Layout pixels; pixels that do not go into whole
/// columns are shared by both sides.
struct FileGridGeometry {
    static constexpr int inset = 12; ///< on every side
    static constexpr int spacing = 10;

    explicit FileGridGeometry(int width, int tileSize = TileSize::standard);

    double tileHeight;
    int maxColumnWidth;
    int columns;
    int columnWidth;
    int left; ///< of the first column

    friend bool operator==(const FileGridGeometry &, const FileGridGeometry &) = default;
};

/// The entries in lines of tiles, a FileGridCell each. The toolkit puts them into a grid that begins at the
/// left and at the top; inset and centring are a shift of all of it. What is beside
/// them begins a rubber band.
///
/// It tells the model which entries are in sight, for their pictures. The wheel with Control changes the size
/// of the tiles.
class FileGridView : public FileItemsView {
    Q_OBJECT

public:
    FileGridView(FileItemsModel *model, FileSelectionModel *selection, QWidget *parent = nullptr);

    /// A TileSize. The entry in the upper left corner stays there, as far as it can.
    void setTileSize(int size);

Q_SIGNALS:
    /// The user wants larger tiles, or smaller ones where it is negative, by so many steps.
    void tileSizeStepped(int steps);

protected:
    [[nodiscard]] int columns() const override { return m_geometry.columns; }
    [[nodiscard]] int pitch() const override { return gridSize().height(); }
    [[nodiscard]] int horizontalOffset() const override { return -m_geometry.left; }
    [[nodiscard]] int verticalOffset() const override {
        return FileItemsView::verticalOffset() - FileGridGeometry::inset;
    }
    void updateGeometries() override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    /// What is drawn beside the tiles to select what lies in it.
    struct RubberBand {
        QPoint from;        ///< where the content begins being (0, 0)
        QPoint to;          ///< likewise
        QSet<int> selected; ///< the rows that it has selected
    };

    void fit(int width);
    void lookAtVisible();
    [[nodiscard]] QPoint scrolled() const;
    [[nodiscard]] QRect bandRect() const;
    [[nodiscard]] QSet<int> rowsIn(const QRect &rect) const;
    void stretchBand(const QPoint &to);

    FileGridCellDelegate *m_cells;
    FileGridGeometry m_geometry;
    int m_tileSize = TileSize::standard;
    int m_turned = 0; ///< of the wheel with Control, what is not a step yet
    std::optional<RubberBand> m_band;
};

} // namespace vantrel
