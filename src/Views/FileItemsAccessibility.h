#pragma once

namespace vantrel {

/// Makes every FileItemsView a list for assistive technology, whose items are named by their entries, can be
/// marked and can be opened. The toolkit's own items cannot be opened. To be called before the first view is
/// shown.
void makeFileItemsAccessible();

} // namespace vantrel
