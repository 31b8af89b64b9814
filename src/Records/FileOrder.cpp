#include "Records/FileOrder.h"

#include <QCollator>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace vantrel {

namespace {

QCollator fileNameCollator() {
    // In the "C" locale (no language set, as on a bare server) the collator compares code units and ignores
    // the case setting: "Zebra" would come before "apple". English stands in for it.
    const QLocale locale;
    QCollator collator(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

const std::array<std::pair<FileSortKey, QLatin1StringView>, 3> keyNames{
    {{FileSortKey::name, QLatin1StringView("name")},
     {FileSortKey::size, QLatin1StringView("size")},
     {FileSortKey::modified, QLatin1StringView("modified")}}};
const std::array<std::pair<Qt::SortOrder, QLatin1StringView>, 2> directionNames{
    {{Qt::AscendingOrder, QLatin1StringView("ascending")},
     {Qt::DescendingOrder, QLatin1StringView("descending")}}};

template <typename Names>
auto named(const Names &names, QStringView name) {
    const auto found =
        std::find_if(names.begin(), names.end(), [&](const auto &entry) { return entry.second == name; });
    return found == names.end() ? std::nullopt : std::optional(found->first);
}

template <typename Names, typename Value>
QString nameOf(const Names &names, Value value) {
    return std::find_if(names.begin(), names.end(), [&](const auto &entry) { return entry.first == value; })
        ->second;
}

/// What `key` compares of an entry. What is unknown is less than anything known.
qint64 sortNumber(const FileItem &item, FileSortKey key) {
    if (key == FileSortKey::size)
        return (item.isDirectory ? item.itemCount : item.sizeBytes).value_or(-1);
    return item.modifiedAt ? item.modifiedAt->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
}

} // namespace

FileOrder orderAfterClick(FileOrder now, FileSortKey column) {
    if (now.key == column)
        return {column, now.direction == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder};
    return {column, column == FileSortKey::name ? Qt::AscendingOrder : Qt::DescendingOrder};
}

QString rawValue(FileOrder order) {
    return nameOf(keyNames, order.key) + QLatin1Char(' ') + nameOf(directionNames, order.direction);
}

std::optional<FileOrder> fileOrderFromRawValue(const QString &text) {
    const auto words = QStringView(text).split(QLatin1Char(' '));
    const auto key = named(keyNames, words.first());
    const auto direction = named(directionNames, words.last());
    if (words.size() != 2 || !key || !direction)
        return std::nullopt;
    return FileOrder{*key, *direction};
}

void sortInFileOrder(QList<FileItem> &items) {
    struct Entry {
        QCollatorSortKey key;
        qsizetype index;
        bool isDirectory;
    };
    const QCollator collator = fileNameCollator();
    std::vector<Entry> order;
    order.reserve(static_cast<size_t>(items.size()));
    for (qsizetype i = 0; i < items.size(); ++i)
        order.push_back({collator.sortKey(items.at(i).name), i, items.at(i).isDirectory});

    std::sort(order.begin(), order.end(), [](const Entry &a, const Entry &b) {
        if (a.isDirectory != b.isDirectory)
            return a.isDirectory;
        const int byName = a.key.compare(b.key);
        return byName != 0 ? byName < 0 : a.index < b.index;
    });

    QList<FileItem> sorted;
    sorted.reserve(items.size());
    for (const Entry &entry : order)
        sorted.append(std::move(items[entry.index]));
    items = std::move(sorted);
}

QList<FileItem> inOrder(const QList<FileItem> &byName, FileOrder order) {
    if (order == FileOrder())
        return byName;
    struct Entry {
        qint64 number;
        qsizetype index;
        bool isDirectory;
    };
    std::vector<Entry> entries;
    entries.reserve(static_cast<size_t>(byName.size()));
    for (qsizetype i = 0; i < byName.size(); ++i) {
        const FileItem &item = byName.at(i);
        entries.push_back(
            {order.key == FileSortKey::name ? i : sortNumber(item, order.key), i, item.isDirectory});
    }
    const bool isAscending = order.direction == Qt::AscendingOrder;
    std::stable_sort(entries.begin(), entries.end(), [=](const Entry &a, const Entry &b) {
        if (a.isDirectory != b.isDirectory)
            return a.isDirectory;
        return isAscending ? a.number < b.number : a.number > b.number;
    });
    QList<FileItem> sorted;
    sorted.reserve(byName.size());
    for (const Entry &entry : entries)
        sorted.append(byName.at(entry.index));
    return sorted;
}

} // namespace vantrel
