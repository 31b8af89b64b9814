#include "Records/FileOrder.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>

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

FileSorter::FileSorter() : m_collator(fileNameCollator()) {}

void FileSorter::add(FileItem item) {
    auto &[rows, keys] = item.isDirectory ? m_folders : m_files;
    if (keys.empty() && !rows.empty() && m_collator.compare(m_items.at(rows.back()).name, item.name) > 0) {
        for (const qsizetype row : rows)
            keys.push_back(m_collator.sortKey(m_items.at(row).name));
    }
    if (!keys.empty())
        keys.push_back(m_collator.sortKey(item.name));
    rows.push_back(m_items.size());
    m_items.append(std::move(item));
}

QList<FileItem> FileSorter::take() {
    QList<FileItem> sorted;
    sorted.reserve(m_items.size());
    for (const Kind *kind : {&m_folders, &m_files}) {
        const auto &[rows, keys] = *kind;
        std::vector<size_t> order(rows.size());
        std::iota(order.begin(), order.end(), 0);
        if (!keys.empty())
            std::sort(order.begin(), order.end(), [&keys = keys](size_t a, size_t b) {
                const int byName = keys[a].compare(keys[b]);
                return byName != 0 ? byName < 0 : a < b;
            });
        for (const size_t position : order)
            sorted.append(std::move(m_items[rows[position]]));
    }
    return sorted;
}

void sortInFileOrder(QList<FileItem> &items) {
    FileSorter sorter;
    for (FileItem &item : items)
        sorter.add(std::move(item));
    items = sorter.take();
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
