#pragma once

#include "Records/FileItem.h"

#include <QItemSelectionModel>

namespace vantrel {

class FileItemsModel;

/// The pane's selection as the toolkit's views and assistive technology know it. It is a mirror: what they
/// ask it to select is passed on to the pane, and shows here when the pane has done it.
class FileSelectionModel : public QItemSelectionModel {
    Q_OBJECT

public:
    explicit FileSelectionModel(FileItemsModel *model, QObject *parent = nullptr);

    using QItemSelectionModel::select;
    void select(const QItemSelection &selection, SelectionFlags command) override;

Q_SIGNALS:
    /// The user wants the entry's mark to change.
    void toggled(const FileItem &item);

private:
    void mirror();

    FileItemsModel *m_model;
};

} // namespace vantrel
