#pragma once

namespace vantrel {

class FileItemsView;

/// Makes every FileItemsView a list to assistive technology, with an item per entry: named by the file,
/// checked when selected. An item comes to exist when it is asked for, so 100,000 of them cost nothing. Once
/// is enough.
void makeFileItemsAccessible();

/// Tells assistive technology that an entry was selected or no longer is.
void announceSelection(FileItemsView *view, int index);

} // namespace vantrel
