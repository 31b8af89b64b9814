#pragma once

#include "Records/FileItem.h"

#include <QList>

namespace vantrel {

/// Sorts in the order of both panes and of search results: folders first, then by name in the user's locale
/// without regard to case; entries that compare equal keep their order. Any thread; each collation key is
/// made once, so 100,000 names cost 100,000 keys and not millions of comparisons by locale rules.
void sortInFileOrder(QList<FileItem> &items);

} // namespace vantrel
