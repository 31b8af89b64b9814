#include "Records/FileOrder.h"

#include <QCollator>

#include <algorithm>
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

} // namespace

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

} // namespace vantrel
