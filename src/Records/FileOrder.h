#pragma once

#include "Records/FileItem.h"

#include <QCollator>
#include <QList>

#include <optional>
#include <vector>

namespace vantrel {

/// What tells which of two entries comes first.
enum class FileSortKey { name, size, modified };

/// An order of a pane's entries. Folders come before files in each; entries that are equal by the key, in the
/// order of their names.
struct FileOrder {
    FileSortKey key = FileSortKey::name;
    Qt::SortOrder direction = Qt::AscendingOrder;

    friend bool operator==(const FileOrder &, const FileOrder &) = default;
};

/// What a click on a column makes of the order: its own, and reversed when it was that already. Sizes and
/// dates begin with the largest and the newest, which are what people look for.
[[nodiscard]] FileOrder orderAfterClick(FileOrder now, FileSortKey column);

/// The text under which an order is stored, as "modified descending".
[[nodiscard]] QString rawValue(FileOrder order);
/// The order of exactly that text, or none.
[[nodiscard]] std::optional<FileOrder> fileOrderFromRawValue(const QString &text);

/// The order of both panes and of search results: folders first, then by name in the user's locale without
/// regard to case; entries that compare equal keep their order. Any thread. What comes in order, as from most
/// phones, is only compared with its neighbour; else each collation key is made once, so 100,000 names cost
/// 100,000 keys and not millions of comparisons by locale rules.
class FileSorter {
public:
    FileSorter();
    void add(FileItem item);
    [[nodiscard]] qsizetype size() const { return m_items.size(); }
    /// All that has been added, in order. To be called once.
    [[nodiscard]] QList<FileItem> take();

private:
    struct Kind {
        std::vector<qsizetype> rows;        ///< among all items
        std::vector<QCollatorSortKey> keys; ///< none while the rows are in order
    };

    QCollator m_collator;
    QList<FileItem> m_items;
    Kind m_folders;
    Kind m_files;
};

/// Sorts in that order.
void sortInFileOrder(QList<FileItem> &items);

/// Entries that sortInFileOrder() has sorted, in another order. Cheap enough for the main thread: no name is
/// looked at.
[[nodiscard]] QList<FileItem> inOrder(const QList<FileItem> &byName, FileOrder order);

} // namespace vantrel
