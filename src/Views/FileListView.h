#pragma once

#include "Views/FileItemsView.h"

namespace vantrel {

/// The entries one below the other, a FileRow each, all of one height.
class FileListView : public FileItemsView {
public:
    FileListView(FileItemsModel *model, FileSelectionModel *selection, QWidget *parent = nullptr);

protected:
    [[nodiscard]] int columns() const override { return 1; }
    [[nodiscard]] int lineAt(int y) const override;
    [[nodiscard]] QRect rectOf(int row) const override;
    [[nodiscard]] int contentHeight() const override;

private:
    [[nodiscard]] int pitch() const;
};

} // namespace vantrel
