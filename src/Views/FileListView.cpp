#include "Views/FileListView.h"

#include "Views/FileDelegate.h"
#include "Views/FileItemsModel.h"

#include <algorithm>

namespace vantrel {

FileListView::FileListView(FileItemsModel *model, FileSelectionModel *selection, QWidget *parent)
    : FileItemsView(model, selection, new FileRowDelegate, parent) {}

/// From the top of one row to the top of the next.
int FileListView::pitch() const {
    return FileRowDelegate::height(static_cast<const FileItemsModel *>(model())->showsLocation());
}

int FileListView::lineAt(int y) const {
    return std::clamp(y / pitch(), 0, std::max(0, model()->rowCount() - 1));
}

QRect FileListView::rectOf(int row) const {
    return {0, row * pitch(), viewport()->width(), pitch()};
}

int FileListView::contentHeight() const {
    return model()->rowCount() * pitch();
}

} // namespace vantrel
