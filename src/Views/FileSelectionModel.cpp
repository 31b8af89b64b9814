#include "Views/FileSelectionModel.h"

#include "Views/FileItemsModel.h"

namespace vantrel {

FileSelectionModel::FileSelectionModel(FileItemsModel *model, QObject *parent)
    : QItemSelectionModel(model, parent), m_model(model) {
    connect(model, &FileItemsModel::selectedRowsChanged, this, &FileSelectionModel::mirror);
}

void FileSelectionModel::select(const QItemSelection &selection, SelectionFlags command) {
    if (!(command & (Select | Deselect | Toggle)))
        return;
    const QModelIndexList indexes = selection.indexes();
    const QList<FileItem> items = m_model->items(); // what is called may give the model others
    for (const QModelIndex &index : indexes) {
        if (command & Toggle || isSelected(index) == command.testFlag(Deselect))
            Q_EMIT toggled(items.at(index.row()));
    }
}

void FileSelectionModel::mirror() {
    const QBitArray &rows = m_model->selectedRows();
    QItemSelection selection;
    for (qsizetype row = 0; row < rows.size(); ++row) {
        const qsizetype first = row;
        while (row < rows.size() && rows.testBit(row))
            ++row;
        if (row > first)
            selection.append(QItemSelectionRange(m_model->index(int(first)), m_model->index(int(row - 1))));
    }
    QItemSelectionModel::select(selection, ClearAndSelect);
}

} // namespace vantrel
