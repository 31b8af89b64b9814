#pragma once

#include "Views/FileItemsView.h"

namespace vantrel {

/// The entries one below the other, a FileRow each with a divider under it.
class FileListView : public FileItemsView {
    Q_OBJECT

public:
    explicit FileListView(QWidget *parent = nullptr);

    /// How far the dividers are indented from the left.
    static constexpr int dividerIndent = 40;

protected:
    [[nodiscard]] int contentHeight() const override;
    [[nodiscard]] int columns() const override { return 1; }
    [[nodiscard]] int pitch() const override;
    [[nodiscard]] QRect rectOf(qsizetype index) const override;
    [[nodiscard]] Range entriesBetween(int top, int bottom) const override;

    [[nodiscard]] bool looksSame(const FileEntry &a, const FileEntry &b) const override;
    [[nodiscard]] FileEntry::Part partAt(const FileEntry &entry, const QRect &rect,
                                         const QPoint &point) const override;
    [[nodiscard]] bool cutsName(const FileEntry &entry, const QRect &rect) const override;
    void paintEntry(QPainter &painter, const FileEntry &entry, const QRect &rect) const override;
    [[nodiscard]] double focusRadius() const override { return 4; }
};

} // namespace vantrel
